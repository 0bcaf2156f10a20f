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

#include <stdexcept>
#include <utility>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void raise(const QSqlError& error) {
    throw std::runtime_error(error.text().toStdString());
}

// exec also fails if the statement could not be prepared, so prepare needs no check of its own.
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

// A null text would be stored as NULL, which most columns forbid.
QString nonNull(const QString& text) {
    return text.isEmpty() ? u""_s : text;
}

QString toJsonText(const QJsonObject& object) {
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QJsonObject fromJsonText(const QString& text) {
    return QJsonDocument::fromJson(text.toUtf8()).object();
}

// Accepts recordings that started on one day, by the date in their own time zone. An invalid day
// accepts all.
class DayFilter {
public:
    explicit DayFilter(const QDate& wanted) : day(wanted) {}

    bool accepts(const QDateTime& started, const QString& timezone) {
        if (!day.isValid())
            return true;
        // No zone is a whole day away from UTC, so most rows need no look-up of their zone.
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
    // The last handle must go first: until then removeDatabase only warns and closes nothing.
    db = QSqlDatabase();
    QSqlDatabase::removeDatabase(connectionName);
}

void Library::insert(const Recording& r) {
    run(db,
        u"INSERT INTO recordings(id,title,path,format,timezone,started,ended,duration_ms,status,"
        u"details) VALUES(?,?,?,?,?,?,?,?,?,?)"_s,
        {nonNull(r.id), nonNull(r.title), nonNull(r.path), nonNull(r.format), nonNull(r.timezone),
         nonNull(toIsoText(r.started)), nonNull(toIsoText(r.ended)), r.durationMs, r.status,
         toJsonText(r.details)});
}

void Library::update(const Recording& r) {
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

// Reads the rows again only if this or another connection has written since the last time, so that
// typing a search need not wait for the database.
void Library::readChanges() const {
    const auto number = [this](const QString& sql) {
        QSqlQuery query = run(db, sql);
        return next(query) ? query.value(0).toLongLong() : 0;
    };
    // The first changes with the writes of other connections, the second with those of this one.
    const std::pair version(number(u"PRAGMA data_version"_s), number(u"SELECT total_changes()"_s));
    if (version == knownVersion)
        return;
    knownVersion.reset();
    readAll();
    knownVersion = version;
}

void Library::readAll() const {
    known.clear(); // before reading, so that the new rows can reuse the memory
    QSqlQuery query = run(db, u"SELECT id,title,path,format,timezone,started,ended,duration_ms,"
                              u"status,details FROM recordings ORDER BY started DESC"_s);
    const auto text = [&query](int column) { return query.value(column).toString(); };
    while (next(query))
        known.append({.id = text(0),
                      .title = text(1),
                      .path = text(2),
                      .format = text(3),
                      .timezone = text(4),
                      .status = text(8),
                      .started = fromIsoText(text(5)),
                      .ended = fromIsoText(text(6)),
                      .durationMs = query.value(7).toLongLong(),
                      .details = fromJsonText(text(9))});
}

void Library::rename(const QString& id, const QString& title) {
    run(db, u"UPDATE recordings SET title=? WHERE id=?"_s, {title, id});
}

void Library::remove(const QString& id) {
    run(db, u"DELETE FROM recordings WHERE id=?"_s, {id});
}

void Library::event(const QString& recordingId, const QString& kind, const QJsonObject& details,
                    const QDateTime& at) {
    run(db, u"INSERT INTO events VALUES(?,?,?,?)"_s,
        {recordingId, toIsoText(at), kind, toJsonText(details)});
}

QJsonArray Library::events(const QString& recordingId) const {
    QSqlQuery query =
        run(db, u"SELECT at,kind,details FROM events WHERE recording_id=? ORDER BY rowid"_s,
            {recordingId});
    QJsonArray events;
    while (next(query))
        events.append(QJsonObject{{u"at"_s, query.value(0).toString()},
                                  {u"kind"_s, query.value(1).toString()},
                                  {u"details"_s, fromJsonText(query.value(2).toString())}});
    return events;
}

void Library::markInterrupted() {
    run(db, u"UPDATE recordings SET status='interrupted' WHERE status IN "
            u"('starting','recording','paused','finalizing')"_s);
}

} // namespace qn
