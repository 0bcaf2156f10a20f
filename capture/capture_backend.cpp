#include "capture/capture_backend.h"

// The class is abstract; this file gives its meta-object and virtual table a home.
