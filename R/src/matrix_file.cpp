#include "matrix_file.h"

#include <algorithm>
#include <cstddef>
#include <ovik/annotation/gene_names.h>
#include <ovik/util/input_error.h>
#include <system_error>
#include <utility>

namespace ovik::r {

namespace {

/// A text as it stands in a program.
std::string in_quotes(const std::string& text) {
    std::string quoted;
    for (const char c : text) {
        quoted += c == '"' || c == '\\' ? std::string{'\\', c} : std::string(1, c);
    }
    return '"' + quoted + '"';
}

/// Texts between commas as a vector.
std::string vector_of(const std::string& texts) {
    std::string elements;
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + 1) {
        end = texts.find(',', begin);
        elements += (elements.empty() ? "" : ", ") + in_quotes(texts.substr(begin, end - begin));
    }
    return texts.find(',') == std::string::npos ? elements : "c(" + elements + ")";
}

/// Writes an option as the argument of `read_matrix` that it is.
std::string spelled(const std::string& option, const std::string& value) {
    if (option.starts_with("no-")) {
        return option.substr(3) + " = FALSE";
    }
    std::string argument = option;
    std::replace(argument.begin(), argument.end(), '-', '_');
    if (option == "log1p" || option == "scale") {
        return argument + " = TRUE";
    }
    if (value.empty()) {
        return argument;
    }
    if (option == "delimiter") {
        return argument + " = " +
               (value == "tab" ? "\"\\t\"" : in_quotes(value == "space" ? " " : value));
    }
    return argument + " = " + (option == "skip-columns" ? vector_of(value) : in_quotes(value));
}

}  // namespace

MatrixFile read_matrix_file(const std::string& path,
                            LoadOptions options,
                            const std::string& missing) {
    options.is_gene = [](const std::string& name) { return find_gene(name) != nullptr; };
    options.missing = missing_policy(missing).value_or(MissingPolicy::Leave);
    options.spell = spelled;
    options.check_values = false;
    std::vector<Remark> remarks;
    MatrixFile file;
    try {
        file.matrix = load(path, options, remarks).matrix;
    } catch (const InputError& error) {
        file.refusal = error.what();
    } catch (const std::system_error& error) {
        file.refusal = error.what();
    }
    for (Remark& remark : remarks) {
        if (remark.kind == Remark::Kind::Warning) {
            file.warnings.push_back(std::move(remark.text));
        } else if (remark.kind == Remark::Kind::Note) {
            file.notes.push_back(std::move(remark.text));
        }
    }
    return file;
}

}  // namespace ovik::r
