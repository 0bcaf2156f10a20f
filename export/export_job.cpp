#include "export/export_job.h"
