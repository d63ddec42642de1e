#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "input/inspected_matrix.h"
#include "input/known_columns.h"
#include "input/option_spelling.h"
#include "input/row_totals.h"
#include "util/api.h"
#include "util/elementary.h"

namespace ovik {

/// What is subtracted from the values.
enum class Centring {
    None,
    /// From each value the mean of its row, so that rows that run alike at different levels are
    /// alike.
    Rows,
    /// From each value the mean of its column, which moves no row relative to the others.
    Columns,
};

/// "rows" and "columns"; none for other texts.
OVIK_API std::optional<Centring> centring_of(std::string_view name);

/// What is done to the values of a matrix before they are embedded, in the order of the members.
struct Transformations {
    /// Each row is multiplied so that its values add up to this: for counts of cells, of which more
    /// or less were read. None: rows stay as they are.
    std::optional<RowTotal> row_total = std::nullopt;
    /// log(1 + x), the natural logarithm: for counts.
    bool log1p = false;
    /// Whether that is correctly rounded, and so the same on every machine; else it is the C
    /// library's.
    bool is_portable = false;
    Centring centre = Centring::None;
    /// Each column is divided by its standard deviation, of n - 1 degrees of freedom.
    bool scale = false;
    /// The columns become the rows: what is above speaks of rows and columns as the file has them.
    bool transpose = false;

    /// Whether any value is changed.
    [[nodiscard]] bool any() const {
        return row_total || log1p || centre != Centring::None || scale;
    }
};

/// Names what is done in its order: "row totals median, log1p, center columns, scale, transpose".
/// Empty if nothing is.
std::string names_of(const Transformations& transformations);

/// The logarithm of 1 + x that is taken.
RealFunction log1p_of(const Transformations& transformations);

/// What `names_of` gave these names to; nothing for other texts.
std::optional<Transformations> transformations_of(std::string_view names);

/// Refuses a value below 0 where counts are needed, with its place and the option that needs them.
[[noreturn]] void refuse_negative(const std::string& path,
                                  const OptionSpelling& spell,
                                  const std::string& option,
                                  const InspectedMatrix& matrix,
                                  std::size_t row,
                                  std::size_t column);

/// @throws InputError if the total of a row is not finite
void check_totals(const std::string& path, const std::vector<double>& totals);

/// Transforms the values, which stay where they are. Means and sums of squares are formed in the
/// order of rows or columns, in double precision: the same bits for any number of threads. A column
/// whose values are all equal is not scaled, and is exactly 0 after centring by columns. A row
/// whose values are all equal, but for rounding, is exactly 0 after centring by rows, scaled or
/// not.
///
/// @param path    for messages
/// @param spell   how messages name the options
/// @param matrix  at least two rows; no value is missing
/// @param learnt  null, or what takes the numbers by which the columns were centred and scaled
/// @return what was done, in a sentence for the user
/// @throws InputError if there is a value below 0 of which to take the logarithm or a share, with
/// its place; if a value is missing; if sums get beyond what `double` holds
std::string transform(const std::string& path,
                      const Transformations& transformations,
                      const OptionSpelling& spell,
                      InspectedMatrix& matrix,
                      KnownColumns* learnt = nullptr);

/// Transforms further rows by the numbers that the columns of an earlier matrix gave.
///
/// @param known   what `transform` learnt from that matrix, of as many columns
/// @param matrix  of any number of rows; no value is missing
/// @return, @throws as `transform`; InputError if rows are to add up to a median, which is of rows
/// that are not there
std::string transform_alike(const std::string& path,
                            const Transformations& transformations,
                            const KnownColumns& known,
                            const OptionSpelling& spell,
                            InspectedMatrix& matrix);

}  // namespace ovik
