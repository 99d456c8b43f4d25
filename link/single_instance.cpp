#include "link/single_instance.h"
