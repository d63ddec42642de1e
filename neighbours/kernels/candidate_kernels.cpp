#include "neighbours/kernels/candidate_kernels.h"

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

namespace {

/// Lanes of single precision.
constexpr std::size_t kFloats = 2 * kLanes;

typedef float Floats __attribute__((vector_size(kFloats * sizeof(float))));
typedef float HalfFloats __attribute__((vector_size(kLanes * sizeof(float))));
typedef std::int32_t Choices __attribute__((vector_size(kFloats * sizeof(float))));

/// Targets and vectors of sources whose sums are formed side by side: what the registers hold.
constexpr std::size_t kTileTargets = 6;
constexpr std::size_t kTileVectors = kRegisters / 8;

Floats load_floats(const float* from) {
    Floats lanes;
    __builtin_memcpy(&lanes, from, sizeof lanes);
    return lanes;
}

Floats broadcast_float(float x) {
    return x - Floats{};
}

/// a * b + c, fused where the processor has that.
Floats add_product(Floats a, Floats b, Floats c) {
#if OVIK_LANES == 8
    return _mm512_fmadd_ps(a, b, c);
#elif OVIK_LANES == 4
    return _mm256_fmadd_ps(a, b, c);
#elif defined(OVIK_NEON)
    return vfmaq_f32(c, a, b);
#else
    return a * b + c;
#endif
}

/// Bit `lane` tells whether that lane is at most the limit.
Mask not_above(Floats values, Floats limit) {
#if OVIK_LANES == 8
    return _mm512_cmp_ps_mask(values, limit, _CMP_LE_OQ);
#elif OVIK_LANES == 4
    return static_cast<Mask>(_mm256_movemask_ps(_mm256_cmp_ps(values, limit, _CMP_LE_OQ)));
#else
    const Choices choices = values <= limit;
    #ifdef OVIK_NEON
    return static_cast<Mask>(vaddvq_s32(choices & Choices{1, 2, 4, 8}));
    #else
    return static_cast<Mask>((choices[0] & 1) | (choices[1] & 2) | (choices[2] & 4) |
                             (choices[3] & 8));
    #endif
#endif
}

std::size_t bit_count(Mask mask) {
    return static_cast<std::size_t>(__builtin_popcount(mask));
}

/// Appends the lanes of the mask, of which the positions are `first` and those after it.
void append(Floats values, Mask mask, std::uint32_t first, Candidates& candidates) {
    float* const to = candidates.values + candidates.count;
    std::uint32_t* const positions = candidates.positions + candidates.count;
#if OVIK_LANES == 8
    const __m512i lanes = _mm512_set_epi32(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    const __m512i all = _mm512_add_epi32(lanes, _mm512_set1_epi32(static_cast<int>(first)));
    const auto chosen = static_cast<__mmask16>(mask);
    // Whole vectors: there is room behind the candidates.
    _mm512_storeu_ps(to, _mm512_maskz_compress_ps(chosen, values));
    _mm512_storeu_si512(positions, _mm512_maskz_compress_epi32(chosen, all));
#else
    float lanes[kFloats];
    __builtin_memcpy(lanes, &values, sizeof lanes);
    std::size_t i = 0;
    for (Mask rest = mask; rest != 0; rest &= rest - 1, ++i) {
        const auto lane = static_cast<std::uint32_t>(__builtin_ctz(rest));
        to[i] = lanes[lane];
        positions[i] = first + lane;
    }
#endif
    candidates.count += bit_count(mask);
}

/// A tile of a block of targets against one of sources.
struct Tile {
    const PackedRows& targets;
    const PackedRows& sources;
    std::size_t dims;
    std::uint32_t first_position;
    Candidates* candidates;
};

/// Offers some vectors of sources to some targets, their sums side by side in registers.
template <std::size_t Targets, std::size_t Vectors>
void collect_tile(const Tile& tile, std::size_t target, std::size_t source) {
    Floats sums[Targets][Vectors] = {};
    for (std::size_t d = 0; d < tile.dims; ++d) {
        const float* const of_targets = tile.targets.coordinates + d * tile.targets.stride + target;
        const float* const of_sources = tile.sources.coordinates + d * tile.sources.stride + source;
        Floats column[Vectors];
        for (std::size_t v = 0; v < Vectors; ++v) {
            column[v] = load_floats(of_sources + v * kFloats);
        }
        for (std::size_t t = 0; t < Targets; ++t) {
            const Floats factor = broadcast_float(of_targets[t]);
            for (std::size_t v = 0; v < Vectors; ++v) {
                sums[t][v] = add_product(factor, column[v], sums[t][v]);
            }
        }
    }
    for (std::size_t t = 0; t < Targets; ++t) {
        Candidates& of_target = tile.candidates[target + t];
        const Floats limit = broadcast_float(of_target.limit);
        for (std::size_t v = 0; v < Vectors; ++v) {
            const std::size_t first = source + v * kFloats;
            const Floats twice = sums[t][v] + sums[t][v];
            const Floats values = load_floats(tile.sources.starts + first) - twice;
            const Mask mask = not_above(values, limit);
            if (mask != 0) {
                const auto position = tile.first_position + static_cast<std::uint32_t>(first);
                append(values, mask, position, of_target);
            }
        }
    }
}

/// Offers some vectors of sources to all targets, the number of which is even with what pads them.
template <std::size_t Vectors>
void collect_vectors(const Tile& tile, std::size_t target_count, std::size_t source) {
    std::size_t target = 0;
    for (; target + kTileTargets <= target_count + 1; target += kTileTargets) {
        collect_tile<kTileTargets, Vectors>(tile, target, source);
    }
    for (; target < target_count; target += 2) {
        collect_tile<2, Vectors>(tile, target, source);
    }
}

void collect(const PackedRows& targets,
             std::size_t target_count,
             const PackedRows& sources,
             std::size_t dims,
             std::uint32_t first_position,
             Candidates* candidates) {
    const Tile tile{targets, sources, dims, first_position, candidates};
    std::size_t source = 0;
    for (; source + kTileVectors * kFloats <= sources.stride; source += kTileVectors * kFloats) {
        collect_vectors<kTileVectors>(tile, target_count, source);
    }
    for (; source < sources.stride; source += kFloats) {
        collect_vectors<1>(tile, target_count, source);
    }
}

/// Vectors of rows that are packed side by side.
constexpr std::size_t kPackedVectors = kPackedMultiple / kLanes;

/// Packs a coordinate of some rows, and adds its squares to their norms.
void pack_lanes(Lanes values, const Frame& frame, std::size_t d, float* to, Lanes& squared_norms) {
    const Lanes difference = (values - frame.centre[d]) * broadcast(frame.scale);
    const HalfFloats rounded = __builtin_convertvector(difference, HalfFloats);
    __builtin_memcpy(to, &rounded, sizeof rounded);
    squared_norms += difference * difference;
}

/// Two neighbouring coordinates of some rows.
inline void load_columns(const double* const* rows, std::size_t d, Lanes* both) {
    load_pairs([=](std::size_t lane) { return rows[lane] + d; }, both);
}

/// A coordinate of some rows.
inline Lanes load_column(const double* const* rows, std::size_t d) {
    return each_lane([=](std::size_t lane) { return rows[lane][d]; });
}

void pack(const ChosenRows& chosen,
          std::size_t stride,
          const Frame& frame,
          float* packed,
          double* squared_norms) {
    for (std::size_t i = 0; i < stride; i += kPackedMultiple) {
        const double* rows[kPackedMultiple];
        for (std::size_t r = 0; r < kPackedMultiple; ++r) {
            const std::size_t place = i + r < chosen.count ? i + r : chosen.count - 1;
            rows[r] = chosen.points + chosen.rows[place] * chosen.dims;
        }
        Lanes sums[kPackedVectors] = {};
        std::size_t d = 0;
        for (; d + 2 <= chosen.dims; d += 2) {
            float* const to = packed + d * stride + i;
            for (std::size_t v = 0; v < kPackedVectors; ++v) {
                Lanes both[2];
                load_columns(rows + v * kLanes, d, both);
                pack_lanes(both[0], frame, d, to + v * kLanes, sums[v]);
                pack_lanes(both[1], frame, d + 1, to + stride + v * kLanes, sums[v]);
            }
        }
        for (std::size_t v = 0; v < kPackedVectors; ++v) {
            if (d < chosen.dims) {
                const Lanes last = load_column(rows + v * kLanes, d);
                pack_lanes(last, frame, d, packed + d * stride + i + v * kLanes, sums[v]);
            }
            store(squared_norms + i + v * kLanes, sums[v]);
        }
    }
}

/// How many of the values are at most the limit.
std::size_t count_not_above(const float* values, std::size_t count, float limit) {
    const Floats limits = broadcast_float(limit);
    std::size_t found = 0;
    std::size_t i = 0;
    for (; i + kFloats <= count; i += kFloats) {
        found += bit_count(not_above(load_floats(values + i), limits));
    }
    for (; i < count; ++i) {
        found += values[i] <= limit ? 1 : 0;
    }
    return found;
}

/// The least of some values, or of their opposites, by the factor 1 or -1.
float least_of(const float* values, std::size_t count, float factor) {
    Floats least = broadcast_float(values[0] * factor);
    std::size_t i = 0;
    for (; i + kFloats <= count; i += kFloats) {
        const Floats some = load_floats(values + i) * factor;
        least = some < least ? some : least;
    }
    float result = values[0] * factor;
    for (; i < count; ++i) {
        result = values[i] * factor < result ? values[i] * factor : result;
    }
    for (std::size_t lane = 0; lane < kFloats; ++lane) {
        result = least[lane] < result ? least[lane] : result;
    }
    return result;
}

float bound(const float* values, std::size_t count, std::size_t wanted) {
    float low = least_of(values, count, 1.0F);
    float high = -least_of(values, count, -1.0F);
    // Bisection until few more than are wanted are found.
    constexpr int kMostSteps = 14;
    const std::size_t most = wanted + wanted / 32;
    std::size_t found = count;
    for (int step = 0; step < kMostSteps && found > most; ++step) {
        const float middle = low * 0.5F + high * 0.5F;
        const std::size_t below = count_not_above(values, count, middle);
        if (below >= wanted) {
            high = middle;
            found = below;
        } else {
            low = middle;
        }
    }
    return high;
}

void drop(Candidates& candidates) {
    float* const values = candidates.values;
    std::uint32_t* const positions = candidates.positions;
    std::size_t kept = 0;
    std::size_t i = 0;
#if OVIK_LANES == 8
    for (; i + kFloats <= candidates.count; i += kFloats) {
        const Floats some = load_floats(values + i);
        const Mask mask = not_above(some, broadcast_float(candidates.limit));
        const auto chosen = static_cast<__mmask16>(mask);
        const __m512i places = _mm512_loadu_si512(positions + i);
        // Whole vectors: what follows the kept has been read.
        _mm512_storeu_ps(values + kept, _mm512_maskz_compress_ps(chosen, some));
        _mm512_storeu_si512(positions + kept, _mm512_maskz_compress_epi32(chosen, places));
        kept += bit_count(mask);
    }
#endif
    for (; i < candidates.count; ++i) {
        const float value = values[i];
        values[kept] = value;
        positions[kept] = positions[i];
        kept += value <= candidates.limit ? 1 : 0;
    }
    candidates.count = kept;
}

std::size_t narrow(const Candidates& candidates,
                   float low,
                   Candidates& fewer,
                   std::uint32_t* uncertain) {
    std::size_t kept = 0;
    std::size_t unsure = 0;
    std::size_t i = 0;
#if OVIK_LANES == 8
    const Floats limits = broadcast_float(fewer.limit);
    const Floats lows = broadcast_float(low);
    for (; i < candidates.count; i += kFloats) {
        // There is room behind the candidates: what is read there counts for nothing.
        const std::size_t rest = candidates.count - i;
        const Mask there = rest < kFloats ? (1U << rest) - 1 : 0xFFFFU;
        const Floats some = load_floats(candidates.values + i);
        const __m512i places = _mm512_loadu_si512(candidates.positions + i);
        const Mask mask = not_above(some, limits) & there;
        const auto chosen = static_cast<__mmask16>(mask);
        _mm512_storeu_ps(fewer.values + kept, _mm512_maskz_compress_ps(chosen, some));
        _mm512_storeu_si512(fewer.positions + kept, _mm512_maskz_compress_epi32(chosen, places));
        kept += bit_count(mask);
        const Mask not_below = not_above(lows, some) & mask;
        if (not_below != 0) {
            const auto doubtful = static_cast<__mmask16>(not_below);
            _mm512_storeu_si512(uncertain + unsure, _mm512_maskz_compress_epi32(doubtful, places));
            unsure += bit_count(not_below);
        }
    }
#endif
    for (; i < candidates.count; ++i) {
        const float value = candidates.values[i];
        const std::uint32_t position = candidates.positions[i];
        fewer.values[kept] = value;
        fewer.positions[kept] = position;
        uncertain[unsure] = position;
        const bool is_near = value <= fewer.limit;
        kept += is_near ? 1 : 0;
        unsure += is_near && value >= low ? 1 : 0;
    }
    fewer.count = kept;
    return unsure;
}

typedef std::uint32_t Rows __attribute__((vector_size(kFloats * sizeof(std::uint32_t))));

constexpr std::uint32_t kRowBits = 0x7FFFFFFFU;

/// Whether a row is in a list.
bool is_in(const std::uint32_t* list, std::size_t count, std::uint32_t row) {
    if (count < kFloats) {
        bool found = false;
        for (std::size_t i = 0; i < count; ++i) {
            found |= (list[i] & kRowBits) == row;
        }
        return found;
    }
    Choices found = {};
    for (std::size_t i = 0; i < count; i += kFloats) {
        Rows some;
        // The last vector reads some rows once more.
        __builtin_memcpy(&some, list + (i + kFloats <= count ? i : count - kFloats), sizeof some);
        found |= (some & kRowBits) == row;
    }
    std::int64_t any[sizeof found / sizeof(std::int64_t)];
    __builtin_memcpy(any, &found, sizeof found);
    std::int64_t bits = 0;
    for (const std::int64_t one : any) {
        bits |= one;
    }
    return bits != 0;
}

std::size_t without(const std::uint32_t* list,
                    std::size_t list_count,
                    const std::uint32_t* rows,
                    std::size_t count,
                    std::uint32_t* others) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t row = rows[i];
        others[kept] = row;
        kept += is_in(list, list_count, row) ? 0 : 1;
    }
    return kept;
}

/// A number for each lane of doubles.
typedef std::int64_t Counts __attribute__((vector_size(kLanes * sizeof(double))));

/// Distances that are ranked side by side: with their counts they take half of the registers.
constexpr std::size_t kRankedVectors =
    kPackedMultiple / kLanes < kRegisters / 4 ? kPackedMultiple / kLanes : kRegisters / 4;
constexpr std::size_t kRanked = kRankedVectors * kLanes;

/// Counts in each lane the distances of a range that are less, or not greater.
template <bool OrEqual>
void count_below(const double* distances,
                 std::size_t begin,
                 std::size_t end,
                 const Lanes* ranked,
                 Counts* counts) {
    for (std::size_t i = begin; i < end; ++i) {
        const Lanes other = broadcast(distances[i]);
        for (std::size_t v = 0; v < kRankedVectors; ++v) {
            // True is -1.
            counts[v] -= OrEqual ? other <= ranked[v] : other < ranked[v];
        }
    }
}

void rank(double* distances, std::size_t count, std::uint32_t* places) {
    for (std::size_t i = count; i < count + kPackedMultiple; ++i) {
        distances[i] = __builtin_huge_val();
    }
    for (std::size_t first = 0; first < count; first += kRanked) {
        Lanes ranked[kRankedVectors];
        for (std::size_t v = 0; v < kRankedVectors; ++v) {
            ranked[v] = load(distances + first + v * kLanes);
        }
        const std::size_t end = first + kRanked < count ? first + kRanked : count;
        Counts counts[kRankedVectors] = {};
        // Those before come first where they are equal, those behind do not.
        count_below<true>(distances, 0, first, ranked, counts);
        count_below<false>(distances, first, count, ranked, counts);
        for (std::size_t i = first; i < end; ++i) {
            auto place = static_cast<std::uint32_t>(counts[(i - first) / kLanes][i % kLanes]);
            for (std::size_t j = first; j < i; ++j) {
                place += distances[j] == distances[i] ? 1 : 0;
            }
            places[i] = place;
        }
    }
}

}  // namespace

extern const CandidateKernels kEuclideanCandidates;
const CandidateKernels kEuclideanCandidates = {
    &pack, &collect, &bound, &drop, &narrow, &without, &rank};

}  // namespace ovik::OVIK_KERNELS
