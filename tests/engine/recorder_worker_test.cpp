#include "engine/microphone_samples.h"
#include "engine/recorder_worker.h"
#include "tests/support/fake_backend.h"

#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>

using namespace qn;
using namespace qn::testing;
using namespace Qt::StringLiterals;

namespace {

// A worker with its signals recorded; a tone plays all the time.
struct Session {
    Session() {
        settings.microphoneEnabled = false;
        settings.format = AudioFormat::Wav;
        tone.callOnTimeout([] { playTone(); });
        tone.start(20);
    }

    void begin() { worker.begin(settings, part); }

    QList<int> states() const {
        QList<int> numbers;
        for (const auto& arguments : stateSpy)
            numbers.append(static_cast<int>(arguments.at(0).value<State>()));
        return numbers;
    }

    QString error() const { return completed.value(0).value(2).toString(); }

    QJsonObject lastDetails() const { return sources.last().at(1).toJsonObject(); }

    QTemporaryDir folder;
    QString part = folder.filePath(u"call.wav.part"_s);
    Settings settings;
    RecorderWorker worker;
    QTimer tone;
    QSignalSpy stateSpy{&worker, &RecorderWorker::stateChanged};
    QSignalSpy progress{&worker, &RecorderWorker::progress};
    QSignalSpy levels{&worker, &RecorderWorker::levels};
    QSignalSpy sources{&worker, &RecorderWorker::sourceChanged};
    QSignalSpy completed{&worker, &RecorderWorker::completed};
};

QList<float> decode(const QString& path) {
    QProcess ffmpeg;
    ffmpeg.start(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, path, u"-f"_s, u"f32le"_s, u"-"_s});
    ffmpeg.waitForFinished();
    const QByteArray bytes = ffmpeg.readAllStandardOutput();
    QList<float> samples(bytes.size() / 4);
    std::copy_n(bytes.constData(), samples.size() * 4, reinterpret_cast<char*>(samples.data()));
    return samples;
}

void writeTool(const QString& path, const QByteArray& script) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\n" + script);
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

} // namespace

class RecorderWorkerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { FakePlatform::instance() = {}; }
    void cleanup() {
        qunsetenv("QUORLIN_FFMPEG");
        QCOMPARE(FakePlatform::instance().alive, 0);
    }

    void aPausedRecordingHoldsItsSegmentsBackToBack() {
        Session session;
        session.worker.stop();
        session.begin();
        session.begin();
        QTRY_VERIFY(session.progress.count() >= 1);
        session.worker.pause();
        QCOMPARE(session.levels.last(), (QVariantList{0.0F, 0.0F}));
        const qint64 paused = session.progress.last().at(0).toLongLong();
        QTest::qWait(600);
        session.worker.resume();
        QTest::qWait(500);
        QVERIFY(session.levels.last().at(1).toFloat() > 0.4F);
        session.worker.stop();

        QCOMPARE(session.states(), (QList<int>{1, 2, 3, 2, 4, 0}));
        QCOMPARE(session.completed.count(), 1);
        QCOMPARE(session.completed.first().at(0).toString(),
                 session.folder.filePath(u"call.wav"_s));
        QCOMPARE(session.error(), QString());
        const qint64 durationMs = session.completed.first().at(1).toLongLong();
        QVERIFY2(durationMs >= paused + 480 && durationMs < paused + 900,
                 qPrintable(QString::number(durationMs - paused)));
        const QList<float> samples = decode(session.folder.filePath(u"call.wav"_s));
        QCOMPARE(samples.size() / 48, durationMs);
        // The tone stands from start to end: 300 ms of silence would be the pause or a lost block.
        qsizetype silent = 0;
        qsizetype longest = 0;
        for (const float sample : samples) {
            silent = std::abs(sample) < 0.001F ? silent + 1 : 0;
            longest = std::max(longest, silent);
        }
        QVERIFY2(longest < 4800, qPrintable(QString::number(longest)));
    }

    void anEndWithAnErrorLeavesThePartFileAndAllowsTheNextSession_data() {
        QTest::addColumn<QByteArray>("tool"); // a shell script, or empty for none
        QTest::addColumn<QString>("error");
        QTest::newRow("ffmpeg is missing") << QByteArray() << u"No such file"_s;
        QTest::newRow("dies at once") << QByteArray("echo broken >&2; exit 3") << u"broken"_s;
        QTest::newRow("leaves early") << QByteArray("head -c 9600 >/dev/null") << u"Кодировщик"_s;
        QTest::newRow("fails at the end")
            << QByteArray("cat >/dev/null; exit 1") << u"Не удалось завершить файл"_s;
        QTest::newRow("writes no file")
            << QByteArray("cat >/dev/null") << u"Не удалось завершить сохранение файла"_s;
    }
    void anEndWithAnErrorLeavesThePartFileAndAllowsTheNextSession() {
        QFETCH(QByteArray, tool);
        Session session;
        const QString path = session.folder.filePath(u"tool"_s);
        if (!tool.isEmpty())
            writeTool(path, tool);
        qputenv("QUORLIN_FFMPEG", path.toUtf8());
        session.begin();
        QTest::qWait(400);
        session.worker.stop();
        QCOMPARE(session.completed.count(), 1);
        QCOMPARE(session.completed.first().at(0).toString(), session.part);
        QFETCH(QString, error);
        QVERIFY2(session.error().contains(error), qPrintable(session.error()));
        QCOMPARE(session.states().last(), 5);
        QCOMPARE(session.states().count(4), 1);
        QCOMPARE(FakePlatform::instance().capturing, 0);
        qunsetenv("QUORLIN_FFMPEG");
        session.begin();
        QCOMPARE(session.states().last(), 2);
        session.worker.stop();
        QCOMPARE(session.states().last(), 0);
    }

    void anExistingFileIsNeverReplaced() {
        Session session;
        const QString finished = session.folder.filePath(u"call.wav"_s);
        QFile older(finished);
        QVERIFY(older.open(QIODevice::WriteOnly) && older.write("precious") == 8);
        older.close();
        session.begin();
        QTest::qWait(300);
        session.worker.stop();
        QCOMPARE(session.error(), u"Не удалось завершить сохранение файла"_s);
        QVERIFY(older.open(QIODevice::ReadOnly));
        QCOMPARE(older.readAll(), QByteArray("precious"));
        QVERIFY(QFile::exists(session.part));
    }

    void theChosenCardIsLeftAndFoundAgain() {
        Session session;
        session.settings.sourceKind = 1;
        session.settings.sourceId = u"card"_s;
        session.begin();
        QCOMPARE(session.sources.last().at(0).toString(), u"Источник: Карта"_s);
        const SourceEntry card = FakePlatform::instance().catalog.outputs.takeFirst();
        QTRY_COMPARE(session.sources.count(), 2);
        QCOMPARE(session.sources.last().at(0).toString(), u"Системное устройство: Колонки"_s);
        QCOMPARE(session.lastDetails(), (QJsonObject{{u"from"_s, u"card"_s},
                                                     {u"to"_s, u"speakers"_s},
                                                     {u"preferred"_s, u"card"_s},
                                                     {u"fallback"_s, true}}));
        FakePlatform::instance().catalog.outputs.append(card);
        QTRY_COMPARE(session.sources.count(), 3);
        QCOMPARE(session.lastDetails().value(u"fallback"_s), QJsonValue(false));
        QCOMPARE(FakePlatform::instance().started,
                 (QStringList{u"card"_s, u"speakers"_s, u"card"_s}));
        session.worker.stop();
    }

    void aWarningIsGivenOnceAndTheSourceIsOpenedAgain() {
        Session session;
        FakePlatform::instance().startError = u"занято"_s;
        session.begin();
        QTest::qWait(1200);
        QCOMPARE(session.sources.count(), 1);
        QCOMPARE(session.lastDetails(), (QJsonObject{{u"warning"_s, u"занято"_s}}));
        FakePlatform::instance().startError.clear();
        QTRY_COMPARE(session.sources.count(), 2);
        breakDown(u"отвалилось"_s);
        QCOMPARE(session.sources.count(), 3);
        QTRY_COMPARE(session.sources.count(), 4);
        QCOMPARE(session.lastDetails().value(u"from"_s), QJsonValue(QString()));
        session.worker.stop();
        QCOMPARE(session.error(), QString());
    }

    void microphoneBytesBecomeSamples() {
        struct {
            QAudioFormat::SampleFormat format;
            QByteArray bytes;
            QList<float> samples;
            qsizetype left;
        } const rows[] = {
            {QAudioFormat::UInt8, QByteArray("\x00\x80\xC0", 3), {-1.0F, 0.0F}, 1},
            {QAudioFormat::Int16, QByteArray("\x00\x80\x00\x40\x07", 5), {-1.0F, 0.5F}, 1},
            {QAudioFormat::Int32, QByteArray("\0\0\0\x80\0\0\0\x40", 8), {-1.0F, 0.5F}, 0},
            {QAudioFormat::Float, QByteArray("\0\0\x80\x3F\0\0\0\xBF", 8), {1.0F, -0.5F}, 0},
            {QAudioFormat::Unknown, QByteArray(8, '\1'), {}, 8},
        };
        for (const auto& row : rows) {
            QAudioFormat format;
            format.setSampleFormat(row.format);
            format.setChannelCount(2);
            format.setSampleRate(44100);
            QByteArray bytes = row.bytes;
            const AudioBlock block = takeMicrophoneBlock(
                bytes, format, std::chrono::steady_clock::time_point(std::chrono::seconds(1)));
            QCOMPARE(block.samples, row.samples);
            QCOMPARE(bytes.size(), row.left);
            if (!block.samples.isEmpty())
                QCOMPARE(block.timestampNs, 1'000'000'000 - 1'000'000'000 / 44100);
        }
    }
};

QTEST_GUILESS_MAIN(RecorderWorkerTest)
#include "recorder_worker_test.moc"
