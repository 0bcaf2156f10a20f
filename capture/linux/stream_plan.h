#pragma once

#include "capture/linux/server_snapshot.h"

#include <QHash>
#include <QList>

namespace qn {

// What is known of a recording of one of the application's streams.
struct OpenRecording {
    quint32 sink = 0; // where the stream played when the recording was opened
    bool isBroken = false;
};

// Stream indices; those to be opened again are in both lists.
struct StreamPlan {
    QList<quint32> close;
    QList<quint32> open;
};

// Makes the recordings follow the streams that the application plays now. A stream between two
// sinks waits for the next plan.
StreamPlan planStreams(const QHash<quint32, OpenRecording>& recordings,
                       const QList<InputFacts>& streams);

} // namespace qn
