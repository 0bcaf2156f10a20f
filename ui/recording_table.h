#pragma once

#include "core/recording.h"

#include <QList>
#include <QTableWidget>

namespace qn {

// The library's recordings, one a row.
class RecordingTable : public QTableWidget {
    Q_OBJECT

public:
    explicit RecordingTable(QWidget* parent = nullptr);

    // Refills the table without a signal; the selection stays on its recording, else goes to the
    // first row.
    void setRows(const QList<Recording>& rows);

private:
    QList<Recording> shown;
};

} // namespace qn
