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

// Writes what the user is not waiting for, above all the recording in progress. What a locked or
// full library refuses is kept and tried again, so that it never ends a recording. Lives on the
// library's thread.
class LibraryWriter : public QObject {
    Q_OBJECT

public:
    explicit LibraryWriter(Library& target);

    // Both ignore an empty id. Only the newest state of each recording is kept.
    void update(const Recording& recording);
    void addEvent(const QString& recordingId, const QString& kind, const QJsonObject& details);

    // Writes now instead of at the next try; true if everything has been written.
    bool flush();

    // Drops what is still to be written about a removed recording.
    void forget(const QString& recordingId);

Q_SIGNALS:
    // Emitted once when the library begins to refuse, with the driver's text.
    void refused(const QString& error);

    // Emitted when everything that was refused has been written.
    void caughtUp();

private:
    struct Event {
        QString recordingId;
        QString kind;
        QJsonObject details;
        QDateTime at; // when it happened, not when it was written
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
