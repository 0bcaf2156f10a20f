#include "engine/resampler.h"

#include "engine/timeline_rate.h"

#include <soxr.h>

#include <stdexcept>

namespace qn {
namespace {

constexpr size_t kOutputSlack = 512; // samples of earlier blocks that the filter may still release

} // namespace

void Resampler::Delete::operator()(soxr* stream) const {
    soxr_delete(stream);
}

bool Resampler::setInputRate(qint32 rate) {
    if (rate == inputRate)
        return false;
    handle.reset();
    inputRate = rate;
    if (rate == kTimelineRate)
        return true;
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_LQ, 0);
    soxr_error_t error = nullptr;
    handle.reset(soxr_create(rate, kTimelineRate, 1, &error, nullptr, &quality, nullptr));
    if (error != nullptr || !handle)
        throw std::runtime_error("Не удалось создать преобразователь частоты");
    return true;
}

std::span<const float> Resampler::process(std::span<const float> mono) {
    if (!handle)
        return mono;
    const auto rate = static_cast<size_t>(inputRate);
    const size_t capacity = (mono.size() * kTimelineRate + rate - 1) / rate + kOutputSlack;
    if (output.size() < capacity)
        output.resize(capacity);
    size_t consumed = 0;
    size_t produced = 0;
    const soxr_error_t error = soxr_process(handle.get(), mono.data(), mono.size(), &consumed,
                                            output.data(), capacity, &produced);
    if (error != nullptr || consumed != mono.size())
        throw std::runtime_error("Ошибка преобразования аудио");
    return std::span<const float>(output).first(produced);
}

} // namespace qn
