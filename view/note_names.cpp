#include "view/note_names.h"
