#include "tools/load_matrix.h"

#include "util/available_memory.h"
#include "util/console.h"
#include "util/plain_text.h"

#include "tools/memory_check.h"
#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

LoadOptions load_options(const Options& options) {
    LoadOptions load;
    load.delimiter = options.delimiter;
    load.missing = options.missing;
    load.missing_advice = "Fill them in, or choose with --missing what becomes of them.";
    load.sheet = options.sheet;
    load.transformations = options.transformations;
    load.row_names_file = options.row_names_file;
    load.labels_file = options.labels_file;
    if (!options.force) {
        load.before_reading = [](const MatrixSource& source, char delimiter) {
            check_memory_of_reading(source, delimiter, available_memory());
        };
    }
    return load;
}

/// Prints what there is to say of the matrix: on standard output what was asked for, on standard
/// error what may surprise.
void print_remarks(const std::vector<Remark>& remarks) {
    for (const auto& [kind, text] : remarks) {
        if (kind == Remark::Kind::Information) {
            print_info(one_line_utf8(text));
        } else {
            complain((kind == Remark::Kind::Note ? "note: " : "warning: ") + text);
        }
    }
}

}  // namespace

LoadedMatrix load_matrix(const Options& options) {
    std::vector<Remark> remarks;
    LoadedMatrix loaded;
    try {
        loaded = load(options.matrix, load_options(options), remarks);
    } catch (...) {
        // They come before the reason why the matrix is refused, and may explain it.
        print_remarks(remarks);
        throw;
    }
    print_remarks(remarks);
    return loaded;
}

}  // namespace ovik::tool
