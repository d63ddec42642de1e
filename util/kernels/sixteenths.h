#pragma once

#include "util/kernels/lanes.h"

namespace ovik::OVIK_KERNELS {

/// The reciprocals of the middles of the sixteenths of [1, 2).
alignas(sizeof(Lanes)) constexpr double kReciprocals[16] = {32. / 33.,
                                                            32. / 35.,
                                                            32. / 37.,
                                                            32. / 39.,
                                                            32. / 41.,
                                                            32. / 43.,
                                                            32. / 45.,
                                                            32. / 47.,
                                                            32. / 49.,
                                                            32. / 51.,
                                                            32. / 53.,
                                                            32. / 55.,
                                                            32. / 57.,
                                                            32. / 59.,
                                                            32. / 61.,
                                                            32. / 63.};

}  // namespace ovik::OVIK_KERNELS
