#include "ui/recording/level_meter.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace qn {

namespace {
constexpr int kHeight = 14; // px
constexpr int kUpdateIntervalMs = 35;
} // namespace

LevelMeter::LevelMeter(QWidget* parent) : QProgressBar(parent) {
    setTextVisible(false);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setValue(0);
}

void LevelMeter::setLevel(float level) {
    const int percent = level > 0.0F ? static_cast<int>(std::min(level, 1.0F) * 100.0F) : 0;
    if (percent != value()) {
        // QProgressBar repaints itself whole inside setValue; held back, both meters wait for one
        // pass that paints what has changed.
        setAttribute(Qt::WA_UpdatesDisabled, true);
        setValue(percent);
        setAttribute(Qt::WA_UpdatesDisabled, false);
    }
    // The eye doesn't follow 50 pictures a second; silence, the last level of all, is always shown.
    const bool isTooSoon = sinceUpdate.isValid() && sinceUpdate.elapsed() < kUpdateIntervalMs;
    if (percent == shown || (percent > 0 && isTooSoon))
        return;
    sinceUpdate.start();
    const int before = filledWidth();
    shown = percent;
    const auto [from, to] = std::minmax({before, filledWidth()});
    update(from, 0, to - from, height());
}

void LevelMeter::setWarning(const QString& text) {
    if (text == warning)
        return;
    warning = text;
    setAccessibleDescription(text);
    update();
}

bool LevelMeter::event(QEvent* event) {
    const bool handled = QProgressBar::event(event);
    // Styles clear it when they polish a bar, and every level would repaint the panel behind it.
    if (event->type() == QEvent::Polish || event->type() == QEvent::StyleChange)
        setAttribute(Qt::WA_OpaquePaintEvent);
    return handled;
}

QSize LevelMeter::sizeHint() const {
    return {QProgressBar::sizeHint().width(), kHeight};
}

void LevelMeter::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int filled = filledWidth();
    painter.fillRect(0, 0, filled, height(), palette().highlight());
    painter.fillRect(filled, 0, width() - filled, height(), palette().mid());
    if (!warning.isEmpty()) {
        QFont small = font();
        small.setPixelSize(height() - 3);
        painter.setFont(small);
        painter.fillRect(rect(), palette().base());
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(rect(), Qt::AlignCenter, warning);
    }
}

int LevelMeter::filledWidth() const {
    return width() * shown / maximum();
}

} // namespace qn
