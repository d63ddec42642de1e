#include "tools/load_matrix.h"

#include <limits>
#include <string>
#include <vector>

#include "annotation/gene_names.h"
#include "input/matrix_formats.h"
#ifdef OVIK_READS_HDF5
    #include "input/hdf5_matrix.h"
#endif
#include "util/available_memory.h"
#include "util/console.h"
#include "util/plain_text.h"

#include "tools/constant_rows.h"
#include "tools/memory_check.h"
#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

/// Writes an option as it stands on a command line.
std::string spelled(const std::string& option, const std::string& value) {
    constexpr const char* kPlain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_.,:/+-";
    if (value.empty()) {
        return "--" + option;
    }
    // What opens with a dash would be taken for an option.
    const std::string joint = value.front() == '-' ? "=" : " ";
    if (value.find_first_not_of(kPlain) == std::string::npos) {
        return "--" + option + joint + value;
    }
    std::string quoted;
    for (const char c : value) {
        quoted += c == '\'' ? "'\\''" : std::string(1, c);
    }
    return "--" + option + joint + "'" + quoted + "'";
}

LoadOptions load_options(const Options& options) {
    LoadOptions load = options.load;
    load.is_gene = [](const std::string& name) { return find_gene(name) != nullptr; };
    load.on_stage = options.on_stage;
    load.spell = spelled;
    load.holds_distances = options.fit.metric == MetricKind::Precomputed;
    load.learns_columns = !options.model.empty();
    load.keeps_sparse = options.fit.pca > 0 && !load.holds_distances && options.onto.empty();
    if (options.force) {
        load.most_bytes = std::numeric_limits<double>::infinity();
    } else {
        load.before_reading = [](const MatrixSource& source, const TableLayout& layout) {
            check_memory_of_reading(source, layout, available_memory());
        };
    }
    return load;
}

const std::vector<MatrixFormat>& formats() {
#ifdef OVIK_READS_HDF5
    return formats_with_hdf5();
#else
    return matrix_formats();
#endif
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
        loaded = load(options.matrix, load_options(options), remarks, formats());
    } catch (...) {
        // They come before the reason why the matrix is refused, and may explain it.
        print_remarks(remarks);
        throw;
    }
    print_remarks(remarks);
    if (!loaded.matrix.sparse) {
        settle_constant_rows(loaded, options);
    }
    return loaded;
}

}  // namespace ovik::tool
