#pragma once

#include "core/recording.h"

#include <QList>

namespace qn {

// Of those rows the interrupted ones whose file was finished all the same, as they should be. A
// recording's file gets its final name before its row is told, and between the two the program may
// end or the library refuse.
QList<Recording> finishedUnnoticed(QList<Recording> rows);

} // namespace qn
