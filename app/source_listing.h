#pragma once

namespace qn {

// Prints the sources that can be captured, one per line, and returns the exit status.
int listSources();

} // namespace qn
