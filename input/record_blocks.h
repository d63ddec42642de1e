#pragma once

#include <cstddef>
#include <istream>
#include <string>

#include "util/line_blocks.h"

namespace ovik {

/// Reads delimited text in blocks of whole records, of which one may span several lines if its
/// fields stand in quotes. Text without quotes comes in the blocks of `LineBlocks`.
class RecordBlocks {
  public:
    /// Longer fields come of a quote that nothing closes: the block then ends within the record.
    static constexpr std::size_t kLongestRecord = std::size_t{1} << 24U;

    /// @param file   not owned; read from where it stands
    /// @param size   bytes of a block, more if a record is longer; at least 1
    /// @param begun  what has been read of it
    RecordBlocks(std::istream& file, std::size_t size, std::string begun, char delimiter);

    /// Fetches the next block.
    ///
    /// @param block  replaced by records
    /// @return false at the end of the file
    bool next(std::string& block);

    /// Whether there may be more of the file.
    [[nodiscard]] bool hasMore() const { return lines_.hasMore(); }

  private:
    /// Where the record begins that is open at the end of a block; the block's size if none is.
    [[nodiscard]] std::size_t openRecord(const std::string& block, std::size_t from) const;

    LineBlocks lines_;
    char delimiter_;
};

}  // namespace ovik
