#include "ui/recording/level_meter.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace qn {

namespace {
constexpr int kHeight = 14; // px
constexpr int kUpdateIntervalMs = 35;

struct Zone {
    double from; // dBFS
    QColor colour;
};

// Green for speech, amber near full scale, red for all but clipped. Every colour stands out from
// light and dark backgrounds.
constexpr std::array kZones{Zone{-60, {0x2e, 0x8b, 0x3d}}, Zone{-9, {0xc7, 0x77, 0x00}},
                            Zone{-1, {0xd3, 0x2f, 0x2f}}};
constexpr double kFloor = kZones.front().from;

double decibels(float level) {
    return level > 0.0F ? std::clamp(20 * std::log10(double(level)), kFloor, 0.0) : kFloor;
}
} // namespace

LevelMeter::LevelMeter(QWidget* parent) : QProgressBar(parent), shown(kFloor) {
    setTextVisible(false);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setValue(0);
}

void LevelMeter::setLevel(float level) {
    const int percent = level > 0.0F ? static_cast<int>(std::min(level, 1.0F) * 100.0F) : 0;
    if (percent != value()) {
        // QProgressBar repaints itself whole inside setValue. Prevented from that, both meters are
        // painted in one later pass, and only where they have changed.
        setAttribute(Qt::WA_UpdatesDisabled, true);
        setValue(percent);
        setAttribute(Qt::WA_UpdatesDisabled, false);
    }
    // The eye can't follow 50 pictures a second. Silence is never skipped, because no other level
    // may follow it.
    const bool isTooSoon = sinceUpdate.isValid() && sinceUpdate.elapsed() < kUpdateIntervalMs;
    if (level > 0 && isTooSoon)
        return;
    sinceUpdate.start();
    const int before = xOf(shown);
    shown = decibels(level);
    const auto [from, to] = std::minmax({before, xOf(shown)});
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
    // Styles clear this when they polish a bar; every level would then repaint the panel behind.
    if (event->type() == QEvent::Polish || event->type() == QEvent::StyleChange)
        setAttribute(Qt::WA_OpaquePaintEvent);
    return handled;
}

QSize LevelMeter::sizeHint() const {
    return {QProgressBar::sizeHint().width(), kHeight};
}

void LevelMeter::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), isEnabled() ? palette().base() : palette().mid());
    const int end = xOf(warning.isEmpty() ? shown : kFloor);
    for (const Zone& zone : kZones) {
        const int start = xOf(zone.from);
        painter.fillRect(start, 0, std::max(end - start, 0), height(), zone.colour);
    }
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    if (!warning.isEmpty()) {
        QFont small = font();
        small.setPixelSize(height() - 3);
        painter.setFont(small);
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(rect(), Qt::AlignCenter, warning);
    }
}

int LevelMeter::xOf(double decibels) const {
    return static_cast<int>(width() * (1 - decibels / kFloor));
}

} // namespace qn
