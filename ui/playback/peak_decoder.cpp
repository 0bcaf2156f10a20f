#include "ui/playback/peak_decoder.h"

#include "engine/input_url.h"
#include "engine/tools.h"
#include "ui/playback/peak_accumulator.h"

#include <QByteArray>
#include <QProcess>
#include <QThread>

#include <algorithm>
#include <array>
#include <utility>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr int kStartTimeoutMs = 5000;
constexpr int kReadTimeoutMs = 100;
constexpr int kKillTimeoutMs = 3000;
constexpr qint64 kReadBytes = 65536;
constexpr qint64 kSampleBytes = sizeof(float);
constexpr qsizetype kErrorTailBytes = 2000;

QStringList decodeArguments(const QString& path) {
    return {u"-hide_banner"_s, u"-loglevel"_s, u"error"_s,     u"-nostdin"_s,
            u"-i"_s,           inputUrl(path), u"-map"_s,      u"0:a:0"_s,
            u"-vn"_s,          u"-ac"_s,       u"1"_s,         u"-ar"_s,
            u"48000"_s,        u"-c:a"_s,      u"pcm_f32le"_s, u"-f"_s,
            u"f32le"_s,        u"pipe:1"_s};
}

// Reads whole samples from the tool's output; a partial one is kept for the next read.
class SampleReader {
public:
    explicit SampleReader(QProcess& tool) : output(tool) {}

    void readInto(PeakAccumulator& accumulator) {
        char* const bytes = reinterpret_cast<char*>(samples.data());
        pending += std::max<qint64>(output.read(bytes + pending, kReadBytes), 0);
        const qint64 whole = pending / kSampleBytes;
        accumulator.add(samples.data(), whole);
        pending -= whole * kSampleBytes;
        std::copy_n(bytes + whole * kSampleBytes, pending, bytes);
    }

private:
    QProcess& output;
    std::array<float, kReadBytes / kSampleBytes + 1> samples{};
    qint64 pending = 0; // bytes of the partial sample
};

} // namespace

std::optional<DecodedPeaks> decodePeaks(const QString& path) {
    QByteArray errorTail; // filled until the process is gone
    QProcess process;
    process.start(ffmpegPath(), decodeArguments(path));
    if (!process.waitForStarted(kStartTimeoutMs))
        return DecodedPeaks{{}, false, process.errorString()};

    PeakAccumulator accumulator;
    SampleReader samples(process);
    // While the tool floods its error output, waitForReadyRead buffers that and overruns its
    // timeout. So the buffer is emptied and an interruption noticed in here.
    QObject::connect(&process, &QProcess::readyReadStandardError, &process, [&] {
        errorTail = (errorTail + process.readAllStandardError()).right(kErrorTailBytes);
        if (QThread::currentThread()->isInterruptionRequested())
            process.kill();
    });
    while (!QThread::currentThread()->isInterruptionRequested()) {
        if (process.bytesAvailable() == 0 && !process.waitForReadyRead(kReadTimeoutMs) &&
            process.state() == QProcess::NotRunning && process.bytesAvailable() == 0)
            break;
        samples.readInto(accumulator);
    }
    if (QThread::currentThread()->isInterruptionRequested()) {
        process.kill();
        process.waitForFinished(kKillTimeoutMs);
        return std::nullopt;
    }
    QList<float> peaks = accumulator.finish();
    const bool ok =
        process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0 && !peaks.isEmpty();
    return DecodedPeaks{std::move(peaks), ok, QString::fromUtf8(errorTail)};
}

} // namespace qn
