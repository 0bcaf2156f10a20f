#include "capture/capture_backend.h"
#include "engine/recorder_worker.h"
#include "simulated_mac.h"
#include "tests/support/files.h"
#include "tests/support/tone.h"

#include <cmath>
#include <thread>

using namespace qn;
using namespace qn::testing;

namespace {

template <typename Value> QByteArray bytes(std::initializer_list<Value> values) {
    return {reinterpret_cast<const char*>(values.begin()),
            qsizetype(values.size() * sizeof(Value))};
}

constexpr auto ids = bytes<AudioObjectID>;

void setTapFormat(UInt32 flags, UInt32 bits, UInt32 channels, double rate = 48000,
                  UInt32 format = kAudioFormatLinearPCM, AudioObjectID object = 0) {
    mac.properties[{object, u"tfmt"_s}] =
        bytes<AudioStreamBasicDescription>({{rate, format, flags, 0, 1, 0, channels, bits, 0}});
}

// A device that plays 1 kHz until its thread ends, in cycles of 10 ms that start `apart` cycles
// apart.
std::jthread playTone(int rate, float peak, unsigned apart = 1) {
    return std::jthread([=](const std::stop_token& stop) {
        const QList<float> cycle = sine(1000, rate, peak, rate / 100);
        AudioTimeStamp stamp = {};
        stamp.mHostTime = AudioGetCurrentHostTime() + 12'000'000; // a busy machine may lag
        stamp.mFlags = kAudioTimeStampHostTimeValid;
        auto due = std::chrono::steady_clock::now();
        for (; !stop.stop_requested(); stamp.mHostTime += 240'000UL * apart) {
            std::this_thread::sleep_until(due += std::chrono::milliseconds(10 * apart));
            deliver({{1, {reinterpret_cast<const char*>(cycle.data()), cycle.size() * 4}}}, &stamp);
        }
    });
}

} // namespace

class MacBackendTest : public QObject {
    Q_OBJECT

    std::unique_ptr<CaptureBackend> backend;
    QString error;
    QList<AudioBlock> blocks;

    bool start(const Selection& selection = {}) {
        mac.calls.clear();
        blocks.clear();
        return backend->start(selection, selection.id.isEmpty() ? u"card"_s : selection.id, error);
    }

private Q_SLOTS:
    void init() {
        mac = {};
        mac.properties = {{{1, u"dOut"_s}, ids({12})},
                          {{1, u"dev#"_s}, ids({7, 8, 10, 12, 11})},
                          {{12, u"stm#"_s}, ids({112})},
                          {{12, u"uid "_s}, u"card"_s},
                          {{0, u"tuid"_s}, u"the tap"_s}};
        setTapFormat(kAudioFormatFlagIsFloat, 32, 2);
        backend = makeCaptureBackend();
        const auto store = [this](const AudioBlock& block) { blocks.append(block); };
        connect(backend.get(), &CaptureBackend::block, this, store, Qt::DirectConnection);
    }

    void cleanup() {
        backend.reset();
        QVERIFY2(mac.isClean(), qPrintable(mac.faults.join(u", ")));
    }

    void theCatalogueHoldsOutputDevicesAndRegularApplications() {
        auto& properties = mac.properties;
        for (const AudioObjectID id : {8U, 10U, 11U})
            properties[{id, u"stm#"_s}] = ids({101, 102});
        properties[{7, u"uid "_s}] = u"microphone"_s; // no output stream; device 8 has no id
        properties[{10, u"uid "_s}] = u""_s;
        properties[{11, u"uid "_s}] = u"nameless"_s;
        properties[{12, u"lnam"_s}] = u"Динамики 🎧"_s;
        mac.applications = {{u"a.b"_s, u"Звонки"_s},
                            {u"agent"_s, u"Agent"_s, 1},
                            {{}, u"tool"_s},
                            {u"self"_s, u"Self"_s, 0, 0},
                            {u"c.d"_s, {}}};
        const Catalog catalog = backend->catalog();
        QStringList lines = {catalog.defaultOutput};
        for (const auto& entry : catalog.outputs + catalog.applications)
            lines.append(entry.id + u'|' + entry.name);
        QCOMPARE(lines, QStringList({u"card"_s, u"card|Динамики 🎧"_s, u"nameless|"_s,
                                     u"a.b|Звонки"_s, u"c.d|c.d"_s}));
    }

    void aRefusedStartSaysWhyAndLeavesNothing() {
        const QString status = u"Ошибка Core Audio (-50). Проверьте разрешение на запись "
                               "системного звука в настройках macOS."_s;
        const QString format = u"Неизвестный формат системного звука"_s;
        constexpr UInt32 kPcm = kAudioFormatLinearPCM;
        const std::tuple<QString, QString, UInt32, UInt32> rows[]{
            {u"AudioHardwareCreateProcessTap"_s, status, 2, kPcm},
            {u"tfmt"_s, u"Не удалось получить формат Core Audio tap"_s, 2, kPcm},
            {u"tuid"_s, u"Не удалось получить Core Audio tap UID"_s, 2, kPcm},
            {u"AudioHardwareCreateAggregateDevice"_s, status, 2, kPcm},
            {u"AudioDeviceCreateIOProcID"_s, status, 2, kPcm},
            {u"AudioDeviceStart"_s, status, 2, kPcm},
            {{}, format, 0, kPcm},
            {{}, format, 33, kPcm},
            {{}, format, 2, kPcm + 1}};
        for (const auto& [refused, text, channels, formatId] : rows) {
            mac.refusals = {{refused, -50}};
            setTapFormat(1, 32, channels, 48000, formatId);
            QVERIFY(!start());
            QCOMPARE(error, text);
            QVERIFY2(mac.isClean(), qPrintable(refused));
        }
    }

    void aDeviceIsTappedThroughAPrivateAggregateDevice() {
        const auto calls = [] { return mac.calls.join(u' ').remove(u"Audio"_s); };
        QVERIFY(start());
        QCOMPARE(calls(), u"HardwareCreateProcessTap tfmt tuid HardwareCreateAggregateDevice "
                          "CFRelease DeviceCreateIOProcID DeviceStart"_s);
        QCOMPARE(mac.tap, u"{'device':'card','excludes':1,'name':'Quorlin','private':true,"
                          "'processes':[],'stream':0}"_s);
        const QString device = mac.aggregate;
        QCOMPARE(device.chopped(38), // a new UUID each time
                 u"{'name':'Quorlin Capture','private':true,'tapautostart':true,"
                 "'taps':[{'drift':true,'uid':'the tap'}],'uid':'"_s);
        QVERIFY(start());
        QVERIFY(device != mac.aggregate && device.size() == mac.aggregate.size());
        mac.calls.clear();
        backend->stop();
        backend->stop();
        QCOMPARE(calls(), u"DeviceStop DeviceDestroyIOProcID HardwareDestroyAggregateDevice "
                          "HardwareDestroyProcessTap"_s);
    }

    void aFormatThatChangesIsCapturedAnew() {
        QVERIFY(start());
        backend->findChild<QTimer*>()->setInterval(10);
        const std::tuple<AudioObjectID, double, int> rows[]{
            {0, 48000, 1},
            {0, 16000, 2}, // a headset's call mode
            {2, 44100, 5},
            {2, 16000, 5}, // never what the tap has before it runs
            {2, 24000, 8}};
        for (const auto& [object, rate, starts] : rows) {
            setTapFormat(1, 32, 2, rate, kAudioFormatLinearPCM, object);
            const auto reads = mac.calls.count(u"tfmt"_s);
            QTRY_VERIFY(mac.calls.count(u"tfmt"_s) > reads + 12);
            QCOMPARE(mac.calls.count(u"AudioDeviceStart"_s), starts);
            deliver({{2, "12345678"_ba}});
            QCOMPARE(blocks.last().sampleRate, object == 0 ? int(rate) : 16000);
        }
    }

    void whatMayStillRunKeepsWhatItUses() {
        for (const auto& [stop, remove] : {std::pair{-50, 0}, {0, -50}, {-50, -50}}) {
            init();
            QVERIFY(start());
            mac.refusals = {{u"AudioDeviceStop"_s, stop},
                            {u"AudioDeviceDestroyIOProcID"_s, remove}};
            backend.reset();
            deliver({{1, "1234"_ba}});
            QVERIFY(blocks.isEmpty() && mac.faults.isEmpty() && mac.live.size() == 2);
            static auto* inUse = new QSet<void*>; // reachable to the end, so no leak
            inUse->insert(mac.ioClientData);
        }
        mac = {};
    }

    void anApplicationIsFollowedThroughItsProcesses() {
        auto& properties = mac.properties;
        properties[{21, u"pbid"_s}] = u"org.browser"_s;
        properties[{22, u"pbid"_s}] = u"org.browser.helper"_s;
        properties[{23, u"pbid"_s}] = u"org.browserish"_s; // another product; 24 has none
        properties[{1, u"prs#"_s}] = ids({23, 24});
        const QString tap = u"{'name':'Quorlin','private':true,'processes':[%1]}"_s;
        QSignalSpy failures(backend.get(), &CaptureBackend::failed);
        QVERIFY(start({SourceKind::Application, u"org.browser"_s}));
        QCOMPARE(mac.tap, tap.arg(u""_s));
        auto* timer = backend->findChild<QTimer*>();
        QCOMPARE(timer->interval(), 1000);
        timer->setInterval(20);
        QTRY_VERIFY(mac.calls.count(u"prs#"_s) > 6); // each look is two calls
        QCOMPARE(mac.calls.count(u"AudioDeviceStart"_s), 1);
        properties[{1, u"prs#"_s}] = ids({21, 22, 23, 24});
        QTRY_VERIFY(mac.tap == tap.arg(u"21,22"_s) || mac.tap == tap.arg(u"22,21"_s));
        QVERIFY(mac.running);
        properties[{1, u"prs#"_s}] = ids({21, 23});
        QTRY_COMPARE(mac.tap, tap.arg(21));
        mac.refusals[u"AudioDeviceStart"_s] = -50;
        properties[{1, u"prs#"_s}] = ids({});
        QTRY_COMPARE(failures.size(), 1);
        QVERIFY(failures[0][0].toString().contains(u"(-50)"));
        QVERIFY(mac.isClean() && !timer->isActive());
    }

    void buffersBecomeInterleavedFloats() {
        const UInt32 all = ~0U;
        const QByteArray stereo = bytes({0.5F, -0.5F, 0.25F, -0.25F});
        const struct {
            UInt32 flags, bits, channels;
            QList<SimulatedMac::Buffer> buffers;
            QList<float> samples; // none: no block
        } rows[] = {
            {1, 64, 1, {{1, bytes({0.5, 1e300})}}, {0.5F, INFINITY}},
            {4, 16, 1, {{1, bytes<qint16>({-32768, 16384})}}, {-1.0F, 0.5F}},
            {4, 32, 1, {{1, bytes<qint32>({-2147483647 - 1, 1 << 30})}}, {-1.0F, 0.5F}},
            {4, 24, 1, {{1, "abcdef"_ba}}, {0, 0}},
            {1, 32, 1, {{0, "junk"_ba}, {1, bytes({1.0F})}}, {1}},
            {1, 32, 2, {{1, bytes({1.0F, 2.0F})}, {1, bytes({3.0F, 9.0F}), 4}}, {1, 3, 2, 0}},
            {1, 32, 3, {{2, {}, 16}, {1, bytes({1.0F, 2.0F})}}, {0, 0, 1, 0, 0, 2}},
            {1, 32, 3, {{2, stereo}}, {0.5F, -0.5F, 0, 0.25F, -0.25F, 0}},
            {1, 32, 2, {{1, bytes({1.0F, 2.0F})}, {2, stereo}}, {1, 0.5F, 2, 0.25F}},
            {1, 32, 1, QList<SimulatedMac::Buffer>(40, {1, bytes({1.0F})}), {1}},
            {1, 32, 2, {{2, stereo.left(15)}}, {0.5F, -0.5F}},
            {1, 32, 2, {{0, stereo}, {0, stereo}}, {}},
            {1, 7, 2, {{2, stereo}}, {}},
            {1, 32, 2, {{2, stereo.left(7)}}, {}},
            {1, 32, 32, {{1, {}, all}}, {}},
            {1, all, 32, {{all, {}, all}}, {}},
            {1, 32, 2, {}, {}},
        };
        for (const auto& row : rows) {
            setTapFormat(row.flags, row.bits, row.channels);
            QVERIFY(start());
            deliver(row.buffers);
            const AudioBlock block = blocks.value(0, {{}, 0, qint32(row.channels), 0, 0, {}});
            QVERIFY2(block.samples == row.samples && block.channels == qint32(row.channels) &&
                         blocks.isEmpty() == row.samples.isEmpty(),
                     qPrintable(QString::number(&row - rows)));
        }
    }

    void aBlockBearsTheDevicesTimeOrHasJustEnded() {
        AudioTimeStamp stamp = {};
        stamp.mHostTime = AudioGetCurrentHostTime() - 12'000'000; // half a second ago
        const qint64 stampNs = QDeadlineTimer::current().deadlineNSecs() - 500'000'000;
        // Rate, that of the block (-1: none), flags, how long it lasts (0: the stamp holds).
        const std::tuple<double, qint32, UInt32, qint64> rows[]{{48000, 48000, 2 | 1, 0},
                                                                {48000, 48000, 1, 1'000'000'000},
                                                                {24000.9, 24000, 0, 2'000'000'000},
                                                                {-INFINITY, 0, 2, 0},
                                                                {NAN, -1, 0, 0},
                                                                {1e300, -1, 0, 0}};
        for (const auto& [rate, sampleRate, flags, lastsNs] : rows) {
            setTapFormat(1, 32, 1, rate);
            QVERIFY(start());
            stamp.mFlags = flags;
            const qint64 before = QDeadlineTimer::current().deadlineNSecs();
            deliver({{1, QByteArray(192'000, '\0')}}, flags != 0 ? &stamp : nullptr);
            const qint64 spent = QDeadlineTimer::current().deadlineNSecs() - before + 10'000'000;
            QCOMPARE(blocks.isEmpty() ? -1 : blocks[0].sampleRate, sampleRate);
            const qint64 expected = lastsNs == 0 ? stampNs : before - lastsNs;
            QVERIFY(blocks.isEmpty() || qAbs(blocks[0].timestampNs - expected) < spent);
        }
    }

    void aRecordingHoldsTheToneWithoutAGap() {
        setTapFormat(1, 32, 1, 44100);
        const std::jthread device = playTone(44100, 0.5F);
        RecorderWorker worker;
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"call.wav"_s);
        QSignalSpy progress(&worker, &RecorderWorker::progress);
        worker.begin({0, {}, false, {}, AudioFormat::Wav, {}}, path + u".part"_s);
        QTRY_COMPARE(progress.count(), 2);
        worker.stop();
        const QList<float> samples = decoded(path);
        QVERIFY(samples.size() > 84'000);
        QVERIFY(findTone(samples, 48000).peak > 0.489F);
        for (int i = 36'000; i < 84'000; ++i) // 48 samples are a period
            QVERIFY2(qAbs(samples[i] - samples[i - 48]) < 0.003F, qPrintable(QString::number(i)));
    }

    void theCheckOfARealMacFindsWhatIsWrong() {
        const std::tuple<int, float, unsigned, QString> rows[]{
            {48000, 0.5F, 1, {}},
            {48000, 0.5F, 4, u"a gap or leap of 30 ms"_s},
            {48000, 0.0F, 1, kZerosOnly},
            {48000, 0.005F, 1, u"1000 Hz with a peak of 0.005"_s},
            {24000, 0.5F, 1, u"2000 Hz with a peak of 0.5"_s}};
        for (const auto& [rate, peak, apart, fault] : rows) {
            QVERIFY(start());
            QCOMPARE(captureFault(blocks), u"no blocks"_s);
            const std::jthread device = playTone(rate, peak, apart);
            for (int i = 0; i < 200; ++i)
                QVERIFY(start());
            QTest::qWait(200);
            backend->stop();
            QCOMPARE(captureFault(blocks), fault);
        }
    }
};

QTEST_GUILESS_MAIN(MacBackendTest)
#include "mac_backend_test.moc"
