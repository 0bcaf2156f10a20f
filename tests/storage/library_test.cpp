#include "storage/library.h"

#include <QFile>
#include <QRegularExpression>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class LibraryTest : public QObject {
    Q_OBJECT

    QTemporaryDir folder;
    const QString path = folder.filePath(u"a/b/library.sqlite3"_s);
    std::unique_ptr<qn::Library> library;

    qn::Recording add(const QString& title, const QString& started, const QString& status = u""_s) {
        qn::Recording r;
        r.id = r.title = r.path = title;
        r.timezone = u"Asia/Tokyo"_s;
        r.status = status;
        r.started = QDateTime::fromString(started, Qt::ISODateWithMs);
        r.details = {{u"error"_s, u"диск \"полон\""_s}};
        r.durationMs = qint64(1) << 40;
        library->insert(r);
        return r;
    }
    // The first value that a statement gives on a connection of its own.
    QString raw(const QString& sql) const {
        QSqlDatabase::removeDatabase(u"raw"_s);
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"raw"_s);
        db.setDatabaseName(path);
        db.open();
        QSqlQuery query(sql, db);
        return query.next() ? query.value(0).toString() : QString();
    }

private Q_SLOTS:
    void init() {
        QTest::failOnWarning(QRegularExpression(u"."_s));
        QFile::remove(path);
        library = std::make_unique<qn::Library>(path);
    }
    void cleanup() {
        library.reset();
        QSqlDatabase::removeDatabase(u"raw"_s);
        QVERIFY(QSqlDatabase::connectionNames().isEmpty());
    }

    void whatIsStoredComesBackNewestFirst() {
        const auto odd =
            add(QString(9'999, u'я') + u"\0\n\u202E 😀'%"_s, u"2024-03-05T09:07:01.250Z"_s);
        add(u"old"_s, u"2024-03-05T09:07:01.249Z"_s);
        QCOMPARE(raw(u"SELECT typeof(ended) FROM recordings"_s), u"text"_s);
        library->update(odd);
        QCOMPARE(raw(u"SELECT typeof(ended) FROM recordings"_s), u"null"_s);
        const qn::Recording listed = qn::Library(path).list({}, {}).first();
        QCOMPARE(listed.title, odd.title);
        QCOMPARE(listed.details, odd.details);
        QCOMPARE(listed.durationMs, odd.durationMs);
        QCOMPARE(listed.started, odd.started);
    }

    void searchIgnoresCaseAndTheDayIsThatOfTheRecordingsZone() {
        add(u"Планёрка"_s, u"2024-03-05T14:30:00.000Z"_s); // 23:30 in Tokyo
        add(u"Обед"_s, u"2024-03-05T15:30:00.000Z"_s);
        QCOMPARE(library->list(u"ПЛАНЁ"_s, {}).size(), 1);
        QCOMPARE(library->list({}, {2024, 3, 6}).value(0).title, u"Обед"_s);
        raw(u"UPDATE recordings SET timezone='Moon/Crater',details='{broken'"_s);
        const QDate day = library->list({}, {}).first().started.toLocalTime().date();
        QVERIFY(!library->list({}, day).isEmpty());
    }

    void theJournalKeepsItsOrderAndGoesWithItsRecording() {
        add(u"a"_s, {});
        library->event(u"a"_s, u"pause"_s, {});
        library->event(u"a"_s, u"error"_s, {{u"message"_s, u"x"_s}});
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, library->event(u"none"_s, u"x"_s, {}));
        QCOMPARE(library->events(u"a"_s)[1][u"details"_s][u"message"_s].toString(), u"x"_s);
        library->remove(u"a"_s);
        QCOMPARE(raw(u"SELECT count(*) FROM events"_s), u"0"_s);
    }

    void onlyActiveSessionsAreMarkedInterrupted() {
        for (const QString& status : {u"starting"_s, u"finalizing"_s, u"ready"_s, u"failed"_s})
            add(status, {}, status);
        library->markInterrupted();
        QCOMPARE(raw(u"SELECT group_concat(status) FROM recordings"_s),
                 u"interrupted,interrupted,ready,failed"_s);
    }

    void anUnusableDatabaseIsToldAndLeavesNoConnection() {
        QFile corrupt(folder.filePath(u"corrupt"_s));
        QVERIFY(corrupt.open(QIODevice::WriteOnly) && corrupt.write(QByteArray(9'000, 'x')) > 0);
        corrupt.close();
        for (const QString& bad : {corrupt.fileName(), folder.path(), u"/proc/no/folder"_s})
            QVERIFY_THROWS_EXCEPTION(std::runtime_error, qn::Library{bad});
        raw(u"DROP TABLE recordings"_s);
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, library->list({}, {}));
    }
};

QTEST_GUILESS_MAIN(LibraryTest)
#include "library_test.moc"
