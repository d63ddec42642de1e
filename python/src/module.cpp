#include <atomic>
#include <cstddef>
#include <cstring>
#include <exception>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "annotation/gene_names.h"
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

py::tuple embed(const Array& X,
                int n_components,
                double perplexity,
                double theta,
                int n_iter,
                int stop_lying_iter,
                int mom_switch_iter,
                int threads,
                bool verbose) {
    const Points points{
        X.data(), static_cast<std::size_t>(X.shape(0)), static_cast<std::size_t>(X.shape(1))};
    const FitOptions options{n_components,
                             perplexity,
                             theta,
                             n_iter,
                             stop_lying_iter,
                             mom_switch_iter,
                             threads,
                             verbose};
    const Fit result = in_own_thread([&](const std::atomic<bool>& is_interrupted) {
        return fit(points, options, is_interrupted);
    });
    const Array embedding({X.shape(0), static_cast<py::ssize_t>(n_components)},
                          result.embedding.data());
    return py::make_tuple(embedding, result.cost, result.last_iteration, result.threads_note);
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

py::tuple read_matrix(const std::string& path,
                      std::optional<char> delimiter,
                      const std::string& missing) {
    MatrixFile file = in_own_thread([&](const std::atomic<bool>& /*is_interrupted*/) {
        return read_matrix_file(path, delimiter, missing);
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
    module.def("embed",
               ovik::python::embed,
               "X"_a.noconvert(),
               py::kw_only(),
               "n_components"_a,
               "perplexity"_a,
               "theta"_a,
               "n_iter"_a,
               "stop_lying_iter"_a,
               "mom_switch_iter"_a,
               "threads"_a,
               "verbose"_a);
    module.def("read_matrix", ovik::python::read_matrix, "path"_a, "delimiter"_a, "missing"_a);
    module.def("find_gene", ovik::python::gene_entry, "name"_a);
}
