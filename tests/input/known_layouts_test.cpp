#include "input/known_layouts.h"
