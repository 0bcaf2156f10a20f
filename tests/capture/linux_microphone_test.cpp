#include "capture/microphone.h"
#include "tests/support/sound_server.h"
#include "tests/support/tone.h"

#include <QtTest>

#include <csignal>

using namespace qn;
using namespace qn::testing;

class LinuxMicrophoneTest : public QObject {
    Q_OBJECT

    std::optional<SoundServer> server;
    std::unique_ptr<MicrophoneBackend> backend;
    QList<AudioBlock> blocks; // since the last start
    int failures = 0;

    bool start(const QByteArray& id) {
        QCoreApplication::processEvents();
        blocks.clear();
        failures = 0;
        QString error;
        return backend->start(id, error) && error.isEmpty();
    }

    // Whether the last 60 blocks hold the whole sine in their first channel.
    bool hearsTheSine() const {
        if (blocks.size() < 75)
            return false;
        QList<float> samples;
        for (const AudioBlock& block : blocks.last(60))
            samples += block.samples;
        const Tone tone = findTone(samples, blocks.last().sampleRate, blocks.last().channels);
        return qAbs(tone.peak - 0.5F) < 0.02F && qAbs(tone.hertz - 458) < 3 && tone.silence < 8;
    }

    QString ids() const {
        const MicrophoneList list = backend->list();
        QByteArrayList found;
        for (const MicrophoneEntry& entry : list.entries)
            found.append((entry.id == list.defaultId ? "*" : "") + entry.id);
        return QString::fromUtf8(found.join(' '));
    }

private Q_SLOTS:
    void initTestCase_data() { SoundServer::addKinds(); }

    void init() {
        server.emplace();
        backend = makeMicrophoneBackend();
        connect(backend.get(), &MicrophoneBackend::block, this,
                [this](const AudioBlock& block) { blocks.append(block); });
        connect(backend.get(), &MicrophoneBackend::failed, this, [this] { ++failures; });
    }

    void cleanup() {
        backend.reset();
        server.reset();
    }

    void everyFormatIsRecordedWithoutAGap() {
        const std::tuple<QString, int, int, int> rows[] = {
            {u"s16le"_s, 8000, 1, 16000},
            {u"s24le"_s, 44100, 2, 44100},
            {u"s24-32le"_s, 96000, 6, 96000},
        };
        for (const auto& [format, rate, channels, recordedRate] : rows) {
            const QString module = server->addMicrophone(u"tested"_s, format, rate, channels);
            QTRY_VERIFY(start("tested"));
            // A busy machine may keep the player from playing on now and then.
            QTRY_VERIFY2_WITH_TIMEOUT(hearsTheSine(), qPrintable(format), 15'000);
            QCOMPARE(blocks.last().sampleRate, recordedRate);
            QCOMPARE(blocks.last().channels, channels);
            backend->stop();
            server->control(u"unload-module "_s + module);
        }
    }

    void theServersDefaultIsTheDefaultAndMonitorsAreNoMicrophones() {
        QTRY_COMPARE(ids(), QString());
        server->addMicrophone(u"webcam"_s);
        server->addMicrophone(u"headset"_s);
        for (const auto& [chosen, expected] : {
                 std::pair(u"headset"_s, u"webcam *headset"_s),
                 std::pair(u"webcam"_s, u"*webcam headset"_s),
                 std::pair(u"speakers.monitor"_s, u"*speakers.monitor webcam headset"_s),
             }) {
            QTRY_VERIFY( // PipeWire's session manager may lose a wish, and then has its own
                server->control(u"set-default-source "_s + chosen).isEmpty() && ids() == expected);
        }
    }

    void oneThatGoesBreaksAndComesBack() {
        QString module = server->addMicrophone(u"headset"_s);
        server->addMicrophone(u"webcam"_s);
        QTRY_VERIFY(start("headset"));
        QTRY_VERIFY(blocks.size() > 20);
        server->killStreams();
        QTRY_COMPARE(failures, 1);
        QVERIFY(start("headset"));
        server->control(u"unload-module "_s + module);
        QTRY_COMPARE(failures, 1);
        QVERIFY(!start("headset"));
        module = server->addMicrophone(u"headset"_s);
        QTRY_VERIFY_WITH_TIMEOUT(start("headset"), 1500);
        // Back under its name before anyone looks.
        server->control(u"unload-module "_s + module);
        server->addMicrophone(u"headset"_s);
        QTRY_COMPARE(backend->list().entries.size(), 2);
        QTRY_COMPARE(failures, 1);
        QTRY_VERIFY(start("headset"));
        QTRY_VERIFY(blocks.size() > 20);
    }

    void noServerKeepsAnyoneWaiting() {
        server->addMicrophone(u"headset"_s);
        QTRY_VERIFY(start("headset"));
        QTRY_VERIFY(blocks.size() > 20);
        const auto all = [this] {
            QElapsedTimer time;
            time.start();
            backend->list();
            QString error;
            const bool opened = backend->start("headset", error);
            backend->stop();
            return !opened && time.elapsed() < 700;
        };
        server->signal(SIGSTOP);
        QVERIFY(all() && all());
        server->signal(SIGCONT);
        QTRY_VERIFY_WITH_TIMEOUT(start("headset"), 1500);
        server->signal(SIGKILL);
        QTRY_COMPARE(failures, 1);
        QVERIFY(all());
        server->start(); // without the microphone
        QTRY_COMPARE(ids(), QString());
        QVERIFY(all());
        server->addMicrophone(u"headset"_s);
        QTRY_VERIFY_WITH_TIMEOUT(start("headset"), 1500);
        QTRY_VERIFY(blocks.size() > 20);
    }
};

QTEST_GUILESS_MAIN(LinuxMicrophoneTest)
#include "linux_microphone_test.moc"
