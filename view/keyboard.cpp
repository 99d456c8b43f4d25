#include "view/keyboard.h"
