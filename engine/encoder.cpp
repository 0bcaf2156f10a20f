#include "engine/encoder.h"
