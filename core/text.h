#pragma once

#include <QString>

namespace qn {

// Milliseconds as "hh:mm:ss", fraction dropped, negative as zero; hours may take more digits.
QString formatDuration(qint64 ms);

// A title as a file name: no control characters or separators, at most 120 UTF-16 units, never
// empty.
QString safeFileName(QString name);

} // namespace qn
