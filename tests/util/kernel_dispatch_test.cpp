#include "util/kernel_dispatch.h"

#include <gtest/gtest.h>

namespace ovik {

struct ToyKernels {
    InstructionSet (*compiled_for)();
};

#define OVIK_DEFINE_TOY_KERNELS(enumerator, space, ...)                         \
    namespace space {                                                           \
    extern const ToyKernels kToyKernels;                                        \
    const ToyKernels kToyKernels = {[] { return InstructionSet::enumerator; }}; \
    }

OVIK_INSTRUCTION_SETS(OVIK_DEFINE_TOY_KERNELS)

OVIK_DISPATCH_KERNELS(ToyKernels, kToyKernels, toy_kernels)

namespace {

TEST(KernelDispatch, ChoosesTheKernelsOfTheInstructionSet) {
    for (const InstructionSet set : kInstructionSets) {
        EXPECT_EQ(toy_kernels(set).compiled_for(), set);
    }
}

TEST(KernelDispatch, ChoosesScalarKernelsForASetThatIsNotOfThisBuild) {
    const auto other = static_cast<InstructionSet>(1000);
    EXPECT_EQ(toy_kernels(other).compiled_for(), InstructionSet::Scalar);
}

}  // namespace
}  // namespace ovik
