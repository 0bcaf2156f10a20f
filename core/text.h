#pragma once

#include <QString>

namespace qn {

// Milliseconds as "hh:mm:ss" without the fraction; negative counts as 0. 100 hours and more take
// more digits.
QString formatDuration(qint64 ms);

// A title as a file name: no control characters or separators, at most 120 UTF-16 units, never
// empty.
QString safeFileName(QString name);

} // namespace qn
