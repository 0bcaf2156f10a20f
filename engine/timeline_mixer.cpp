#include "engine/timeline_mixer.h"

#include "engine/down_mix.h"
#include "engine/resampler.h"
#include "engine/timeline_cursor.h"
#include "engine/timeline_rate.h"
#include "engine/timeline_ring.h"

#include <QMap>

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <vector>

namespace qn {
namespace {

constexpr qsizetype kMaxSources = 128;
constexpr float kLevelDecay = 0.85F;

struct Source {
    Resampler resampler;
    TimelineCursor cursor;
};

bool isAcceptable(const AudioBlock& block) {
    return block.channels >= 1 && block.channels <= kMaxChannels &&
           block.sampleRate >= kLowestRate && !block.samples.isEmpty();
}

qint64 toTimeline(qint64 timestampNs, qint64 originNs) {
    qint64 difference = 0;
    const double sinceOriginNs =
        qSubOverflow(timestampNs, originNs, &difference)
            ? static_cast<double>(timestampNs) - static_cast<double>(originNs)
            : static_cast<double>(difference);
    return std::llround(sinceOriginNs * kTimelineRate / 1e9);
}

float peakOf(std::span<const float> samples) {
    std::array<float, 32> lanes{}; // independent maxima, so that the loop vectorises
    const size_t whole = samples.size() - samples.size() % lanes.size();
    for (size_t k = 0; k < whole; k += lanes.size())
        for (size_t lane = 0; lane < lanes.size(); ++lane)
            lanes[lane] = std::max(lanes[lane], std::abs(samples[k + lane]));
    float peak = *std::max_element(lanes.begin(), lanes.end());
    for (const float sample : samples.subspan(whole))
        peak = std::max(peak, std::abs(sample));
    return peak;
}

} // namespace

struct TimelineMixer::Track {
    TimelineRing ring;
    QMap<QString, std::shared_ptr<Source>> resamplers; // by source key
    std::vector<float> mono;                           // scratch buffer of push
    float level = 0;

    std::shared_ptr<Source> sourceOf(const QString& key);
    std::span<const float> downMixed(const AudioBlock& block, const DownMixWeights& weights);
    void place(qint64 first, std::span<const float> output, qint64 from);
};

std::shared_ptr<Source> TimelineMixer::Track::sourceOf(const QString& key) {
    if (const auto found = resamplers.constFind(key); found != resamplers.cend())
        return *found;
    if (resamplers.size() > kMaxSources)
        resamplers.clear();
    return *resamplers.insert(key, std::make_shared<Source>());
}

std::span<const float> TimelineMixer::Track::downMixed(const AudioBlock& block,
                                                       const DownMixWeights& weights) {
    const auto frames = static_cast<size_t>(block.samples.size() / block.channels);
    // Never empty, because libsoxr takes a null buffer as the end of the stream.
    mono.resize(std::max({mono.size(), frames, size_t{1}}));
    const auto result = std::span(mono).first(frames);
    downMix(block.samples, block.channels, weights, result);
    return result;
}

// Adds the part of `output` that fits into the ring, which begins at `from`; drops the rest.
void TimelineMixer::Track::place(qint64 first, std::span<const float> output, qint64 from) {
    const auto count = static_cast<qint64>(output.size());
    const qint64 begin = std::clamp<qint64>(from - first, 0, count);
    const qint64 end = std::clamp<qint64>(from + TimelineRing::kCapacity - first, begin, count);
    const auto kept = output.subspan(static_cast<size_t>(begin), static_cast<size_t>(end - begin));
    ring.add(first + begin, kept);
    level = std::max(level, peakOf(kept));
}

TimelineMixer::TimelineMixer() {
    reset(0);
}

TimelineMixer::~TimelineMixer() = default;

void TimelineMixer::reset(qint64 originNs) {
    origin = originNs;
    position = 0;
    for (auto& input : inputs)
        input = std::make_unique<Track>();
}

void TimelineMixer::push(int input, const AudioBlock& block) {
    if ((input != kMicrophone && input != kFarSide) || !isAcceptable(block))
        return;
    Track& track = *inputs[input];
    // Before the check below: a producer that is not heard still counts as one of the sources.
    const std::shared_ptr<Source> source = track.sourceOf(block.sourceKey);
    const DownMixWeights weights = downMixWeights(block.channels, block.channelMask);
    if (weights.sum == 0)
        return;
    const auto mono = track.downMixed(block, weights);
    TimelineCursor& cursor = source->cursor;
    if (source->resampler.setInputRate(block.sampleRate))
        cursor.next = -1;
    const auto output = source->resampler.process(mono);
    cursor.follow(toTimeline(block.timestampNs, origin));
    track.level *= kLevelDecay;
    track.place(cursor.next, output, position);
    cursor.next += static_cast<qint64>(output.size());
}

QList<float> TimelineMixer::read(int count) {
    QList<float> mix(std::max(count, 0));
    const std::span<float> out(mix.data(), static_cast<size_t>(mix.size()));
    for (auto& input : inputs)
        input->ring.take(position, out);
    for (float& sample : out)
        sample = std::max(-1.0F, std::min(1.0F, sample));
    position += mix.size();
    return mix;
}

float TimelineMixer::level(int input) const {
    return inputs[input]->level;
}

} // namespace qn
