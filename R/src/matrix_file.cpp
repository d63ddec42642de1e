#include "matrix_file.h"

#include <ovik/annotation/gene_names.h>
#include <ovik/input/argument_spelling.h>
#include <ovik/util/input_error.h>
#include <system_error>
#include <utility>

namespace ovik::r {

namespace {

/// Writes an option as the argument of `read_matrix` that it is.
std::string spelled(const std::string& option, const std::string& value) {
    return spelled_as_argument(option, value, {" = ", "TRUE", "FALSE", "c(", ")", false});
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
