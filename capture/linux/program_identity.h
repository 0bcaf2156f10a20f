#pragma once

#include "capture/linux/server_snapshot.h"

namespace qn {

// What the stream announces, completed by its client.
ProgramFacts programOf(const InputFacts& input, const ServerSnapshot& snapshot);

// The same for all processes of a program and after its restart; empty for what is no program.
QString programId(const ProgramFacts& program);

// For people; not empty where the id isn't.
QString programName(const ProgramFacts& program);

} // namespace qn
