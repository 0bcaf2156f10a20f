#pragma once

#include <initializer_list>

class QWidget;

namespace qn {

// Panels without margins, so that nesting them leaves the geometry of a flat layout.
QWidget* rowOf(std::initializer_list<QWidget*> widgets);
QWidget* columnOf(std::initializer_list<QWidget*> widgets);

// Fills the rest of a row with space.
void addStretch(QWidget* row);

} // namespace qn
