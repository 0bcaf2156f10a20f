#include "engine/encoder.h"

#include "engine/codec_arguments.h"
#include "engine/timeline_rate.h"
#include "engine/tools.h"

#include <QTimer>

#include <utility>

#ifdef Q_OS_UNIX
#include <csignal>
#include <unistd.h>
#endif

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr int kStartTimeoutMs = 5'000;
constexpr int kFinishTimeoutMs = 30'000;
constexpr int kKillTimeoutMs = 3'000;
constexpr int kLastWordsMs = 500;
constexpr qint64 kBytesPerSecond = kTimelineRate * qint64{sizeof(float)};
constexpr qint64 kMaxQueuedBytes = 10 * kBytesPerSecond;
constexpr qsizetype kErrorTail = 4'000;                   // characters of error output shown
constexpr qsizetype kMaxErrorOutput = qsizetype{1} << 20; // bytes of it kept

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

#ifdef Q_OS_UNIX
// Ctrl-C in a terminal reaches the whole process group, and SIGTERM at a shutdown every process.
// The encoder must survive both to write the rest of the audio; it ends when its input ends. The
// signals are blocked rather than ignored, because ffmpeg installs handlers of its own.
void outliveSignals() {
    ::setsid();
    sigset_t held;
    sigemptyset(&held);
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&held, number);
    sigprocmask(SIG_BLOCK, &held, nullptr);
}
#endif

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
    process.setStandardOutputFile(QProcess::nullDevice()); // otherwise buffered in memory, unread
    watchProcess();
#ifdef Q_OS_UNIX
    process.setChildProcessModifier(outliveSignals);
#endif
    process.start(program, recordingArguments(path, format, started), QIODevice::ReadWrite);
    if (process.waitForStarted(kStartTimeoutMs))
        return true;
    error = process.errorString();
    return false;
}

void Encoder::watchProcess() {
    connect(&process, &QProcess::readyReadStandardError, this, &Encoder::collectErrors);
    connect(&process, &QProcess::finished, this, [this](int exitCode) {
        if (!finishing)
            Q_EMIT failed(
                u"Кодировщик остановился (%1): %2"_s.arg(QString::number(exitCode), errorTail()));
    });
    // The input also closes when the process ends by itself, so it gets time to print its error.
    connect(&process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error != QProcess::WriteError || std::exchange(inputClosed, true))
            return;
        QTimer::singleShot(kLastWordsMs, this, [this] {
            if (!finishing)
                Q_EMIT failed(u"Кодировщик не работает: "_s + errorTail());
        });
    });
}

bool Encoder::write(const QList<float>& samples, QString& error) {
    if (process.state() != QProcess::Running) {
        collectErrors();
        error = u"Кодировщик не работает: "_s + QString::fromUtf8(errorOutput);
        return false;
    }
    if (inputClosed) // `failed` is on its way
        return true;
    if (process.bytesToWrite() > kMaxQueuedBytes) {
        error = u"Кодировщик не успевает сохранять аудио"_s;
        return false;
    }
    const qint64 bytes = samples.size() * qint64{sizeof(float)};
    if (process.write(reinterpret_cast<const char*>(samples.constData()), bytes) == bytes)
        return true;
    error = process.errorString();
    return false;
}

bool Encoder::finish(QString& error) {
    finishing = true;
    const bool wasRunning = process.state() != QProcess::NotRunning;
    const int timeoutMs = inputClosed ? kKillTimeoutMs : kFinishTimeoutMs;
    process.closeWriteChannel();
    if (wasRunning && !process.waitForFinished(timeoutMs)) {
        abort();
        error = u"Превышено время завершения кодирования"_s;
        return false;
    }
    error = errorTail();
    const bool tookAll = !(wasRunning && inputClosed);
    return tookAll && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
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
