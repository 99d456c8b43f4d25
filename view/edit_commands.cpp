#include "view/edit_commands.h"
