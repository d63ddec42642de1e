#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "input/inspected_matrix.h"
#include "input/table_layout.h"
#include "input/value_reader.h"

namespace ovik {

/// How lines become rows.
struct RowRules {
    static constexpr std::size_t kNoField = static_cast<std::size_t>(-1);

    const TableLayout& layout;
    ValueReader values;
    bool is_ordinary = layout.isOrdinary();
    /// Whether what is read with a point in it may be a number with points between thousands.
    bool doubts_points = layout.delimiter == ';' && !layout.decimal;
    std::size_t names_field = layout.names_field.value_or(kNoField);
};

/// The rows of some lines; lines are counted from 1, the first of these.
class BlockOfRows {
  public:
    /// Values of a row: those read, and those that it would have if trimming had left all of its
    /// line.
    struct Length {
        std::size_t values;
        std::size_t untrimmed;
    };

    /// A line that opens with "#" and has numbers in most of its fields.
    struct Comment {
        std::size_t line;
        std::string first_field;
        Length length;
    };

    /// Adds the rows of a text of whole records.
    void addAll(std::string_view text, const RowRules& rules);

    std::size_t lines = 0;
    /// Whether the line that ends the table has come; what follows is not looked at.
    bool has_ended = false;
    std::optional<std::size_t> first_nul_line;
    /// The line of the first quote that opens a field and is not closed as it should be.
    std::optional<std::size_t> first_bad_quote_line;
    std::vector<std::string> names;
    std::vector<std::size_t> row_lines;
    std::vector<Length> lengths;
    /// The values of all rows, row after row.
    std::vector<double> values;
    std::vector<Comment> comments;
    /// What the fields hold: `numbers`, findings, `by_column`, `no_rows`, and
    /// rows over lines alone are filled in.
    MatrixReport report;

  private:
    /// Adds the record with which a text begins.
    ///
    /// @return bytes of it
    std::size_t addRecord(std::string_view text, const RowRules& rules);

    /// Takes note of a row that goes on over line ends.
    void noteLines(std::string_view row,
                   std::size_t first_line,
                   std::size_t last_line,
                   char delimiter);

    /// @param text  a line, or a record of several lines, without the line feed at its end
    template <bool IsQuoted>
    void addText(std::string_view text, const RowRules& rules);

    /// Keeps a comment that may be a row.
    ///
    /// @param more  empty fields that trimming has taken from its end
    void addComment(std::string_view text, std::size_t more, const RowRules& rules);

    bool isNoRow(std::string_view row, const TableLayout& layout);

    /// @return fields of the row
    template <typename VisitFields>
    std::size_t addRow(const RowRules& rules, const VisitFields& visit_fields);

    void addValue(const RowRules& rules,
                  const char* text,
                  const char* end,
                  std::size_t field,
                  std::size_t column);

    void noteField(FieldKind kind, const char* text, std::size_t field, std::size_t column);

    /// Takes note of how a number uses points.
    void notePoints(const char* text, std::size_t field);

    /// Takes note of a field of the row that came last, whose name may not be known yet.
    void note(FieldFindings& findings, std::size_t field, const char* text);

    /// @param lost_fields  empty fields that trimming has taken from the front of the line
    void noteName(const RowRules& rules, std::size_t lost_fields);

    std::string line_;
    /// Findings that the row being read has added a place to.
    std::vector<FieldFindings*> of_this_row_;
};

}  // namespace ovik
