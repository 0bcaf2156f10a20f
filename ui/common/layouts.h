#pragma once

#include <initializer_list>

class QPushButton;
class QString;
class QWidget;

namespace qn {

// Lays the widgets out side by side in `panel`, without margins, so that nested panels take no more
// room than a flat layout.
void layOutRow(QWidget* panel, std::initializer_list<QWidget*> widgets);

// A new panel with the widgets side by side, or one below the other.
QWidget* rowOf(std::initializer_list<QWidget*> widgets);
QWidget* columnOf(std::initializer_list<QWidget*> widgets);

QPushButton* tallButton(const QString& text, int leastHeight);

// Adds stretch to the panel's layout before the widget at `index`, by default at the end.
void addStretch(QWidget* panel, int index = -1);

} // namespace qn
