#pragma once

#include "core/recording.h"

#include <QDate>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QSqlDatabase>
#include <QString>

#include <optional>
#include <utility>

namespace qn {

// The recordings and the journal of each, in one SQLite file. Main thread only. Every call blocks,
// up to 5 s if another process has locked the database, and throws std::runtime_error with the
// driver's text if it fails.
class Library {
public:
    // Creates the file and its folder if they are missing.
    explicit Library(const QString& path);
    ~Library();
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    void insert(const Recording& r);

    // Writes everything except id, title, format and timezone; an unknown id is no error.
    void update(const Recording& r);

    // Newest first. `search` matches titles and ignores case; `date` is the day of the start in the
    // recording's own zone. Empty and invalid match everything.
    QList<Recording> list(const QString& search, const QDate& date) const;

    void rename(const QString& id, const QString& title);

    // Removes the row and its journal, not the audio file.
    void remove(const QString& id);

    // Appends to the journal.
    void event(const QString& recordingId, const QString& kind, const QJsonObject& details,
               const QDateTime& at = QDateTime::currentDateTimeUtc());

    // The journal, oldest first: objects with "at" (UTC, ISO 8601 with ms), "kind" and "details".
    QJsonArray events(const QString& recordingId) const;

    // Gives the sessions that an earlier run left active the status "interrupted".
    void markInterrupted();

private:
    void open(const QString& path);
    void close();

    void readChanges() const;
    void readAll() const;

    QSqlDatabase db;
    QString connectionName;
    mutable QList<Recording> known; // all rows, newest first, as of knownVersion
    mutable std::optional<std::pair<qint64, qint64>> knownVersion;
};

} // namespace qn
