#pragma once

#include "ui/common/control_rules.h"

#include <QWidget>

class QPushButton;

namespace qn {

// What can be done with the selected recording.
class ActionBar : public QWidget {
    Q_OBJECT

public:
    explicit ActionBar(QWidget* parent = nullptr);

    void apply(const ActionRules& rules);

    QPushButton* const exportButton;
    QPushButton* const recoverButton;
    QPushButton* const renameButton;
    QPushButton* const folderButton;
    QPushButton* const removeButton;
};

} // namespace qn
