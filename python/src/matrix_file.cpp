#include "python/src/matrix_file.h"

#include <algorithm>
#include <utility>

#include "annotation/gene_names.h"
#include "input/load.h"
#include "util/input_error.h"

namespace ovik::python {

namespace {

/// @throws InputError if there is no such policy
MissingPolicy policy_of(const std::string& name) {
    const std::optional<MissingPolicy> policy =
        name.empty() ? MissingPolicy::Leave : missing_policy(name);
    if (!policy) {
        throw InputError(
            "missing should be None, \"zero\", \"row-mean\", \"column-mean\", \"drop\" or "
            "\"error\", not \"" +
            name + "\"");
    }
    return *policy;
}

/// A text as it stands in a program.
std::string in_quotes(const std::string& text) {
    std::string quoted;
    for (const char c : text) {
        quoted += c == '"' || c == '\\' ? std::string{'\\', c} : std::string(1, c);
    }
    return '"' + quoted + '"';
}

/// Texts between commas as a list.
std::string list_of(const std::string& texts) {
    std::string list;
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + 1) {
        end = texts.find(',', begin);
        list += (list.empty() ? "" : ", ") + in_quotes(texts.substr(begin, end - begin));
    }
    return "[" + list + "]";
}

/// Writes an option as the argument of `read_matrix` that it is.
std::string spelled(const std::string& option, const std::string& value) {
    if (option.starts_with("no-")) {
        return option.substr(3) + "=False";
    }
    std::string argument = option;
    std::replace(argument.begin(), argument.end(), '-', '_');
    if (option == "log1p" || option == "scale") {
        return argument + "=True";
    }
    if (value.empty()) {
        return argument;
    }
    if (option == "delimiter") {
        return argument + "=" +
               (value == "tab" ? "\"\\t\"" : in_quotes(value == "space" ? " " : value));
    }
    return argument + "=" + (option == "skip-columns" ? list_of(value) : in_quotes(value));
}

}  // namespace

MatrixFile read_matrix_file(const std::string& path,
                            LoadOptions options,
                            const std::string& missing) {
    options.is_gene = [](const std::string& name) { return find_gene(name) != nullptr; };
    options.missing = policy_of(missing);
    options.spell = spelled;
    options.check_values = false;
    std::vector<Remark> remarks;
    MatrixFile file;
    file.matrix = load(path, options, remarks).matrix;
    for (Remark& remark : remarks) {
        if (remark.kind == Remark::Kind::Warning) {
            file.warnings.push_back(std::move(remark.text));
        } else if (remark.kind == Remark::Kind::Note) {
            file.notes.push_back(std::move(remark.text));
        }
    }
    return file;
}

}  // namespace ovik::python
