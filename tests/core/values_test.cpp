#include "core/date_time.h"
#include "core/text.h"

#include <QTest>

using namespace Qt::StringLiterals;

class ValuesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void durationsAndTitlesBecomePlainText() {
        QCOMPARE(qn::formatDuration(3'599'999), u"00:59:59"_s);
        QCOMPARE(qn::formatDuration(360'000'000), u"100:00:00"_s);
        QCOMPARE(qn::formatDuration(-5'000), u"00:00:00"_s);
        const QString longest = u'a' + QString(117, u'b');
        QCOMPARE(qn::safeFileName(u"a/b:c\t<d>\"e\"\\|?*\0"_s), u"a_b_c__d__e______"_s);
        QCOMPARE(qn::safeFileName(u"  "_s + longest + u". tail"_s), longest);
        QCOMPARE(qn::safeFileName(u". .. "_s), u"Созвон"_s);
    }

    void zonesAreTrustedOnlyWhenSound() {
        for (const QString& id : {u"Moon/Crater"_s, u"../zoneinfo/Asia/Tokyo"_s, QString()})
            QCOMPARE(qn::recordingZone(id), QTimeZone::systemTimeZone());
    }
};

QTEST_GUILESS_MAIN(ValuesTest)
#include "values_test.moc"
