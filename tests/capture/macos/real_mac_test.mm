#include "app/source_listing.h"
#include "capture/capture_backend.h"
#include "capture/macos/audio_object.h"
#include "engine/tools.h"
#include "tests/support/tone.h"

#include <QAudioOutput>
#include <QGuiApplication>
#include <QMediaPlayer>
#include <QtTest/QtTest>

using namespace qn;
using namespace qn::testing;

// The backend on the Mac it runs on, which plays 1 kHz meanwhile.
class RealMacTest : public QObject {
    Q_OBJECT

    std::unique_ptr<CaptureBackend> backend = makeCaptureBackend();
    const QString output = backend->catalog().defaultOutput;
    QTemporaryDir folder;
    QProcess player;

    static QList<AudioObjectID> objects(AudioObjectPropertySelector selector) {
        return objectList(kAudioObjectSystemObject, selector, kAudioObjectPropertyScopeGlobal);
    }

private Q_SLOTS:
    void initTestCase() {
        listSources();
        if (output.isEmpty() || qEnvironmentVariableIsSet("CI"))
            QSKIP("no output device, or nobody to answer the question for the permission");
        QLoggingCategory::setFilterRules(u"quorlin.coreaudio=true"_s);
        QDir::setCurrent(folder.path());
        const auto tone = u"-v error -f lavfi -i sine=1000:d=200 tone.wav tone.mp3 tone.opus"_s;
        QCOMPARE(QProcess::execute(ffmpegPath(), tone.split(u' ')), 0);
        player.start(u"/usr/bin/afplay"_s, {u"tone.wav"_s});
        QTest::qWait(1000);
        QCOMPARE(player.state(), QProcess::Running);
    }

    void theToneIsHeard_data() {
        QTest::addColumn<QString>("id");
        QTest::newRow("device") << output;
        QString program;
        for (const AudioObjectID process : objects(kAudioHardwarePropertyProcessObjectList)) {
            qint32 pid = 0;
            readProperty(process, kAudioProcessPropertyPID, &pid, sizeof pid);
            if (pid == player.processId())
                program = readString(process, kAudioProcessPropertyBundleID).text();
        }
        QTest::newRow("application") << program;
    }
    void theToneIsHeard() {
        QFETCH(QString, id);
        if (id.isEmpty())
            QSKIP("the player has no bundle identifier");
        const auto kind = id == output ? SourceKind::System : SourceKind::Application;
        const auto devices = objects(kAudioHardwarePropertyDevices);
        const auto taps = objects(kAudioHardwarePropertyTapList);
        QList<AudioBlock> blocks;
        QObject listener;
        connect(backend.get(), &CaptureBackend::block, &listener,
                [&](const AudioBlock& block) { blocks.append(block); });
        QString error;
        for (int i = 0; i < 10; ++i)
            QVERIFY2(backend->start({kind, id}, id, error), qPrintable(error));
        QTest::qWait(500); // it may begin with silence
        blocks.clear();
        QTest::qWait(3500); // in which the format is looked at
        backend->stop();
        const QString fault = captureFault(blocks);
        QTRY_COMPARE(objects(kAudioHardwarePropertyDevices), devices);
        QTRY_COMPARE(objects(kAudioHardwarePropertyTapList), taps);
        if (fault == kZerosOnly)
            QSKIP(qPrintable(fault));
        QVERIFY2(fault.isEmpty(), qPrintable(fault));
    }

    void everyFormatPlays() {
        player.kill();
        if (QGuiApplication::platformName() != u"cocoa")
            QSKIP("only an application in a bundle plays files");
        QMediaPlayer media;
        QAudioOutput speakers;
        media.setAudioOutput(&speakers);
        for (const QString& file : {u"tone.wav"_s, u"tone.mp3"_s, u"tone.opus"_s}) {
            media.setSource(QUrl::fromLocalFile(QFileInfo(file).absoluteFilePath()));
            media.play();
            QTRY_VERIFY2(media.position() > 300, qPrintable(file + media.errorString()));
        }
    }
};

QTEST_MAIN(RealMacTest)
#include "real_mac_test.moc"
