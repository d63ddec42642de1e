#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the process with a message unless the condition holds: how a fuzz target says that the
/// library broke its word.
#define OVIK_REQUIRE(condition)                                                                 \
    do {                                                                                        \
        if (!(condition)) {                                                                     \
            std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                       \
        }                                                                                       \
    } while (false)
