#include "ui/layouts.h"

#include <QBoxLayout>
#include <QWidget>

namespace qn {

namespace {

QWidget* panelOf(QBoxLayout::Direction direction, std::initializer_list<QWidget*> widgets) {
    auto* panel = new QWidget;
    auto* layout = new QBoxLayout(direction, panel);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget* widget : widgets)
        layout->addWidget(widget);
    return panel;
}

} // namespace

QWidget* rowOf(std::initializer_list<QWidget*> widgets) {
    return panelOf(QBoxLayout::LeftToRight, widgets);
}

QWidget* columnOf(std::initializer_list<QWidget*> widgets) {
    return panelOf(QBoxLayout::TopToBottom, widgets);
}

void addStretch(QWidget* row) {
    static_cast<QBoxLayout*>(row->layout())->addStretch();
}

} // namespace qn
