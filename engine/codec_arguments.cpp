#include "engine/codec_arguments.h"
