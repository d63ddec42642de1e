#pragma once

#include <cstddef>
#include <string_view>

#include "input/matrix_source.h"

namespace ovik {

/// What a file in the Matrix Market exchange format says of its matrix before the entries.
struct MarketHead {
    std::size_t rows = 0;
    std::size_t columns = 0;
    /// Entries of the file. That of a symmetric matrix holds one triangle.
    std::size_t entries = 0;
    /// Whether each entry comes with its place, and those left out are 0.
    bool is_sparse = false;
    /// Whether entries have no values.
    bool is_pattern = false;
    /// Symmetric or skew-symmetric.
    bool is_symmetric = false;
    /// -1 for a skew-symmetric matrix, else 1.
    double mirror_sign = 1.0;
};

/// An entry as it stands in the file.
struct MarketEntry {
    /// From 0.
    std::size_t row;
    std::size_t column;
    /// Of a pattern 1.
    double value;
    /// From 1.
    std::size_t line;
    /// The last word of the line; invalid after the call.
    std::string_view text;
};

/// Takes what a file holds, in its order.
class MarketSink {
  public:
    MarketSink() = default;
    MarketSink(const MarketSink&) = delete;
    MarketSink& operator=(const MarketSink&) = delete;
    virtual ~MarketSink() = default;

    virtual void begin(const MarketHead& head) = 0;
    virtual void add(const MarketEntry& entry) = 0;
};

/// Whether a file that opens so holds a sparse matrix.
bool opens_sparse_market(std::string_view head);

/// Reads a file in the Matrix Market exchange format entry by entry: dense ("array") or sparse
/// ("coordinate"), of real or whole numbers or of a pattern, general, symmetric or skew-symmetric.
///
/// @param source  read to its end
/// @throws InputError with the line, if the file is not of this format
/// @throws std::system_error if the file cannot be read to its end
/// @throws what the sink throws
/// @par Source Boisvert, Pozo and Remington, "The Matrix Market Exchange Formats: Initial Design",
/// NISTIR 5935, 1996
void read_market_entries(MatrixSource& source, MarketSink& sink);

}  // namespace ovik
