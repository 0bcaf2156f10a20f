#include "engine/encoder.h"
#include "engine/tools.h"
#include "tests/support/files.h"
#include "tests/support/tone.h"

#include <cmath>
#include <csignal>
#include <numeric>
#include <unistd.h>

using namespace qn::testing;

class EncoderTest : public QObject {
    Q_OBJECT

    QTemporaryDir folder;
    QFile part{u"call.part"_s};
    QString error;

    static QList<float> tone(int seconds) { return sine(955, 48000, .5F, seconds * 48000); }

    bool start(qn::Encoder& encoder, qn::AudioFormat format = qn::AudioFormat::Opus) {
        const auto started = QDateTime::fromMSecsSinceEpoch(1'714'557'600'123);
        return encoder.start(part.fileName(), format, started, error);
    }

private Q_SLOTS:
    void initTestCase() { QDir::setCurrent(folder.path()); }

    void writesFilesThatPlayEvenWhenCutOff() {
        using enum qn::AudioFormat;
        for (const auto format : {Opus, Mp3, Wav})
            for (const bool cutOff : {false, true}) {
                const QByteArray row = qn::toText(format).toUtf8() + (cutOff ? " cut off" : "");
                qn::Encoder encoder;
                QVERIFY2(start(encoder, format), row.data());
                const QList<float> call = tone(4);
                for (qsizetype at = 0; at < call.size(); at += 1000)
                    QVERIFY(encoder.write(call.mid(at, 1000), error));
                if (cutOff)
                    QTRY_VERIFY2(part.size() > 20'000, row.data()); // 2.5 s of Opus
                QVERIFY2(cutOff ? encoder.abort() : encoder.finish(error), row.data());
                const QList<float> mix = decoded(part.fileName());
                const auto count = static_cast<double>(mix.size());
                QVERIFY2(cutOff ? count > 9600 : std::abs(count - 192'000) < 960, row.data());
                const double energy = std::inner_product(mix.begin(), mix.end(), mix.begin(), 0.0);
                QVERIFY2(std::abs(energy / count - .125) < .02, row.data());
                const bool timed = contents(u"call.part"_s).contains("T10:00:00.123");
                QVERIFY2(timed == (format != Wav), row.data());
                part.remove();
            }
    }

    void looksForToolsInOrder() {
        const QString found = qn::ffmpegPath(); // on the search path
        const QString own = QCoreApplication::applicationDirPath() + u"/tools/ffmpeg"_s;
        QVERIFY(QDir().mkpath(QFileInfo(own).path()) && QFile::copy(found, own));
        const QString besideProgram = qn::ffmpegPath();
        QVERIFY(QFile::remove(own) && besideProgram == own);
        qputenv("QUORLIN_FFMPEG", "/nowhere/ffmpeg"); // taken unchecked
        qn::Encoder encoder;
        QVERIFY(!start(encoder) && !error.isEmpty());
    }

    void reportsAnEncoderThatStops() {
        write(u"call.part"_s, {});
        const QList<std::pair<QByteArray, QString>> rows{
            {"echo boom >&2; exit 3", u" (3): boom\n"_s},
            {"exit 0", u" (0): "_s}, // a clean end before the recording's is a failure too
            {"printf %5000s >&2; exit 1", u" (1): "_s + QString(4000, u' ')},
            {"ffmpeg \"$@\" 2>&1 | sed 1q >&2; exit 1", // newer ones go on talking
             u" (1): File 'call.part' already exists. Exiting.\n"_s}};
        for (const auto& [script, expected] : rows) {
            useTool(script);
            qn::Encoder encoder;
            const QSignalSpy failed(&encoder, &qn::Encoder::failed);
            QVERIFY(start(encoder));
            encoder.write(tone(1), error);
            QTRY_COMPARE(failed.size(), 1);
            QCOMPARE(failed[0][0].toString(), u"Кодировщик остановился"_s + expected);
            QVERIFY(!encoder.write(tone(1), error));
            QVERIFY(error.startsWith(u"Кодировщик не работает: "_s + expected.mid(6)));
            QCOMPARE(encoder.finish(error), script == "exit 0");
        }
    }

    void handsOverAtOnceAndNoticesAToolThatTakesNoMore() {
        useTool("for last; do :; done; exec cat >\"$last\"");
        qn::Encoder copying;
        QVERIFY(start(copying) && copying.write(tone(1).first(960), error));
        QTRY_COMPARE_WITH_TIMEOUT(part.size(), 3840, 1000);
        QVERIFY(copying.finish(error));

        useTool("exec 0<&-; echo deaf >&2; sleep 60");
        qn::Encoder deaf;
        const QSignalSpy failed(&deaf, &qn::Encoder::failed);
        QVERIFY(start(deaf));
        QTest::qWait(200);
        QVERIFY(deaf.write(tone(1), error));
        QTRY_COMPARE_WITH_TIMEOUT(failed.size(), 1, 2000);
        QCOMPARE(failed[0][0].toString(), u"Кодировщик не работает: deaf\n"_s);
        const QDeadlineTimer patience(4000);
        QVERIFY(!deaf.finish(error) && !patience.hasExpired());
        part.remove();
    }

    void outlivesTheSignalsThatEndItsProgram() {
        useTool("echo $$ >pid; exec ffmpeg \"$@\"");
        qn::Encoder encoder;
        QVERIFY(start(encoder, qn::AudioFormat::Wav) && encoder.write(tone(1), error));
        QTRY_VERIFY(part.size() > 4000);
        const pid_t tool = contents(u"pid"_s).trimmed().toInt();
        QCOMPARE(getsid(tool), tool); // a terminal's Ctrl-C does not reach it either
        for (const int number : {SIGTERM, SIGINT, SIGHUP})
            QCOMPARE(kill(tool, number), 0);
        QTest::qWait(200);
        QVERIFY2(encoder.write(tone(1), error) && encoder.finish(error), qPrintable(error));
        QCOMPARE(decoded(part.fileName()).size(), 96'000);
        part.remove();
    }

    void refusesToQueueMoreThanTenSeconds() {
        useTool("trap '' TERM; exec sleep 60");
        qn::Encoder encoder;
        const QSignalSpy failed(&encoder, &qn::Encoder::failed);
        QVERIFY(start(encoder) && encoder.write(tone(10), error) && encoder.write(tone(1), error));
        QVERIFY(!encoder.write(tone(1), error));
        QCOMPARE(error, u"Кодировщик не успевает сохранять аудио"_s);
        QVERIFY(encoder.abort() && failed.isEmpty());
    }
};

QTEST_GUILESS_MAIN(EncoderTest)
#include "encoder_test.moc"
