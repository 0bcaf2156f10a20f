#include "storage/library.h"

#include "core/date_time.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QJsonDocument>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>
#include <QVariant>

#include <algorithm>
#include <numeric>
#include <stdexcept>
#include <utility>
#include <vector>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void raise(const QSqlError& error) {
    throw std::runtime_error(error.text().toStdString());
}

// A statement that cannot be prepared fails here too, so preparing needs no check of its own.
void run(QSqlQuery& query) {
    if (!query.exec())
        raise(query.lastError());
}

QSqlQuery run(const QSqlDatabase& db, const QString& sql, const QVariantList& values = {}) {
    QSqlQuery query(db);
    query.setForwardOnly(true);
    query.prepare(sql);
    for (const QVariant& value : values)
        query.addBindValue(value);
    run(query);
    return query;
}

bool next(QSqlQuery& query) {
    if (query.next())
        return true;
    if (query.lastError().isValid())
        raise(query.lastError());
    return false;
}

// Empty and null alike as '', never NULL.
QString nonNull(const QString& text) {
    return text.isEmpty() ? u""_s : text;
}

QString toJsonText(const QJsonObject& object) {
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

constexpr qsizetype kMostRemembered = 64;

// A column's words recur from row to row: sharing one copy spares memory, and with it time.
class WordReader {
public:
    QString read(const QByteArray& word) {
        if (word != last) {
            last = word;
            text = QString::fromUtf8(word);
        }
        return text;
    }

private:
    QByteArray last;
    QString text;
};

// Details recur too, so that few texts need parsing.
class DetailsReader {
public:
    QJsonObject read(const QByteArray& text) {
        if (text == "{}")
            return {};
        const auto known = objects.constFind(text);
        if (known != objects.cend())
            return *known;
        QJsonObject object = QJsonDocument::fromJson(text).object();
        if (objects.size() < kMostRemembered)
            objects.insert(text, object);
        return object;
    }

private:
    QHash<QByteArray, QJsonObject> objects;
};

// The rows' numbers by their start, whose ISO text sorts as the time does; equal ones as they come.
std::vector<qsizetype> newestFirst(const QList<QByteArray>& starts) {
    std::vector<qsizetype> rows(size_t(starts.size()));
    std::iota(rows.begin(), rows.end(), 0);
    std::stable_sort(rows.begin(), rows.end(),
                     [&starts](qsizetype a, qsizetype b) { return starts[a] > starts[b]; });
    return rows;
}

// Tells whether a recording started on the wanted day of its own zone; an invalid day wants all.
class DayFilter {
public:
    explicit DayFilter(const QDate& wanted) : day(wanted) {}

    bool accepts(const QDateTime& started, const QString& timezone) {
        if (!day.isValid())
            return true;
        // No zone is a whole day away from UTC: most rows are settled without theirs.
        const qint64 daysAway = started.toUTC().date().daysTo(day);
        if (!started.isValid() || daysAway < -1 || daysAway > 1)
            return false;
        auto zone = zones.find(timezone);
        if (zone == zones.end())
            zone = zones.insert(timezone, recordingZone(timezone));
        return started.toTimeZone(*zone).date() == day;
    }

private:
    QDate day;
    QHash<QString, QTimeZone> zones;
};

} // namespace

Library::Library(const QString& path)
    : connectionName(QUuid::createUuid().toString(QUuid::WithoutBraces)) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    db = QSqlDatabase::addDatabase(u"QSQLITE"_s, connectionName);
    try {
        open(path);
    } catch (...) {
        close();
        throw;
    }
}

Library::~Library() {
    close();
}

void Library::open(const QString& path) {
    db.setDatabaseName(path);
    if (!db.open())
        raise(db.lastError());
    const QStringList statements{
        u"PRAGMA foreign_keys=ON"_s,
        u"PRAGMA journal_mode=WAL"_s,
        u"PRAGMA busy_timeout=5000"_s,
        u"CREATE TABLE IF NOT EXISTS recordings (id TEXT PRIMARY KEY,title TEXT NOT NULL,"
        u"path TEXT NOT NULL,format TEXT NOT NULL,timezone TEXT NOT NULL,started TEXT NOT NULL,"
        u"ended TEXT,duration_ms INTEGER NOT NULL DEFAULT 0,status TEXT NOT NULL,"
        u"details TEXT NOT NULL DEFAULT '{}')"_s,
        u"CREATE TABLE IF NOT EXISTS events (recording_id TEXT NOT NULL REFERENCES recordings(id) "
        u"ON DELETE CASCADE,at TEXT NOT NULL,kind TEXT NOT NULL,details TEXT NOT NULL)"_s,
        u"PRAGMA user_version=1"_s,
    };
    for (const QString& statement : statements)
        run(db, statement);
}

void Library::close() {
    // The driver keeps a connection alive, and warns, while any handle to it is left.
    db = QSqlDatabase();
    QSqlDatabase::removeDatabase(connectionName);
}

void Library::insert(const Recording& r) {
    isKnown = false;
    run(db,
        u"INSERT INTO recordings(id,title,path,format,timezone,started,ended,duration_ms,status,"
        u"details) VALUES(?,?,?,?,?,?,?,?,?,?)"_s,
        {nonNull(r.id), nonNull(r.title), nonNull(r.path), nonNull(r.format), nonNull(r.timezone),
         nonNull(toIsoText(r.started)), nonNull(toIsoText(r.ended)), r.durationMs, r.status,
         toJsonText(r.details)});
}

void Library::update(const Recording& r) {
    isKnown = false;
    run(db,
        u"UPDATE recordings SET path=?,started=?,ended=?,duration_ms=?,status=?,details=? "
        u"WHERE id=?"_s,
        {r.path, toIsoText(r.started), toIsoText(r.ended), r.durationMs, r.status,
         toJsonText(r.details), r.id});
}

QList<Recording> Library::list(const QString& search, const QDate& date) const {
    readChanges();
    if (search.isEmpty() && !date.isValid())
        return known;
    QList<Recording> found;
    DayFilter filter(date);
    for (const Recording& recording : std::as_const(known)) {
        if (recording.title.contains(search, Qt::CaseInsensitive) &&
            filter.accepts(recording.started, recording.timezone))
            found.append(recording);
    }
    return found;
}

// Reads all rows when this connection or another has written since the last time, which a search
// that is being typed need not wait for.
void Library::readChanges() const {
    QSqlQuery version = run(db, u"PRAGMA data_version"_s); // changes with others' writes only
    const qint64 othersWrites = next(version) ? version.value(0).toLongLong() : 0;
    if (isKnown && othersWrites == knownVersion)
        return;
    isKnown = false;
    readAll();
    knownVersion = othersWrites;
    isKnown = true;
}

void Library::readAll() const {
    known.clear(); // now, so that the new rows find its memory
    // As bytes, because Qt turns UTF-8 into its own text faster than SQLite does. Sorted here,
    // because SQLite would write every row out and read it in again for that.
    QSqlQuery query =
        run(db, u"SELECT CAST(id AS BLOB),CAST(title AS BLOB),CAST(path AS BLOB),"
                u"CAST(format AS BLOB),CAST(timezone AS BLOB),CAST(started AS BLOB),"
                u"CAST(ended AS BLOB),duration_ms,CAST(status AS BLOB),CAST(details AS BLOB) "
                u"FROM recordings ORDER BY rowid"_s);
    const auto text = [&query](int column) {
        return QString::fromUtf8(query.value(column).toByteArray());
    };
    WordReader formats;
    WordReader zones;
    WordReader statuses;
    DetailsReader details;
    QList<Recording> rows;
    QList<QByteArray> starts;
    while (next(query)) {
        starts.append(query.value(5).toByteArray());
        rows.append({.id = text(0),
                     .title = text(1),
                     .path = text(2),
                     .format = formats.read(query.value(3).toByteArray()),
                     .timezone = zones.read(query.value(4).toByteArray()),
                     .status = statuses.read(query.value(8).toByteArray()),
                     .started = fromIsoText(QString::fromUtf8(starts.last())),
                     .ended = fromIsoText(text(6)),
                     .durationMs = query.value(7).toLongLong(),
                     .details = details.read(query.value(9).toByteArray())});
    }
    known.reserve(rows.size());
    for (const qsizetype row : newestFirst(starts))
        known.append(std::move(rows[row]));
}

void Library::rename(const QString& id, const QString& title) {
    isKnown = false;
    run(db, u"UPDATE recordings SET title=? WHERE id=?"_s, {title, id});
}

void Library::remove(const QString& id) {
    isKnown = false;
    run(db, u"DELETE FROM recordings WHERE id=?"_s, {id});
}

void Library::event(const QString& recordingId, const QString& kind, const QJsonObject& details) {
    run(db, u"INSERT INTO events VALUES(?,?,?,?)"_s,
        {recordingId, toIsoText(QDateTime::currentDateTimeUtc()), kind, toJsonText(details)});
}

QJsonArray Library::events(const QString& recordingId) const {
    QSqlQuery query = run(
        db,
        u"SELECT at,kind,CAST(details AS BLOB) FROM events WHERE recording_id=? ORDER BY rowid"_s,
        {recordingId});
    QJsonArray events;
    // Copied for each event: making the keys anew takes longer.
    const QJsonObject blank{{u"at"_s, {}}, {u"kind"_s, {}}, {u"details"_s, {}}};
    DetailsReader details;
    while (next(query)) {
        QJsonObject event = blank;
        event["at"_L1] = query.value(0).toString();
        event["kind"_L1] = query.value(1).toString();
        event["details"_L1] = details.read(query.value(2).toByteArray());
        events.append(event);
    }
    return events;
}

void Library::markInterrupted() {
    isKnown = false;
    run(db, u"UPDATE recordings SET status='interrupted' WHERE status IN "
            u"('starting','recording','paused','finalizing')"_s);
}

} // namespace qn
