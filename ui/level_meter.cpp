#include "ui/level_meter.h"

#include <QPainter>

#include <algorithm>

namespace qn {

namespace {
constexpr int kHeight = 14; // px
}

LevelMeter::LevelMeter(QWidget* parent) : QProgressBar(parent) {
    setTextVisible(false);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setValue(0);
}

void LevelMeter::setLevel(float level) {
    const int percent = level > 0.0F ? static_cast<int>(std::min(level, 1.0F) * 100.0F) : 0;
    if (percent == value())
        return;
    // QProgressBar repaints inside setValue, once per meter; held back, both wait for one pass.
    setUpdatesEnabled(false);
    setValue(percent);
    setUpdatesEnabled(true);
}

QSize LevelMeter::sizeHint() const {
    return {QProgressBar::sizeHint().width(), kHeight};
}

void LevelMeter::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int filled = width() * value() / 100;
    painter.fillRect(0, 0, filled, height(), palette().highlight());
    painter.fillRect(filled, 0, width() - filled, height(), palette().mid());
}

} // namespace qn
