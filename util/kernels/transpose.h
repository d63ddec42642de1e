#pragma once

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

/// Turns the rows of a square of numbers into its columns.
inline void transpose(Lanes* rows) {
#if OVIK_LANES == 2
    const Lanes first = rows[0];
    rows[0] = __builtin_shufflevector(first, rows[1], 0, 2);
    rows[1] = __builtin_shufflevector(first, rows[1], 1, 3);
#elif OVIK_LANES == 4
    // First within pairs of rows, then pairs of pairs.
    const Lanes a = __builtin_shufflevector(rows[0], rows[1], 0, 4, 2, 6);
    const Lanes b = __builtin_shufflevector(rows[0], rows[1], 1, 5, 3, 7);
    const Lanes c = __builtin_shufflevector(rows[2], rows[3], 0, 4, 2, 6);
    const Lanes d = __builtin_shufflevector(rows[2], rows[3], 1, 5, 3, 7);
    rows[0] = __builtin_shufflevector(a, c, 0, 1, 4, 5);
    rows[1] = __builtin_shufflevector(b, d, 0, 1, 4, 5);
    rows[2] = __builtin_shufflevector(a, c, 2, 3, 6, 7);
    rows[3] = __builtin_shufflevector(b, d, 2, 3, 6, 7);
#else
    // Of the pairs of numbers in two vectors, those with an even place, and those with an odd one.
    const auto even = [](Lanes a, Lanes b) {
        return __builtin_shufflevector(a, b, 0, 1, 4, 5, 8, 9, 12, 13);
    };
    const auto odd = [](Lanes a, Lanes b) {
        return __builtin_shufflevector(a, b, 2, 3, 6, 7, 10, 11, 14, 15);
    };
    // Columns 0, 2, 4 and 6 from the pairs (0, 1), (2, 3), ... of rows, then the others.
    Lanes low[4];
    Lanes high[4];
    for (std::size_t i = 0; i < 4; ++i) {
        const Lanes a = rows[2 * i];
        const Lanes b = rows[2 * i + 1];
        low[i] = __builtin_shufflevector(a, b, 0, 8, 2, 10, 4, 12, 6, 14);
        high[i] = __builtin_shufflevector(a, b, 1, 9, 3, 11, 5, 13, 7, 15);
    }
    const auto write = [&](const Lanes* pairs, Lanes* columns) {
        const Lanes even_01 = even(pairs[0], pairs[1]);
        const Lanes even_23 = even(pairs[2], pairs[3]);
        const Lanes odd_01 = odd(pairs[0], pairs[1]);
        const Lanes odd_23 = odd(pairs[2], pairs[3]);
        columns[0] = even(even_01, even_23);
        columns[2] = even(odd_01, odd_23);
        columns[4] = odd(even_01, even_23);
        columns[6] = odd(odd_01, odd_23);
    };
    write(low, rows);
    write(high, rows + 1);
#endif
}

}  // namespace ovik::OVIK_KERNELS
