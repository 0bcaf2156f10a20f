#pragma once

#include "core/audio_format.h"
#include "core/recording.h"

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QSaveFile>
#include <QString>
#include <QTemporaryFile>

#include <memory>

class QFile;
class QTimer;

namespace qn {

// Writes one recording to a file of the user's choice: copies it if it is complete and in the
// wanted format, otherwise transcodes it through a hidden temporary file beside the target. The
// target is replaced only by a complete export. One export at a time, all on the owner's thread.
class ExportJob : public QObject {
    Q_OBJECT

public:
    explicit ExportJob(QObject* parent = nullptr);
    ~ExportJob() override;

    // Ignored while an export runs.
    void start(const Recording& recording, const QString& target, AudioFormat format);

    // `finished` reports the end; ignored if nothing runs.
    void cancel();

    bool isRunning() const { return running; }

    // Milliseconds of audio that the last export has transcoded; 0 if it was a copy.
    qint64 transcodedLength() const { return transcodedMs; }

Q_SIGNALS:
    void progress(int percent);

    // Emitted once per export, when the job is free again, with a message for the user.
    void finished(bool success, const QString& message);

private:
    void transcode(const Recording& recording, const QString& target, AudioFormat format);
    void readProgress();
    void reportProgress(const QByteArray& line);
    void processFinished(int exitCode, QProcess::ExitStatus exitStatus);
    void processFailed(QProcess::ProcessError error);

    void copyFile(const QString& source);
    void copyStep(QFile& file, QTimer& timer);
    void completeCopy(QTimer& timer, bool success, const QString& message);

    // Ends every export, however it went: removes the partial files, then reports.
    void complete(bool success, const QString& message);

    QProcess process;
    std::unique_ptr<QSaveFile> output; // the target; null when idle
    std::unique_ptr<QTemporaryFile>
        temporary;         // the transcoded file; null when idle or only copying
    QByteArray lineBuffer; // of standard error, not yet split into lines
    bool running = false;
    bool cancelled = false;
    qint64 durationMs = 0;
    qint64 transcodedMs = 0;
    QByteArray errorTail; // the last of standard error, for the message
};

} // namespace qn
