#include "preview/wav_file.h"
