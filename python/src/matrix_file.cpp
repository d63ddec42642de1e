#include "python/src/matrix_file.h"

#include <utility>

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

}  // namespace

MatrixFile read_matrix_file(const std::string& path,
                            std::optional<char> delimiter,
                            const std::string& missing) {
    LoadOptions options;
    options.delimiter = delimiter;
    options.missing = policy_of(missing);
    options.check_values = false;
    std::vector<Remark> remarks;
    MatrixFile file;
    file.matrix = load(path, options, remarks).matrix;
    for (Remark& remark : remarks) {
        if (remark.kind == Remark::Kind::Warning) {
            file.warnings.push_back(std::move(remark.text));
        }
    }
    return file;
}

}  // namespace ovik::python
