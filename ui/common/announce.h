#pragma once

class QString;
class QWidget;

namespace qn {

// Has assistive technology announce the text now, on behalf of the widget.
void announce(QWidget* widget, const QString& text);

} // namespace qn
