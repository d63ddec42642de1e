#include "tools/start_file.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "input/matrix_source.h"
#include "input/npy_matrix.h"
#include "input/quoted_record.h"
#include "input/row_texts.h"
#include "stats/embedding_start.h"
#include "util/console.h"
#include "util/counted.h"
#include "util/input_error.h"
#include "util/number_field.h"
#include "util/plain_text.h"

#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

constexpr std::size_t kListed = 3;

/// A coordinate of the row of a name.
struct Coordinate {
    std::size_t line;
    std::string name;
    std::size_t dimension;
    double value;
};

[[noreturn]] void refuse(const std::string& path,
                         std::size_t line,
                         const std::string& reason,
                         const std::string& cure) {
    throw InputError(path + ", line " + std::to_string(line) + ": " + reason + "\n" + cure);
}

/// Nothing for a text that is no finite number.
std::optional<double> read_number(const std::string& text) {
    const NumberReader reader;
    const char* const end = text.c_str() + text.size();
    const char* rest = nullptr;
    const double value = reader.read(text.c_str(), end, rest);
    return !text.empty() && rest == end && std::isfinite(value) ? std::optional(value)
                                                                : std::nullopt;
}

bool is_number(const std::string& text) {
    return read_number(text).has_value();
}

double number_of(const std::string& path, std::size_t line, const std::string& text) {
    const std::optional<double> value = read_number(text);
    if (!value) {
        refuse(path,
               line,
               "\"" + text + "\" is no coordinate",
               "Give each row a finite number for each dimension, and leave out rows without a "
               "place: they start among their neighbours.");
    }
    return *value;
}

/// Reads tables that the command writes for its plots: a line for each row and pair of dimensions,
/// with names that are not quoted.
class ResultTableReader {
  public:
    static bool recognises(const std::string& header) {
        return header.starts_with("name,data in xaxis,data in yaxis,");
    }

    ResultTableReader(const std::string& path, std::size_t dims) : path_(path), dims_(dims) {}

    /// Appends the coordinates of a line that are wanted; those of dimension 1 stand in many.
    void read(std::size_t number, const std::string& line, std::vector<Coordinate>& found) const {
        const std::size_t begin = behindCoordinates(number, line);
        const std::size_t second = line.rfind(',', begin - 1);
        const std::size_t first = second == 0 || second == std::string::npos
                                      ? std::string::npos
                                      : line.rfind(',', second - 1);
        if (first == std::string::npos) {
            refuseLine(number);
        }
        const std::string name = line.substr(0, first);
        const auto add = [&](std::size_t dimension, std::size_t from, std::size_t to) {
            const std::string text = line.substr(from + 1, to - from - 1);
            found.push_back({number, name, dimension, number_of(path_, number, text)});
        };
        const std::string_view group = std::string_view(line).substr(begin + 3);
        if (group.starts_with(kPairs)) {
            readPair(number, group.substr(std::string_view(kPairs).size()), [&](std::size_t other) {
                if (other == 1) {
                    add(0, first, second);
                }
                add(other, second, begin);
            });
        } else {
            if (dims_ != 2) {
                refuse(path_,
                       number,
                       "the table is of a map of 2 dimensions, not of " + std::to_string(dims_),
                       "Give a start with as many.");
            }
            add(0, first, second);
            add(1, second, begin);
        }
    }

  private:
    static constexpr const char* kPairs = "Group:";

    /// Where ",1," follows the coordinates, and then the group.
    [[nodiscard]] std::size_t behindCoordinates(std::size_t number, const std::string& line) const {
        const std::size_t begin =
            std::min(line.find(",1,Data,\""), line.find(std::string(",1,") + kPairs));
        if (begin == std::string::npos || begin == 0) {
            refuseLine(number);
        }
        return begin;
    }

    [[noreturn]] void refuseLine(std::size_t number) const {
        refuse(path_,
               number,
               "this is no line of a result table",
               "Give the table as the command wrote it.");
    }

    /// Visits the second dimension of a pair "1:3", counted from 0, if 1 is the first.
    template <typename Visit>
    void readPair(std::size_t number, std::string_view pair, const Visit& visit) const {
        if (!pair.starts_with("1:")) {
            return;
        }
        const std::string other(pair.substr(2, pair.find(',') - 2));
        const double dimension = number_of(path_, number, other);
        if (!(dimension >= 2.0 && dimension <= static_cast<double>(dims_))) {
            refuse(path_,
                   number,
                   "the table is of a map of other dimensions than " + std::to_string(dims_),
                   "Give a start with as many.");
        }
        visit(static_cast<std::size_t>(dimension) - 1);
    }

    const std::string& path_;
    std::size_t dims_;
};

/// The fields of a line.
std::vector<std::string> fields_of(std::string line, char delimiter) {
    std::vector<std::string> fields;
    for_each_record_field(line, delimiter, [&fields](const char* field, const char* end) {
        fields.emplace_back(field, end);
    });
    return fields;
}

/// Reads tables with a header and the names in the first column.
class TableReader {
  public:
    TableReader(const std::string& path, const std::string& header, std::size_t dims)
        : path_(path),
          delimiter_(header.find('\t') != std::string::npos  ? '\t'
                     : header.find(',') != std::string::npos ? ','
                                                             : ';') {
        const std::vector<std::string> titles = fields_of(header, delimiter_);
        checkIsHeader(titles);
        for (std::size_t d = 0; d < dims; ++d) {
            columns_.push_back(columnOf(titles, d));
        }
        checkDimensions(titles);
        if (std::count(columns_.begin(), columns_.end(), 0U) == 0) {
            return;
        }
        if (titles.size() != dims + 1) {
            refuse(path,
                   1,
                   "the header names no columns component_1, component_2 or x, y, and stands for "
                   "other columns than a name and " +
                       std::to_string(dims) + " coordinates",
                   "Give the table of an earlier run, or one of names and coordinates alone.");
        }
        for (std::size_t d = 0; d < dims; ++d) {
            columns_[d] = d + 1;
        }
    }

    void read(std::size_t number, const std::string& line, std::vector<Coordinate>& found) const {
        const std::vector<std::string> fields = fields_of(line, delimiter_);
        for (std::size_t d = 0; d < columns_.size(); ++d) {
            if (columns_[d] >= fields.size()) {
                refuse(path_,
                       number,
                       "has " + counted(fields.size(), "field", "fields") +
                           ", fewer than the header stands for",
                       "Give each line a name and its coordinates.");
            }
            found.push_back({number, fields[0], d, number_of(path_, number, fields[columns_[d]])});
        }
    }

  private:
    /// @throws InputError if this is the line of a row
    void checkIsHeader(const std::vector<std::string>& titles) const {
        // Programs that number columns leave the one of the names without a title.
        if (titles.size() > 1 && !titles[0].empty() &&
            std::all_of(titles.begin() + 1, titles.end(), is_number)) {
            refuse(path_,
                   1,
                   "\"" + titles[0] + "\" has numbers there, and this line should be a header",
                   "Put one above the first row, such as name, x, y.");
        }
    }

    /// @throws InputError if the titles are those of a map of more dimensions
    void checkDimensions(const std::vector<std::string>& titles) const {
        const std::size_t dims = columns_.size();
        if (std::count(columns_.begin(), columns_.end(), 0U) == 0 && columnOf(titles, dims) != 0) {
            refuse(path_,
                   1,
                   "the table has \"" + titles[columnOf(titles, dims)] +
                       "\", too: it is of a map of more dimensions than " + std::to_string(dims),
                   "Give a start with as many, or take the other columns out.");
        }
    }

    /// The column that the command calls that of dimension d; 0 if there is none.
    static std::size_t columnOf(const std::vector<std::string>& titles, std::size_t d) {
        const std::string numbered = "component_" + std::to_string(d + 1);
        const std::string lettered = d < 3 ? std::string(1, "xyz"[d]) : numbered;
        for (std::size_t column = 1; column < titles.size(); ++column) {
            if (titles[column] == numbered || titles[column] == lettered) {
                return column;
            }
        }
        return 0;
    }

    const std::string& path_;
    char delimiter_;
    std::vector<std::size_t> columns_;
};

/// Reads each line below the header that is not empty.
template <typename Reader>
std::vector<Coordinate> read_lines(const std::vector<std::string>& lines, const Reader& reader) {
    std::vector<Coordinate> found;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        if (!lines[i].empty()) {
            reader.read(i + 1, lines[i], found);
        }
    }
    return found;
}

std::vector<Coordinate> read_table(const std::string& path, std::size_t dims) {
    const std::vector<std::string> lines = lines_of(read_row_file(path, "start"));
    if (lines.size() < 2) {
        throw InputError(path + ": holds no line of a name and coordinates under a header");
    }
    return ResultTableReader::recognises(lines[0])
               ? read_lines(lines, ResultTableReader(path, dims))
               : read_lines(lines, TableReader(path, lines[0], dims));
}

/// The place of each name.
struct NamedPlaces {
    struct Place {
        std::vector<double> coordinates;
        std::vector<std::size_t> lines;
        bool is_of_row = false;
    };

    std::unordered_map<std::string, Place> places;
    /// In the order of the file.
    std::vector<std::string> names;
};

[[noreturn]] void refuse_few_coordinates(const std::string& path,
                                         const std::string& name,
                                         std::size_t dims) {
    throw InputError(path + ": \"" + name + "\" has fewer than " + std::to_string(dims) +
                     " coordinates\nGive a start with as many dimensions as the map.");
}

/// @throws InputError if a name has two places, or not all coordinates
NamedPlaces places_of(const std::string& path,
                      const std::vector<Coordinate>& coordinates,
                      std::size_t dims) {
    NamedPlaces named;
    for (const Coordinate& coordinate : coordinates) {
        const auto [place, is_new] = named.places.try_emplace(coordinate.name);
        if (is_new) {
            named.names.push_back(coordinate.name);
            place->second.coordinates.resize(dims);
            place->second.lines.resize(dims);
        }
        std::size_t& line = place->second.lines[coordinate.dimension];
        if (line != 0) {
            refuse(path,
                   coordinate.line,
                   "\"" + coordinate.name + "\" stands in line " + std::to_string(line) +
                       ", too, with another place",
                   "Give each name one place, or an array (.npy) in the order of the rows.");
        }
        line = coordinate.line;
        place->second.coordinates[coordinate.dimension] = coordinate.value;
    }
    for (const std::string& name : named.names) {
        const std::vector<std::size_t>& at = named.places[name].lines;
        if (std::count(at.begin(), at.end(), 0U) > 0) {
            refuse_few_coordinates(path, name, dims);
        }
    }
    return named;
}

StartPlaces places_by_name(const std::string& path,
                           NamedPlaces named,
                           const std::vector<std::string>& row_names,
                           std::size_t dims) {
    StartPlaces start;
    start.places.assign(row_names.size() * dims, std::numeric_limits<double>::quiet_NaN());
    for (std::size_t n = 0; n < row_names.size(); ++n) {
        const auto found = named.places.find(row_names[n]);
        if (found != named.places.end()) {
            found->second.is_of_row = true;
            std::copy(found->second.coordinates.begin(),
                      found->second.coordinates.end(),
                      start.places.begin() + static_cast<std::ptrdiff_t>(n * dims));
            ++start.placed;
        }
    }
    for (const std::string& name : named.names) {
        if (!named.places[name].is_of_row && ++start.names_left <= kListed) {
            start.first_names_left.push_back(name);
        }
    }
    if (start.placed == 0) {
        throw InputError(path + ": none of its names (" + named.names.front() +
                         ", ...) is that of a row (" + row_names.front() +
                         ", ...)\nGive the rows of the matrix the names that they have there.");
    }
    return start;
}

StartPlaces places_of_array(MatrixSource& source, std::size_t rows, std::size_t dims) {
    const InspectedMatrix array = read_npy_matrix(source);
    if (array.report.rows != rows || array.report.columns != dims) {
        throw InputError(source.name() + ": the array has the shape (" +
                         std::to_string(array.report.rows) + ", " +
                         std::to_string(array.report.columns) + "), and the map has (" +
                         std::to_string(rows) + ", " + std::to_string(dims) +
                         ")\nGive a place for each row of the matrix, in its order, or a table in "
                         "which rows are found by name.");
    }
    StartPlaces start;
    start.places.assign(array.values.get(), array.values.get() + rows * dims);
    for (std::size_t n = 0; n < rows; ++n) {
        start.placed += std::isnan(start.places[n * dims]) ? 0 : 1;
    }
    return start;
}

}  // namespace

StartPlaces read_start_file(const std::string& path,
                            const std::vector<std::string>& row_names,
                            std::size_t dims) {
    {
        MatrixSource source(path);
        if (source.head().starts_with("\x93NUMPY")) {
            return places_of_array(source, row_names.size(), dims);
        }
    }
    std::vector<Coordinate> coordinates = read_table(path, dims);
    if (coordinates.empty()) {
        throw InputError(path + ": holds no line of a name and coordinates under a header");
    }
    return places_by_name(path, places_of(path, coordinates, dims), row_names, dims);
}

std::vector<double> settle_start(const Options& options,
                                 const std::vector<std::string>& row_names) {
    if (options.fit.start != StartKind::Given) {
        return {};
    }
    const auto dims = static_cast<std::size_t>(options.fit.out_dims);
    StartPlaces start = read_start_file(options.start_file, row_names, dims);
    print_info(one_line_utf8(start_line(start, options.start_file, row_names.size())));
    const std::string remark = extent_remark({start.places.data(), row_names.size(), dims});
    if (!remark.empty()) {
        complain("warning: " + options.start_file + ": " + remark);
    }
    return std::move(start.places);
}

std::string start_line(const StartPlaces& start, const std::string& path, std::size_t row_count) {
    std::string line = "Start: " + std::to_string(start.placed) + " of " +
                       counted(row_count, "row has its", "rows have their") + " place in " + path;
    if (start.placed < row_count) {
        line += ", the others start among their neighbours";
    }
    if (start.names_left > 0) {
        line += "; " + counted(start.names_left, "name is", "names are") + " of no row: ";
        for (std::size_t n = 0; n < start.first_names_left.size(); ++n) {
            line += (n == 0 ? "" : ", ") + start.first_names_left[n];
        }
        line += start.names_left > start.first_names_left.size() ? ", ..." : "";
    }
    return line;
}

}  // namespace ovik::tool
