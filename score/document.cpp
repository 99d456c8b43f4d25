#include "score/document.h"
