#include "view/score_view.h"
