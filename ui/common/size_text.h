#pragma once

#include <QString>

namespace qn {

// A file's or a disk's size, as "2,5 МБ".
QString sizeText(qint64 bytes);

} // namespace qn
