#include "engine/encoder.h"

#include "engine/codec_arguments.h"
#include "engine/timeline_rate.h"
#include "engine/tools.h"

#include <utility>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr int kStartTimeoutMs = 5'000;
constexpr int kFinishTimeoutMs = 30'000;
constexpr int kKillTimeoutMs = 3'000;
constexpr qint64 kBytesPerSecond = kTimelineRate * qint64{sizeof(float)};
constexpr qint64 kMaxQueuedBytes = 10 * kBytesPerSecond;
constexpr qsizetype kHandOverBytes = kBytesPerSecond / 10; // 100 ms of audio
constexpr qsizetype kErrorTail = 4'000;                    // characters of ffmpeg's errors shown
constexpr qsizetype kMaxErrorOutput = qsizetype{1} << 20;  // bytes of them kept

QStringList recordingArguments(const QString& path, AudioFormat format, const QDateTime& started) {
    return QStringList{u"-hide_banner"_s,
                       u"-loglevel"_s,
                       u"error"_s,
                       u"-nostdin"_s,
                       u"-n"_s,
                       u"-f"_s,
                       u"f32le"_s,
                       u"-probesize"_s,
                       u"32"_s,
                       u"-analyzeduration"_s,
                       u"1"_s,
                       u"-ar"_s,
                       QString::number(kTimelineRate),
                       u"-ac"_s,
                       u"1"_s,
                       u"-i"_s,
                       u"pipe:0"_s,
                       u"-metadata"_s,
                       u"creation_time="_s + started.toUTC().toString(Qt::ISODateWithMs)} +
           codecArguments(format) + QStringList{u"-flush_packets"_s, u"1"_s, path};
}

} // namespace

Encoder::~Encoder() {
    // Destroying a running process still emits finished().
    process.disconnect(this);
    if (process.state() != QProcess::NotRunning)
        abort();
}

bool Encoder::start(const QString& path, AudioFormat format, const QDateTime& started,
                    QString& error) {
    const QString program = ffmpegPath();
    if (program.isEmpty()) {
        error = u"Не найден поставляемый с приложением FFmpeg"_s;
        return false;
    }
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.setStandardOutputFile(QProcess::nullDevice()); // else it would be gathered unread
    connect(&process, &QProcess::readyReadStandardError, this, &Encoder::collectErrors);
    connect(&process, &QProcess::finished, this, [this](int exitCode) {
        if (!finishing)
            Q_EMIT failed(
                u"Кодировщик остановился (%1): %2"_s.arg(QString::number(exitCode), errorTail()));
    });
#ifdef Q_OS_UNIX
    // Ctrl-C in a terminal goes to its whole process group; the encoder must outlive it and get
    // the rest of the audio. It ends with its input when the program is killed.
    process.setChildProcessModifier([] { ::setsid(); });
#endif
    process.start(program, recordingArguments(path, format, started), QIODevice::ReadWrite);
    if (process.waitForStarted(kStartTimeoutMs))
        return true;
    error = process.errorString();
    return false;
}

bool Encoder::write(const QList<float>& samples, QString& error) {
    if (process.state() != QProcess::Running) {
        collectErrors();
        error = u"Кодировщик не работает: "_s + QString::fromUtf8(errorOutput);
        return false;
    }
    if (process.bytesToWrite() + gathered.size() > kMaxQueuedBytes) {
        error = u"Кодировщик не успевает сохранять аудио"_s;
        return false;
    }
    gathered.append(reinterpret_cast<const char*>(samples.constData()),
                    samples.size() * qsizetype{sizeof(float)});
    if (gathered.size() < kHandOverBytes || handOver())
        return true;
    error = process.errorString();
    return false;
}

bool Encoder::handOver() {
    const QByteArray bytes = std::exchange(gathered, {});
    return process.write(bytes) == bytes.size();
}

bool Encoder::finish(QString& error) {
    finishing = true;
    if (process.state() == QProcess::Running)
        handOver();
    process.closeWriteChannel();
    if (process.state() != QProcess::NotRunning && !process.waitForFinished(kFinishTimeoutMs)) {
        abort();
        error = u"Превышено время завершения кодирования"_s;
        return false;
    }
    error = errorTail();
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

bool Encoder::abort() {
    finishing = true;
    process.kill();
    return process.waitForFinished(kKillTimeoutMs);
}

void Encoder::collectErrors() {
    errorOutput += process.readAllStandardError();
    if (errorOutput.size() > kMaxErrorOutput)
        errorOutput = errorOutput.last(kMaxErrorOutput);
}

QString Encoder::errorTail() {
    collectErrors();
    return QString::fromUtf8(errorOutput).right(kErrorTail);
}

} // namespace qn
