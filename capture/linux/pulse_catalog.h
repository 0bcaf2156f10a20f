#pragma once

#include "capture/catalog.h"
#include "capture/linux/server_snapshot.h"

namespace qn {

// The catalogue for people: sinks, and one entry per program that plays a stream, except the
// process `ownProcessId`. Names are cut to one line; entries with an unusable id are left out.
Catalog catalogOf(const ServerSnapshot& snapshot, const QString& ownProcessId);

// The streams that belong to the catalogue's entry `applicationId`.
QList<InputFacts> inputsOf(const ServerSnapshot& snapshot, const QString& applicationId,
                           const QString& ownProcessId);

} // namespace qn
