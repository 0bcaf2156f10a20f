#pragma once

#include "storage/library.h"

#include <QDateTime>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <functional>
#include <stdexcept>

// A library of any size, as the program writes it, and the least work of reading it: the same query
// by SQLite's own interface, with every column fetched and both times parsed.
namespace sample_library {

// Two kinds of titles, five sources, every tenth recording in another time zone.
constexpr char kFill[] = R"(
WITH RECURSIVE counter(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM counter WHERE i + 1 < %1),
entry AS (SELECT i, lower(hex(randomblob(4))) AS head, 1600000000 + i * 1234.567 AS start FROM counter)
INSERT INTO recordings SELECT
  head || '-' || lower(hex(randomblob(2))) || '-4a1b-8c2d-' || lower(hex(randomblob(6))),
  'Запись ' || i || CASE i % 3 WHEN 0 THEN ', планёрка отдела' ELSE ', созвон с заказчиком' END,
  '/home/user/Music/Quorlin/2024-03-05_09-07-01_' || head || '.opus',
  'opus', CASE i % 10 WHEN 0 THEN 'Europe/Berlin' ELSE 'Europe/Moscow' END,
  strftime('%Y-%m-%dT%H:%M:%fZ', start, 'unixepoch'),
  strftime('%Y-%m-%dT%H:%M:%fZ', start + 600 + i % 977, 'unixepoch'), (600 + i % 977) * 1000, 'ready',
  '{"application_version":"0.1.5","microphone":true,"source_id":"alsa_output.pci-' || i % 5 ||
  '","source_kind":1}' FROM entry)";

class SampleLibrary {
public:
    explicit SampleLibrary(int rows) : path(folder.filePath(QStringLiteral("library.sqlite3"))) {
        const qn::Library schema(path);
        check(sqlite3_open(path.toUtf8().constData(), &db));
        const QByteArray fill = QString::fromUtf8(kFill).arg(rows).toUtf8();
        check(sqlite3_exec(db, fill.constData(), nullptr, nullptr, nullptr));
        check(sqlite3_exec(db, "PRAGMA wal_checkpoint(TRUNCATE)", nullptr, nullptr, nullptr));
    }
    SampleLibrary(const SampleLibrary&) = delete;
    SampleLibrary& operator=(const SampleLibrary&) = delete;
    ~SampleLibrary() { sqlite3_close(db); }

    // Returns how many titles contain the word; `visit` gets each of these rows, numbered from 0.
    int bareQuery(
        const QString& word = {},
        const std::function<void(int, sqlite3_stmt*)>& visit = [](int, sqlite3_stmt*) {}) const {
        sqlite3_stmt* row = nullptr;
        check(sqlite3_prepare_v2(db,
                                 "SELECT id,title,path,format,timezone,started,ended,duration_ms,"
                                 "status,details FROM recordings ORDER BY started DESC",
                                 -1, &row, nullptr));
        int found = 0;
        while (sqlite3_step(row) == SQLITE_ROW) {
            bool complete = sqlite3_column_int64(row, 7) > 0;
            for (const int column : {0, 2, 3, 4, 8, 9})
                complete = sqlite3_column_text(row, column) != nullptr && complete;
            for (const int column : {5, 6}) {
                const QDateTime time = QDateTime::fromString(text(row, column), Qt::ISODateWithMs);
                complete = time.isValid() && complete;
            }
            if (complete && text(row, 1).contains(word, Qt::CaseInsensitive))
                visit(found++, row);
        }
        sqlite3_finalize(row);
        return found;
    }

    static QString text(sqlite3_stmt* row, int column) {
        return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(row, column)),
                                 sqlite3_column_bytes(row, column));
    }

private:
    void check(int status) const {
        if (status != SQLITE_OK)
            throw std::runtime_error(sqlite3_errmsg(db));
    }

    QTemporaryDir folder;
    sqlite3* db = nullptr;

public:
    QString path;
};

} // namespace sample_library
