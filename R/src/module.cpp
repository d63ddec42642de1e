#include <algorithm>
#include <atomic>
#include <cstddef>
#include <new>
#include <optional>
#include <ovik/stats/option_checks.h>
#include <ovik/stats/option_effect.h>
#include <ovik/stats/preset.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include <R_ext/Visibility.h>
#include <cpp11.hpp>
#include <cpp11/declarations.hpp>

#include "enrichment.h"
#include "fit.h"
#include "matrix_file.h"
#include "options.h"
#include "own_thread.h"
#include "told_lines.h"

/// The routines that the R files of the package call, which check the arguments.

namespace ovik::r {

namespace {

using namespace cpp11::literals;  // NOLINT(google-build-using-namespace): that is their use

/// The one fit that may run in a process. What R does while it waits may call for another.
class TheOneFit {
  public:
    TheOneFit() {
        if (runs_.exchange(true)) {
            throw std::runtime_error("A fit runs already in this R process\nWait for its end.");
        }
    }

    TheOneFit(const TheOneFit&) = delete;
    TheOneFit& operator=(const TheOneFit&) = delete;

    ~TheOneFit() { runs_ = false; }

  private:
    static inline std::atomic<bool> runs_ = false;
};

/// @param columnwise  as R has matrices
/// @return the same row by row, as the engine has them
std::vector<double> row_by_row(const double* columnwise, std::size_t rows, std::size_t columns) {
    std::vector<double> values(rows * columns);
    for (std::size_t d = 0; d < columns; ++d) {
        for (std::size_t n = 0; n < rows; ++n) {
            values[n * columns + d] = columnwise[d * rows + n];
        }
    }
    return values;
}

/// @param values  row by row
cpp11::sexp as_matrix(const double* values, std::size_t rows, std::size_t columns) {
    cpp11::sexp matrix =
        cpp11::safe[Rf_allocMatrix](REALSXP, static_cast<int>(rows), static_cast<int>(columns));
    double* const columnwise = REAL(matrix);
    for (std::size_t n = 0; n < rows; ++n) {
        for (std::size_t d = 0; d < columns; ++d) {
            columnwise[d * rows + n] = values[n * columns + d];
        }
    }
    return matrix;
}

/// @param value  numbers, a text, or NULL for none
Argument argument_of(SEXP value) {
    if (Rf_isNull(value)) {
        return std::vector<double>();
    }
    return Rf_isString(value) ? Argument(cpp11::as_cpp<std::string>(value))
                              : Argument(cpp11::as_cpp<std::vector<double>>(value));
}

SEXP as_value(const Argument& argument) {
    const auto* const text = std::get_if<std::string>(&argument);
    if (text != nullptr) {
        return cpp11::as_sexp(*text);
    }
    const auto& numbers = std::get<std::vector<double>>(argument);
    return numbers.empty() ? R_NilValue : cpp11::as_sexp(numbers);
}

/// @param arguments  by name, checked; the options without one are as preset
FitOptions options_of(const cpp11::list& arguments) {
    const auto names = arguments.names();
    return options_with(
        [&](const std::string& name) {
            return std::any_of(names.begin(), names.end(), [&](const cpp11::r_string& each) {
                return name == std::string(each);
            });
        },
        [&](const std::string& name) { return argument_of(arguments[name.c_str()]); });
}

/// An option as an argument of R: `schedule = "annealed"`.
std::string spelled_option(const OptionWords& words, const std::string& value) {
    const std::string name = r_name(words);
    if (value.empty()) {
        return name;
    }
    const bool is_number = value.find_first_not_of("0123456789.e-,") == std::string::npos;
    const bool is_list = value.find(',') != std::string::npos;
    return name + " = " + (is_list ? "c(" + value + ")" : is_number ? value : "\"" + value + "\"");
}

/// The options of a fit: those that are given, and what the preset stands for.
///
/// @param arguments  by name, checked
/// @param given      names of those that the user gave
/// @return all of them by name, but those that have no effect beside the others
cpp11::writable::list settle(const cpp11::list& arguments,
                             const std::vector<std::string>& given,
                             const std::string& preset,
                             std::size_t rows,
                             std::size_t columns) {
    const FitOptions with_arguments = options_of(arguments);
    const auto has = [](const auto& names, std::string_view option) {
        bool is_there = false;
        const FitOptions presets;
        visit_fit_options(presets, [&](const auto& each) {
            is_there = is_there ||
                       (each.words.name == option &&
                        std::find(names.begin(), names.end(), r_name(each.words)) != names.end());
        });
        return is_there;
    };
    const std::vector<std::string> names(arguments.names().begin(), arguments.names().end());
    const OptionSource source{[&](std::string_view name) { return has(given, name); },
                              &spelled_option};
    const FitOptions options =
        with_preset(preset == "refined" ? PresetKind::Refined : PresetKind::Classic,
                    rows,
                    with_arguments,
                    [&](std::string_view name) { return has(names, name); });
    check_options_together(options, source);
    check_options_for(options, rows, columns, source);
    cpp11::writable::list settled;
    visit_fit_options(options, [&](const auto& option) {
        const Argument argument = value_of(option);
        if (!bar_of(options, option.words.name) && argument != Argument()) {
            settled.push_back(cpp11::named_arg(r_name(option.words).c_str()) = as_value(argument));
        }
    });
    return settled;
}

void show(const std::vector<std::string>& lines) {
    const cpp11::function message = cpp11::package("base")["message"];
    for (const std::string& line : lines) {
        message(line.c_str());
    }
}

cpp11::writable::list as_list(const Outcome& outcome, std::size_t rows, int dims) {
    const FitReport& report = outcome.fit.report;
    cpp11::writable::list result;
    result.push_back(
        {"Y"_nm = as_matrix(outcome.fit.embedding.data(), rows, static_cast<std::size_t>(dims))});
    result.push_back({"cost"_nm = report.final_cost});
    result.push_back({"costs"_nm = cpp11::writable::doubles(report.costs)});
    result.push_back({"iteration"_nm = report.reached.iteration});
    result.push_back({"threads_note"_nm = outcome.threads_note});
    result.push_back({"start_note"_nm = report.start_remark});
    return result;
}

/// @param x      a matrix of real numbers
/// @param start  NULL, or one of the shape of the map, NA in rows without
cpp11::writable::list embed(
    SEXP x, const cpp11::list& arguments, SEXP start, int threads, bool verbose) {
    const TheOneFit the_one_fit;
    const auto rows = static_cast<std::size_t>(Rf_nrows(x));
    const auto columns = static_cast<std::size_t>(Rf_ncols(x));
    const double* const values = REAL(x);
    const FitOptions options = options_of(arguments);
    ToldLines lines;
    FitManner manner;
    manner.threads = threads;
    if (!Rf_isNull(start)) {
        manner.start = row_by_row(REAL(start), rows, static_cast<std::size_t>(options.out_dims));
    }
    if (verbose) {
        manner.tell = [&lines](std::string line) { lines.add(std::move(line)); };
    }
    const Outcome outcome = in_own_thread(
        [&](const std::atomic<bool>& is_interrupted) {
            std::vector<double> X = row_by_row(values, rows, columns);
            return run_fit({X.data(), rows, columns}, options, manner, is_interrupted);
        },
        [&lines] {
            cpp11::check_user_interrupt();
            show(lines.take());
        });
    return as_list(outcome, rows, options.out_dims);
}

/// Whether an option may have a value.
bool option_holds(const std::string& name, SEXP value) {
    bool is_held = false;
    FitOptions options;
    visit_fit_options(options, [&](const auto& option) {
        is_held = is_held || (r_name(option.words) == name && assign(option, argument_of(value)));
    });
    return is_held;
}

/// The text of an argument that is one text, or of one that is none: empty.
std::string text_of(SEXP argument) {
    return Rf_isNull(argument) ? "" : cpp11::as_cpp<std::string>(argument);
}

std::optional<char> character_of(SEXP argument) {
    const std::string text = text_of(argument);
    return text.empty() ? std::nullopt : std::optional(text.front());
}

/// The name of a file, as the system has it.
std::string path_of(SEXP name) {
    return Rf_isNull(name) ? "" : cpp11::safe[Rf_translateChar](STRING_ELT(name, 0));
}

/// @param form  the arguments of `read_matrix` by name, checked
LoadOptions load_options(const cpp11::list& form) {
    LoadOptions options;
    options.delimiter = character_of(form["delimiter"]);
    options.decimal = character_of(form["decimal"]);
    options.has_header = cpp11::as_cpp<bool>(form["header"]);
    options.has_names = cpp11::as_cpp<bool>(form["names"]);
    options.names_column = text_of(form["names_column"]);
    options.skip_columns = cpp11::as_cpp<std::vector<std::string>>(form["skip_columns"]);
    options.missing_signs = cpp11::as_cpp<std::vector<std::string>>(form["na"]);
    options.sheet = text_of(form["sheet"]);
    options.row_names_file = path_of(form["row_names"]);
    options.transformations.log1p = cpp11::as_cpp<bool>(form["log1p"]);
    options.transformations.is_portable = cpp11::as_cpp<bool>(form["is_portable"]);
    options.transformations.centre = centring_of(text_of(form["center"])).value_or(Centring::None);
    options.transformations.scale = cpp11::as_cpp<bool>(form["scale"]);
    options.transformations.transpose = cpp11::as_cpp<bool>(form["transpose"]);
    return options;
}

/// Values, names, and what there is to say; of a file that is refused the latter alone.
cpp11::writable::list read_matrix(SEXP path, const cpp11::list& form) {
    const LoadOptions options = load_options(form);
    const std::string missing = text_of(form["missing"]);
    const std::string name = path_of(path);
    const MatrixFile file = in_own_thread(
        [&](const std::atomic<bool>& /*is_interrupted*/) {
            return read_matrix_file(name, options, missing);
        },
        [] { cpp11::check_user_interrupt(); });
    cpp11::writable::list result;
    result.push_back({"warnings"_nm = file.warnings});
    result.push_back({"notes"_nm = file.notes});
    result.push_back({"refusal"_nm = file.refusal});
    if (file.refusal.empty()) {
        const InspectedMatrix& matrix = file.matrix;
        result.push_back({"values"_nm = as_matrix(
                              matrix.values.get(), matrix.report.rows, matrix.report.columns)});
        result.push_back({"row_names"_nm = matrix.row_names});
        result.push_back({"column_names"_nm = matrix.column_names});
    }
    return result;
}

}  // namespace

}  // namespace ovik::r

extern "C" {

static SEXP ovik_embed(SEXP x, SEXP options, SEXP start, SEXP threads, SEXP verbose) {
    BEGIN_CPP11
    try {
        return ovik::r::embed(
            x, options, start, cpp11::as_cpp<int>(threads), cpp11::as_cpp<bool>(verbose));
    } catch (const std::bad_alloc&) {
        throw std::runtime_error(
            "The memory of the fit cannot be had\nFewer rows or a lower perplexity take less; the "
            "exact method (theta = 0) takes the most.");
    }
    END_CPP11
}

static SEXP ovik_option_holds(SEXP name, SEXP value) {
    BEGIN_CPP11
    return cpp11::as_sexp(ovik::r::option_holds(cpp11::as_cpp<std::string>(name), value));
    END_CPP11
}

static SEXP ovik_settle(SEXP options, SEXP given, SEXP preset, SEXP shape) {
    BEGIN_CPP11
    const auto [rows, columns] = std::pair(INTEGER(shape)[0], INTEGER(shape)[1]);
    return ovik::r::settle(options,
                           cpp11::as_cpp<std::vector<std::string>>(given),
                           cpp11::as_cpp<std::string>(preset),
                           static_cast<std::size_t>(rows),
                           static_cast<std::size_t>(columns));
    END_CPP11
}

static SEXP ovik_read_matrix(SEXP path, SEXP form) {
    BEGIN_CPP11
    try {
        return ovik::r::read_matrix(path, form);
    } catch (const std::bad_alloc&) {
        throw std::runtime_error("The memory of the matrix cannot be had");
    }
    END_CPP11
}

static SEXP ovik_enrich(SEXP genes, SEXP background) {
    BEGIN_CPP11
    return ovik::r::enriched_terms(genes, background);
    END_CPP11
}

static SEXP ovik_split_names(SEXP text) {
    BEGIN_CPP11
    return ovik::r::split_names(cpp11::as_cpp<std::string>(text));
    END_CPP11
}

// NOLINTNEXTLINE(readability-identifier-naming): R looks for this name
attribute_visible void R_init_ovik(DllInfo* library) {
    static const R_CallMethodDef routines[] = {
        {"embed", reinterpret_cast<DL_FUNC>(&ovik_embed), 5},
        {"option_holds", reinterpret_cast<DL_FUNC>(&ovik_option_holds), 2},
        {"settle", reinterpret_cast<DL_FUNC>(&ovik_settle), 4},
        {"read_matrix", reinterpret_cast<DL_FUNC>(&ovik_read_matrix), 2},
        {"enrich", reinterpret_cast<DL_FUNC>(&ovik_enrich), 2},
        {"split_names", reinterpret_cast<DL_FUNC>(&ovik_split_names), 1},
        {nullptr, nullptr, 0}};
    R_registerRoutines(library, nullptr, routines, nullptr, nullptr);
    R_useDynamicSymbols(library, FALSE);
    R_forceSymbols(library, TRUE);
}
}
