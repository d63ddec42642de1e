#include "input/layout_of.h"
