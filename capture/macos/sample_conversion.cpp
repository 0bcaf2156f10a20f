#include "capture/macos/sample_conversion.h"

#include <algorithm>
#include <cstring>

namespace qn {

namespace {

// No device delivers this many samples in one cycle: a larger size is garbage, and allocating it
// would end the program.
constexpr qint64 kMaxSamples = qint64(1) << 24;

// Where the channels of one buffer go.
struct Destination {
    float* samples;      // the first frame's first channel
    qint64 frames;       // to write
    qint64 channels;     // per frame of the destination
    qint64 firstChannel; // that the buffer fills
};

float toFloat(float sample) {
    return sample;
}

float toFloat(double sample) {
    return static_cast<float>(sample);
}

float toFloat(qint16 sample) {
    return static_cast<float>(sample * (1.0 / 32768));
}

float toFloat(qint32 sample) {
    return static_cast<float>(sample * (1.0 / 2147483648));
}

template <typename Sample> void convert(const PcmBuffer& buffer, const Destination& to) {
    const qint64 channels = std::min<qint64>(buffer.channels, to.channels - to.firstChannel);
    const auto* bytes = static_cast<const char*>(buffer.data);
    for (qint64 frame = 0; frame < to.frames; ++frame) {
        float* target = to.samples + frame * to.channels + to.firstChannel;
        for (qint64 channel = 0; channel < channels; ++channel) {
            const qint64 position =
                (frame * buffer.channels + channel) * static_cast<qint64>(sizeof(Sample));
            if (position + static_cast<qint64>(sizeof(Sample)) > buffer.byteSize)
                return;
            Sample sample;
            std::memcpy(&sample, bytes + position, sizeof sample);
            target[channel] = toFloat(sample);
        }
    }
}

void convertAny(const PcmBuffer& buffer, const PcmFormat& format, const Destination& to) {
    const quint32 bytesPerSample = format.bitsPerChannel / 8;
    if (format.isFloat && bytesPerSample == 4)
        convert<float>(buffer, to);
    else if (format.isFloat && bytesPerSample == 8)
        convert<double>(buffer, to);
    else if (!format.isFloat && bytesPerSample == 2)
        convert<qint16>(buffer, to);
    else if (!format.isFloat && bytesPerSample == 4)
        convert<qint32>(buffer, to);
}

} // namespace

qint64 frameCount(std::span<const PcmBuffer> buffers, const PcmFormat& format) {
    const qint64 bytesPerSample = format.bitsPerChannel / 8;
    if (bytesPerSample == 0 || buffers.empty())
        return 0;
    const PcmBuffer& first = buffers.front();
    const qint64 frames = first.byteSize / (first.channels * bytesPerSample);
    return frames * format.channels <= kMaxSamples ? frames : 0;
}

QList<float> interleave(std::span<const PcmBuffer> buffers, const PcmFormat& format,
                        qint64 frames) {
    QList<float> samples(frames * format.channels, 0.0F);
    qint64 offset = 0;
    for (const PcmBuffer& buffer : buffers) {
        if (offset >= format.channels)
            break;
        if (buffer.data != nullptr)
            convertAny(buffer, format, {samples.data(), frames, format.channels, offset});
        offset += buffer.channels;
    }
    return samples;
}

} // namespace qn
