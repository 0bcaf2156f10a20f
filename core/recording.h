#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QString>

namespace qn {

// One row of the library.
struct Recording {
    QString id;       // random UUID without braces
    QString title;    // as the user sees it
    QString path;     // absolute; ends in ".part" while the recording is unfinished
    QString format;   // "opus", "mp3" or "wav"
    QString timezone; // IANA id of the system zone at the start
    // "starting", "recording", "paused", "finalizing", "ready", "failed" or "interrupted"
    QString status;
    QDateTime started; // UTC
    QDateTime ended;   // UTC; invalid while unknown
    qint64 durationMs = 0;
    QJsonObject details;
};

} // namespace qn

Q_DECLARE_TYPEINFO(qn::Recording, Q_RELOCATABLE_TYPE);
