#pragma once

#include "core/recording.h"

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>

namespace qn {

class Library;

// Writes into the library what nobody waits for: the recording in progress, and files that turned
// out finished. What a locked or full library refuses is kept and tried again, so that it never
// ends a recording. Lives on the library's thread.
class LibraryWriter : public QObject {
    Q_OBJECT

public:
    explicit LibraryWriter(Library& target);

    // Both ignore what has no recording's id. Of a recording only the newest state is kept.
    void update(const Recording& recording);
    void addEvent(const QString& recordingId, const QString& kind, const QJsonObject& details);

    // Tries at once, instead of waiting for the next try; true when nothing is left to write.
    bool flush();

    // Drops what is kept of a recording that was removed.
    void forget(const QString& recordingId);

Q_SIGNALS:
    // Emitted once, when the library begins to refuse, with the driver's text.
    void refused(const QString& error);

    // Emitted when everything is written that was refused.
    void caughtUp();

private:
    struct Event {
        QString recordingId;
        QString kind;
        QJsonObject details;
        QDateTime at; // when it happened, not when the library took it
    };

    void write();
    void write(const Event& event);

    Library& library;
    QHash<QString, Recording> rows; // the newest state of each, by id
    QList<Event> events;
    QTimer retry; // runs while the library refuses
    bool refusing = false;
};

} // namespace qn
