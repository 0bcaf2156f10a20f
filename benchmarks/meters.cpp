// Two level meters at 50 updates a second compared with two bars that paint two fills each.
// meters_benchmark SECONDS prints processor seconds per minute: of the meters, then of the bars.

#include "ui/recording/level_meter.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QTextStream>
#include <QTimer>
#include <QVBoxLayout>

#include <array>
#include <cmath>
#include <ctime>

namespace {

class PlainBar : public QWidget {
public:
    PlainBar() { setFixedHeight(14); }

    void setLevel(float level) {
        percent = static_cast<int>(level * 100.0F);
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const int filled = width() * percent / 100;
        painter.fillRect(0, 0, filled, height(), palette().highlight());
        painter.fillRect(filled, 0, width() - filled, height(), palette().mid());
    }

private:
    int percent = 0;
};

// Processor seconds per minute of a window with two bars whose levels follow a voice.
template <typename Bar> double processorSeconds(int milliseconds) {
    QWidget window;
    window.resize(1140, 60);
    std::array<Bar, 2> bars;
    QVBoxLayout layout(&window);
    for (Bar& bar : bars)
        layout.addWidget(&bar);
    window.show();
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    int tick = 0;
    QObject::connect(&timer, &QTimer::timeout, &window, [&] {
        ++tick;
        bars[0].setLevel(std::abs(std::sin(static_cast<float>(tick) * 0.31F)) * 0.9F);
        bars[1].setLevel(std::abs(std::sin(static_cast<float>(tick) * 0.17F)) * 0.7F);
    });
    timer.start(20);
    const std::clock_t before = std::clock();
    QTimer::singleShot(milliseconds, &window, [] { QCoreApplication::exit(); });
    QCoreApplication::exec();
    const double seconds = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
    layout.removeWidget(&bars[0]);
    for (Bar& bar : bars)
        bar.setParent(nullptr);
    return seconds * 60'000.0 / milliseconds;
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    constexpr int kTurns = 4;
    const int milliseconds =
        QCoreApplication::arguments().value(1, QStringLiteral("16")).toInt() * 1000 / (2 * kTurns);
    processorSeconds<PlainBar>(500); // loads fonts, style and back end first
    double meters = 0;
    double bars = 0;
    for (int turn = 0; turn < kTurns; ++turn) {
        bars += processorSeconds<PlainBar>(milliseconds) / kTurns;
        meters += processorSeconds<qn::LevelMeter>(milliseconds) / kTurns;
    }
    QTextStream(stdout) << meters << ' ' << bars << '\n';
    return 0;
}
