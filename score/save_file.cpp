#include "score/save_file.h"
