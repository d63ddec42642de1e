#include "input/delimiters.h"

#include "input/matrix_guess.h"
#include "util/input_error.h"

namespace ovik {

Delimiters find_delimiter(const std::string& path,
                          std::string_view rows,
                          const LoadOptions& options,
                          bool has_default) {
    const std::optional<char> guessed = guess_delimiter(rows, options.decimal);
    if (!options.delimiter && !guessed && !has_default) {
        throw InputError(
            path +
            ": found no numbers behind the first line, with tab, comma, semicolon or blank between "
            "the fields: every line should be a name and its values (another delimiter can be "
            "given with " +
            options.spell("delimiter", "") + ")");
    }
    return {options.delimiter.value_or(guessed.value_or('\t')), guessed};
}

std::string delimiter_text(char delimiter) {
    switch (delimiter) {
        case '\t':
            return "tab";
        case ' ':
            return "space";
        default:
            return {delimiter};
    }
}

}  // namespace ovik
