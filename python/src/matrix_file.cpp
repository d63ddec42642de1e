#include "python/src/matrix_file.h"

#include <utility>

#include "annotation/gene_names.h"
#include "input/argument_spelling.h"
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

/// Writes an option as the argument of `read_matrix` that it is.
std::string spelled(const std::string& option, const std::string& value) {
    return spelled_as_argument(option, value, {"=", "True", "False", "[", "]", true});
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
