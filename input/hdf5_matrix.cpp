#include "input/hdf5_matrix.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "input/hdf5_dataset.h"
#include "input/hdf5_names.h"
#include "input/hdf5_sparse.h"
#include "input/sparse_matrix.h"
#include "util/counted.h"
#include "util/similar_name.h"
#include "util/stage.h"

namespace ovik {

namespace {

using hdf5::Dataset;
using hdf5::File;
using hdf5::Kind;
using hdf5::OnShare;
using hdf5::SparseLayout;

constexpr const char* kDamaged = "\nThe file may be damaged: fetch or write it again.";

bool is_annotated(const File& file) {
    return file.kindOf("obs") != Kind::Nothing || file.kindOf("X") != Kind::Nothing;
}

/// The matrices of an AnnData file, as `--layer` names them.
std::vector<std::string> layers_of(const File& file) {
    std::vector<std::string> layers;
    for (const char* const layer : {"X", "raw/X"}) {
        if (file.kindOf(layer) != Kind::Nothing) {
            layers.emplace_back(layer);
        }
    }
    for (const char* const group : {"layers", "obsm"}) {
        if (file.kindOf(group) == Kind::Group) {
            for (const std::string& name : file.namesIn(group)) {
                layers.push_back(std::string(group) + "/" + name);
            }
        }
    }
    return layers;
}

std::string listed(const std::vector<std::string>& names) {
    constexpr std::size_t kMost = 20;
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), kMost); ++i) {
        text += (i == 0 ? "" : ", ") + names[i];
    }
    return text + (names.size() > kMost ? ", ..." : "");
}

/// @throws InputError if a layer is none of the file
void check_layer(const File& file, const std::string& layer, const LoadOptions& options) {
    const std::vector<std::string> layers = layers_of(file);
    if (std::find(layers.begin(), layers.end(), layer) != layers.end()) {
        return;
    }
    const std::string meant = similar_name(layer, layers);
    hdf5::refuse(file.name(),
                 "has no matrix " + layer + (meant.empty() ? "" : "; did you mean " + meant + "?") +
                     (layers.empty() ? "\nIt has none at all."
                                     : "\nIt has " + listed(layers) + ": choose with " +
                                           options.spell("layer", "") + "."));
}

/// The table that names the columns of a matrix; empty if none does.
std::string columns_table(const std::string& layer) {
    return layer == "raw/X" ? "raw/var" : layer.starts_with("obsm/") ? "" : "var";
}

/// @throws InputError if an extent is not the number of names
void check_extent(const File& file,
                  const std::string& layer,
                  const std::string& what,
                  std::size_t extent,
                  const std::string& table,
                  std::size_t names) {
    if (extent != names) {
        hdf5::refuse(file.place(layer),
                     "has " + std::to_string(extent) + " " + what + ", and " + table + " names " +
                         std::to_string(names) + kDamaged);
    }
}

/// What takes less memory than a matrix in full.
std::string lighter(const File& file, const std::string& layer, const LoadOptions& options) {
    const bool has_components =
        layer != "obsm/X_pca" && is_annotated(file) && file.kindOf("obsm/X_pca") == Kind::Dataset;
    return has_components ? "Take its components (" + options.spell("layer", "obsm/X_pca") + ")."
                          : "Take a part of the rows.";
}

/// The rows and columns of a sparse matrix of an AnnData file.
SparseLayout sparse_layout(const File& file, const std::string& layer) {
    std::string encoding = file.textAttribute(layer, "encoding-type").value_or("");
    if (encoding.empty()) {
        encoding = file.textAttribute(layer, "h5sparse_format").value_or("") + "_matrix";
    }
    if (encoding != "csr_matrix" && encoding != "csc_matrix") {
        hdf5::refuse(file.place(layer),
                     (encoding == "_matrix" ? std::string("is a group")
                                            : "is written as \"" + encoding + "\"") +
                         ", and a dense or sparse (CSR, CSC) matrix is needed");
    }
    std::vector<long long> shape = file.numberAttribute(layer, "shape");
    if (shape.empty()) {
        shape = file.numberAttribute(layer, "h5sparse_shape");
    }
    if (shape.size() != 2 || shape[0] < 0 || shape[1] < 0) {
        hdf5::refuse(file.place(layer), std::string("does not say its shape") + kDamaged);
    }
    return {layer,
            static_cast<std::size_t>(shape[0]),
            static_cast<std::size_t>(shape[1]),
            encoding == "csc_matrix"};
}

void read_dense(const File& file,
                const std::string& layer,
                const LoadOptions& options,
                const OnShare& on_share,
                InspectedMatrix& matrix) {
    const Dataset array(file, layer);
    array.requireDimensions(2);
    array.requireNumbers();
    matrix.report.rows = array.shape()[0];
    matrix.report.columns = array.shape()[1];
    file.checkMemory("reading " + layer + " of " + std::to_string(matrix.report.rows) +
                         " rows and " + std::to_string(matrix.report.columns) + " columns",
                     8.0 * static_cast<double>(array.size()),
                     lighter(file, layer, options));
    matrix.values = std::make_unique_for_overwrite<double[]>(array.size());
    array.readAll(matrix.values.get(), on_share);
}

void note_layer(const File& file, const std::string& layer, InspectedMatrix& matrix) {
    std::vector<std::string> others = layers_of(file);
    std::erase(others, layer);
    matrix.report.notes.push_back("read " + layer + ", " +
                                  counted(matrix.report.rows, "cell", "cells") + " by " +
                                  counted(matrix.report.columns, "column", "columns") +
                                  (others.empty() ? "" : "; it also has " + listed(others)));
}

InspectedMatrix read_annotated(const File& file,
                               const LoadOptions& options,
                               const OnShare& on_share) {
    const std::string layer = options.layer.empty() ? "X" : options.layer;
    check_layer(file, layer, options);
    InspectedMatrix matrix;
    matrix.row_names = hdf5::read_index(file, "obs");
    const std::string table = columns_table(layer);
    if (!table.empty()) {
        matrix.column_names = hdf5::read_index(file, table);
    }
    const bool is_dense = file.kindOf(layer) == Kind::Dataset;
    std::optional<SparseLayout> sparse;
    if (!is_dense) {
        sparse = sparse_layout(file, layer);
        matrix.report.rows = sparse->rows;
        matrix.report.columns = sparse->columns;
    } else {
        read_dense(file, layer, options, on_share, matrix);
    }
    check_extent(file, layer, "rows", matrix.report.rows, "obs", matrix.row_names.size());
    if (!table.empty()) {
        check_extent(
            file, layer, "columns", matrix.report.columns, table, matrix.column_names.size());
    }
    if (sparse) {
        take_sparse(file.name(),
                    options,
                    hdf5::read_sparse(file, *sparse, lighter(file, layer, options), on_share),
                    matrix);
    }
    note_layer(file, layer, matrix);
    return matrix;
}

/// The group of a 10x file that holds a matrix: `matrix`, or, in files of earlier years, the one
/// that is called after the genome.
std::string group_of_10x(const File& file) {
    std::vector<std::string> groups;
    std::vector<std::string> links;
    for (const std::string& name : file.namesIn("")) {
        if (file.isLink(name)) {
            links.push_back(name);
        } else if (file.kindOf(name) == Kind::Group &&
                   file.kindOf(name + "/barcodes") == Kind::Dataset &&
                   file.kindOf(name + "/indptr") == Kind::Dataset) {
            groups.push_back(name);
        }
    }
    if (groups.size() > 1) {
        hdf5::refuse(file.name(),
                     "holds several matrices (" + listed(groups) +
                         "), one of each genome\nWrite the one that is wanted to a file of its "
                         "own.");
    }
    if (groups.empty()) {
        // A link may lead to what the file lacks: it is refused as one.
        for (const std::string& link : links) {
            static_cast<void>(file.kindOf(link));
        }
        return "";
    }
    return groups.front();
}

/// Says if the columns are of several kinds, which a map would take for one.
void note_feature_types(const File& file, const std::string& path, InspectedMatrix& matrix) {
    if (file.kindOf(path) != Kind::Dataset) {
        return;
    }
    const std::vector<std::string> types = hdf5::read_texts(file, path);
    const std::set<std::string> kinds(types.begin(), types.end());
    if (kinds.size() > 1) {
        matrix.report.warnings.push_back(": its columns are of " + std::to_string(kinds.size()) +
                                         " kinds (" + listed({kinds.begin(), kinds.end()}) +
                                         "), and all of them count alike");
    }
}

InspectedMatrix read_10x(const File& file,
                         const std::string& group,
                         const LoadOptions& options,
                         const OnShare& on_share) {
    const Dataset shape(file, group + "/shape");
    shape.requireDimensions(1);
    shape.requireWholeNumbers();
    std::vector<std::int64_t> extents(2, -1);
    if (shape.size() == 2) {
        shape.read(0, 2, extents.data());
    }
    if (extents[0] < 0 || extents[1] < 0) {
        hdf5::refuse(shape.place(), std::string("should be two extents") + kDamaged);
    }
    InspectedMatrix matrix;
    matrix.report.columns = static_cast<std::size_t>(extents[0]);
    matrix.report.rows = static_cast<std::size_t>(extents[1]);
    matrix.row_names = hdf5::read_texts(file, group + "/barcodes");
    const bool is_new = file.kindOf(group + "/features") == Kind::Group;
    const std::string names = is_new ? group + "/features/name" : group + "/gene_names";
    matrix.column_names = hdf5::read_texts(file, names);
    check_extent(file, group, "columns", matrix.report.rows, "barcodes", matrix.row_names.size());
    check_extent(file, group, "rows", matrix.report.columns, names, matrix.column_names.size());
    note_feature_types(file, group + "/features/feature_type", matrix);
    // Its columns are cells: the same arrays are the rows of the other way round.
    SparseRows sparse = hdf5::read_sparse(file,
                                          {group, matrix.report.rows, matrix.report.columns, false},
                                          "Take a part of the cells.",
                                          on_share);
    take_sparse(file.name(), options, std::move(sparse), matrix);
    matrix.report.notes.push_back("read " + counted(matrix.report.rows, "cell", "cells") + " by " +
                                  counted(matrix.report.columns, "column", "columns") +
                                  ": the columns of the file are the rows of the matrix");
    return matrix;
}

[[noreturn]] void refuse_unknown(const File& file) {
    if (file.kindOf("row_attrs") != Kind::Nothing && file.kindOf("matrix") == Kind::Dataset) {
        hdf5::refuse(file.name(),
                     "this is a loom file\nWrite it as .h5ad (in Python: "
                     "anndata.read_loom(\"FILE\").write_h5ad(\"cells.h5ad\")).");
    }
    const std::vector<std::string> names = file.namesIn("");
    hdf5::refuse(
        file.name(),
        "this HDF5 file is neither of AnnData (.h5ad) nor of 10x (.h5)" +
            (names.empty() ? std::string(": it is empty") : ": it holds " + listed(names)) +
            "\nWrite its matrix as .h5ad, .npy or text.");
}

/// Reads all texts that its matrix needs.
void read_texts_only(const File& file, const LoadOptions& options) {
    const std::string layer = options.layer.empty() ? "X" : options.layer;
    if (file.kindOf("obs") != Kind::Nothing) {
        static_cast<void>(hdf5::read_index(file, "obs"));
        const std::string table = columns_table(layer);
        if (!table.empty()) {
            static_cast<void>(hdf5::read_index(file, table));
        }
        if (file.kindOf(layer) == Kind::Group) {
            static_cast<void>(sparse_layout(file, layer));
        }
        return;
    }
    const std::string group = group_of_10x(file);
    for (const char* const names :
         {"/barcodes", "/features/name", "/gene_names", "/features/feature_type"}) {
        if (file.kindOf(group + names) == Kind::Dataset) {
            static_cast<void>(hdf5::read_texts(file, group + names));
        }
    }
}

void check_source(const MatrixSource& source) {
    if (!source.isSeekable()) {
        hdf5::refuse(
            source.name(),
            "this is an HDF5 file, which is read at any place of it\nGive the file itself, "
            "not packed and not through a pipe.");
    }
}

}  // namespace

bool is_hdf5(std::string_view head) {
    return head.starts_with("\x89HDF\r\n\x1a\n");
}

InspectedMatrix read_hdf5_matrix(MatrixSource& source, const LoadOptions& options) {
    check_source(source);
    // The library reads by itself: before the matrix itself is read, how far it is cannot be told.
    tell(options.on_stage, Stage::Reading, 0, 0);
    const std::uint64_t bytes = source.size().value_or(0);
    const OnShare on_share = [&options, bytes](double share) {
        const auto read = static_cast<std::uint64_t>(share * static_cast<double>(bytes));
        tell(options.on_stage, Stage::Reading, read, bytes);
    };
    hdf5::require_sound(source.name(), bytes, [&] {
        read_texts_only(File(source.path(), source.name(), memory_limit(options)), options);
    });
    const File file(source.path(), source.name(), memory_limit(options));
    InspectedMatrix matrix;
    if (is_annotated(file)) {
        matrix = read_annotated(file, options, on_share);
    } else if (const std::string group = group_of_10x(file); !group.empty()) {
        if (!options.layer.empty()) {
            hdf5::refuse(options.spell("layer", ""),
                         source.name() + " is a 10x file, which has one matrix\nLeave it away.");
        }
        matrix = read_10x(file, group, options, on_share);
    } else {
        refuse_unknown(file);
    }
    matrix.rows_are_points = true;
    tell(options.on_stage, Stage::Reading, 1, 1);
    return matrix;
}

const std::vector<MatrixFormat>& formats_with_hdf5() {
    static const std::vector<MatrixFormat> kFormats = [] {
        std::vector<MatrixFormat> formats = matrix_formats();
        formats.insert(
            formats.begin(),
            {.name = "hdf5", .recognises = is_hdf5, .read = read_hdf5_matrix, .has_names = true});
        return formats;
    }();
    return kFormats;
}

}  // namespace ovik
