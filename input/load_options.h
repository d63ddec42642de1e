#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "input/missing_values.h"
#include "input/option_spelling.h"
#include "input/transformations.h"
#include "util/stage.h"

namespace ovik {

struct KnownColumns;
class MatrixSource;
struct TableLayout;

/// How a matrix is loaded.
struct LoadOptions {
    /// Between the fields of delimited text. Not given: guessed.
    std::optional<char> delimiter;
    /// The decimal sign of delimited text, '.' or ','. Not given: that of the thread's locale, and
    /// numbers with the other one are refused.
    std::optional<char> decimal;
    /// Whether delimited text has a header line.
    bool has_header = true;
    /// Whether delimited text has names of its rows.
    bool has_names = true;
    /// The column of the names in delimited text: what its header says, or else the number of its
    /// field, from 1; "#3" is field 3 whatever the headers are. Empty: what the layout of the file
    /// says, or else the first.
    std::string names_column;
    /// Columns of delimited text that are no values, by header or by number as above.
    std::vector<std::string> skip_columns;
    /// Texts that stand for a missing value besides the usual ones; blanks around them do not
    /// count.
    std::vector<std::string> missing_signs;
    /// Whether a name is that of a gene besides the systematic names of yeast, which are known. May
    /// be empty.
    std::function<bool(const std::string& name)> is_gene;
    /// The sheet of a workbook; empty: the first that is not hidden.
    std::string sheet;
    /// Which matrix of a file that holds several, such as "obsm/X_pca"; empty: the usual one.
    std::string layer;
    /// Whether a sparse matrix that is large (`stays_sparse`) is wanted as it is.
    bool keeps_sparse = false;
    /// Bytes of memory that reading may take, in formats that say beforehand what they hold. Not
    /// given: what this process can get.
    std::optional<double> most_bytes;
    /// What becomes of missing values. Not given: they are 0, and a remark warns of it.
    std::optional<MissingPolicy> missing;
    /// How messages spell the option that is the cure.
    OptionSpelling spell = plainly_spelled;
    /// A file with one name per line and row, for formats that have none; empty: rows are numbered.
    std::string row_names_file;
    /// A file of labels, as `read_label_file` takes it; empty: no labels.
    std::string labels_file;
    /// What is done to the values once none is missing.
    Transformations transformations;
    /// Whether the matrix holds the distances of all rows from all rows, in the place of
    /// measurements: it is refused unless it does (`check_distance_matrix`), what is odd about
    /// measurements is not looked for, and nothing is filled in or transformed.
    bool holds_distances = false;
    /// Whether what is left after the treatment of missing values is refused if it cannot be
    /// embedded: fewer than 3 rows, all rows equal, values too large or too close to one another.
    bool check_values = true;
    /// Whether what the columns teach is wanted in `LoadedMatrix::columns`.
    bool learns_columns = false;
    /// Null, or the columns of an earlier matrix, with which the rows are to be compared: the
    /// columns are brought into the order of these, missing values under the policy of column means
    /// become the means of these, the transformations are by the numbers of these. Any number of
    /// rows from 1 will do then, and values are not refused for being alike.
    const KnownColumns* known_columns = nullptr;
    /// Takes how many bytes of the file have been read, packed ones where it is packed.
    OnStage on_stage = {};
    /// If set, called with delimited text and its layout before more than the head is read. What
    /// it throws, `load` throws. Its arguments are of use within this project alone.
    std::function<void(const MatrixSource& source, const TableLayout& layout)> before_reading;
};

}  // namespace ovik
