#include "ui/export_bar.h"

#include "ui/layouts.h"

#include <QProgressBar>
#include <QPushButton>

namespace qn {

using namespace Qt::StringLiterals;

ExportBar::ExportBar(QWidget* parent)
    : QWidget(parent), progress(new QProgressBar), cancel(new QPushButton(u"Отменить экспорт"_s)) {
    progress->setAccessibleName(u"Ход экспорта"_s);
    layOutRow(this, {progress, cancel});
    connect(cancel, &QPushButton::clicked, this, &ExportBar::cancelClicked);
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
    cancel->setVisible(visible);
}

} // namespace qn
