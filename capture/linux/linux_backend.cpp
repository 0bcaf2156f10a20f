#include "capture/capture_backend.h"
