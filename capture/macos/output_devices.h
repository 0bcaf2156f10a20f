#pragma once

#include "capture/catalog.h"

namespace qn {

// Fills the catalogue's outputs and its default output, in the platform's order.
void listOutputDevices(Catalog& catalog);

} // namespace qn
