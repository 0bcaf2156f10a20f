#include "capture/catalog.h"

#include <QTest>

using namespace qn;
using namespace Qt::StringLiterals;

class CatalogTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void resolvesTheChoiceAgainstWhatIsThere() {
        const struct {
            int kind;
            QString id, defaultOutput, resolved;
        } cases[] = {
            {0, u"usb"_s, u"card"_s, u"card"_s}, {0, u""_s, u""_s, u""_s},
            {0, u""_s, u"gone"_s, u""_s},        {1, u"usb"_s, u"card"_s, u"usb"_s},
            {1, u"app"_s, u"card"_s, u"card"_s}, {1, u"gone"_s, u""_s, u""_s},
            {2, u"app"_s, u"card"_s, u"app"_s},  {2, u"usb"_s, u"card"_s, u""_s},
            {7, u"usb"_s, u"card"_s, u"usb"_s},
        };
        for (const auto& [kind, id, output, resolved] : cases) {
            const Catalog catalog{{{u"usb"_s, {}}, {u"card"_s, {}}}, {{u"app"_s, {}}}, output};
            const QString found = resolveSource({static_cast<SourceKind>(kind), id}, catalog);
            QVERIFY2(found == resolved, qPrintable(u"%1 %2 %3"_s.arg(kind).arg(id, output)));
        }
    }
};

QTEST_GUILESS_MAIN(CatalogTest)
#include "catalog_test.moc"
