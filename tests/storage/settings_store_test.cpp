#include "storage/settings_store.h"

#include <QSettings>
#include <QTest>

using namespace Qt::StringLiterals;

class SettingsStoreTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        QCoreApplication::setOrganizationName(u"Q"_s);
        QCoreApplication::setApplicationName(u"t"_s);
    }
    void init() { QSettings().clear(); }

    void allSixPreferencesAreKeptAndGarbageBecomesTheDefault() {
        QVERIFY(QSettings().fileName().endsWith(u"/test-homes/settings_store_test/Q/t.ini"_s));
        const qn::Settings first = qn::loadSettings();
        QVERIFY(first.microphoneEnabled && first.directory.endsWith(u"/Quorlin"_s));
        const QByteArray microphone("\0\xffmic", 5);
        qn::saveSettings({2, u"\"7\", да"_s, false, microphone, qn::AudioFormat::Mp3, u"/a b"_s});
        const auto [kind, source, enabled, microphoneId, format, directory] = qn::loadSettings();
        QVERIFY(kind == 2 && source == u"\"7\", да"_s && directory == u"/a b"_s);
        QVERIFY(!enabled && microphoneId == microphone && format == qn::AudioFormat::Mp3);

        QSettings().setValue(u"audio/format"_s, u"MP3"_s);
        for (const QVariant& garbage : {QVariant(3), QVariant(-1), QVariant(u"two"_s)}) {
            QSettings().setValue(u"source/kind"_s, garbage);
            const qn::Settings settings = qn::loadSettings();
            QVERIFY(settings.sourceKind == 0 && settings.format == qn::AudioFormat::Opus);
        }
    }
};

QTEST_GUILESS_MAIN(SettingsStoreTest)
#include "settings_store_test.moc"
