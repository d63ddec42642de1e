#include "input/field_checks.h"
