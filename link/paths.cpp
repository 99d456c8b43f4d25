#include "link/paths.h"
