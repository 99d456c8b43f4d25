#include "link/settings.h"
