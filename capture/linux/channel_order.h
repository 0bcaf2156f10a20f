#pragma once

#include <QtGlobal>

#include <pulse/channelmap.h>

namespace qn {

// The channels to ask the server for, so that frames come in the order of the WAVE speaker mask.
struct ChannelOrder {
    pa_channel_map map{};
    // One bit per channel, ascending; 0 when a position has no bit or occurs twice.
    quint64 mask = 0;
};

// The same positions in ascending mask order; a map without a mask stays as it is.
ChannelOrder waveOrder(const pa_channel_map& map);

} // namespace qn
