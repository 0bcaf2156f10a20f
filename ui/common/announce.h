#pragma once

class QString;
class QWidget;

namespace qn {

// Has assistive technology say the text now, in the name of that widget.
void announce(QWidget* widget, const QString& text);

} // namespace qn
