#include "ui/playback/played_file.h"

#include <QByteArray>
#include <QtEndian>

#include <algorithm>
#include <limits>

namespace qn {

namespace {

constexpr qint64 kBlockBytes = 4096;
constexpr int kMostChunks = 64; // before the samples of a WAV file
constexpr quint32 kUnknownLength = 0xffffffff;

QByteArray bytesAt(QFile& file, qint64 position, qint64 count) {
    return file.seek(position) ? file.read(count) : QByteArray();
}

// An Ogg page, a tag, or the header of a frame.
bool isOggOrMp3(const QByteArray& head) {
    if (head.startsWith("OggS") || head.startsWith("ID3"))
        return true;
    const quint32 bits = head.size() < 4 ? 0 : qFromBigEndian<quint32>(head.constData());
    return bits >> 21 == 0x7ff && (bits >> 17 & 3) != 0 && (bits >> 12 & 15) != 15;
}

// Where the samples end by the header; for one that was never finished, the end of the file.
qint64 wavEnd(QFile& file) {
    quint64 samples = 0; // their bytes, stated ahead where 32 bits don't hold them
    qint64 position = 12;
    for (int i = 0; i < kMostChunks; ++i) {
        const QByteArray chunk = bytesAt(file, position, 24);
        if (chunk.size() < 24)
            return file.size();
        const auto length = qFromLittleEndian<quint32>(chunk.constData() + 4);
        position += 8;
        if (chunk.startsWith("data")) {
            if (samples == 0 && length != kUnknownLength)
                samples = length;
            const qint64 rest = file.size() - position;
            return samples > 0 && samples < quint64(rest) ? position + qint64(samples)
                                                          : file.size();
        }
        if (chunk.startsWith("ds64"))
            samples = qFromLittleEndian<quint64>(chunk.constData() + 16);
        position += qint64(length) + length % 2;
    }
    return 0;
}

// Compressed audio holds no block of zeros; a disk that lost its power may add them.
qint64 endBeforeZeros(QFile& file) {
    const auto isZero = [&file](qint64 block) {
        return bytesAt(file, block * kBlockBytes, kBlockBytes).count('\0') == kBlockBytes;
    };
    qint64 last = file.size() / kBlockBytes - 1;
    if (last < 0 || !isZero(last))
        return file.size();
    for (qint64 first = 0; first < last;) {
        const qint64 middle = (first + last) / 2;
        if (isZero(middle))
            last = middle;
        else
            first = middle + 1;
    }
    return last * kBlockBytes;
}

qint64 endOfAudio(QFile& file) {
    const QByteArray head = bytesAt(file, 0, 12);
    if (head.startsWith("RIFF") || head.startsWith("RF64"))
        return wavEnd(file);
    return isOggOrMp3(head) ? endBeforeZeros(file) : 0;
}

} // namespace

bool PlayedFile::openAudio(const QString& path) {
    close();
    setFileName(path);
    audioEnd = std::numeric_limits<qint64>::max();
    // Unbuffered, so that readData knows its position.
    if (!open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    audioEnd = endOfAudio(*this);
    return seek(0);
}

qint64 PlayedFile::size() const {
    return std::min(audioEnd, QFile::size());
}

qint64 PlayedFile::readData(char* data, qint64 maxSize) {
    return QFile::readData(data, std::clamp<qint64>(audioEnd - pos(), 0, maxSize));
}

} // namespace qn
