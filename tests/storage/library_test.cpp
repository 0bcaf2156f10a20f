#include "storage/library.h"

#include "tests/support/database.h"
#include "tests/support/files.h"

using namespace qn::testing;

class LibraryTest : public QObject {
    Q_OBJECT

    QTemporaryDir folder;
    const QString path = folder.filePath(u"a/b/library.sqlite3"_s);
    std::unique_ptr<qn::Library> library;

    qn::Recording add(const QString& title, const QString& started) {
        qn::Recording r;
        r.id = r.title = r.path = r.status = title;
        r.timezone = u"Asia/Tokyo"_s;
        r.started = QDateTime::fromString(started, Qt::ISODateWithMs);
        r.details = {{u"error"_s, u"диск \"полон\""_s}};
        r.durationMs = qint64(1) << 40;
        library->insert(r);
        return r;
    }

private Q_SLOTS:
    void init() {
        QTest::failOnWarning(QRegularExpression(u"."_s));
        QFile::remove(path);
        library = std::make_unique<qn::Library>(path);
    }
    void cleanup() {
        library.reset();
        QVERIFY(QSqlDatabase::connectionNames().isEmpty());
    }

    void whatIsStoredComesBackInItsOrder() {
        const auto odd =
            add(QString(999, u'я') + u"\0\n\u202E 😀'%"_s, u"2024-03-05T09:07:01.250Z"_s);
        add(u"old"_s, u"2024-03-05T09:07:01.249Z"_s);
        library->update(odd);
        QCOMPARE(query(path, u"SELECT typeof(ended) FROM recordings"_s), u"null,text"_s);
        const qn::Recording listed = qn::Library(path).list({}, {}).first();
        QCOMPARE(listed.title, odd.title);
        QCOMPARE(listed.details, odd.details);
        QVERIFY(listed.durationMs == odd.durationMs && listed.started == odd.started);

        library->event(odd.id, u"pause"_s, {});
        library->event(odd.id, u"error"_s, {{u"message"_s, u"x"_s}});
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, library->event(u"none"_s, u"x"_s, {}));
        QCOMPARE(library->events(odd.id)[1][u"details"_s][u"message"_s].toString(), u"x"_s);
        library->remove(odd.id);
        QCOMPARE(query(path, u"SELECT count(*) FROM events"_s), u"0"_s);
    }

    void searchIgnoresCaseAndTheDayIsThatOfTheRecordingsZone() {
        add(u"Планёрка"_s, u"2024-03-05T14:30:00.000Z"_s); // 23:30 in Tokyo
        add(u"Обед"_s, u"2024-03-05T15:30:00.000Z"_s);
        QCOMPARE(library->list(u"ПЛАНЁ"_s, {}).size(), 1);
        QCOMPARE(library->list({}, {2024, 3, 6}).value(0).title, u"Обед"_s);
        // By this connection behind the library's back, then by another.
        QSqlDatabase own = QSqlDatabase::database(QSqlDatabase::connectionNames().first());
        own.exec(u"UPDATE recordings SET title='Ужин' WHERE title='Обед'"_s);
        QCOMPARE(library->list(u"ужин"_s, {}).size(), 1);
        query(path, u"UPDATE recordings SET timezone='Moon/Crater',details='{broken'"_s);
        const QDate day = library->list({}, {}).first().started.toLocalTime().date();
        QVERIFY(!library->list({}, day).isEmpty());
    }

    void onlyActiveSessionsAreMarkedInterrupted() {
        const QString statuses = u"starting recording paused finalizing ready failed"_s;
        for (const QString& status : statuses.split(u' '))
            add(status, {});
        library->markInterrupted();
        QCOMPARE(query(path, u"SELECT status FROM recordings"_s),
                 u"interrupted,"_s.repeated(4) + u"ready,failed"_s);
    }

    void anUnusableDatabaseIsToldAndLeavesNoConnection() {
        const QString corrupt = folder.filePath(u"corrupt"_s);
        write(corrupt, QByteArray(9'000, 'x'));
        for (const QString& bad : {corrupt, folder.path(), u"/proc/no/folder"_s})
            QVERIFY_THROWS_EXCEPTION(std::runtime_error, qn::Library{bad});
        query(path, u"DROP TABLE recordings"_s);
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, library->list({}, {}));
    }
};

QTEST_GUILESS_MAIN(LibraryTest)
#include "library_test.moc"
