#include "score/score.h"
