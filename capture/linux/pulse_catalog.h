#pragma once

#include "capture/catalog.h"
#include "capture/linux/server_snapshot.h"
#include "capture/microphone.h"

namespace qn {

// What the user can choose from: every sink, and every program that plays a stream once, without
// the process `ownProcessId`. Names become one line; entries with an unusable id are left out.
Catalog catalogOf(const ServerSnapshot& snapshot, const QString& ownProcessId);

// Every source that is no monitor. A monitor is one only when the user made it the default: a
// server without a microphone falls back to the default sink's by itself.
MicrophoneList microphonesOf(const ServerSnapshot& snapshot);

// The streams that belong to the catalogue's entry `applicationId`.
QList<InputFacts> inputsOf(const ServerSnapshot& snapshot, const QString& applicationId,
                           const QString& ownProcessId);

} // namespace qn
