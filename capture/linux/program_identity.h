#pragma once

#include "capture/linux/server_snapshot.h"

namespace qn {

// The stream's own facts, and its client's where the stream has none.
ProgramFacts programOf(const InputFacts& input, const ServerSnapshot& snapshot);

// The same for all processes of a program and after its restart; empty if nothing identifies it.
QString programId(const ProgramFacts& program);

// The name shown to the user; never empty if the id is not.
QString programName(const ProgramFacts& program);

} // namespace qn
