#include "engine/timeline_mixer.h"
