#include "ui/recording_table.h"

#include "core/text.h"
#include "ui/recording_text.h"

#include <QHeaderView>
#include <QSignalBlocker>

namespace qn {

using namespace Qt::StringLiterals;

RecordingTable::RecordingTable(QWidget* parent) : QTableWidget(0, 6, parent) {
    setObjectName(u"recordings"_s);
    setAccessibleName(u"Библиотека созвонов"_s);
    setHorizontalHeaderLabels({u"Название"_s, u"Начало созвона"_s, u"Окончание"_s,
                               u"Длительность"_s, u"Формат"_s, u"Состояние"_s});
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setAlternatingRowColors(true);
    setWordWrap(false);
    verticalHeader()->hide();
    horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
}

void RecordingTable::setRows(const QList<Recording>& rows) {
    const QSignalBlocker blocker(this);
    const int kept = currentRow();
    const QString keptId = kept >= 0 && kept < shown.size() ? shown.at(kept).id : QString();
    shown = rows;
    setRowCount(static_cast<int>(rows.size()));
    setCurrentCell(-1, -1);
    for (int i = 0; i < rows.size(); ++i) {
        const Recording& row = rows.at(i);
        const QString texts[] = {row.title,
                                 dateTimeText(row.started, row.timezone),
                                 dateTimeText(row.ended, row.timezone),
                                 formatDuration(row.durationMs),
                                 row.format.toUpper(),
                                 statusText(row.status)};
        for (int column = 0; column < columnCount(); ++column)
            setItem(i, column, new QTableWidgetItem(texts[column]));
        if (!keptId.isNull() && row.id == keptId)
            selectRow(i);
    }
    if (currentRow() < 0 && !rows.isEmpty())
        selectRow(0);
}

} // namespace qn
