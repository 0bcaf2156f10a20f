#pragma once

#include "capture/catalog.h"
#include "capture/linux/server_snapshot.h"

namespace qn {

// What the user can choose from: every sink, and every program that plays a stream once, without
// the process `ownProcessId`. Names become one line; entries with an unusable id are left out.
Catalog catalogOf(const ServerSnapshot& snapshot, const QString& ownProcessId);

// The streams that belong to the catalogue's entry `applicationId`.
QList<InputFacts> inputsOf(const ServerSnapshot& snapshot, const QString& applicationId,
                           const QString& ownProcessId);

} // namespace qn
