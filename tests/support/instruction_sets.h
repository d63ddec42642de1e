#pragma once

#include <ostream>
#include <vector>

#include "stats/kernels/pair_kernels.h"

namespace ovik {

inline void PrintTo(InstructionSet set, std::ostream* out) {
    constexpr const char* kNames[] = {"portable", "AVX2", "AVX-512"};
    *out << kNames[static_cast<int>(set)];
}

}  // namespace ovik

namespace ovik::test {

/// The instruction sets of this processor for which there are kernels.
inline std::vector<InstructionSet> instruction_sets() {
    std::vector<InstructionSet> sets;
    for (const InstructionSet set :
         {InstructionSet::Portable, InstructionSet::Avx2, InstructionSet::Avx512}) {
        if (pair_kernels(set) != nullptr) {
            sets.push_back(set);
        }
    }
    return sets;
}

/// The kernels for each of them.
inline std::vector<const PairKernels*> all_pair_kernels() {
    std::vector<const PairKernels*> kernels;
    for (const InstructionSet set : instruction_sets()) {
        kernels.push_back(pair_kernels(set));
    }
    return kernels;
}

/// Holds the engine to one instruction set for a scope.
class SelectedInstructionSet {
  public:
    explicit SelectedInstructionSet(InstructionSet set) { select_pair_kernels(set); }

    SelectedInstructionSet(const SelectedInstructionSet&) = delete;
    SelectedInstructionSet& operator=(const SelectedInstructionSet&) = delete;

    ~SelectedInstructionSet() { select_pair_kernels(instruction_sets().back()); }
};

}  // namespace ovik::test
