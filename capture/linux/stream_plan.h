#pragma once

#include "capture/linux/server_snapshot.h"

#include <QHash>
#include <QList>

namespace qn {

// The state of a recording of one of the application's streams.
struct OpenRecording {
    quint32 sink = 0; // where the stream played when the recording was opened
    bool isBroken = false;
};

// Stream indices; a stream to be reopened is in both lists.
struct StreamPlan {
    QList<quint32> close;
    QList<quint32> open;
};

// Which recordings to close and to open for the streams that the application plays now. A stream
// that is moving between two sinks is left for the next plan.
StreamPlan planStreams(const QHash<quint32, OpenRecording>& recordings,
                       const QList<InputFacts>& streams);

} // namespace qn
