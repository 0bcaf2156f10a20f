#include "ui/library/action_bar.h"

#include "ui/common/layouts.h"

#include <QPushButton>

namespace qn {

using namespace Qt::StringLiterals;

ActionBar::ActionBar(QWidget* parent)
    : QWidget(parent),
      exportButton(new QPushButton(u"Экспорт аудио…"_s)),
      recoverButton(new QPushButton(u"Восстановить"_s)),
      renameButton(new QPushButton(u"Переименовать"_s)),
      folderButton(new QPushButton(u"Открыть папку"_s)),
      removeButton(new QPushButton(u"Удалить"_s)) {
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

} // namespace qn
