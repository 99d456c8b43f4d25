#include "app/layout.h"
