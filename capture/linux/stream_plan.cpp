#include "capture/linux/stream_plan.h"

#include <pulse/def.h>

#include <algorithm>

namespace qn {

StreamPlan planStreams(const QHash<quint32, OpenRecording>& recordings,
                       const QList<InputFacts>& streams) {
    StreamPlan plan;
    for (auto recording = recordings.begin(); recording != recordings.end(); ++recording) {
        const bool plays = std::any_of(streams.begin(), streams.end(), [&](const auto& stream) {
            return stream.index == recording.key();
        });
        if (!plays)
            plan.close.append(recording.key());
    }
    for (const InputFacts& stream : streams) {
        if (stream.sink == PA_INVALID_INDEX)
            continue;
        const auto recording = recordings.find(stream.index);
        if (recording == recordings.end()) {
            plan.open.append(stream.index);
        } else if (recording->isBroken || recording->sink != stream.sink) {
            plan.close.append(stream.index);
            plan.open.append(stream.index);
        }
    }
    return plan;
}

} // namespace qn
