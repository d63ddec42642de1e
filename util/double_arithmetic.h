#pragma once

#include <cfloat>

/// What all results rest on, wherever they are computed: a double is the 64-bit number of IEEE 754,
/// and every operation rounds to it. A build for other arithmetic ends here, as that of 32-bit x86
/// processors with registers of 80 bits, which round when a number leaves them.

static_assert(FLT_EVAL_METHOD == 0,
              "ovik needs arithmetic in which every operation rounds to the type of its numbers; "
              "for 32-bit x86 processors it comes with -msse2 -mfpmath=sse");
static_assert(DBL_MANT_DIG == 53 && DBL_MAX_EXP == 1024,
              "ovik needs doubles that are the 64-bit numbers of IEEE 754");
