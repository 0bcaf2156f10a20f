#include "ui/common/elided_label.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace qn {

QSize ElidedLabel::minimumSizeHint() const {
    return {0, QLabel::minimumSizeHint().height()};
}

QString ElidedLabel::line() const {
    return text().simplified();
}

QString ElidedLabel::shownLine() const {
    return fontMetrics().elidedText(line(), Qt::ElideRight, width());
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QLabel::event(event);
    const QString tip = shownLine() == line() ? QString() : line().toHtmlEscaped();
    // An empty tip hides the last one.
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), tip, this);
    return true;
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter(this).drawText(rect(), static_cast<int>(alignment()), shownLine());
}

} // namespace qn
