#pragma once

#include "ui/common/control_rules.h"

#include <QWidget>

#include <memory>

class QMenu;
class QPushButton;

namespace qn {

// The buttons that act on the selected recording.
class ActionBar : public QWidget {
    Q_OBJECT

public:
    explicit ActionBar(QWidget* parent = nullptr);

    void apply(const ActionRules& rules);

    // A new menu with the same commands, which the caller may extend and shows.
    std::unique_ptr<QMenu> menu(QWidget* parent) const;

    QPushButton* const exportButton;
    QPushButton* const recoverButton;
    QPushButton* const renameButton;
    QPushButton* const folderButton;
    QPushButton* const removeButton;
};

} // namespace qn
