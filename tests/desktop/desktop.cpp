#include "tests/desktop/desktop.h"
