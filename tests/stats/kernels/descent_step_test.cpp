#include "stats/kernels/descent_step.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/instruction_sets.h"
#include "tests/support/random_points.h"

namespace ovik {
namespace {

class DescentKernelsTest : public testing::TestWithParam<InstructionSet> {
  protected:
    const DescentKernels& kernels = descent_kernels(GetParam());
};

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet,
                         DescentKernelsTest,
                         testing::ValuesIn(test::available_instruction_sets()));

int sign_of(double value) {
    return value == 0.0 ? 0 : value < 0.0 ? -1 : 1;
}

struct Element {
    double gradient;
    double velocity;
    double gain;
    double y;

    void step(double learning_rate, double momentum) {
        gain = sign_of(gradient) == sign_of(velocity) ? gain * 0.8 : gain + 0.2;
        gain = gain < 0.01 ? 0.01 : gain;
        velocity = velocity * momentum - (gain * learning_rate) * gradient;
        y += velocity;
    }
};

bool are_same(double a, double b) {
    return a == b ? std::signbit(a) == std::signbit(b) : std::isnan(a) && std::isnan(b);
}

void expect_step(const DescentKernels& kernels, std::vector<Element> elements) {
    std::vector<double> gradient;
    std::vector<double> velocity;
    std::vector<double> gains;
    std::vector<double> Y;
    for (const Element& element : elements) {
        gradient.push_back(element.gradient);
        velocity.push_back(element.velocity);
        gains.push_back(element.gain);
        Y.push_back(element.y);
    }
    kernels.step(
        {gradient.data(), velocity.data(), gains.data(), Y.data(), elements.size()}, 200.0, 0.8);
    for (std::size_t i = 0; i < elements.size(); ++i) {
        elements[i].step(200.0, 0.8);
        EXPECT_TRUE(are_same(gains[i], elements[i].gain)) << i;
        EXPECT_TRUE(are_same(velocity[i], elements[i].velocity)) << i;
        EXPECT_TRUE(are_same(Y[i], elements[i].y)) << i;
    }
}

TEST_P(DescentKernelsTest, StepAsOneElementDoes) {
    for (std::size_t count = 0; count <= 35; ++count) {
        const std::vector<double> values = test::random_values(4 * count, 91);
        std::vector<Element> elements;
        for (std::size_t i = 0; i < count; ++i) {
            elements.push_back({values[4 * i],
                                values[4 * i + 1],
                                std::fabs(values[4 * i + 2]),
                                values[4 * i + 3]});
        }
        expect_step(kernels, elements);
    }
}

TEST_P(DescentKernelsTest, StepAlikeAtZeroAtTheFloorAndBeyondAllNumbers) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    const double values[] = {0.0, -0.0, 1.0, -1.0, 5e-324, -5e-324, infinity, -infinity, nan};
    std::vector<Element> elements;
    for (const double gradient : values) {
        for (const double velocity : values) {
            for (const double gain : {0.01, 0.0125, 1.0, nan}) {
                elements.push_back({gradient, velocity, gain, 0.5});
            }
        }
    }
    expect_step(kernels, elements);
}

}  // namespace
}  // namespace ovik
