#include "input/name_checks.h"
