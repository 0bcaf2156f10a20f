#include "ui/peak_decoder.h"

#include "engine/input_url.h"
#include "engine/tools.h"
#include "ui/peak_accumulator.h"

#include <QByteArray>
#include <QProcess>
#include <QThread>

#include <fcntl.h>
#include <unistd.h>

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

// Woken for each of its packets, tool and reader spend more time on switching than on the samples.
// With a wide pipe the reader may nap and then take a lot at once while the tool runs on.
#ifdef F_SETPIPE_SZ
constexpr unsigned long kNapMicroseconds = 500;

void widenOutput(QProcess& process) {
    process.setChildProcessModifier([] { fcntl(STDOUT_FILENO, F_SETPIPE_SZ, 1048576); });
}
#else
constexpr unsigned long kNapMicroseconds = 0;

void widenOutput(QProcess&) {}
#endif

QStringList decodeArguments(const QString& path) {
    return {u"-hide_banner"_s, u"-loglevel"_s, u"error"_s,     u"-nostdin"_s,
            u"-i"_s,           inputUrl(path), u"-map"_s,      u"0:a:0"_s,
            u"-vn"_s,          u"-ac"_s,       u"1"_s,         u"-ar"_s,
            u"48000"_s,        u"-c:a"_s,      u"pcm_f32le"_s, u"-f"_s,
            u"f32le"_s,        u"pipe:1"_s};
}

// Reads whole samples from the process; a partial one waits for its rest.
class SampleReader {
public:
    explicit SampleReader(QProcess& source) : process(source) {}

    void readInto(PeakAccumulator& accumulator) {
        char* const bytes = reinterpret_cast<char*>(samples.data());
        pending += std::max<qint64>(process.read(bytes + pending, kReadBytes), 0);
        const qint64 whole = pending / kSampleBytes;
        accumulator.add(samples.data(), whole);
        pending -= whole * kSampleBytes;
        std::copy_n(bytes + whole * kSampleBytes, pending, bytes);
    }

private:
    QProcess& process;
    std::array<float, kReadBytes / kSampleBytes + 1> samples{};
    qint64 pending = 0; // bytes of the partial sample
};

void keepErrorTail(QByteArray& tail, QProcess& process) {
    const QByteArray data = process.readAllStandardError();
    if (!data.isEmpty())
        tail = (tail + data).right(kErrorTailBytes);
}

} // namespace

std::optional<DecodedPeaks> decodePeaks(const QString& path) {
    QProcess process;
    widenOutput(process);
    process.start(ffmpegPath(), decodeArguments(path));
    if (!process.waitForStarted(kStartTimeoutMs))
        return DecodedPeaks{{}, false, process.errorString()};

    PeakAccumulator accumulator;
    SampleReader reader(process);
    QByteArray errorTail;
    while (!QThread::currentThread()->isInterruptionRequested()) {
        if (process.bytesAvailable() == 0) {
            process.waitForReadyRead(kReadTimeoutMs);
            if (process.bytesAvailable() == 0 && process.state() == QProcess::NotRunning)
                break;
        }
        if (kNapMicroseconds > 0 && process.bytesAvailable() < kReadBytes)
            QThread::usleep(kNapMicroseconds);
        reader.readInto(accumulator);
        keepErrorTail(errorTail, process);
    }
    if (QThread::currentThread()->isInterruptionRequested()) {
        process.kill();
        process.waitForFinished(kKillTimeoutMs);
        return std::nullopt;
    }
    keepErrorTail(errorTail, process);
    QList<float> peaks = accumulator.finish();
    const bool ok =
        process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0 && !peaks.isEmpty();
    return DecodedPeaks{std::move(peaks), ok, QString::fromUtf8(errorTail)};
}

} // namespace qn
