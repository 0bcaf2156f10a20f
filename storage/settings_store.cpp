#include "storage/settings_store.h"
