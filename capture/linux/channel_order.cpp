#include "capture/linux/channel_order.h"

#include <algorithm>
#include <array>

namespace qn {

namespace {

// Bit n of the WAVE extensible channel mask.
constexpr std::array kWavePositions{PA_CHANNEL_POSITION_FRONT_LEFT,
                                    PA_CHANNEL_POSITION_FRONT_RIGHT,
                                    PA_CHANNEL_POSITION_FRONT_CENTER,
                                    PA_CHANNEL_POSITION_LFE,
                                    PA_CHANNEL_POSITION_REAR_LEFT,
                                    PA_CHANNEL_POSITION_REAR_RIGHT,
                                    PA_CHANNEL_POSITION_FRONT_LEFT_OF_CENTER,
                                    PA_CHANNEL_POSITION_FRONT_RIGHT_OF_CENTER,
                                    PA_CHANNEL_POSITION_REAR_CENTER,
                                    PA_CHANNEL_POSITION_SIDE_LEFT,
                                    PA_CHANNEL_POSITION_SIDE_RIGHT,
                                    PA_CHANNEL_POSITION_TOP_CENTER,
                                    PA_CHANNEL_POSITION_TOP_FRONT_LEFT,
                                    PA_CHANNEL_POSITION_TOP_FRONT_CENTER,
                                    PA_CHANNEL_POSITION_TOP_FRONT_RIGHT,
                                    PA_CHANNEL_POSITION_TOP_REAR_LEFT,
                                    PA_CHANNEL_POSITION_TOP_REAR_CENTER,
                                    PA_CHANNEL_POSITION_TOP_REAR_RIGHT};

quint64 waveBit(pa_channel_position_t position) {
    const auto* found = std::find(kWavePositions.begin(), kWavePositions.end(), position);
    return found == kWavePositions.end() ? 0 : quint64(1) << (found - kWavePositions.begin());
}

} // namespace

ChannelOrder waveOrder(const pa_channel_map& map) {
    ChannelOrder order{map, 0};
    auto* const begin = order.map.map;
    auto* const end = begin + map.channels;
    for (const auto* position = begin; position != end; ++position) {
        const quint64 bit = waveBit(*position);
        if (bit == 0 || (order.mask & bit) != 0)
            return {map, 0};
        order.mask |= bit;
    }
    std::sort(begin, end, [](auto a, auto b) { return waveBit(a) < waveBit(b); });
    return order;
}

} // namespace qn
