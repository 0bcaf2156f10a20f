#include "engine/recorder_worker.h"
#include "tests/support/fake_backend.h"
#include "tests/support/files.h"
#include "tests/support/tone.h"

#include <soxr.h>

#include <algorithm>
#include <functional>
#include <optional>

using namespace qn;
using namespace qn::testing;
using namespace std::chrono_literals;

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

// Instead of libsoxr's: no rate but 48 kHz can be converted.
extern "C" soxr_t soxr_create(double, double, unsigned, soxr_error_t* error, soxr_io_spec_t const*,
                              soxr_quality_spec_t const*, soxr_runtime_spec_t const*) {
    *error = "refused";
    return nullptr;
}

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
        QVERIFY(findTone(samples, 48000).silence < 4800);
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

    void audioIsNotLostToASlowStartNorToLateDelivery() {
        FakePlatform::instance().startTakes = 4200ms;
        FakePlatform::instance().delay = 180ms;
        Session session;
        session.begin();
        QTest::qWait(800);
        session.worker.stop();
        QCOMPARE(session.error(), QString());
        const QList<float> samples = decoded(u"call.wav"_s);
        QVERIFY(samples.size() > 48 * 700 && samples.size() < 48 * 1500);
        const QList<float> middle = samples.sliced(48 * 300, samples.size() - 48 * 550);
        QVERIFY(findTone(middle, 48000).silence < 480);
    }

    void whatEndsARecordingIsNamed() {
        const std::tuple<QString, std::function<void()>, QString> rows[] = {
            {u"/proc/self/call.wav.part"_s, [] {}, u"На диске закончилось свободное место"_s},
            {u"call.wav.part"_s, [] { QTest::qSleep(4500); },
             u"Обработка звука отстала более чем на 4 секунды"_s},
            {u"call.wav.part"_s,
             [] {
                 AudioBlock block;
                 block.samples = {1};
                 block.sampleRate = 44100;
                 Q_EMIT FakePlatform::instance().capturing.first()->block(block);
             },
             u"Не удалось создать преобразователь частоты"_s},
        };
        for (const auto& [part, happens, error] : rows) {
            Session session;
            useTool("exec cat >/dev/null");
            session.worker.begin(session.settings, part);
            happens();
            QTRY_COMPARE(session.error(), error);
        }
    }

    // Each step changes the platform and names what the worker then says, in order.
    void theChosenMicrophoneIsKeptOpenWhateverHappensToIt() {
        FakePlatform& platform = FakePlatform::instance();
        const MicrophoneEntry webcam = platform.microphones.entries.first();
        const QString lost = u"Микрофон отключился — выбираем доступный микрофон"_s;
        const std::tuple<QByteArray, std::function<void()>, QStringList> steps[] = {
            {"", [] {}, {u"Микрофон: Гарнитура"_s}},
            {"", [&] { platform.microphones.defaultId = "webcam"; }, {u"Микрофон: Камера"_s}},
            {"",
             [&] { Q_EMIT platform.listening.first()->failed({}); },
             {lost, u"Микрофон: Камера"_s}},
            {"",
             [&] { platform.microphones = {}; },
             {u"Микрофон недоступен — ожидаем подключения"_s}},
            {"webcam", [] {}, {u"Микрофон: Камера"_s}},
            {"webcam", [&] { platform.microphoneDelivers = false; }, {lost}},
            {"webcam", [&] { platform.microphoneDelivers = true; }, {u"Микрофон: Камера"_s}},
            {"webcam",
             [&] { platform.microphones.entries.removeFirst(); },
             {u"Микрофон: Гарнитура"_s}},
            {"webcam",
             [&] { platform.microphones.entries.append(webcam); },
             {u"Микрофон: Камера"_s}},
        };
        std::optional<Session> session;
        for (const auto& [chosen, change, expected] : steps) {
            if (!session || session->settings.microphoneId != chosen) {
                session.reset();
                platform = {};
                session.emplace();
                session->settings.microphoneEnabled = true;
                session->settings.microphoneId = chosen;
                session->begin();
                session->sources.removeFirst(); // the far side's
            }
            change();
            QTRY_COMPARE(session->sources.count(), expected.size());
            for (const QString& text : expected)
                QCOMPARE(session->sources.takeFirst().at(0).toString(), text);
        }
        session->worker.stop();
        QCOMPARE(session->error(), QString());
    }

    void aPauseAndAStopTakeWhatTheMicrophoneStillHolds() {
        FakePlatform::instance().microphoneLast = 0.9F;
        Session session;
        session.settings.microphoneEnabled = true;
        session.begin();
        QTest::qWait(300);
        session.worker.pause();
        session.worker.resume();
        QTest::qWait(300);
        session.worker.stop();
        const QList<float> samples = decoded(u"call.wav"_s);
        for (const qsizetype end :
             {session.progress.first().at(0).toLongLong() * 48, samples.size()})
            QVERIFY(*std::max_element(samples.begin() + end - 960, samples.begin() + end) > 0.8F);
    }
};

QTEST_GUILESS_MAIN(RecorderWorkerTest)
#include "recorder_worker_test.moc"
