#include "input/argument_spelling.h"

#include <algorithm>

namespace ovik {

namespace {

/// A text as it stands in a program.
std::string in_quotes(const std::string& text) {
    std::string quoted;
    for (const char c : text) {
        quoted += c == '"' || c == '\\' ? std::string{'\\', c} : std::string(1, c);
    }
    return '"' + quoted + '"';
}

/// Texts between commas as a list.
std::string list_of(const std::string& texts, const ArgumentSyntax& syntax) {
    std::string list;
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + 1) {
        end = texts.find(',', begin);
        list += (list.empty() ? "" : ", ") + in_quotes(texts.substr(begin, end - begin));
    }
    const bool is_single = texts.find(',') == std::string::npos;
    return is_single && !syntax.single_is_list ? list : syntax.list_begin + list + syntax.list_end;
}

std::string value_of(const std::string& option,
                     const std::string& value,
                     const ArgumentSyntax& syntax) {
    if (option == "delimiter") {
        return value == "tab" ? "\"\\t\"" : in_quotes(value == "space" ? " " : value);
    }
    return option == "skip-columns" ? list_of(value, syntax) : in_quotes(value);
}

}  // namespace

std::string spelled_as_argument(const std::string& option,
                                const std::string& value,
                                const ArgumentSyntax& syntax) {
    if (option.starts_with("no-")) {
        return option.substr(3) + syntax.assigns + syntax.is_false;
    }
    std::string argument = option;
    std::replace(argument.begin(), argument.end(), '-', '_');
    if (option == "log1p" || option == "scale" || option == "transpose") {
        return argument + syntax.assigns + syntax.is_true;
    }
    return value.empty() ? argument : argument + syntax.assigns + value_of(option, value, syntax);
}

}  // namespace ovik
