#include "preview/preview.h"
