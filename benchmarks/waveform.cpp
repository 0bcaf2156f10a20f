// Decoding the waveform compared with ffmpeg with the same arguments and a bare reader, and
// painting it compared with one pen per column. Usage: waveform_benchmark [minutes of audio,
// default 20]
#include "benchmarks/sample_recordings.h"
#include "benchmarks/side_by_side.h"
#include "ui/playback/peak_decoder.h"
#include "ui/playback/waveform_timeline.h"

#include <QApplication>
#include <QEventLoop>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <random>

namespace {

using namespace Qt::StringLiterals;

float bareMaximum = 0.0F;

void bareReader(const QString& path) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        std::exit(1);
    const QByteArray tool = qn::ffmpegPath().toLocal8Bit();
    const QByteArray file = path.toLocal8Bit();
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        execl(tool.constData(), "ffmpeg", "-hide_banner", "-loglevel", "error", "-nostdin", "-i",
              file.constData(), "-map", "0:a:0", "-vn", "-ac", "1", "-ar", "48000", "-c:a",
              "pcm_f32le", "-f", "f32le", "pipe:1", nullptr);
        _exit(127);
    }
    close(ends[1]);
    static std::array<float, 16384> samples;
    float maximum = 0.0F;
    for (;;) {
        const ssize_t bytes = read(ends[0], samples.data(), sizeof samples);
        if (bytes <= 0)
            break;
        for (size_t i = 0; i < size_t(bytes) / sizeof(float); ++i)
            maximum = std::max(maximum, std::abs(samples[i]));
    }
    close(ends[0]);
    waitpid(child, nullptr, 0);
    bareMaximum = maximum;
}

// As in the program: with the widget, its thread, and the result applied in the event loop.
void timeline(const QString& path) {
    qn::WaveformTimeline widget;
    QEventLoop loop;
    QObject::connect(&widget, &qn::WaveformTimeline::waveformReady, &loop, [&](bool ok) {
        if (!ok)
            std::exit(1);
        loop.quit();
    });
    widget.setAudioFile(path);
    loop.exec();
}

void onePenPerColumn(QImage& image, const QList<float>& peaks, const QPalette& palette) {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area = QRectF(image.rect()).adjusted(12, 12, -12, -12);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette.base());
    painter.drawRoundedRect(area, 7, 7);
    const double playhead = area.left() + area.width() / 2;
    const qsizetype columns = qsizetype(area.width());
    for (qsizetype i = 0; i < columns; ++i) {
        const qsizetype first = peaks.size() * i / columns;
        const qsizetype last = std::max(first + 1, peaks.size() * (i + 1) / columns);
        float value = 0.0F;
        for (qsizetype j = first; j < std::min(last, peaks.size()); ++j)
            value = std::max(value, peaks[j]);
        const double half = std::max(std::pow(double(value), 0.55) * area.height() * 0.45, 0.5);
        const double x = area.left() + double(i);
        painter.setPen(QPen(palette.color(playhead >= x ? QPalette::Highlight : QPalette::Mid), 1));
        painter.drawLine(QPointF(x, area.center().y() - half),
                         QPointF(x, area.center().y() + half));
    }
}

// The widget gets an hour's worth of peaks by decoding a file.
void painting(const QString& folder) {
    const QString hour = folder + u"/peaks.wav"_s;
    sample_recordings::ffmpeg(
        {u"-f"_s, u"lavfi"_s, u"-i"_s,
         u"anoisesrc=a=0.4:r=48000:d=900,volume=0.5+0.5*sin(t/7):eval=frame"_s, hour});
    qn::WaveformTimeline widget;
    widget.resize(1000, 76);
    QEventLoop loop;
    QObject::connect(&widget, &qn::WaveformTimeline::waveformReady, &loop, &QEventLoop::quit);
    widget.setAudioFile(hour);
    loop.exec();
    widget.setRange(0, 3600000);
    widget.setValue(1800000);

    std::mt19937 random(1);
    std::uniform_real_distribution<float> amplitude(0.0F, 1.0F);
    QList<float> peaks(90000);
    std::generate(peaks.begin(), peaks.end(), [&] { return amplitude(random); });
    QImage image(1000, 76, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    side_by_side::compare(
        "painting, 90000 peaks", 200, 1.0, [&] { widget.render(&image); },
        [&] { onePenPerColumn(image, peaks, widget.palette()); });
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const int minutes = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
    const QTemporaryDir folder;
    sample_recordings::make(folder.path(), minutes);

    std::printf("Waveform of %d min of audio: ffmpeg and a bare reader beside it\n", minutes);
    side_by_side::printHeader();
    using qn::AudioFormat;
    for (const AudioFormat format : {AudioFormat::Opus, AudioFormat::Mp3, AudioFormat::Wav}) {
        const QString path = sample_recordings::path(folder.path(), format);
        side_by_side::compare(
            "decode " + qn::toText(format).toStdString(), 3, format == AudioFormat::Wav ? 1.3 : 1.1,
            [&] { timeline(path); }, [&] { bareReader(path); });
    }
    painting(folder.path());
    return 0;
}
