#pragma once

#include <QIcon>

namespace qn {

// The program's icon, with a red dot while it is recording.
QIcon recordingIcon(bool recording);

} // namespace qn
