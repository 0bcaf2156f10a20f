#include "ui/recording/free_space.h"

#include "ui/common/size_text.h"

#include <QStorageInfo>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

// From the encoder's bit rates: 64 and 128 kbit/s, and 48,000 16-bit samples per second.
qint64 bytesPerHour(AudioFormat format) {
    switch (format) {
    case AudioFormat::Mp3:
        return 57'600'000;
    case AudioFormat::Wav:
        return 345'600'000;
    case AudioFormat::Opus:
        break;
    }
    return 28'800'000;
}

} // namespace

QString freeSpaceText(const QString& directory, AudioFormat format) {
    const qint64 bytes = QStorageInfo(directory).bytesAvailable();
    if (bytes < 0)
        return {};
    const QString size = sizeText(bytes);
    const qint64 hours = bytes / bytesPerHour(format);
    return hours > 0 ? u"Свободно %1, хватит на %2 ч"_s.arg(size, QString::number(hours))
                     : u"Свободно %1, хватит меньше чем на час"_s.arg(size);
}

} // namespace qn
