#include "app/commands.h"
