#pragma once

#include "core/recording.h"

#include <QHash>
#include <QList>
#include <QTableWidget>

namespace qn {

// The library as a table. Its cells compose their texts when asked, so that a refill costs only
// what is visible.
class RecordingTable : public QTableWidget {
    Q_OBJECT

public:
    explicit RecordingTable(QWidget* parent = nullptr);

    // Shows these rows. The selected recording stays selected; if it is gone, the current row is
    // selected, or else the first. Emits no signal: the caller checks the selection afterwards.
    void setRows(const QList<Recording>& recordings);

    // Shown while there are no rows.
    void setHint(const QString& text);

    // The recording in the current row; null without one. Valid until the next setRows.
    const Recording* selected() const;

    // What the cell shows; empty outside the table.
    QString cellText(int row, int column) const;

    QColor cellColour(int row, int column) const; // of the text; invalid for the usual colour
    QString toolTipOf(int row) const;

    int sizeHintForColumn(int column) const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void startDrag(Qt::DropActions actions) override;
    QMimeData* mimeData(const QList<QTableWidgetItem*>& items) const override;

private:
    void resizeTo(int count);
    void keepSelected(const QString& id);
    bool isLost(int row) const;

    QList<Recording> rows;
    mutable QHash<int, bool> lost; // by row, whether its file is gone; filled as they are looked at
    QString hint;
};

} // namespace qn
