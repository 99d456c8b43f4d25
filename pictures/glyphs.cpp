#include "pictures/glyphs.h"
