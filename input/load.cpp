#include "input/load.h"

#include <utility>

#include "input/date_names.h"
#include "input/distance_matrix.h"
#include "input/known_columns.h"
#include "input/market_entries.h"
#include "input/matrix_checks.h"
#include "input/matrix_formats.h"
#include "input/matrix_source.h"
#include "input/missing_values.h"
#include "input/name_checks.h"
#include "input/odd_values.h"
#include "input/row_texts.h"
#include "input/sparse_matrix.h"
#include "input/thousands_points.h"
#include "input/transformations.h"
#include "input/transpose.h"
#include "util/counted.h"
#include "util/input_error.h"

namespace ovik {

namespace {

/// What rows without names are called: "1", "2" and so on.
std::vector<std::string> row_numbers(std::size_t count) {
    std::vector<std::string> numbers(count);
    for (std::size_t n = 0; n < count; ++n) {
        numbers[n] = std::to_string(n + 1);
    }
    return numbers;
}

/// The names of rows that have none in their file.
std::vector<std::string> names_of_rows(const std::string& path,
                                       const LoadOptions& options,
                                       std::size_t count,
                                       std::vector<Remark>& remarks) {
    if (!options.row_names_file.empty()) {
        return read_row_texts(options.row_names_file, count, "name");
    }
    remarks.push_back({Remark::Kind::Note,
                       path + ": its rows have no names, and are called by their numbers; " +
                           options.spell("row-names", "FILE") + " gives them names"});
    return row_numbers(count);
}

/// How many rows the file has to have: a map needs three, but on one that is there, any number can
/// be placed, and where the columns become rows, they are counted.
std::size_t least_rows(const LoadOptions& options) {
    return options.known_columns != nullptr || options.transformations.transpose
               ? 1
               : kLeastEmbeddedRows;
}

/// Reads the rows and checks that they make a matrix.
InspectedMatrix read_rows(MatrixSource& source,
                          const MatrixFormat& format,
                          const LoadOptions& options) {
    if (format.has_names && options.has_names && !options.transformations.transpose &&
        !options.row_names_file.empty()) {
        throw InputError(options.spell("row-names", "") + ": the rows of " + source.name() +
                         " have names of their own");
    }
    if (!options.layer.empty() && format.name != "hdf5") {
        throw InputError(options.spell("layer", "") + ": " + source.name() +
                         " is no HDF5 file (.h5ad) that is read here");
    }
    if (!options.sheet.empty() && format.name != "xlsx") {
        throw InputError(options.spell("sheet", "") + ": " + source.name() +
                         " is no Excel workbook (.xlsx)");
    }
    InspectedMatrix matrix = format.read(source, options);
    if (!format.is_text) {
        note_infinite_values(matrix);
    }
    check_matrix(source.name(), matrix.report, least_rows(options));
    return matrix;
}

/// Says how the file was taken, and what about its matrix may not be as its user means it.
void add_remarks(const std::string& name,
                 const LoadOptions& options,
                 const InspectedMatrix& matrix,
                 std::vector<Remark>& remarks) {
    for (const std::string& note : matrix.report.notes) {
        std::string text = name;
        text += ": ";
        text += note;
        remarks.push_back({Remark::Kind::Note, std::move(text)});
    }
    std::vector<std::string> warnings;
    for (const std::string& warning : matrix.report.warnings) {
        warnings.push_back(name + warning);
    }
    if (!options.holds_distances && !options.transformations.transpose && !matrix.rows_are_points) {
        warnings.push_back(transposed_warning(name, options, matrix));
    }
    warnings.push_back(thousands_points_warning(name, options.spell, matrix.report));
    for (std::string& warning : matrix_warnings(name, matrix.report)) {
        warnings.push_back(std::move(warning));
    }
    warnings.push_back(date_names_warning(name, matrix.row_names, matrix.row_lines));
    if (!options.holds_distances && !matrix.rows_are_points && !matrix.sparse) {
        warnings.push_back(odd_rows_warning(name, matrix));
        warnings.push_back(odd_columns_warning(name, options.spell, matrix));
    }
    for (std::string& warning : warnings) {
        if (!warning.empty()) {
            remarks.push_back({Remark::Kind::Warning, std::move(warning)});
        }
    }
}

/// @return how many values were missing
/// @throws InputError if missing values are refused, or too few rows are left
std::size_t settle_missing(const std::string& name,
                           const LoadOptions& options,
                           LoadedMatrix& loaded,
                           std::vector<Remark>& remarks) {
    InspectedMatrix& matrix = loaded.matrix;
    const MissingCounts missing = count_missing(matrix);
    const MissingPolicy policy = options.missing.value_or(MissingPolicy::Zero);
    if (missing.count == 0 || policy == MissingPolicy::Leave) {
        return missing.count;
    }
    const std::string summary = name + ": " + missing_summary(matrix, missing);
    const std::string places = missing_places(matrix, missing);
    if (policy == MissingPolicy::Error) {
        throw InputError(summary + "\n" + places + "Fill them in, or choose with " +
                         options.spell("missing", "") + " what becomes of them.");
    }
    const std::size_t rows = matrix.report.rows;
    treat_missing(
        name, policy, missing, options.spell, matrix, loaded.labels, options.known_columns);
    if (!options.missing) {
        remarks.push_back({Remark::Kind::Warning,
                           summary + ", and read as 0\n" + places + options.spell("missing", "") +
                               " can also fill in means (row-mean, column-mean), leave such rows "
                               "out (drop), or refuse them (error)."});
        return missing.count;
    }
    remarks.push_back(
        {Remark::Kind::Information, summary + ": " + treatment(policy, rows, matrix.report.rows)});
    if (policy == MissingPolicy::Drop && options.check_values) {
        check_row_count(
            name + ", without the rows that lack values", matrix.report.rows, least_rows(options));
    }
    return missing.count;
}

/// Sees to it that the rows have names; as columns they need none.
void settle_row_names(const std::string& path,
                      const LoadOptions& options,
                      bool have_names,
                      InspectedMatrix& matrix,
                      std::vector<Remark>& remarks) {
    if (options.transformations.transpose) {
        check_columns_as_rows(path, options, matrix);
        if (!have_names) {
            matrix.row_names = row_numbers(matrix.report.rows);
        }
        return;
    }
    if (!have_names) {
        matrix.row_names = names_of_rows(path, options, matrix.report.rows, remarks);
    }
    note_duplicate_names(matrix);
}

/// Makes the columns the rows, under their names or those of a file.
void make_columns_rows(const std::string& path,
                       const LoadOptions& options,
                       InspectedMatrix& matrix,
                       std::vector<Remark>& remarks) {
    const std::size_t count = matrix.report.columns;
    transpose(matrix,
              matrix.column_names.empty() ? read_row_texts(options.row_names_file, count, "name")
                                          : std::move(matrix.column_names));
    remarks.push_back({Remark::Kind::Information,
                       path + ": transposed, so that its " +
                           counted(count, "column is a point", "columns are the points")});
    if (options.check_values) {
        check_row_count(path + ", transposed", count);
    }
}

void read_labels(const LoadOptions& options, LoadedMatrix& loaded) {
    if (!options.labels_file.empty()) {
        LabelFile file = read_label_file(options.labels_file, loaded.matrix.report.rows);
        loaded.labels = std::move(file.labels);
        loaded.label_table = std::move(file.table);
    }
}

/// Transforms the values, and learns or applies what there is to know of the columns.
void transform_values(const std::string& name,
                      const LoadOptions& options,
                      LoadedMatrix& loaded,
                      std::vector<Remark>& remarks) {
    InspectedMatrix& matrix = loaded.matrix;
    if (options.learns_columns) {
        loaded.columns.names = matrix.column_names;
        loaded.columns.means = means_of_columns(matrix);
    }
    if (!options.transformations.any()) {
        return;
    }
    remarks.push_back(
        {Remark::Kind::Information,
         options.known_columns != nullptr
             ? transform_alike(
                   name, options.transformations, *options.known_columns, options.spell, matrix)
             : transform(name, options.transformations, options.spell, matrix, &loaded.columns)});
}

/// Brings the columns into the order of those that are known, fills in what is missing, transforms
/// the values, makes columns rows if that is wanted, and checks what comes out.
void settle_values(const std::string& name,
                   const LoadOptions& options,
                   LoadedMatrix& loaded,
                   std::vector<Remark>& remarks) {
    InspectedMatrix& matrix = loaded.matrix;
    if (options.known_columns != nullptr) {
        match_columns(name, *options.known_columns, options.spell, matrix);
    }
    loaded.missing = settle_missing(name, options, loaded, remarks);
    transform_values(name, options, loaded, remarks);
    if (options.transformations.transpose) {
        make_columns_rows(name, options, matrix, remarks);
        read_labels(options, loaded);
    }
    if (options.check_values && options.known_columns == nullptr) {
        check_values(name, matrix);
    }
}

/// What `settle_values` does, of a matrix that stays sparse: no value is missing.
void settle_sparse_values(const std::string& name,
                          const LoadOptions& options,
                          InspectedMatrix& matrix,
                          std::vector<Remark>& remarks) {
    if (options.transformations.any()) {
        remarks.push_back({Remark::Kind::Information,
                           transform_sparse(name, options.transformations, options.spell, matrix)});
    }
    if (options.check_values) {
        check_sparse_values(name, matrix);
    }
}

/// @throws InputError if distances that are left out would be taken for 0
void refuse_sparse_distances(const MatrixSource& source) {
    if (opens_sparse_market(source.head())) {
        throw InputError(
            source.name() +
            ": holds a sparse matrix, and a distance that it leaves out would count as "
            "0\nWrite all distances as a dense matrix (\"array\"). A graph of "
            "neighbours is given beside the matrix of the data.");
    }
}

/// @throws InputError if distances would be changed
void refuse_changes_of_distances(const LoadOptions& options) {
    if (options.missing && options.missing != MissingPolicy::Error) {
        throw InputError(options.spell("missing", "") +
                         ": a distance cannot be filled in, nor left out\nGive a matrix of all "
                         "distances, or the values of which they are computed.");
    }
    if (options.transformations.any() || options.transformations.transpose) {
        throw InputError("distances are not transformed (" + names_of(options.transformations) +
                         ")\nTransform the values of which they are computed.");
    }
}

}  // namespace

LoadedMatrix load(const std::string& path,
                  const LoadOptions& options,
                  std::vector<Remark>& remarks) {
    return load(path, options, remarks, matrix_formats());
}

LoadedMatrix load(const std::string& path,
                  const LoadOptions& options,
                  std::vector<Remark>& remarks,
                  const std::vector<MatrixFormat>& formats) {
    if (options.holds_distances) {
        refuse_changes_of_distances(options);
    }
    MatrixSource source(path, options.on_stage);
    const std::string& name = source.name();
    if (options.holds_distances) {
        refuse_sparse_distances(source);
    }
    const MatrixFormat& format = format_of(source, formats);
    LoadedMatrix loaded;
    loaded.format = format.name;
    InspectedMatrix& matrix = loaded.matrix;
    matrix = read_rows(source, format, options);
    const bool has_names = format.has_names ? matrix.has_names : !matrix.row_names.empty();
    settle_row_names(path, options, has_names, matrix, remarks);
    matrix.row_lines.resize(matrix.report.rows, 0);
    add_remarks(name, options, matrix, remarks);
    if (!options.transformations.transpose) {
        read_labels(options, loaded);
    }
    if (options.holds_distances) {
        check_distance_matrix(name, matrix);
    } else if (matrix.sparse) {
        settle_sparse_values(name, options, matrix, remarks);
    } else {
        settle_values(name, options, loaded, remarks);
    }
    return loaded;
}

}  // namespace ovik
