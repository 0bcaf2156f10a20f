#include "ui/library/export_bar.h"

#include "ui/common/layouts.h"

#include <QProgressBar>
#include <QPushButton>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr int kButtonHeight = 28; // px

} // namespace

ExportBar::ExportBar(QWidget* parent)
    : QWidget(parent),
      cancelButton(tallButton(u"Отменить экспорт"_s, kButtonHeight)),
      progress(new QProgressBar) {
    progress->setAccessibleName(u"Ход экспорта"_s);
    progress->setFormat(u"Экспорт: %p%"_s);
    layOutRow(this, {progress, cancelButton});
    showAll(false);
}

void ExportBar::begin() {
    progress->setValue(0);
    showAll(true);
}

void ExportBar::end() {
    showAll(false);
}

void ExportBar::setProgress(int percent) {
    progress->setValue(percent);
}

void ExportBar::showAll(bool visible) {
    setVisible(visible);
    progress->setVisible(visible);
    cancelButton->setVisible(visible);
}

} // namespace qn
