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

// Writes the recording in progress into the library. What a locked or full library refuses is kept
// and written as soon as it accepts it, so that it never ends a recording.
class LibraryWriter : public QObject {
    Q_OBJECT

public:
    explicit LibraryWriter(Library& target);

    void update(const Recording& recording);
    void addEvent(const QString& recordingId, const QString& kind, const QJsonObject& details);

    // Tries at once, instead of waiting for the next try; true when nothing is left to write.
    bool flush();

    // Drops what is kept of a recording that was removed.
    void forget(const QString& recordingId);

Q_SIGNALS:
    // Emitted once, when the library begins to refuse.
    void refused(const QString& error);

private:
    struct Event {
        QString recordingId;
        QString kind;
        QJsonObject details;
    };

    void write();

    Library& library;
    QHash<QString, Recording> rows; // the newest state of each, by id
    QList<Event> events;
    QTimer retry; // runs while the library refuses
    bool refusing = false;
};

} // namespace qn
