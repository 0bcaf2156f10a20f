#include "engine/tools.h"
