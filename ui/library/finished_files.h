#pragma once

#include "core/recording.h"

#include <QList>

namespace qn {

// Finds the rows that say "interrupted" although their file is complete, and returns them
// corrected. A recording's file gets its final name before its row is updated, and in between the
// program may end or the library fail.
QList<Recording> finishedUnnoticed(QList<Recording> rows);

} // namespace qn
