#pragma once

#include "ui/common/control_rules.h"

#include <QWidget>

#include <memory>

class QMenu;
class QPushButton;

namespace qn {

// What can be done with the selected recording.
class ActionBar : public QWidget {
    Q_OBJECT

public:
    explicit ActionBar(QWidget* parent = nullptr);

    void apply(const ActionRules& rules);

    // The same commands as a menu of its own; the caller may add more and shows it.
    std::unique_ptr<QMenu> menu(QWidget* parent) const;

    QPushButton* const exportButton;
    QPushButton* const recoverButton;
    QPushButton* const renameButton;
    QPushButton* const folderButton;
    QPushButton* const removeButton;
};

} // namespace qn
