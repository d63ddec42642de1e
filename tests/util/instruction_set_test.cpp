#include "util/instruction_set.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"

namespace ovik {
namespace {

/// Asked of the processor flag by flag.
std::vector<InstructionSet> sets_of_processor() {
    std::vector<InstructionSet> sets = {InstructionSet::Scalar};
#ifdef __x86_64__
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) {
        sets.push_back(InstructionSet::Avx2);
        if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
            __builtin_cpu_supports("avx512vl")) {
            sets.push_back(InstructionSet::Avx512);
        }
    }
#elif defined(__aarch64__)
    sets.push_back(InstructionSet::Neon);
#endif
    return sets;
}

TEST(InstructionSet, IsOfferedWhereTheProcessorHasIt) {
    EXPECT_EQ(test::available_instruction_sets(), sets_of_processor());
    EXPECT_EQ(best_instruction_set(), sets_of_processor().back());
    EXPECT_EQ(instruction_set(), best_instruction_set());
}

TEST(InstructionSet, IsTheLimitWhereThatIsLower) {
    for (const InstructionSet set : sets_of_processor()) {
        const test::InstructionLimit limit(set);
        EXPECT_EQ(instruction_set(), set);
    }
    EXPECT_EQ(instruction_set(), best_instruction_set());
}

TEST(InstructionSet, IsNeverBeyondTheProcessor) {
    for (const InstructionSet set : kInstructionSets) {
        const test::InstructionLimit limit(set);
        EXPECT_LE(instruction_set(), best_instruction_set());
        EXPECT_LE(instruction_set(), set);
    }
}

TEST(InstructionSet, HasTheNamesThatTheBuildCompilesKernelsFor) {
    std::string names;
    for (const InstructionSet set : kInstructionSets) {
        names.append(names.empty() ? "" : " ").append(name_of(set));
    }
    EXPECT_EQ(names, OVIK_COMPILED_KERNELS);
}

}  // namespace
}  // namespace ovik
