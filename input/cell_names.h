#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace ovik {

/// The names that stand beside a matrix in the directories that the 10x pipelines write:
/// `matrix.mtx`, `barcodes.tsv`, `features.tsv` (or `genes.tsv`), each packed or not, and each with
/// the same text in front, as in downloads of several samples.
struct CellNames {
    std::string cells_file;
    std::string features_file;
    /// The first field of each line.
    std::vector<std::string> cells;
    /// The second field of each line, the symbol of a gene; the first where there is no other.
    std::vector<std::string> features;
};

/// The names beside a matrix file.
///
/// @param path  of the matrix; empty or "-" has nothing beside it
/// @return none unless the file is called so and both files of names are there
/// @throws InputError if they cannot be read
std::optional<CellNames> names_beside(const std::string& path);

/// How the files of names lie along a matrix.
enum class CellOrder {
    /// They are of another matrix.
    None,
    /// Cells are its columns, as the pipelines write it.
    Columns,
    /// Cells are its rows.
    Rows,
};

CellOrder cell_order(const CellNames& names, std::size_t rows, std::size_t columns);

}  // namespace ovik
