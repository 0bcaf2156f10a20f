#include "capture/microphone_samples.h"

#include <cstring>

namespace qn {

namespace {

// Sample i of type T, scaled to +-1; the bytes need not be aligned.
template <typename T> float sampleAt(const char* bytes, qsizetype i, float zero, float scale) {
    T value;
    std::memcpy(&value, bytes + i * qsizetype{sizeof(T)}, sizeof(T));
    return (static_cast<float>(value) - zero) * scale;
}

float sampleAt(const char* bytes, qsizetype i, QAudioFormat::SampleFormat format) {
    switch (format) {
    case QAudioFormat::UInt8:
        return sampleAt<quint8>(bytes, i, 128.0F, 1.0F / 128.0F);
    case QAudioFormat::Int16:
        return sampleAt<qint16>(bytes, i, 0.0F, 1.0F / 32768.0F);
    case QAudioFormat::Int32:
        return sampleAt<qint32>(bytes, i, 0.0F, 1.0F / 2147483648.0F);
    case QAudioFormat::Float:
        return sampleAt<float>(bytes, i, 0.0F, 1.0F);
    default:
        return 0.0F;
    }
}

} // namespace

AudioBlock takeMicrophoneBlock(QByteArray& bytes, const QAudioFormat& format, qint64 endNs) {
    AudioBlock block;
    const int frameSize = format.bytesPerFrame();
    if (frameSize < 1 || format.sampleRate() < 1)
        return block;
    const qsizetype frames = bytes.size() / frameSize;
    const qsizetype count = frames * format.channelCount();
    block.samples.resize(count);
    for (qsizetype i = 0; i < count; ++i)
        block.samples[i] = sampleAt(bytes.constData(), i, format.sampleFormat());
    bytes.remove(0, frames * frameSize);
    block.sampleRate = format.sampleRate();
    block.channels = format.channelCount();
    block.timestampNs = endNs - durationNs(frames, format.sampleRate());
    return block;
}

} // namespace qn
