#pragma once

#include "capture/catalog.h"
#include "capture/linux/server_snapshot.h"
#include "capture/microphone.h"

namespace qn {

// What the user can choose from: every sink, and once each every program that plays a stream,
// except the process `ownProcessId`. Names are made one line; entries with an unusable id are left
// out.
Catalog catalogOf(const ServerSnapshot& snapshot, const QString& ownProcessId);

// Every source that is not a monitor, and the monitor that the user has made the default. The
// default sink's monitor does not count while there is no microphone: the server then makes it the
// default by itself.
MicrophoneList microphonesOf(const ServerSnapshot& snapshot);

// The streams of the catalogue's application `applicationId`.
QList<InputFacts> inputsOf(const ServerSnapshot& snapshot, const QString& applicationId,
                           const QString& ownProcessId);

} // namespace qn
