#pragma once

#include "core/audio_format.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QObject>
#include <QProcess>
#include <QString>

namespace qn {

// One ffmpeg process that encodes 48 kHz mono float samples into one file. Used once: start, any
// number of writes, then finish or abort. Lives on the worker's thread and blocks it for the times
// given below. Errors are texts for the user.
class Encoder : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~Encoder() override;

    // Waits up to 5 s for the process to start. An existing file is never overwritten.
    bool start(const QString& path, AudioFormat format, const QDateTime& started, QString& error);

    // Queues the samples without waiting; more than 10 s of unwritten audio is a failure.
    bool write(const QList<float>& samples, QString& error);

    // Ends the input and waits up to 30 s for the file to be complete.
    bool finish(QString& error);

    // Kills the process; the partial file stays. False if it does not end within 3 s or had already
    // ended.
    bool abort();

Q_SIGNALS:
    // The process ended by itself or takes no more audio.
    void failed(const QString&);

private:
    void watchProcess();
    void collectErrors();
    QString errorTail();

    QProcess process;
    bool finishing = false;
    bool inputClosed = false; // by the process, which may still run
    QByteArray errorOutput;   // the last of the process's standard error
};

} // namespace qn
