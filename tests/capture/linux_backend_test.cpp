#include "capture/capture_backend.h"
#include "tests/support/sound_server.h"
#include "tests/support/tone.h"

#include <QtTest>

#include <csignal>

using namespace qn;
using namespace qn::testing;

class LinuxBackendTest : public QObject {
    Q_OBJECT

    std::optional<SoundServer> server;
    QString secondSink; // its module
    std::unique_ptr<CaptureBackend> backend;
    QMap<QString, float> peaks; // by source, since the last start
    int failures = 0;
    AudioBlock last;
    qint64 delayMs = 0; // of `last`

    void store(const AudioBlock& block) {
        float& peak = peaks[block.sourceKey];
        peak = std::max(peak, findTone(block.samples, block.sampleRate).peak);
        last = block;
        delayMs = QDeadlineTimer::current().deadline() - block.timestampNs / 1'000'000;
    }

    bool start(const QString& id, SourceKind kind = SourceKind::Device) {
        QCoreApplication::processEvents();
        peaks.clear();
        failures = 0;
        QString error;
        return backend->start({kind, id}, id, error) && error.isEmpty();
    }

    // Whether that peak, and no other source, was delivered.
    bool hears(float peak) const { return peaks.size() == 1 && qAbs(peaks.first() - peak) < 0.02F; }

private Q_SLOTS:
    void initTestCase_data() { SoundServer::addKinds(); }

    void init() {
        server.emplace();
        secondSink = server->addSink(u"second"_s);
        backend = makeCaptureBackend();
        connect(backend.get(), &CaptureBackend::block, this, &LinuxBackendTest::store);
        connect(backend.get(), &CaptureBackend::failed, this, [this] { ++failures; });
    }

    void cleanup() {
        backend.reset();
        server.reset();
    }

    void recordsOnlyTheChosenDeviceWhileItIsThere() {
        server->play(u"caller"_s, 0.5F, u"--device=speakers"_s);
        QProcess& other = server->play(u"other"_s, 0.25F, u"--device=second"_s);
        const QString ownId = QString::number(QCoreApplication::applicationPid());
        server->play(u"self"_s, 0.1F, u"--property=application.process.id="_s + ownId);
        QTRY_COMPARE(backend->catalog().applications.size(), 2);
        const Catalog catalog = backend->catalog();
        QCOMPARE(catalog.defaultOutput, u"speakers"_s);
        QCOMPARE(catalog.outputs.last().id, u"second"_s);
        QVERIFY(!start(u"missing"_s) && !start(u"missing"_s, SourceKind::Application));
        QVERIFY(start(u"second"_s));
        QTRY_VERIFY(hears(0.25F));
        QVERIFY(delayMs > 20 && delayMs < 250);
        QCOMPARE(last.samples.size(), 2048);
        QCOMPARE(last.channelMask, 3U);
        const auto openFiles = [] { return QDir(u"/proc/self/fd"_s).count(); };
        const auto before = openFiles();
        for (int i = 0; i < 20; ++i)
            QVERIFY(start(u"second"_s, SourceKind::System));
        QTRY_COMPARE(openFiles(), before);

        QTRY_VERIFY(hears(0.25F));
        other.kill();
        server->control(u"unload-module "_s + secondSink);
        QTRY_COMPARE(failures, 1);
        QTest::qWait(300);
        QVERIFY(hears(0.25F)); // nothing of what plays elsewhere
        QVERIFY(!start(u"second"_s));
        server->addSink(u"second"_s);
        QTRY_VERIFY_WITH_TIMEOUT(start(u"second"_s), 1500);
        QTRY_VERIFY(hears(0.0F));
    }

    void outlivesAServerThatHangsOrDies() {
        server->play(u"caller"_s, 0.5F);
        QTRY_COMPARE(backend->catalog().applications.size(), 1);
        server->signal(SIGSTOP);
        const QDeadlineTimer whileItHangs(1500);
        QCOMPARE(backend->catalog().defaultOutput, u"speakers"_s);
        QCOMPARE(backend->catalog().defaultOutput, u"speakers"_s);
        QVERIFY(!start(u"speakers"_s) && !whileItHangs.hasExpired());
        server->signal(SIGCONT);
        QTRY_VERIFY_WITH_TIMEOUT(start(u"speakers"_s), 1500);
        QTRY_VERIFY(hears(0.5F));

        server->signal(SIGKILL);
        QTRY_COMPARE(failures, 1);
        const QDeadlineTimer whileThereIsNone(100);
        QVERIFY(backend->catalog().outputs.isEmpty() && !whileThereIsNone.hasExpired());
        QVERIFY(!start(u"speakers"_s));
        server->start();
        QTRY_VERIFY_WITH_TIMEOUT(start(u"speakers"_s), 1500);
        QTRY_VERIFY(hears(0.0F));
        QCOMPARE(failures, 0);
    }

    void followsTheStreamsOfOneApplication() {
        server->play(u"other"_s, 0.9F);
        server->play(u"caller"_s, 0.5F);
        QTRY_VERIFY(start(u"caller"_s, SourceKind::Application));
        QTRY_VERIFY(hears(0.5F));
        QProcess& ending = server->play(u"caller"_s, 0.25F, u"--device=second"_s);
        QTRY_COMPARE_WITH_TIMEOUT(peaks.size(), 2, 1500);
        QTRY_VERIFY(qAbs(peaks.last() - 0.25F) < 0.02F);
        ending.kill();
        ending.waitForFinished();
        const auto caller = [this](int field) { // its index or its sink
            const QString inputs = server->control(u"list short sink-inputs"_s);
            return inputs.section(u'\n', 1, 1).section(u'\t', field, field);
        };
        const QString speakers = caller(1);
        QTRY_VERIFY( // PipeWire's session manager may lose a move
            server->control(u"move-sink-input %1 second"_s.arg(caller(0))).isEmpty() &&
            caller(1) != speakers);
        QTest::qWait(1000);
        peaks.clear();
        QTRY_VERIFY(hears(0.5F));
        QCOMPARE(failures, 0);
        backend->stop();
        QVERIFY(start(u"speakers"_s));
        QTRY_VERIFY(hears(0.9F)); // no longer the application
    }
};

QTEST_GUILESS_MAIN(LinuxBackendTest)
#include "linux_backend_test.moc"
