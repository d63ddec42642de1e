#include "input/cell_names.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "input/row_texts.h"

namespace ovik {

namespace {

/// The path of a file, packed or not; empty if there is none.
std::string existing(const std::string& path) {
    for (const char* const extension : {"", ".gz"}) {
        std::error_code error;
        if (std::filesystem::is_regular_file(path + extension, error)) {
            return path + extension;
        }
    }
    return "";
}

std::string field(const std::string& line, std::size_t index) {
    std::size_t begin = 0;
    for (std::size_t i = 0; i < index; ++i) {
        const std::size_t tab = line.find('\t', begin);
        if (tab == std::string::npos) {
            return "";
        }
        begin = tab + 1;
    }
    return line.substr(begin, line.find('\t', begin) - begin);
}

std::vector<std::string> names_in(const std::string& path, std::size_t index) {
    std::vector<std::string> names = lines_of(read_row_file(path, "name"));
    for (std::string& line : names) {
        const std::string name = field(line, index);
        line = name.empty() ? field(line, 0) : name;
    }
    return names;
}

}  // namespace

std::optional<CellNames> names_beside(const std::string& path) {
    constexpr std::string_view kMatrix = "matrix.mtx";
    const std::string_view plain =
        std::string_view(path).substr(0, path.size() - (path.ends_with(".gz") ? 3 : 0));
    if (!plain.ends_with(kMatrix)) {
        return std::nullopt;
    }
    const std::string front(plain.substr(0, plain.size() - kMatrix.size()));
    CellNames names;
    names.cells_file = existing(front + "barcodes.tsv");
    names.features_file = existing(front + "features.tsv");
    if (names.features_file.empty()) {
        names.features_file = existing(front + "genes.tsv");
    }
    if (names.cells_file.empty() || names.features_file.empty()) {
        return std::nullopt;
    }
    names.cells = names_in(names.cells_file, 0);
    names.features = names_in(names.features_file, 1);
    return names;
}

CellOrder cell_order(const CellNames& names, std::size_t rows, std::size_t columns) {
    if (rows == names.features.size() && columns == names.cells.size()) {
        return CellOrder::Columns;
    }
    return rows == names.cells.size() && columns == names.features.size() ? CellOrder::Rows
                                                                          : CellOrder::None;
}

}  // namespace ovik
