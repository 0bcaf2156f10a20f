#include "ui/library/action_bar.h"

#include "ui/common/layouts.h"

#include <QMenu>
#include <QPushButton>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr int kButtonHeight = 28; // px

} // namespace

ActionBar::ActionBar(QWidget* parent)
    : QWidget(parent),
      exportButton(tallButton(u"Экспорт аудио…"_s, kButtonHeight)),
      recoverButton(tallButton(u"Восстановить"_s, kButtonHeight)),
      renameButton(tallButton(u"Переименовать"_s, kButtonHeight)),
      folderButton(tallButton(u"Открыть папку"_s, kButtonHeight)),
      removeButton(tallButton(u"Удалить"_s, kButtonHeight)) {
    recoverButton->setToolTip(u"Собрать целый файл из записи, прерванной сбоем"_s);
    layOutRow(this, {exportButton, recoverButton, renameButton, folderButton, removeButton});
    addStretch(this);
}

void ActionBar::apply(const ActionRules& rules) {
    exportButton->setEnabled(rules.exportAudio);
    recoverButton->setEnabled(rules.recover);
    renameButton->setEnabled(rules.rename);
    folderButton->setEnabled(rules.openFolder);
    removeButton->setEnabled(rules.remove);
}

std::unique_ptr<QMenu> ActionBar::menu(QWidget* parent) const {
    auto menu = std::make_unique<QMenu>(parent);
    for (QPushButton* button :
         {exportButton, recoverButton, renameButton, folderButton, removeButton}) {
        QAction* action = menu->addAction(button->text(), button, &QPushButton::click);
        action->setEnabled(button->isEnabled());
    }
    return menu;
}

} // namespace qn
