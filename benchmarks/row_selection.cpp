// row_selection EVENTS: opens the real window on a library of two recordings, each with its file
// and a journal of that many events, and prints the median of the milliseconds from selecting the
// other recording until its details are painted.

#include "benchmarks/sample_recordings.h"
#include "core/date_time.h"
#include "storage/library.h"
#include "ui/window.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

using namespace Qt::StringLiterals;

constexpr int kSelections = 51;
constexpr int kPauseMs = 200; // between two selections, so that the window is idle at each

void fill(const QString& folder, int events) {
    qn::Library library(folder + u"/library.sqlite3"_s);
    for (const QString& id : {u"one"_s, u"two"_s}) {
        qn::Recording recording;
        recording.id = id;
        recording.title = u"Созвон "_s + id;
        recording.path = folder + u'/' + id + u".opus"_s;
        recording.timezone = u"Europe/Moscow"_s;
        recording.status = u"ready"_s;
        recording.started = recording.ended = QDateTime::currentDateTimeUtc();
        sample_recordings::ffmpeg({u"-f"_s, u"lavfi"_s, u"-i"_s, u"anoisesrc=d=60:r=48000"_s,
                                   u"-c:a"_s, u"libopus"_s, recording.path});
        library.insert(recording);
        for (int i = 0; i < events; ++i)
            library.event(id, u"source"_s,
                          {{u"from"_s, u"alsa_output.pci-%1"_s.arg(i % 5)},
                           {u"to"_s, u"alsa_output.usb-%1"_s.arg(i % 7)},
                           {u"preferred"_s, QString()},
                           {u"fallback"_s, i % 2 == 0}});
    }
}

// Notes the painting of one widget.
class PaintWatch : public QObject {
public:
    explicit PaintWatch(QWidget* widget) { widget->installEventFilter(this); }

    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        painted = painted || event->type() == QEvent::Paint;
        return false;
    }

    bool painted = false;
};

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    fill(folder.path(), std::atoi(argv[1])); // the journal's length
    qn::Window window(folder.path());
    window.show();
    auto* table = window.findChild<QTableWidget*>(u"recordings"_s);
    PaintWatch details(window.findChild<QTextEdit*>()->viewport());
    while (!details.painted)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);

    std::vector<double> times;
    for (int i = 0; i < kSelections; ++i) {
        QEventLoop pause;
        QTimer::singleShot(kPauseMs, &pause, &QEventLoop::quit);
        pause.exec();
        details.painted = false;
        QElapsedTimer timer;
        timer.start();
        table->setCurrentCell(1 - table->currentRow(), 0);
        while (!details.painted)
            QApplication::processEvents();
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    const auto middle = times.begin() + kSelections / 2;
    std::nth_element(times.begin(), middle, times.end());
    std::printf("%.2f\n", *middle);
}
