#pragma once

namespace qn {

// Prints the sources that can be captured, one a line, and returns the exit status.
int listSources();

} // namespace qn
