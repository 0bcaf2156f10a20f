#include "app/termination_signals.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

class ProgramTest : public QObject {
    Q_OBJECT

    QTemporaryDir folder;
    const QString data = folder.filePath(u"data"_s);

    // Runs the built program to its end.
    void run(const QStringList& arguments, int status, QByteArray& output) {
        QProcess program;
        program.start(QString::fromUtf8(QUORLIN_PROGRAM), arguments);
        QVERIFY(program.waitForFinished(20000));
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), status);
        output = program.readAllStandardOutput();
    }

private Q_SLOTS:
    void theCommandLineAnswersWithoutTouchingTheDataFolder() {
        struct {
            QString option;
            int status;
            QByteArray words;
        } const rows[] = {
            {u"--version"_s, 0, "Quorlin 0.1.5\n"},
            {u"--help"_s, 0, "Запись созвонов и локальная библиотека аудио"},
            {u"--help"_s, 0, "--data-dir <path>"},
            {u"--list-sources"_s, 0, "Default: \n"}, // no sound server here
            {u"--no-such-option"_s, 1, ""},
        };
        for (const auto& row : rows) {
            QByteArray output;
            run({u"--data-dir"_s, data, row.option}, row.status, output);
            QVERIFY2(output.contains(row.words), output.constData());
        }
        QVERIFY(!QFile::exists(data));
    }

    void theSmokeTestOpensTheWindowForTwoSeconds() {
        QElapsedTimer clock;
        clock.start();
        QByteArray output;
        run({u"--data-dir"_s, data, u"--smoke-test"_s}, 0, output);
        QVERIFY(clock.elapsed() >= 1900);
        QCOMPARE(QDir(data).entryList(QDir::Files), QStringList{u"library.sqlite3"_s});
    }

    void aSignalToEndArrivesOnce_data() {
        QTest::addColumn<int>("number");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
    }
    void aSignalToEndArrivesOnce() {
        QFETCH(int, number);
        qn::TerminationSignals termination;
        QSignalSpy received(&termination, &qn::TerminationSignals::received);
        ::raise(number);
        QCOMPARE(received.count(), 0);
        QTRY_COMPARE(received.count(), 1);
    }
};

QTEST_GUILESS_MAIN(ProgramTest)
#include "program_test.moc"
