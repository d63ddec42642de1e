#include "input/delimiters.h"

#include "input/matrix_guess.h"
#include "util/counted.h"
#include "util/input_error.h"

namespace ovik {

namespace {

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

/// What to do about a file without numbers: another delimiter, if there are numbers with it.
std::string delimiter_advice(const Delimiters& delimiters) {
    return !delimiters.guessed || *delimiters.guessed == delimiters.used
               ? "Every line behind the first should be a name and its values; --delimiter says "
                 "what stands between them."
               : "There are with --delimiter '" + delimiter_text(*delimiters.guessed) +
                     "', which is also what is guessed without the option.";
}

}  // namespace

Delimiters find_delimiter(const MatrixSource& source, std::optional<char> given) {
    const std::optional<char> guessed = guess_delimiter(source);
    if (!given && !guessed) {
        throw InputError(
            source.name() +
            ": found no numbers behind the first line, with tab, comma, semicolon or blank between "
            "the fields: every line should be a name and its values (another delimiter can be "
            "given with --delimiter)");
    }
    return {given ? *given : *guessed, guessed};
}

void check_delimited(const std::string& path,
                     const Delimiters& delimiters,
                     const MatrixReport& report) {
    if (report.lost_names.count > 0) {
        const FieldPlace& first = report.lost_names.first;
        throw InputError(path + ":" + std::to_string(first.line) +
                         ": the row has no name: the line opens with the delimiter, and \"" +
                         first.row + "\" would be taken for the name (" +
                         counted(report.lost_names.count, "such row", "such rows") +
                         ")\nGive the row a name, or take it out.");
    }
    if (report.rows > 0 && report.numbers == 0) {
        throw InputError(path + ": holds no numbers with " + delimiter_text(delimiters.used) +
                         " between the fields\n" + delimiter_advice(delimiters));
    }
}

}  // namespace ovik
