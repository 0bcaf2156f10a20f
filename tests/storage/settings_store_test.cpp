#include "storage/settings_store.h"

#include <QSettings>
#include <QTest>

using namespace Qt::StringLiterals;

class SettingsStoreTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QCoreApplication::setOrganizationName(u"quorlin-test"_s); }
    void cleanup() { QSettings().clear(); }

    void allSixPreferencesAreKept() {
        QVERIFY(qn::loadSettings().microphoneEnabled);
        QVERIFY(qn::loadSettings().directory.endsWith(u"/Quorlin"_s));
        const QByteArray microphone("\0\xffmic", 5);
        qn::saveSettings({2, u"\"7\", да"_s, false, microphone, qn::AudioFormat::Mp3, u"/a b"_s});
        const qn::Settings settings = qn::loadSettings();
        QCOMPARE(settings.sourceKind, 2);
        QCOMPARE(settings.sourceId, u"\"7\", да"_s);
        QVERIFY(!settings.microphoneEnabled);
        QCOMPARE(settings.microphoneId, microphone);
        QCOMPARE(settings.format, qn::AudioFormat::Mp3);
        QCOMPARE(settings.directory, u"/a b"_s);
    }

    void garbageBecomesTheDefault() {
        for (const QVariant& kind : {QVariant(3), QVariant(-1), QVariant(u"two"_s)}) {
            QSettings().setValue(u"source/kind"_s, kind);
            QCOMPARE(qn::loadSettings().sourceKind, 0);
        }
        QSettings().setValue(u"audio/format"_s, u"MP3"_s);
        QCOMPARE(qn::loadSettings().format, qn::AudioFormat::Opus);
    }
};

QTEST_GUILESS_MAIN(SettingsStoreTest)
#include "settings_store_test.moc"
