#include "export/export_job.h"

#include "engine/codec_arguments.h"
#include "engine/input_url.h"
#include "engine/tools.h"
#include "export/stale_files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <algorithm>
#include <limits>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kCopyBytes = 1048576;
constexpr qsizetype kErrorTailBytes = 8192;
constexpr qsizetype kErrorTextCharacters = 3000;
constexpr int kTranscodePercent = 90;
constexpr qint64 kMostMicroseconds = std::numeric_limits<qint64>::max() / kTranscodePercent;
constexpr int kKillTimeoutMs = 3000;

bool isSameFile(const QString& source, const QString& target) {
    const QFileInfo targetInfo(target);
    return targetInfo.exists() &&
           QFileInfo(source).canonicalFilePath() == targetInfo.canonicalFilePath();
}

// Opening a pipe would block the window.
bool isSpecialFile(const QString& path) {
    const QFileInfo info(path);
    return info.exists() && !info.isFile() && !info.isDir();
}

QStringList transcodeArguments(const Recording& recording, AudioFormat format,
                               const QString& destination) {
    QStringList arguments{u"-hide_banner"_s, u"-loglevel"_s, u"error"_s, u"-nostdin"_s, u"-y"_s};
    // The header of an interrupted WAV file states a wrong length.
    if (recording.format == "wav"_L1 && recording.status != "ready"_L1)
        arguments << u"-ignore_length"_s << u"1"_s;
    arguments << u"-i"_s << inputUrl(recording.path) << u"-vn"_s << u"-ar"_s << u"48000"_s
              << u"-ac"_s << u"1"_s << u"-metadata"_s << u"title="_s + recording.title
              << u"-metadata"_s
              << u"creation_time="_s + recording.started.toUTC().toString(Qt::ISODateWithMs);
    return arguments << codecArguments(format) << u"-progress"_s << u"pipe:2"_s << destination;
}

} // namespace

ExportJob::ExportJob(QObject* parent) : QObject(parent) {
    process.setStandardOutputFile(QProcess::nullDevice()); // otherwise buffered in memory, unread
}

// A killed process still emits finished(), so its signals are disconnected first. Until it is gone
// it may create the temporary file again, so its end is waited for before the file is removed.
ExportJob::~ExportJob() {
    process.disconnect(this);
    if (process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished(kKillTimeoutMs);
    }
}

void ExportJob::start(const Recording& recording, const QString& target, AudioFormat format) {
    if (running)
        return;
    if (isSameFile(recording.path, target)) {
        Q_EMIT finished(false, u"Нельзя заменить исходную запись экспортом"_s);
        return;
    }
    output = std::make_unique<QSaveFile>(target);
    output->setDirectWriteFallback(false);
    // Unbuffered, so that write() itself reports a full disk, for the last bytes too.
    if (!output->open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        const QString message = output->errorString();
        output.reset();
        Q_EMIT finished(false, message);
        return;
    }
    running = true;
    cancelled = false;
    durationMs = recording.durationMs;
    transcodedMs = 0;
    lineBuffer.clear();
    errorTail.clear();
    if (recording.format == toText(format) && recording.status == "ready"_L1)
        copyFile(recording.path);
    else
        transcode(recording, target, format);
}

void ExportJob::cancel() {
    if (!running)
        return;
    cancelled = true;
    if (process.state() != QProcess::NotRunning)
        process.kill();
}

void ExportJob::transcode(const Recording& recording, const QString& target, AudioFormat format) {
    const QString program = ffmpegPath();
    if (program.isEmpty()) {
        complete(false, u"FFmpeg не найден"_s);
        return;
    }
    // Beside the target, on the same volume.
    const QString folder = QFileInfo(target).absolutePath();
    removeStaleFiles(folder);
    temporary = std::make_unique<QTemporaryFile>(temporaryFileTemplate(folder));
    if (!temporary->open()) {
        complete(false, temporary->errorString());
        return;
    }
    const QString destination = temporary->fileName();
    temporary->close();

    process.disconnect(this);
    connect(&process, &QProcess::readyReadStandardError, this, &ExportJob::readProgress);
    connect(&process, &QProcess::finished, this, &ExportJob::processFinished);
    // Queued, because the receiver may start the next export, and QProcess cannot start again while
    // it is reporting a failed start.
    connect(&process, &QProcess::errorOccurred, this, &ExportJob::processFailed,
            Qt::QueuedConnection);
    process.start(program, transcodeArguments(recording, format, destination));
}

void ExportJob::readProgress() {
    const QByteArray data = process.readAllStandardError();
    lineBuffer += data;
    errorTail = (errorTail + data).right(kErrorTailBytes);
    for (qsizetype end = lineBuffer.indexOf('\n'); end >= 0; end = lineBuffer.indexOf('\n')) {
        const QByteArray line = lineBuffer.left(end);
        lineBuffer.remove(0, end + 1);
        reportProgress(line);
    }
    // No progress line is that long, and a line that never ends must not grow.
    lineBuffer.truncate(kErrorTailBytes);
}

void ExportJob::reportProgress(const QByteArray& line) {
    static constexpr QByteArrayView kKey = "out_time_us=";
    if (!line.startsWith(kKey))
        return;
    // Before its first packet ffmpeg may report the lowest 64-bit integer.
    const qint64 microseconds =
        std::clamp(line.mid(kKey.size()).toLongLong(), -kMostMicroseconds, kMostMicroseconds);
    transcodedMs = microseconds / 1000;
    if (durationMs < 1)
        return;
    const qint64 percent =
        microseconds * kTranscodePercent / (std::min(durationMs, kMostMicroseconds / 1000) * 1000);
    constexpr qint64 kLeast = std::numeric_limits<int>::min();
    Q_EMIT progress(static_cast<int>(std::clamp<qint64>(percent, kLeast, kTranscodePercent)));
}

void ExportJob::processFinished(int exitCode, QProcess::ExitStatus exitStatus) {
    if (cancelled) {
        complete(false, u"Экспорт отменён"_s);
    } else if (exitCode != 0 || exitStatus != QProcess::NormalExit) {
        const QString text = QString::fromUtf8(errorTail).right(kErrorTextCharacters);
        complete(false, u"Не удалось преобразовать аудио: "_s + text);
    } else {
        copyFile(temporary->fileName());
    }
}

void ExportJob::processFailed(QProcess::ProcessError error) {
    if (error == QProcess::FailedToStart && running)
        complete(false, process.errorString());
}

void ExportJob::copyFile(const QString& source) {
    if (isSpecialFile(source)) {
        complete(false, u"Ошибка копирования аудио"_s);
        return;
    }
    const auto file = std::make_shared<QFile>(source);
    if (!file->open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        complete(false, file->errorString());
        return;
    }
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, [this, file, timer] { copyStep(*file, *timer); });
    timer->start(0);
}

void ExportJob::copyStep(QFile& file, QTimer& timer) {
    if (cancelled) {
        completeCopy(timer, false, u"Экспорт отменён"_s);
        return;
    }
    const QByteArray chunk = file.read(kCopyBytes);
    if ((chunk.isEmpty() && !file.atEnd()) || output->write(chunk) != chunk.size()) {
        completeCopy(timer, false, u"Ошибка копирования аудио"_s);
        return;
    }
    const qint64 size = file.size();
    qint64 percent = size > 0 ? file.pos() * 100 / size : 100;
    if (temporary)
        percent = kTranscodePercent + percent / 10;
    Q_EMIT progress(static_cast<int>(percent));
    if (!file.atEnd())
        return;
    file.close();
    const bool committed = output->commit();
    completeCopy(timer, committed, committed ? u"Аудио экспортировано"_s : output->errorString());
}

void ExportJob::completeCopy(QTimer& timer, bool success, const QString& message) {
    timer.stop();
    timer.deleteLater();
    complete(success, message);
}

void ExportJob::complete(bool success, const QString& message) {
    output.reset();
    temporary.reset();
    running = false;
    Q_EMIT progress(success ? 100 : 0);
    Q_EMIT finished(success, message);
}

} // namespace qn
