#include "core/date_time.h"
#include "ui/library/recording_table.h"

#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

class RecordingTableTest : public QObject {
    Q_OBJECT

    static qn::Recording recording(const QString& id, const QString& title = u"Созвон"_s) {
        const QDateTime started = qn::fromIsoText(u"2024-03-05T21:07:01.250Z"_s);
        return {id, title, {}, u"opus"_s, u"Europe/Moscow"_s, u"interrupted"_s, started, {}, 0, {}};
    }

private Q_SLOTS:
    void everyRefillKeepsTheSelectedRecordingAndFitsTheColumns() {
        qn::RecordingTable table;
        table.resize(900, 300);
        table.show();
        const QSignalSpy selections(&table, &QTableWidget::itemSelectionChanged);
        table.setRows({recording(u"a"_s), recording(u"b"_s), recording(u"c"_s)});
        QCOMPARE(table.selected()->id, u"a"_s);
        table.selectRow(1);
        table.setRows({recording(u"x"_s), recording(u"a"_s), recording(u"b"_s)});
        QCOMPARE(table.selected()->id, u"b"_s);
        table.selectRow(1);
        table.setRows({recording(u"x"_s), recording(u"c"_s)});
        QCOMPARE(table.selected()->id, u"c"_s); // the row behind the one that went
        table.setRows({recording(u"x"_s)});
        QCOMPARE(table.selected()->id, u"x"_s);
        table.setRows({});
        QVERIFY(!table.selected() && table.rowCount() == 0 && selections.size() == 2);

        const QString hostile = u"\u202Eстрока\n\0"_s + QString(10'000, u'щ');
        table.setRows({recording(u"a"_s, hostile)});
        const QStringList texts{hostile,   u"06.03.2024 00:07:01 MSK"_s,   u"—"_s, u"00:00:00"_s,
                                u"OPUS"_s, u"Нуждается в восстановлении"_s};
        for (int column = 0; const QString& text : texts)
            QCOMPARE(table.item(0, column++)->text(), text);
        QVERIFY(table.rowHeight(0) < 60);
        QCOMPARE(table.horizontalHeader()->length(), table.viewport()->width());
        const int wide = table.columnWidth(5);
        qn::Recording ready = recording(u"a"_s);
        ready.status = u"ready"_s;
        table.setRows({ready});
        QCOMPARE(table.item(0, 5)->text(), u"Готово"_s);
        QTRY_VERIFY(table.columnWidth(5) < wide);
    }
};

QTEST_MAIN(RecordingTableTest)
#include "recording_table_test.moc"
