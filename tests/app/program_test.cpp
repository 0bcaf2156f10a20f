#include "app/termination_signals.h"

#include <QtTest>

#include <csignal>

using namespace Qt::StringLiterals;

class ProgramTest : public QObject {
    Q_OBJECT

    QTemporaryDir folder;
    const QString data = folder.filePath(u"data"_s);

    // Runs the built program to its end.
    void run(const QString& option, int status, const QByteArray& words) {
        QProcess program;
        program.start(QString::fromUtf8(QUORLIN_PROGRAM), {u"--data-dir"_s, data, option});
        QVERIFY(program.waitForFinished(20000));
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), status);
        const QByteArray output = program.readAllStandardOutput();
        QVERIFY2(output.contains(words), output.constData());
    }

private Q_SLOTS:
    void theCommandLineAnswersWithoutTouchingTheDataFolder() {
        run(u"--version"_s, 0, "Quorlin 0.1.5\n");
        run(u"--help"_s, 0, "Вывод справки по параметрам");
        run(u"--list-sources"_s, 0, "Default: ");
        run(u"--no-such-option"_s, 1, "");
        QVERIFY(!QFile::exists(data));
    }

    void theSmokeTestOpensTheWindowForTwoSeconds() {
        const QDeadlineTimer twoSeconds(1900);
        run(u"--smoke-test"_s, 0, "");
        QVERIFY(twoSeconds.hasExpired());
        QCOMPARE(QDir(data).entryList(QDir::Files), QStringList{u"library.sqlite3"_s});
    }

    void aSignalToEndArrivesOnce() {
        for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
            qn::TerminationSignals termination;
            QSignalSpy received(&termination, &qn::TerminationSignals::received);
            ::raise(number);
            QCOMPARE(received.count(), 0);
            QTRY_COMPARE(received.count(), 1);
        }
    }
};

QTEST_GUILESS_MAIN(ProgramTest)
#include "program_test.moc"
