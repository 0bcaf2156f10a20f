#pragma once

#include <QString>

namespace qn {

// Path of an auxiliary tool: the environment's QUORLIN_<NAME> as it stands, else the tool beside
// the program or among its bundle's resources, else the search path's. Empty when there is none.
QString toolPath(const QString& name);

QString ffmpegPath();
QString ffprobePath();

} // namespace qn
