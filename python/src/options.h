#pragma once

#include <cstddef>
#include <string>

#include <pybind11/pybind11.h>

#include "stats/fit_options.h"

namespace ovik::python {

namespace py = pybind11;

/// The options of a fit by the names of parameters: those that are given, and what the preset
/// stands for in the place of the others.
///
/// @param given   those that have another value than their default
/// @param preset  one of the names of presets
/// @return all of them; None for those that have no effect beside the others
/// @throws InputError if one is out of its range, or unknown; if options do not fit each other, or
/// are such as a matrix of so many rows and columns cannot bear
py::dict settle_options(const py::dict& given,
                        const std::string& preset,
                        std::size_t rows,
                        std::size_t columns);

/// The options that `settle_options` gave.
///
/// @throws InputError if they have been changed to what is none
FitOptions settled_options(const py::dict& settled);

}  // namespace ovik::python
