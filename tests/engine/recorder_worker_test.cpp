#include "engine/microphone_samples.h"
#include "engine/recorder_worker.h"
#include "tests/support/fake_backend.h"
#include "tests/support/files.h"
#include "tests/support/sound_server.h"

#include <algorithm>
#include <csignal>

using namespace qn;
using namespace qn::testing;

namespace {

// A worker in a folder of its own, with its signals recorded; a tone plays all the time.
struct Session {
    Session() {
        QDir::setCurrent(folder.path());
        settings.microphoneEnabled = false;
        settings.format = AudioFormat::Wav;
        QObject::connect(&worker, &RecorderWorker::stateChanged, &worker,
                         [this](State next) { states.append(static_cast<int>(next)); });
        tone.callOnTimeout([] { playTone(); });
        tone.start(20);
    }

    void begin() { worker.begin(settings, part); }

    QString error() const { return completed.value(0).value(2).toString(); }

    QJsonObject lastDetails() const { return sources.last().at(1).toJsonObject(); }

    QTemporaryDir folder;
    const QString part = u"call.wav.part"_s;
    Settings settings;
    RecorderWorker worker;
    QList<int> states;
    QTimer tone;
    QSignalSpy progress{&worker, &RecorderWorker::progress};
    QSignalSpy levels{&worker, &RecorderWorker::levels};
    QSignalSpy sources{&worker, &RecorderWorker::sourceChanged};
    QSignalSpy completed{&worker, &RecorderWorker::completed};
};

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

        QCOMPARE(session.states, (QList<int>{1, 2, 3, 2, 4, 0}));
        QCOMPARE(session.completed.count(), 1);
        QCOMPARE(session.completed.first().at(0).toString(), u"call.wav"_s);
        QCOMPARE(session.error(), QString());
        const qint64 durationMs = session.completed.first().at(1).toLongLong();
        QVERIFY(durationMs >= paused + 480 && durationMs < paused + 900);
        const QList<float> samples = decoded(u"call.wav"_s);
        QCOMPARE(samples.size() / 48, durationMs);
        // The tone has no gap: 100 ms of silence would be the pause or a lost block.
        const auto silent = [](float sample, float) { return std::abs(sample) < 0.001F; };
        QVERIFY(std::search_n(samples.begin(), samples.end(), 4800, 0, silent) == samples.end());
    }

    void anEndWithAnErrorLeavesAllFilesAndAllowsTheNextSession() {
        for (const auto& [tool, error] : {
                 std::pair<QByteArray, QString>("", u"No such file"_s),
                 {"echo broken >&2; exit 3", u"broken"_s},
                 {"head -c 9600 >/dev/null", u"Кодировщик"_s},
                 {"cat >/dev/null; exit 1", u"Не удалось завершить файл"_s},
                 {"exec ffmpeg \"$@\"", u"Не удалось завершить сохранение файла"_s},
             }) {
            Session session;
            write(u"call.wav"_s, "precious");
            useTool(tool);
            session.begin();
            QTest::qWait(400);
            session.worker.stop();
            QCOMPARE(session.completed.count(), 1);
            QCOMPARE(session.completed.first().at(0).toString(), session.part);
            QVERIFY2(session.error().contains(error), qPrintable(session.error()));
            QVERIFY(session.states.last() == 5 && session.states.count(4) == 1);
            QVERIFY(FakePlatform::instance().capturing.isEmpty());
            QCOMPARE(contents(u"call.wav"_s), "precious");
            QCOMPARE(QFile::remove(session.part), tool.startsWith("exec"));
            QFile::remove(u"call.wav"_s);
            qunsetenv("QUORLIN_FFMPEG");
            session.begin();
            QCOMPARE(session.states.last(), 2);
            session.worker.stop();
            QCOMPARE(session.states.last(), 0);
        }
    }

    void theChosenCardIsLeftAndFoundAgainThroughWarningsAndBreakdowns() {
        Session session;
        Catalog& catalog = FakePlatform::instance().catalog;
        session.settings.sourceKind = 1;
        session.settings.sourceId = u"card"_s;
        FakePlatform::instance().startError = u"занято"_s;
        session.begin();
        QTest::qWait(1200); // the second attempt fails in silence
        QCOMPARE(session.sources.count(), 1);
        QCOMPARE(session.lastDetails(), (QJsonObject{{u"warning"_s, u"занято"_s}}));
        FakePlatform::instance().startError.clear();
        QTRY_COMPARE(session.sources.count(), 2);
        QCOMPARE(session.sources.last().at(0).toString(), u"Источник: Карта"_s);
        const SourceEntry card = catalog.outputs.takeFirst();
        QTRY_COMPARE(session.sources.count(), 3);
        QCOMPARE(session.sources.last().at(0).toString(), u"Системное устройство: Колонки"_s);
        QCOMPARE(session.lastDetails(), (QJsonObject{{u"from"_s, u"card"_s},
                                                     {u"to"_s, u"speakers"_s},
                                                     {u"preferred"_s, u"card"_s},
                                                     {u"fallback"_s, true}}));
        catalog.outputs.append(card);
        QTRY_COMPARE(session.sources.count(), 4);
        QCOMPARE(session.lastDetails().value(u"fallback"_s), QJsonValue(false));
        breakDown(u"отвалилось"_s);
        QCOMPARE(session.sources.count(), 5);
        QTRY_COMPARE(session.sources.count(), 6);
        QCOMPARE(session.lastDetails().value(u"from"_s), QJsonValue(QString()));
        session.worker.stop();
        QCOMPARE(session.error(), QString());
        QCOMPARE(FakePlatform::instance().started.join(u' '), u"card speakers card card"_s);
    }

#ifdef Q_OS_LINUX
    void theMicrophoneIsRecordedAndMayDieWithItsServer() {
        if (QStandardPaths::findExecutable(u"pulseaudio"_s).isEmpty())
            QSKIP("PulseAudio's server is not installed");
        SoundServer server(SoundServer::PulseAudio);
        server.control(u"load-module module-remap-source master=speakers.monitor"_s);
        server.play(u"voice"_s, 0.9F);
        Session session;
        session.settings.microphoneEnabled = true;
        session.begin();
        QTRY_VERIFY(session.levels.value(session.levels.size() - 1).value(0).toFloat() > 0.85F);
        QTest::qWait(500);
        server.signal(SIGKILL);
        QTRY_COMPARE(session.sources.count(), 4); // it broke, and could not be opened again
        QTest::qWait(300);                        // the far side goes on alone
        session.worker.stop();
        QCOMPARE(session.error(), QString());
        const QList<float> samples = decoded(u"call.wav"_s);
        QVERIFY(*std::max_element(samples.begin(), samples.end()) > 0.7F);
        QVERIFY(qAbs(*std::max_element(samples.end() - 4800, samples.end()) - 0.5F) < 0.01F);
    }
#endif

    void microphoneBytesBecomeSamples() {
        const std::tuple<QAudioFormat::SampleFormat, QByteArray, QList<float>, qsizetype> rows[]{
            {QAudioFormat::UInt8, QByteArray("\x00\x80\xC0", 3), {-1.0F, 0.0F}, 1},
            {QAudioFormat::Int16, QByteArray("\x00\x80\x00\x40\x07", 5), {-1.0F, 0.5F}, 1},
            {QAudioFormat::Int32, QByteArray("\0\0\0\x80\0\0\0\x40", 8), {-1.0F, 0.5F}, 0},
            {QAudioFormat::Float, QByteArray("\0\0\x80\x3F\0\0\0\xBF", 8), {1.0F, -0.5F}, 0},
            {QAudioFormat::Unknown, QByteArray(8, '\1'), {}, 8},
        };
        QAudioFormat format;
        format.setChannelCount(2);
        format.setSampleRate(44100);
        for (const auto& [kind, input, samples, left] : rows) {
            format.setSampleFormat(kind);
            QByteArray bytes = input;
            const AudioBlock block = takeMicrophoneBlock(bytes, format, 1'000'000'000);
            QVERIFY2(block.samples == samples && bytes.size() == left, input.toHex().data());
            QVERIFY(samples.isEmpty() || block.timestampNs == 999'977'325);
        }
    }
};

QTEST_GUILESS_MAIN(RecorderWorkerTest)
#include "recorder_worker_test.moc"
