#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <exception>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include <climits>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "annotation/gene_names.h"
#include "stats/option_texts.h"
#include "util/input_error.h"

#include "python/src/fit.h"
#include "python/src/matrix_file.h"
#include "python/src/own_thread.h"

/// The module `ovik._core`: the engine behind the package's Python files, which check arguments.

namespace ovik::python {

namespace {

namespace py = pybind11;

using Array = py::array_t<double, py::array::c_style | py::array::forcecast>;

/// Texts of files need not be UTF-8.
py::str decoded(const char* text) {
    return py::reinterpret_steal<py::str>(
        PyUnicode_DecodeUTF8(text, static_cast<Py_ssize_t>(std::strlen(text)), "replace"));
}

/// `InputError` becomes ValueError, `std::system_error` OSError; the others are as pybind11 has
/// them.
void translate(std::exception_ptr thrown) {
    try {
        std::rethrow_exception(thrown);
    } catch (const InputError& error) {
        PyErr_SetObject(PyExc_ValueError, decoded(error.what()).ptr());
    } catch (const std::system_error& error) {
        const py::tuple arguments = py::make_tuple(error.code().value(), decoded(error.what()));
        PyErr_SetObject(PyExc_OSError, arguments.ptr());
    }
}

/// Forgets that a value is no number; what else went wrong, such as Ctrl-C, goes on.
void forget_wrong_kind() {
    if (PyErr_Occurred() == nullptr) {
        return;
    }
    if (PyErr_ExceptionMatches(PyExc_TypeError) == 0 &&
        PyErr_ExceptionMatches(PyExc_ValueError) == 0 &&
        PyErr_ExceptionMatches(PyExc_OverflowError) == 0) {
        throw py::error_already_set();
    }
    PyErr_Clear();
}

/// @return none if it is no number
std::optional<double> number_of(const py::object& object, double /*kind*/) {
    const double number = py::isinstance<py::str>(object) || py::isinstance<py::bytes>(object)
                              ? std::nan("")
                              : PyFloat_AsDouble(object.ptr());
    const bool is_number = PyErr_Occurred() == nullptr;
    forget_wrong_kind();
    return is_number ? std::optional(number) : std::nullopt;
}

/// @return none if it is no whole number, or too large for any option
std::optional<int> number_of(const py::object& object, int /*kind*/) {
    const auto index = py::reinterpret_steal<py::object>(PyNumber_Index(object.ptr()));
    const long number = index ? PyLong_AsLong(index.ptr()) : 0;
    const bool is_number = PyErr_Occurred() == nullptr && number >= INT_MIN && number <= INT_MAX;
    forget_wrong_kind();
    return is_number ? std::optional(static_cast<int>(number)) : std::nullopt;
}

/// The options among keyword arguments.
///
/// @throws InputError if one is out of its range, or there is no such option
FitOptions options_of(const py::dict& arguments) {
    FitOptions options;
    std::size_t known = 0;
    visit_fit_options(options, [&](auto option) {
        const py::str name(option.words.python.data(), option.words.python.size());
        if (!arguments.contains(name)) {
            return;
        }
        ++known;
        const py::object given = arguments[name];
        const auto number = number_of(given, option.preset);
        if (!number || !option.range.holds(*number)) {
            throw InputError(std::string(option.words.python) + " should be " +
                             requirement_text(option.range) + ", not " +
                             py::repr(given).cast<std::string>());
        }
        option.value = *number;
    });
    if (known != arguments.size()) {
        throw InputError("there is an option of another name among the parameters of the fit");
    }
    return options;
}

/// @throws InputError as `options_of`
void check_options(const py::dict& arguments) {
    options_of(arguments);
}

py::tuple embed(const Array& X, const py::dict& arguments, int threads, bool verbose) {
    const MatrixView<const double> points{
        X.data(), static_cast<std::size_t>(X.shape(0)), static_cast<std::size_t>(X.shape(1))};
    const FitOptions options = options_of(arguments);
    const Outcome outcome = in_own_thread([&](const std::atomic<bool>& is_interrupted) {
        return run_fit(points, options, {threads, verbose}, is_interrupted);
    });
    const FitReport& report = outcome.fit.report;
    const Array embedding({X.shape(0), static_cast<py::ssize_t>(options.out_dims)},
                          outcome.fit.embedding.data());
    return py::make_tuple(
        embedding, report.final_cost, report.reached.iteration, outcome.threads_note);
}

std::vector<py::bytes> as_bytes(const std::vector<std::string>& texts) {
    return {texts.begin(), texts.end()};
}

/// An array that takes the values over.
Array as_array(InspectedMatrix& matrix) {
    double* const values = matrix.values.release();
    const py::capsule owner(values, [](void* array) { delete[] static_cast<double*>(array); });
    return Array({matrix.report.rows, matrix.report.columns}, values, owner);
}

/// @param form  each member of `TextForm` by its name
TextForm form_of(const py::dict& form) {
    return {form["delimiter"].cast<std::optional<char>>(),
            form["decimal"].cast<std::optional<char>>(),
            form["has_header"].cast<bool>(),
            form["has_names"].cast<bool>(),
            form["names_column"].cast<std::string>(),
            form["skip_columns"].cast<std::vector<std::string>>(),
            form["missing_signs"].cast<std::vector<std::string>>()};
}

py::tuple read_matrix(const std::string& path,
                      const py::dict& arguments,
                      const std::string& missing) {
    const TextForm form = form_of(arguments);
    MatrixFile file = in_own_thread([&](const std::atomic<bool>& /*is_interrupted*/) {
        return read_matrix_file(path, form, missing);
    });
    const std::vector<py::bytes> row_names = as_bytes(file.matrix.row_names);
    const std::vector<py::bytes> column_names = as_bytes(file.matrix.column_names);
    return py::make_tuple(as_array(file.matrix), row_names, column_names, as_bytes(file.warnings));
}

/// @return name, systematic name and function of the gene of this name, else of this systematic
/// name; None if there is none
py::object gene_entry(const std::string& name) {
    const GeneEntry* gene = find_gene(name);
    if (gene == nullptr) {
        gene = find_systematic_gene(name);
    }
    return gene == nullptr ? py::none().cast<py::object>()
                           : py::make_tuple(gene->name, gene->systematic, gene->function);
}

}  // namespace

}  // namespace ovik::python

PYBIND11_MODULE(_core, module) {
    namespace py = pybind11;
    using namespace py::literals;  // NOLINT(google-build-using-namespace): that is their use
    module.attr("__version__") = OVIK_VERSION;
    py::register_local_exception_translator(ovik::python::translate);
    module.def(
        "embed", ovik::python::embed, "X"_a.noconvert(), "options"_a, "threads"_a, "verbose"_a);
    module.def("check_options", ovik::python::check_options, "options"_a);
    module.def("read_matrix", ovik::python::read_matrix, "path"_a, "form"_a, "missing"_a);
    module.def("find_gene", ovik::python::gene_entry, "name"_a);
}
