#include "ui/elided_label.h"

#include <QPainter>

namespace qn {

QSize ElidedLabel::minimumSizeHint() const {
    return {0, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    const QString line = text().simplified();
    const QString shown = fontMetrics().elidedText(line, Qt::ElideRight, width());
    setToolTip(shown == line ? QString() : line.toHtmlEscaped());
    QPainter(this).drawText(rect(), static_cast<int>(alignment()), shown);
}

} // namespace qn
