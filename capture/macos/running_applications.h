#pragma once

#include "capture/catalog.h"

namespace qn {

// Every running application with a Dock icon, except this one, in the platform's order.
QList<SourceEntry> listRunningApplications();

} // namespace qn
