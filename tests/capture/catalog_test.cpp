#include "capture/catalog.h"

#include <QTest>

using namespace qn;
using namespace Qt::StringLiterals;

class CatalogTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void resolvesTheChoiceAgainstWhatIsThere_data();
    void resolvesTheChoiceAgainstWhatIsThere();
};

void CatalogTest::resolvesTheChoiceAgainstWhatIsThere_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("defaultOutput");
    QTest::addColumn<QString>("resolved");
    QTest::newRow("system: default") << 0 << u""_s << u"card"_s << u"card"_s;
    QTest::newRow("system ignores the id") << 0 << u"usb"_s << u"card"_s << u"card"_s;
    QTest::newRow("system without default") << 0 << u""_s << u""_s << u""_s;
    QTest::newRow("system, default not listed") << 0 << u""_s << u"gone"_s << u""_s;
    QTest::newRow("device there") << 1 << u"usb"_s << u"card"_s << u"usb"_s;
    QTest::newRow("device gone: default") << 1 << u"gone"_s << u"card"_s << u"card"_s;
    QTest::newRow("device without id: default") << 1 << u""_s << u"card"_s << u"card"_s;
    QTest::newRow("device, other case") << 1 << u"USB"_s << u"card"_s << u"card"_s;
    QTest::newRow("device named as an application") << 1 << u"app"_s << u"card"_s << u"card"_s;
    QTest::newRow("application there") << 2 << u"app"_s << u"card"_s << u"app"_s;
    QTest::newRow("application gone: nothing") << 2 << u"gone"_s << u"card"_s << u""_s;
    QTest::newRow("application named as a device") << 2 << u"usb"_s << u"card"_s << u""_s;
    QTest::newRow("unknown kind: a device") << 7 << u"usb"_s << u"card"_s << u"usb"_s;
}

void CatalogTest::resolvesTheChoiceAgainstWhatIsThere() {
    QFETCH(int, kind);
    QFETCH(QString, id);
    QFETCH(QString, defaultOutput);
    const Catalog catalog{{{u"usb"_s, u"USB"_s}, {u"card"_s, {}}}, {{u"app"_s, {}}}, defaultOutput};
    const QString resolved = resolveSource({static_cast<SourceKind>(kind), id}, catalog);
    QTEST(resolved, "resolved");
    QCOMPARE(resolveSource({SourceKind::System, id}, {}), QString());
}

QTEST_GUILESS_MAIN(CatalogTest)
#include "catalog_test.moc"
