#include "ui/common/layouts.h"

#include <QBoxLayout>
#include <QPushButton>
#include <QWidget>

namespace qn {

namespace {

constexpr int kButtonPadding = 16; // px, for both sides together

void layOut(QBoxLayout::Direction direction, QWidget* panel,
            std::initializer_list<QWidget*> widgets) {
    auto* layout = new QBoxLayout(direction, panel);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget* widget : widgets)
        layout->addWidget(widget);
}

} // namespace

void layOutRow(QWidget* panel, std::initializer_list<QWidget*> widgets) {
    layOut(QBoxLayout::LeftToRight, panel, widgets);
}

QWidget* rowOf(std::initializer_list<QWidget*> widgets) {
    auto* panel = new QWidget;
    layOutRow(panel, widgets);
    return panel;
}

QWidget* columnOf(std::initializer_list<QWidget*> widgets) {
    auto* panel = new QWidget;
    layOut(QBoxLayout::TopToBottom, panel, widgets);
    return panel;
}

QPushButton* tallButton(const QString& text, int leastHeight) {
    auto* button = new QPushButton(text);
    button->setMinimumHeight(leastHeight);
    button->setMinimumWidth(button->sizeHint().width() + kButtonPadding);
    return button;
}

void addStretch(QWidget* panel, int index) {
    qobject_cast<QBoxLayout*>(panel->layout())->insertStretch(index);
}

} // namespace qn
