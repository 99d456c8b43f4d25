#include "preview/synthesis.h"
