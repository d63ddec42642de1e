#include "tools/label_join.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "annotation/gene_lookup.h"
#include "input/value_reader.h"
#include "util/console.h"
#include "util/counted.h"
#include "util/input_error.h"
#include "util/plain_text.h"

#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

constexpr std::size_t kNoLine = static_cast<std::size_t>(-1);

/// The systematic name of the gene that a name stands for; empty if it is none or several.
std::string_view gene_of(const std::string& name) {
    return identify_gene(name).systematic;
}

/// Finds the line of labels that belongs to a row.
class LineFinder {
  public:
    LineFinder(const LabelTable& table, const std::string& path, bool genes)
        : table_(table),
          path_(path),
          genes_(genes) {
        for (std::size_t line = 0; line < table.names.size(); ++line) {
            by_name_.emplace(table.names[line], line);
            const std::string_view gene = genes ? gene_of(table.names[line]) : "";
            if (!gene.empty()) {
                by_gene_.emplace(gene, line);
            }
        }
    }

    [[nodiscard]] std::size_t byName(const std::string& row) const {
        const auto found = by_name_.find(row);
        return found == by_name_.end() ? kNoLine : found->second;
    }

    /// @throws InputError if two lines are of the gene of the row
    [[nodiscard]] std::size_t byGene(const std::string& row) const {
        const std::string_view gene = genes_ ? gene_of(row) : "";
        const auto [first, last] = by_gene_.equal_range(gene);
        if (first == last) {
            return kNoLine;
        }
        if (std::next(first) != last) {
            const std::size_t one = first->second;
            const std::size_t other = std::next(first)->second;
            throw InputError(path_ + ": lines " + std::to_string(table_.lines[one]) + " (" +
                             table_.names[one] + ") and " + std::to_string(table_.lines[other]) +
                             " (" + table_.names[other] + ") are of one gene, that of the row " +
                             row + "\nLeave one of them, or give it the name of the row.");
        }
        return first->second;
    }

  private:
    const LabelTable& table_;
    const std::string& path_;
    bool genes_;
    std::unordered_map<std::string_view, std::size_t> by_name_;
    std::multimap<std::string_view, std::size_t> by_gene_;
};

/// A header that is left out would cost the first row its label without a word.
void check_header(const LabelTable& table,
                  const std::vector<std::string>& row_names,
                  const std::string& path,
                  bool genes) {
    const std::string& title = table.names_title;
    if (title.empty()) {
        return;
    }
    const std::string refusal_begin = path + ": the first line opens with " + title;
    const std::string refusal_end =
        ", where titles are expected\nPut a header line above it, such as: name, label.";
    if (std::find(row_names.begin(), row_names.end(), title) != row_names.end()) {
        throw InputError(refusal_begin + ", the name of a row" + refusal_end);
    }
    const std::string_view gene = genes ? gene_of(title) : "";
    const auto row =
        gene.empty() ? row_names.end()
                     : std::find_if(row_names.begin(), row_names.end(), [gene](const auto& name) {
                           return gene_of(name) == gene;
                       });
    if (row != row_names.end()) {
        throw InputError(refusal_begin + ", a name of the gene of the row " + *row + refusal_end);
    }
}

/// The lines that belong to the rows.
std::vector<std::size_t> lines_of_rows(const LineFinder& finder,
                                       const std::vector<std::string>& row_names,
                                       JoinCounts& counts) {
    std::vector<std::size_t> lines;
    lines.reserve(row_names.size());
    for (const std::string& row : row_names) {
        std::size_t line = finder.byName(row);
        counts.by_name += line != kNoLine ? 1U : 0U;
        if (line == kNoLine) {
            line = finder.byGene(row);
            counts.by_gene += line != kNoLine ? 1U : 0U;
        }
        lines.push_back(line);
    }
    return lines;
}

void count_names_left(const LabelTable& table,
                      const std::vector<std::size_t>& lines,
                      JoinCounts& counts) {
    constexpr std::size_t kListed = 3;
    std::vector<bool> is_taken(table.names.size());
    for (const std::size_t line : lines) {
        if (line != kNoLine) {
            is_taken[line] = true;
        }
    }
    for (std::size_t line = 0; line < is_taken.size(); ++line) {
        if (!is_taken[line] && ++counts.names_left <= kListed) {
            counts.first_names_left.push_back(table.names[line]);
        }
    }
}

/// The labels as numbers, NaN where they are missing; empty if one is no finite number, or all are
/// missing.
std::vector<double> as_numbers(const std::vector<std::string>& texts, const ValueReader& reader) {
    std::vector<double> numbers;
    numbers.reserve(texts.size());
    bool has_number = false;
    for (const std::string& text : texts) {
        double value = 0.0;
        const FieldKind kind = reader.read(text.c_str(), text.c_str() + text.size(), value);
        if (kind != FieldKind::Number && kind != FieldKind::Missing) {
            return {};
        }
        has_number = has_number || kind == FieldKind::Number;
        numbers.push_back(kind == FieldKind::Number ? value
                                                    : std::numeric_limits<double>::quiet_NaN());
    }
    return has_number ? numbers : std::vector<double>();
}

/// Whether the labels of a column are groups even if they are numbers: those of clusters are no
/// quantity.
bool names_clusters(std::string title) {
    std::transform(title.begin(), title.end(), title.begin(), [](unsigned char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : static_cast<char>(c);
    });
    return title == "cluster" || title == "clusters";
}

LabelColumn column_of(const LabelTable& table,
                      std::size_t position,
                      const std::vector<std::size_t>& lines,
                      std::optional<char> decimal) {
    const std::vector<std::string>& fields = table.columns[position];
    const bool are_groups = names_clusters(table.titles[position]);
    std::vector<double> numbers;
    if (!are_groups) {
        numbers = as_numbers(fields, ValueReader());
    }
    if (numbers.empty() && !are_groups) {
        numbers = as_numbers(fields, ValueReader(decimal));
    }
    LabelColumn column;
    column.title = table.titles[position].empty() ? "label" : table.titles[position];
    for (const std::size_t line : lines) {
        const bool has_line = line != kNoLine;
        const bool is_missing =
            !has_line || fields[line] == "NA" || (!numbers.empty() && std::isnan(numbers[line]));
        column.texts.push_back(is_missing ? "" : fields[line]);
        if (!numbers.empty()) {
            column.numbers.push_back(has_line ? numbers[line]
                                              : std::numeric_limits<double>::quiet_NaN());
        }
    }
    return column;
}

}  // namespace

JoinedLabels join_labels(const LabelTable& table,
                         const std::vector<std::string>& row_names,
                         const std::string& path,
                         bool genes,
                         std::optional<char> decimal) {
    check_header(table, row_names, path, genes);
    JoinedLabels joined;
    joined.counts.rows = row_names.size();
    const std::vector<std::size_t> lines =
        lines_of_rows(LineFinder(table, path, genes), row_names, joined.counts);
    count_names_left(table, lines, joined.counts);
    if (joined.counts.by_name + joined.counts.by_gene == 0) {
        throw InputError(path + ": none of its names (" + table.names.front() +
                         ", ...) is that of a row (" +
                         (row_names.empty() ? "" : row_names.front()) +
                         ", ...)\nThe first column names rows of the matrix; a file with one label "
                         "per line and row has no column of names and no header.");
    }
    for (std::size_t position = 0; position < table.columns.size(); ++position) {
        joined.columns.push_back(column_of(table, position, lines, decimal));
    }
    const std::vector<std::string>& first = joined.columns.front().texts;
    joined.counts.unlabelled = static_cast<std::size_t>(std::count(first.begin(), first.end(), ""));
    return joined;
}

std::string comma_labels_warning(const LabelTable& table,
                                 const std::vector<LabelColumn>& columns,
                                 const std::string& path) {
    const ValueReader with_commas(',');
    for (std::size_t position = 0; position < columns.size(); ++position) {
        if (!columns[position].isNumeric() && !names_clusters(table.titles[position]) &&
            !as_numbers(table.columns[position], with_commas).empty()) {
            return "warning: " + path + ": the labels of \"" + columns[position].title +
                   "\" are numbers with decimal commas, and are taken for groups\n--decimal , "
                   "reads them as a quantity, and numbers with a comma in the matrix, too; else "
                   "write them with points.";
        }
    }
    return "";
}

std::vector<LabelColumn> settle_labels(const LoadedMatrix& loaded, const Options& options) {
    if (!loaded.label_table) {
        return {};
    }
    JoinedLabels joined = join_labels(*loaded.label_table,
                                      loaded.matrix.row_names,
                                      options.load.labels_file,
                                      options.names != RowNames::Other,
                                      options.load.decimal);
    const std::string warning =
        comma_labels_warning(*loaded.label_table, joined.columns, options.load.labels_file);
    if (!warning.empty()) {
        complain(warning);
    }
    print_info(one_line_utf8(joined_labels_line(joined.counts)));
    return std::move(joined.columns);
}

std::string joined_labels_line(const JoinCounts& counts) {
    std::string line = "Labels: " + std::to_string(counts.rows - counts.unlabelled) + " of " +
                       counted(counts.rows, "row", "rows") + " labelled, " +
                       std::to_string(counts.unlabelled) + " without a label";
    if (counts.by_gene > 0) {
        line += "; " + counted(counts.by_gene, "row was", "rows were") +
                " found under another name of the gene";
    }
    if (counts.names_left > 0) {
        line += "; " + counted(counts.names_left, "name is", "names are") + " of no row: ";
        for (std::size_t n = 0; n < counts.first_names_left.size(); ++n) {
            line += (n == 0 ? "" : ", ") + counts.first_names_left[n];
        }
        line += counts.names_left > counts.first_names_left.size() ? ", ..." : "";
    }
    return line;
}

}  // namespace ovik::tool
