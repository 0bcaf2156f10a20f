#include "ui/common/contrast.h"

#include <algorithm>
#include <cmath>

namespace qn {

namespace {

// Relative luminance and contrast as WCAG 2.1 defines them.
double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double contrast(const QColor& a, const QColor& b) {
    const double first = luminance(a);
    const double second = luminance(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

QColor blended(const QColor& from, const QColor& to, double share) {
    const auto mixed = [share](int a, int b) { return qRound(a + (b - a) * share); };
    return {mixed(from.red(), to.red()), mixed(from.green(), to.green()),
            mixed(from.blue(), to.blue())};
}

} // namespace

QColor legible(const QColor& color, const QColor& background, double ratio) {
    constexpr int kSteps = 32;
    const QColor goal = contrast(Qt::white, background) > contrast(Qt::black, background)
                            ? QColor(Qt::white)
                            : QColor(Qt::black);
    for (int step = 0; step < kSteps; ++step) {
        const QColor candidate = blended(color, goal, double(step) / kSteps);
        if (contrast(candidate, background) >= ratio)
            return candidate;
    }
    return goal;
}

} // namespace qn
