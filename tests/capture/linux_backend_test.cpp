#include "capture/capture_backend.h"
#include "tests/support/sound_server.h"

#include <QDir>
#include <QElapsedTimer>
#include <QMap>
#include <QTest>

#include <algorithm>
#include <cmath>

using namespace qn;
using namespace qn::testing;

namespace {

constexpr QLatin1StringView kPlayer("caller");

// The backend with what it delivered since the last start.
class Capture : public QObject {
public:
    Capture() {
        connect(backend.get(), &CaptureBackend::block, this, [this](const AudioBlock& block) {
            for (const float sample : block.samples)
                peaks[block.sourceKey] = std::max(peaks[block.sourceKey], std::abs(sample));
            worstDelayNs = std::max(worstDelayNs, now() - block.timestampNs);
            worstSize = std::max(worstSize, block.samples.size() / block.channels);
            mask = block.channelMask;
        });
        connect(backend.get(), &CaptureBackend::failed, this,
                [this](const QString& message) { failures.append(message); });
    }

    bool start(SourceKind kind, const QString& id) {
        QCoreApplication::processEvents();
        peaks.clear();
        failures.clear();
        const bool started = backend->start({kind, id}, id, error);
        return started == error.isEmpty() && started;
    }

    // Whether one source, and no other, has delivered that peak.
    bool hears(float peak) const {
        return peaks.size() == 1 && std::abs(peaks.first() - peak) < 0.02F;
    }

    static qint64 now() {
        return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch())
            .count();
    }

    std::unique_ptr<CaptureBackend> backend = makeCaptureBackend();
    QMap<QString, float> peaks;
    QStringList failures;
    QString error;
    qint64 worstDelayNs = 0;
    qsizetype worstSize = 0;
    quint64 mask = 0;
};

qint64 elapsedMs(const auto& call) {
    QElapsedTimer timer;
    timer.start();
    call();
    return timer.elapsed();
}

qsizetype openThings() {
    return QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System).size() +
           QDir(u"/proc/self/task"_s).entryList(QDir::Dirs).size();
}

} // namespace

class LinuxBackendTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qRegisterMetaType<AudioBlock>(); }
    void recordsOnlyTheChosenDevice_data() { servers(); }
    void recordsOnlyTheChosenDevice();
    void aRemovedDeviceFailsOnceAndComesBack_data() { servers(); }
    void aRemovedDeviceFailsOnceAndComesBack();
    void outlivesTheServer_data() { servers(); }
    void outlivesTheServer();
    void neverWaitsLongForAServerThatHangs_data() { servers(); }
    void neverWaitsLongForAServerThatHangs();
    void followsTheStreamsOfOneApplication_data() { servers(); }
    void followsTheStreamsOfOneApplication();

private:
    static void servers() {
        QTest::addColumn<SoundServer::Kind>("kind");
        QTest::newRow("PulseAudio") << SoundServer::Kind::PulseAudio;
        QTest::newRow("PipeWire") << SoundServer::Kind::PipeWire;
    }
};

void LinuxBackendTest::recordsOnlyTheChosenDevice() {
    QFETCH(SoundServer::Kind, kind);
    SoundServer server(kind);
    server.addSink(u"second"_s);
    server.play(kPlayer, 0.5F, {u"--device=speakers"_s});
    server.play(u"other"_s, 0.25F, {u"--device=second"_s});
    server.play(
        u"self"_s, 0.1F,
        {u"--property=application.process.id=%1"_s.arg(QCoreApplication::applicationPid())});
    Capture capture;
    QTRY_COMPARE(capture.backend->catalog().applications.size(), 2);
    const Catalog catalog = capture.backend->catalog();
    QCOMPARE(catalog.defaultOutput, u"speakers"_s);
    QCOMPARE(catalog.outputs.last().id, u"second"_s);
    QCOMPARE(catalog.outputs.last().name, u"SECOND"_s);
    QVERIFY(capture.start(SourceKind::Device, u"second"_s));
    QTRY_VERIFY(capture.hears(0.25F));
    QVERIFY(capture.worstDelayNs > 20'000'000 && capture.worstDelayNs < 250'000'000);
    QCOMPARE(capture.worstSize, 1024);
    QCOMPARE(capture.mask, 3U);
    const qsizetype before = openThings();
    for (int i = 0; i < 20; ++i)
        QVERIFY(capture.start(SourceKind::System, u"second"_s));
    QTRY_COMPARE(openThings(), before);
    QVERIFY(!capture.start(SourceKind::Device, u"missing"_s));
    QVERIFY(!capture.start(SourceKind::Application, u"missing"_s));
}

void LinuxBackendTest::aRemovedDeviceFailsOnceAndComesBack() {
    QFETCH(SoundServer::Kind, kind);
    SoundServer server(kind);
    const QString module = server.addSink(u"second"_s);
    server.play(kPlayer, 0.5F, {u"--device=speakers"_s});
    Capture capture;
    QVERIFY(capture.start(SourceKind::Device, u"second"_s));
    QTRY_VERIFY(capture.hears(0.0F));
    server.control({u"unload-module"_s, module});
    QTRY_COMPARE(capture.failures.size(), 1);
    QVERIFY(!capture.start(SourceKind::Device, u"second"_s));
    server.addSink(u"second"_s);
    QTRY_VERIFY_WITH_TIMEOUT(capture.start(SourceKind::Device, u"second"_s), 1500);
    QTRY_VERIFY(capture.hears(0.0F)); // not the speakers' tone
}

void LinuxBackendTest::outlivesTheServer() {
    QFETCH(SoundServer::Kind, kind);
    SoundServer server(kind);
    Capture capture;
    QVERIFY(capture.start(SourceKind::System, u"speakers"_s));
    server.kill();
    QTRY_COMPARE(capture.failures.size(), 1);
    QVERIFY(elapsedMs([&] { QVERIFY(capture.backend->catalog().outputs.isEmpty()); }) < 100);
    QVERIFY(!capture.start(SourceKind::System, u"speakers"_s));
    server.start();
    QTRY_VERIFY_WITH_TIMEOUT(capture.start(SourceKind::System, u"speakers"_s), 1500);
    QTRY_VERIFY(capture.hears(0.0F));
    QVERIFY(capture.failures.isEmpty());
}

void LinuxBackendTest::neverWaitsLongForAServerThatHangs() {
    QFETCH(SoundServer::Kind, kind);
    SoundServer server(kind);
    server.play(kPlayer, 0.5F);
    Capture capture;
    QTRY_COMPARE(capture.backend->catalog().applications.size(), 1);
    server.freeze();
    const auto refresh = [&] { QCOMPARE(capture.backend->catalog().defaultOutput, u"speakers"_s); };
    QVERIFY(elapsedMs(refresh) < 1500);
    QVERIFY(elapsedMs(refresh) < 150);
    QVERIFY(elapsedMs([&] { QVERIFY(!capture.start(SourceKind::System, u"speakers"_s)); }) < 2000);
    server.thaw();
    QTRY_VERIFY_WITH_TIMEOUT(capture.start(SourceKind::System, u"speakers"_s), 1500);
    QTRY_VERIFY(capture.hears(0.5F));
}

void LinuxBackendTest::followsTheStreamsOfOneApplication() {
    QFETCH(SoundServer::Kind, kind);
    SoundServer server(kind);
    server.addSink(u"second"_s);
    server.play(u"other"_s, 0.9F);
    server.play(kPlayer, 0.5F);
    Capture capture;
    QTRY_VERIFY(capture.start(SourceKind::Application, kPlayer));
    QTRY_VERIFY(capture.hears(0.5F));
    QProcess& ending = server.play(kPlayer, 0.25F, {u"--device=second"_s});
    QTRY_COMPARE_WITH_TIMEOUT(capture.peaks.size(), 2, 1500);
    QTRY_VERIFY(std::abs(capture.peaks.last() - 0.25F) < 0.02F);
    ending.kill();
    ending.waitForFinished();
    const QString inputs = server.control({u"list"_s, u"short"_s, u"sink-inputs"_s});
    for (const QString& line : inputs.split(u'\n'))
        server.control({u"move-sink-input"_s, line.section(u'\t', 0, 0), u"second"_s});
    QTest::qWait(1000);
    capture.peaks.clear();
    QTRY_VERIFY(capture.hears(0.5F));
    QVERIFY(capture.failures.isEmpty());
    capture.backend->stop();
    QCoreApplication::processEvents();
    capture.peaks.clear();
    QTest::qWait(100);
    QVERIFY(capture.peaks.isEmpty());
}

QTEST_GUILESS_MAIN(LinuxBackendTest)
#include "linux_backend_test.moc"
