#include "tests/support/tone.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qn::testing {

QList<float> sine(double hertz, int rate, float peak, qsizetype count) {
    QList<float> samples(count);
    for (int i = 0; float& sample : samples)
        sample = peak * static_cast<float>(std::sin(2 * std::numbers::pi * hertz / rate * i++));
    return samples;
}

Tone findTone(const QList<float>& samples, int rate, int channels) {
    Tone tone;
    QList<double> periods; // from one rise through zero to the next
    double rise = 0;
    qsizetype silence = 0;
    for (qsizetype i = channels; i < samples.size(); i += channels) {
        const float before = samples[i - channels];
        const float now = samples[i];
        tone.peak = std::max(tone.peak, std::abs(now));
        silence = std::abs(now) < 0.001F ? silence + 1 : 0;
        tone.silence = std::max(tone.silence, silence);
        if (before >= 0 || now < 0)
            continue;
        const double next = double(i) / channels - double(now / (now - before));
        periods << next - std::exchange(rise, next);
    }
    std::sort(periods.begin(), periods.end());
    if (!periods.isEmpty())
        tone.hertz = rate / periods[periods.size() / 2];
    return tone;
}

QString captureFault(const QList<AudioBlock>& blocks) {
    if (blocks.isEmpty())
        return u"no blocks"_s;
    const int rate = blocks.last().sampleRate;
    const int channels = blocks.last().channels;
    QList<float> samples;
    qint64 endNs = blocks.first().timestampNs;
    qint64 gapNs = 0;
    for (const AudioBlock& block : blocks) {
        samples += block.samples;
        gapNs = std::max(gapNs, std::abs(block.timestampNs - endNs));
        endNs = block.timestampNs + durationNs(block.samples.size() / channels, rate);
    }
    const Tone tone = findTone(samples, rate, channels);
    if (tone.peak == 0)
        return kZerosOnly;
    if (tone.peak <= 0.01F || std::abs(tone.hertz - 1000) > 5)
        return u"%1 Hz with a peak of %2"_s.arg(tone.hertz).arg(tone.peak);
    gapNs = std::max(gapNs, durationNs(tone.silence, rate));
    if (gapNs >= 10'000'000) // a cycle
        return u"a gap or leap of %1 ms"_s.arg(gapNs / 1'000'000);
    const qint64 agoMs = (steadyNowNs() - endNs) / 1'000'000;
    return std::abs(agoMs) < 1000 ? QString() : u"stamped %1 ms ago"_s.arg(agoMs);
}

} // namespace qn::testing
