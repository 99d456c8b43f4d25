#include "view/note_entry.h"
