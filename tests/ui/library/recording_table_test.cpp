#include "core/date_time.h"
#include "ui/library/recording_table.h"

#include <QHeaderView>
#include <QMimeData>
#include <QSignalSpy>
#include <QTemporaryFile>
#include <QTest>
#include <QUrl>

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

    void itTellsWhatIsEmptyLostOrBrokenAndHandsOutFiles() {
        qn::RecordingTable table;
        table.setHint(u"Пусто"_s);
        QCOMPARE(table.accessibleDescription(), u"Пусто"_s);
        QTemporaryFile file;
        QVERIFY(file.open() && file.resize(2'500'000));
        qn::Recording broken = recording(u"a"_s, u"<b>"_s);
        broken.path = file.fileName();
        table.setRows({broken, recording(u"b"_s)});
        const auto colour = [&](int row, int column) {
            return table.item(row, column)->data(Qt::ForegroundRole);
        };
        QVERIFY(!colour(0, 0).isValid() && colour(0, 5).isValid());
        QCOMPARE(colour(1, 0), table.palette().color(QPalette::Disabled, QPalette::Text));
        QVERIFY(table.item(0, 0)->toolTip().contains(u"&lt;b&gt;"_s) &&
                table.item(0, 0)->toolTip().contains(u"2,5"_s));
        QVERIFY(table.item(1, 3)->toolTip().contains(u"Аудиофайл не найден"_s));
        const std::unique_ptr<QMimeData> dragged(table.model()->mimeData({}));
        QCOMPARE(dragged->urls(), {QUrl::fromLocalFile(file.fileName())});
    }
};

QTEST_MAIN(RecordingTableTest)
#include "recording_table_test.moc"
