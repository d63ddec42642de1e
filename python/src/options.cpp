#include "python/src/options.h"

#include <cmath>
#include <functional>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include <climits>
#include <pybind11/stl.h>

#include "stats/option_checks.h"
#include "stats/option_effect.h"
#include "stats/option_texts.h"
#include "stats/preset.h"
#include "util/input_error.h"

namespace ovik::python {

namespace {

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

py::str python_name(const OptionWords& words) {
    return {words.python.data(), words.python.size()};
}

std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

/// An option as an argument of Python: `schedule="annealed"`.
std::string spelled(const OptionWords& words, const std::string& value) {
    const std::string name(words.python);
    if (value.empty()) {
        return name;
    }
    const bool is_number = value.find_first_not_of("0123456789.e-,") == std::string::npos;
    const bool is_list = value.find(',') != std::string::npos;
    return name + "=" + (is_list ? "[" + value + "]" : is_number ? value : quoted(value));
}

/// The text of an object that is one.
std::optional<std::string> text_of(const py::object& object) {
    return py::isinstance<py::str>(object) ? std::optional(object.cast<std::string>())
                                           : std::nullopt;
}

/// @return false if the option cannot have the value
template <typename Number>
bool assign(const FitOption<Number>& option, const py::object& given) {
    if (option.automatic != nullptr) {
        *option.automatic = text_of(given) == kAutomatic;
        if (option.isAutomatic()) {
            return true;
        }
    }
    const auto number = number_of(given, option.preset);
    option.value = number.value_or(option.preset);
    return number && option.isInRange();
}

template <typename Kind>
bool assign(const FitChoice<Kind>& option, const py::object& given) {
    const auto name = text_of(given);
    return name && option.set(*name);
}

bool assign(const FitList<NumberList>& option, const py::object& given) {
    option.value = {};
    if (given.is_none()) {
        return true;
    }
    const auto elements =
        py::reinterpret_steal<py::object>(text_of(given) ? nullptr : PySequence_Tuple(given.ptr()));
    forget_wrong_kind();
    if (!elements || py::len(elements) > NumberList::kMost) {
        return false;
    }
    for (const py::handle element : elements) {
        const auto number = number_of(py::reinterpret_borrow<py::object>(element), double());
        if (!number) {
            return false;
        }
        option.value.add(*number);
    }
    return option.isInRange();
}

template <typename Option>
py::object value_of(const Option& option) {
    if constexpr (requires { option.value.begin(); }) {
        return py::cast(std::vector<double>(option.value.begin(), option.value.end()));
    } else if constexpr (requires { option.isAutomatic(); }) {
        return option.isAutomatic() ? py::cast(kAutomatic) : py::cast(option.value);
    } else {
        return py::cast(option.name());
    }
}

/// What Python's documentation calls what an option should be.
template <typename Option>
std::string required_text(const Option& option) {
    if constexpr (requires { option.names(); }) {
        std::vector<std::string> names;
        for (const std::string_view name : option.givenNames()) {
            names.push_back(quoted(name));
        }
        return alternatives_text(names);
    } else if constexpr (requires { option.automatic; }) {
        return requirement_text(option.range) +
               (option.automatic == nullptr ? "" : ", or " + quoted(kAutomatic));
    } else {
        return requirement_text(option);
    }
}

/// Where the options of some keyword arguments, without those that have their default, come from.
OptionSource source_of(const py::dict& arguments, PresetKind preset) {
    std::set<std::string, std::less<>> given;
    const FitOptions options;
    visit_fit_options(options, [&](const auto& option) {
        if (arguments.contains(python_name(option.words))) {
            given.emplace(option.words.name);
        }
    });
    return {[given](std::string_view name) { return given.contains(name); },
            &spelled,
            preset == PresetKind::Classic ? "" : "preset=" + quoted(choice_name(preset))};
}

/// The options among keyword arguments.
///
/// @throws InputError if one is out of its range, or there is no such option
FitOptions options_of(const py::dict& arguments) {
    FitOptions options;
    std::size_t known = 0;
    visit_fit_options(options, [&](const auto& option) {
        const py::str name = python_name(option.words);
        if (!arguments.contains(name)) {
            return;
        }
        ++known;
        const py::object given = arguments[name];
        if (!assign(option, given)) {
            throw InputError(std::string(option.words.python) + " should be " +
                             required_text(option) + ", not " +
                             py::repr(given).cast<std::string>());
        }
    });
    if (known != arguments.size()) {
        throw InputError("there is an option of another name among the parameters of the fit");
    }
    return options;
}

}  // namespace

py::dict settle_options(const py::dict& given,
                        const std::string& preset,
                        std::size_t rows,
                        std::size_t columns) {
    const PresetKind kind =
        preset == choice_name(PresetKind::Refined) ? PresetKind::Refined : PresetKind::Classic;
    const OptionSource source = source_of(given, kind);
    const FitOptions options = with_preset(kind, rows, options_of(given), source.is_given);
    check_options_together(options, source);
    check_options_for(options, rows, columns, source);
    py::dict settled;
    visit_fit_options(options, [&](const auto& option) {
        settled[python_name(option.words)] =
            bar_of(options, option.words.name) ? py::none() : value_of(option);
    });
    return settled;
}

FitOptions settled_options(const py::dict& settled) {
    py::dict effective;
    for (const auto& [name, value] : settled) {
        if (!value.is_none()) {
            effective[name] = value;
        }
    }
    return options_of(effective);
}

}  // namespace ovik::python
