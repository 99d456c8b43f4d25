#include "link/device_commands.h"
