#pragma once

#include <initializer_list>

class QPushButton;
class QString;
class QWidget;

namespace qn {

// Lays the widgets out side by side in `panel`, without margins, so that nested panels keep the
// geometry of a flat layout.
void layOutRow(QWidget* panel, std::initializer_list<QWidget*> widgets);

// New panels laid out so.
QWidget* rowOf(std::initializer_list<QWidget*> widgets);
QWidget* columnOf(std::initializer_list<QWidget*> widgets);

QPushButton* tallButton(const QString& text, int leastHeight);

// Free space in a panel at that place, by default its end.
void addStretch(QWidget* panel, int index = -1);

} // namespace qn
