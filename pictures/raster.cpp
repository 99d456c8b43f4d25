#include "pictures/raster.h"
