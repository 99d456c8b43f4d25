#include "view/tempo_box.h"
