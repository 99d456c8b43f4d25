#include "link/discovery.h"
