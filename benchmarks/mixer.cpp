// The mixer compared, per output sample, with the least work that any mixer has to do: down-mix,
// soxr with the same quality, one addition per input sample and one copy per output sample.

#include "engine/timeline_mixer.h"

#include <benchmark/benchmark.h>
#include <soxr.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr int kOutputPerTick = 960; // 20 ms
constexpr qint64 kTickNs = 20'000'000;

qn::AudioBlock noiseBlock(int rate, int channels) {
    qn::AudioBlock block;
    block.sampleRate = rate;
    block.channels = channels;
    quint32 random = 1;
    for (int k = 0; k < rate / 50 * channels; ++k) {
        random = random * 1664525U + 1013904223U;
        block.samples.append(static_cast<float>(random >> 8) / 33554432.0F - 0.25F);
    }
    return block;
}

void reportPerSample(benchmark::State& state) {
    using benchmark::Counter;
    state.counters["per_sample"] =
        Counter(kOutputPerTick, Counter::kIsIterationInvariantRate | Counter::kInvert);
}

void mixer(benchmark::State& state, int rate, int channels) {
    qn::AudioBlock microphone = noiseBlock(48000, 1);
    qn::AudioBlock farSide = noiseBlock(rate, channels);
    qn::TimelineMixer mix;
    mix.reset(0);
    for (qint64 t = 250'000'000; auto _ : state) {
        microphone.timestampNs = t;
        farSide.timestampNs = t;
        mix.push(0, microphone);
        mix.push(1, farSide);
        benchmark::DoNotOptimize(mix.read(kOutputPerTick));
        benchmark::DoNotOptimize(mix.level(1));
        t += kTickNs;
    }
    reportPerSample(state);
}

class LeastWork {
public:
    LeastWork(int rate, int channels) : farSide(noiseBlock(rate, channels)) {
        if (rate == 48000)
            return;
        const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_LQ, 0);
        soxr = soxr_create(rate, 48000.0, 1, nullptr, nullptr, &quality, nullptr);
    }
    ~LeastWork() { soxr_delete(soxr); }
    LeastWork(const LeastWork&) = delete;
    LeastWork& operator=(const LeastWork&) = delete;

    QList<float> tick() {
        std::fill(sum.begin(), sum.end(), 0.0F);
        add(microphone);
        add(farSide);
        return {sum.cbegin(), sum.cbegin() + kOutputPerTick};
    }

private:
    void add(const qn::AudioBlock& block) {
        auto count = static_cast<size_t>(block.samples.size() / block.channels);
        const float* in = block.samples.constData();
        const auto usable = [](float x) { return std::isfinite(x) ? x : 0.0F; };
        if (block.channels == 1)
            for (size_t f = 0; f < count; ++f)
                mono[f] = usable(in[f]);
        else
            for (size_t f = 0; f < count; ++f)
                mono[f] = 0.5F * (usable(in[2 * f]) + usable(in[2 * f + 1]));
        const float* placed = mono.data();
        if (soxr != nullptr && block.sampleRate != 48000) {
            soxr_process(soxr, mono.data(), count, nullptr, resampled.data(), resampled.size(),
                         &count);
            placed = resampled.data();
        }
        for (size_t k = 0; k < count; ++k)
            sum[k] += placed[k];
    }

    qn::AudioBlock microphone = noiseBlock(48000, 1);
    qn::AudioBlock farSide;
    soxr_t soxr = nullptr;
    std::vector<float> mono = std::vector<float>(4096);
    std::vector<float> resampled = std::vector<float>(4096);
    std::vector<float> sum = std::vector<float>(4096);
};

void leastWork(benchmark::State& state, int rate, int channels) {
    LeastWork work(rate, channels);
    for (auto _ : state)
        benchmark::DoNotOptimize(work.tick());
    reportPerSample(state);
}

BENCHMARK_CAPTURE(leastWork, 48k_mono_and_44k1_stereo, 44100, 2);
BENCHMARK_CAPTURE(mixer, 48k_mono_and_44k1_stereo, 44100, 2);
BENCHMARK_CAPTURE(leastWork, both_48k_mono, 48000, 1);
BENCHMARK_CAPTURE(mixer, both_48k_mono, 48000, 1);

} // namespace

BENCHMARK_MAIN();
