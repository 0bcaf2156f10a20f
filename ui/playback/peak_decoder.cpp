#include "ui/playback/peak_decoder.h"

#include "engine/input_url.h"
#include "engine/tools.h"
#include "ui/playback/child_pipe.h"
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
constexpr qint64 kReadBytes = 16384; // more would keep the tool from writing for longer
constexpr qint64 kSampleBytes = sizeof(float);
constexpr qsizetype kErrorTailBytes = 2000;

QStringList decodeArguments(const QString& path) {
    return {u"-hide_banner"_s, u"-loglevel"_s, u"error"_s,     u"-nostdin"_s,
            u"-i"_s,           inputUrl(path), u"-map"_s,      u"0:a:0"_s,
            u"-vn"_s,          u"-ac"_s,       u"1"_s,         u"-ar"_s,
            u"48000"_s,        u"-c:a"_s,      u"pcm_f32le"_s, u"-f"_s,
            u"f32le"_s,        u"pipe:1"_s};
}

// Reads whole samples from the pipe; a partial one waits for its rest.
class SampleReader {
public:
    explicit SampleReader(ChildPipe& source) : output(source) {}

    // False when there is nothing to read at the moment.
    bool readInto(PeakAccumulator& accumulator) {
        char* const bytes = reinterpret_cast<char*>(samples.data());
        const qint64 added = output.read(bytes + pending, kReadBytes);
        pending += added;
        const qint64 whole = pending / kSampleBytes;
        accumulator.add(samples.data(), whole);
        pending -= whole * kSampleBytes;
        std::copy_n(bytes + whole * kSampleBytes, pending, bytes);
        return added > 0;
    }

private:
    ChildPipe& output;
    std::array<float, kReadBytes / kSampleBytes + 1> samples{};
    qint64 pending = 0; // bytes of the partial sample
};

// The last of what the tool says about its troubles.
class ErrorTail {
public:
    explicit ErrorTail(ChildPipe& source) : errors(source) {}

    // False when there is nothing to read at the moment.
    bool read() {
        const qint64 added = errors.read(piece.data(), qint64(piece.size()));
        tail = (tail + QByteArray(piece.data(), added)).right(kErrorTailBytes);
        return added > 0;
    }

    QString text() const { return QString::fromUtf8(tail); }

private:
    ChildPipe& errors;
    std::array<char, kReadBytes> piece{};
    QByteArray tail;
};

void startTool(QProcess& process, const QString& path, ChildPipe& output, ChildPipe& errors) {
    process.setStandardOutputFile(output.writePath());
    process.setStandardErrorFile(errors.writePath());
    process.start(ffmpegPath(), decodeArguments(path));
}

} // namespace

std::optional<DecodedPeaks> decodePeaks(const QString& path) {
    ChildPipe output;
    ChildPipe errors;
    QProcess process;
    startTool(process, path, output, errors);
    if (!process.waitForStarted(kStartTimeoutMs))
        return DecodedPeaks{{}, false, process.errorString()};
    output.closeWriteEnd();
    errors.closeWriteEnd();

    PeakAccumulator accumulator;
    SampleReader samples(output);
    ErrorTail errorTail(errors);
    while (!QThread::currentThread()->isInterruptionRequested()) {
        if (samples.readInto(accumulator))
            continue;
        ChildPipe::waitForAny({&output, &errors}, kReadTimeoutMs);
        // Only a process that is waited for takes notice of its end.
        process.waitForFinished(output.atEnd() && errors.atEnd() ? kReadTimeoutMs : 0);
        const bool isOver = process.state() == QProcess::NotRunning;
        if (!errorTail.read() && isOver && !samples.readInto(accumulator))
            break;
    }
    if (QThread::currentThread()->isInterruptionRequested()) {
        process.kill();
        process.waitForFinished(kKillTimeoutMs);
        return std::nullopt;
    }
    QList<float> peaks = accumulator.finish();
    const bool ok =
        process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0 && !peaks.isEmpty();
    return DecodedPeaks{std::move(peaks), ok, errorTail.text()};
}

} // namespace qn
