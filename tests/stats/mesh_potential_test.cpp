#include "stats/mesh_potential.h"

#include <vector>

#include <gtest/gtest.h>

#include "stats/mesh_charges.h"

#include "tests/plain/plain_mesh.h"
#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"
#include "tests/support/threads.h"

namespace ovik {
namespace {

constexpr std::size_t kCount = 100;

/// The potential of whole charges on a mesh.
std::vector<double> potential_of(MeshPotential& potential,
                                 const plain::Mesh& mesh,
                                 const std::vector<std::int64_t>& charges) {
    // Two columns behind those that splines cover are part of the plain mesh.
    potential.lay(mesh.rows, mesh.columns - 2, mesh.cells_per_unit, charge_scale(kCount));
    EXPECT_EQ(potential.stride(), mesh.columns);
    for (std::size_t i = 0; i < charges.size(); ++i) {
        potential.field()[i] = static_cast<double>(charges[i]);
    }
    potential.solve();
    return {potential.field(), potential.field() + charges.size()};
}

struct Case {
    plain::Mesh mesh;
    std::vector<std::int64_t> charges;
    std::vector<double> expected;
};

Case make_case(double width) {
    const std::vector<double> Y = test::random_values(2 * kCount, 31, width);
    Case made;
    made.mesh = plain::mesh_under(Y);
    made.charges = plain::mesh_charges(made.mesh, Y);
    made.expected = plain::mesh_potential(made.mesh, made.charges, kCount);
    return made;
}

TEST(MeshPotential, IsThatOfThePlainProgramForAnyNumberOfThreadsAndInstructions) {
    for (const double width : {1e-3, 0.5, 4.0}) {
        const Case made = make_case(width);
        for (const InstructionSet set : test::available_instruction_sets()) {
            const test::InstructionLimit limit(set);
            for (const int threads : {1, 2, 5}) {
                const test::ThreadCount scope(threads);
                MeshPotential potential;
                EXPECT_EQ(potential_of(potential, made.mesh, made.charges), made.expected)
                    << width << ", " << threads << " threads";
            }
        }
    }
}

TEST(MeshPotential, FollowsTheMeshFromOneFieldToTheNext) {
    const Case large = make_case(4.0);
    const Case small = make_case(0.5);
    MeshPotential potential;
    for (const Case* const made : {&large, &large, &small, &large}) {
        EXPECT_EQ(potential_of(potential, made->mesh, made->charges), made->expected);
    }
}

TEST(MeshPotential, IsLaidAnewWhereTheInstructionsChange) {
    const Case made = make_case(0.5);
    MeshPotential potential;
    std::vector<InstructionSet> sets = test::available_instruction_sets();
    sets.insert(sets.end(), sets.rbegin(), sets.rend());
    for (const InstructionSet set : sets) {
        const test::InstructionLimit limit(set);
        EXPECT_EQ(potential_of(potential, made.mesh, made.charges), made.expected);
    }
}

}  // namespace
}  // namespace ovik
