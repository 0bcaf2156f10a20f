#include "ui/common/size_text.h"

#include <QLocale>

namespace qn {

using namespace Qt::StringLiterals;

QString sizeText(qint64 bytes) {
    // Qt's word for bytes is not inflected.
    return bytes < 1000
               ? u"%1 Б"_s.arg(bytes)
               : QLocale(QLocale::Russian).formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

} // namespace qn
