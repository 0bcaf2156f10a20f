#pragma once

#include <QtGlobal>

#include <pulse/channelmap.h>

namespace qn {

// A channel map to request from the server, so that its frames follow the WAVE speaker order.
struct ChannelOrder {
    pa_channel_map map{};
    // One bit per channel, ascending; 0 if a position has no WAVE bit or occurs twice.
    quint64 mask = 0;
};

// `map` with its positions in ascending mask order, or unchanged where the mask is 0.
ChannelOrder waveOrder(const pa_channel_map& map);

} // namespace qn
