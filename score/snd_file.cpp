#include "score/snd_file.h"
