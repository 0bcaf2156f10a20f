#pragma once

#include <QString>

namespace qn {

// Path of an auxiliary tool: the environment's QUORLIN_<NAME> unchecked, else the tool beside
// the program or among its bundle's resources, else the search path's. Empty when there is none.
// All three may be called on any thread once the application object exists.
QString toolPath(const QString& name);

QString ffmpegPath();
QString ffprobePath();

} // namespace qn
