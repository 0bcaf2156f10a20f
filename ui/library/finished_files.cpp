#include "ui/library/finished_files.h"

#include "ui/library/file_names.h"

#include <QFileInfo>

namespace qn {

using namespace Qt::StringLiterals;

QList<Recording> finishedUnnoticed(QList<Recording> rows) {
    rows.removeIf([](const Recording& row) {
        return row.status != "interrupted"_L1 || !row.path.endsWith(".part"_L1) ||
               QFileInfo::exists(row.path) || !QFileInfo(recoveryPath(row)).isFile();
    });
    for (Recording& row : rows) {
        row.path = recoveryPath(row);
        row.status = u"ready"_s;
    }
    return rows;
}

} // namespace qn
