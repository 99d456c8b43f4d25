#include "score/melody_text.h"
