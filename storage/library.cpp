#include "storage/library.h"
