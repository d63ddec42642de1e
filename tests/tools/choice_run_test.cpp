#include "tools/choice_run.h"
