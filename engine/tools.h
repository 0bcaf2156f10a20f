#pragma once

#include <QString>

namespace qn {

// Path of an auxiliary tool: the environment variable QUORLIN_<NAME>, unchecked; else the tool in
// "tools" beside the program or in its bundle's resources; else the one found on PATH. Empty if
// there is none. All three functions work on any thread once the application object exists.
QString toolPath(const QString& name);

QString ffmpegPath();
QString ffprobePath();

} // namespace qn
