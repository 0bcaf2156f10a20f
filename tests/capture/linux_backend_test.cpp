#include "capture/capture_backend.h"
#include "tests/support/sound_server.h"

#include <QDir>
#include <QElapsedTimer>
#include <QMap>
#include <QTest>

#include <cmath>
#include <csignal>

using namespace qn;
using namespace qn::testing;

namespace {

// The backend with what it has delivered since the last start.
struct Capture : QObject {
    Capture() {
        connect(backend.get(), &CaptureBackend::block, this, [this](const AudioBlock& block) {
            for (const float sample : block.samples)
                peaks[block.sourceKey] = std::max(peaks[block.sourceKey], std::abs(sample));
            const auto now = std::chrono::steady_clock::now().time_since_epoch();
            delayMs = (std::chrono::nanoseconds(now).count() - block.timestampNs) / 1'000'000;
            last = block;
        });
        connect(backend.get(), &CaptureBackend::failed, this, [this] { ++failures; });
    }

    bool start(SourceKind kind, const QString& id) {
        QCoreApplication::processEvents();
        peaks.clear();
        failures = 0;
        const bool started = backend->start({kind, id}, id, error);
        return started && error.isEmpty();
    }

    // Whether that peak, and no other source, was delivered.
    bool hears(float peak) const {
        return peaks.size() == 1 && std::abs(peaks.first() - peak) < 0.02F;
    }

    std::unique_ptr<CaptureBackend> backend = makeCaptureBackend();
    QMap<QString, float> peaks;
    int failures = 0;
    QString error;
    qint64 delayMs = 0;
    AudioBlock last;
};

qint64 elapsedMs(const auto& call) {
    QElapsedTimer timer;
    timer.start();
    call();
    return timer.elapsed();
}

// File descriptors and threads of this process.
qsizetype openThings() {
    return QDir(u"/proc/self/fd"_s).entryList(QDir::NoFilter).size() +
           QDir(u"/proc/self/task"_s).entryList(QDir::NoFilter).size();
}

} // namespace

class LinuxBackendTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void recordsOnlyTheChosenDevice();
    void aRemovedDeviceFailsOnceAndComesBack();
    void outlivesTheServer();
    void neverWaitsLongForAServerThatHangs();
    void followsTheStreamsOfOneApplication();
};

void LinuxBackendTest::initTestCase_data() {
    qRegisterMetaType<AudioBlock>();
    QTest::addColumn<SoundServer::Kind>("kind");
    QTest::newRow("PulseAudio") << SoundServer::PulseAudio;
    QTest::newRow("PipeWire") << SoundServer::PipeWire;
}

void LinuxBackendTest::recordsOnlyTheChosenDevice() {
    QFETCH_GLOBAL(SoundServer::Kind, kind);
    SoundServer server(kind);
    server.addSink(u"second"_s);
    server.play(u"caller"_s, 0.5F, u"--device=speakers"_s);
    server.play(u"other"_s, 0.25F, u"--device=second"_s);
    const QString ownId = QString::number(QCoreApplication::applicationPid());
    server.play(u"self"_s, 0.1F, u"--property=application.process.id="_s + ownId);
    Capture capture;
    QTRY_COMPARE(capture.backend->catalog().applications.size(), 2);
    const Catalog catalog = capture.backend->catalog();
    QCOMPARE(catalog.defaultOutput, u"speakers"_s);
    QCOMPARE(catalog.outputs.last().id, u"second"_s);
    QVERIFY(capture.start(SourceKind::Device, u"second"_s));
    QTRY_VERIFY(capture.hears(0.25F));
    QVERIFY(capture.delayMs > 20 && capture.delayMs < 250);
    QCOMPARE(capture.last.samples.size(), 2048);
    QCOMPARE(capture.last.channelMask, 3U);
    const qsizetype before = openThings();
    for (int i = 0; i < 20; ++i)
        QVERIFY(capture.start(SourceKind::System, u"second"_s));
    QTRY_COMPARE(openThings(), before);
    QVERIFY(!capture.start(SourceKind::Device, u"missing"_s));
    QVERIFY(!capture.start(SourceKind::Application, u"missing"_s));
}

void LinuxBackendTest::aRemovedDeviceFailsOnceAndComesBack() {
    QFETCH_GLOBAL(SoundServer::Kind, kind);
    SoundServer server(kind);
    const QString module = server.addSink(u"second"_s);
    server.play(u"caller"_s, 0.5F, u"--device=speakers"_s);
    Capture capture;
    QVERIFY(capture.start(SourceKind::Device, u"second"_s));
    QTRY_VERIFY(capture.hears(0.0F));
    server.control(u"unload-module "_s + module);
    QTRY_COMPARE(capture.failures, 1);
    QTest::qWait(300);
    QVERIFY(capture.hears(0.0F)); // nothing of what plays elsewhere
    QVERIFY(!capture.start(SourceKind::Device, u"second"_s));
    server.addSink(u"second"_s);
    QTRY_VERIFY_WITH_TIMEOUT(capture.start(SourceKind::Device, u"second"_s), 1500);
    QTRY_VERIFY(capture.hears(0.0F));
}

void LinuxBackendTest::outlivesTheServer() {
    QFETCH_GLOBAL(SoundServer::Kind, kind);
    SoundServer server(kind);
    Capture capture;
    QVERIFY(capture.start(SourceKind::System, u"speakers"_s));
    server.signal(SIGKILL);
    QTRY_COMPARE(capture.failures, 1);
    QVERIFY(elapsedMs([&] { QVERIFY(capture.backend->catalog().outputs.isEmpty()); }) < 100);
    QVERIFY(!capture.start(SourceKind::System, u"speakers"_s));
    server.start();
    QTRY_VERIFY_WITH_TIMEOUT(capture.start(SourceKind::System, u"speakers"_s), 1500);
    QTRY_VERIFY(capture.hears(0.0F));
    QCOMPARE(capture.failures, 0);
}

void LinuxBackendTest::neverWaitsLongForAServerThatHangs() {
    QFETCH_GLOBAL(SoundServer::Kind, kind);
    SoundServer server(kind);
    server.play(u"caller"_s, 0.5F);
    Capture capture;
    QTRY_COMPARE(capture.backend->catalog().applications.size(), 1);
    server.signal(SIGSTOP);
    const auto refresh = [&] { QCOMPARE(capture.backend->catalog().defaultOutput, u"speakers"_s); };
    QVERIFY(elapsedMs(refresh) < 1500);
    QVERIFY(elapsedMs(refresh) < 150);
    QVERIFY(elapsedMs([&] { QVERIFY(!capture.start(SourceKind::System, u"speakers"_s)); }) < 2000);
    server.signal(SIGCONT);
    QTRY_VERIFY_WITH_TIMEOUT(capture.start(SourceKind::System, u"speakers"_s), 1500);
    QTRY_VERIFY(capture.hears(0.5F));
}

void LinuxBackendTest::followsTheStreamsOfOneApplication() {
    QFETCH_GLOBAL(SoundServer::Kind, kind);
    SoundServer server(kind);
    server.addSink(u"second"_s);
    server.play(u"other"_s, 0.9F);
    server.play(u"caller"_s, 0.5F);
    Capture capture;
    QTRY_VERIFY(capture.start(SourceKind::Application, u"caller"_s));
    QTRY_VERIFY(capture.hears(0.5F));
    QProcess& ending = server.play(u"caller"_s, 0.25F, u"--device=second"_s);
    QTRY_COMPARE_WITH_TIMEOUT(capture.peaks.size(), 2, 1500);
    QTRY_VERIFY(std::abs(capture.peaks.last() - 0.25F) < 0.02F);
    ending.kill();
    ending.waitForFinished();
    for (const QString& line : server.control(u"list short sink-inputs"_s).split(u'\n'))
        server.control(u"move-sink-input %1 second"_s.arg(line.section(u'\t', 0, 0)));
    QTest::qWait(1000);
    capture.peaks.clear();
    QTRY_VERIFY(capture.hears(0.5F));
    QCOMPARE(capture.failures, 0);
    capture.backend->stop();
    QCoreApplication::processEvents();
    capture.peaks.clear();
    QTest::qWait(100);
    QVERIFY(capture.peaks.isEmpty());
}

QTEST_GUILESS_MAIN(LinuxBackendTest)
#include "linux_backend_test.moc"
