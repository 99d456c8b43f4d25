#include "preview/timing_tables.h"
