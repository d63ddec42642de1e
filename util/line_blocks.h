#pragma once

#include <algorithm>
#include <cstddef>
#include <istream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "util/parallel.h"

namespace ovik {

/// Reads a text file in blocks of whole lines.
class LineBlocks {
  public:
    /// @param file  not owned; read from where it stands
    /// @param size  bytes of a block, more if a line is longer; at least 1
    LineBlocks(std::istream& file, std::size_t size) : file_(file), size_(size) {}

    /// Fetches the next block.
    ///
    /// @param block  replaced by lines that end with "\n", all but the last one of the file
    /// @return false at the end of the file
    bool next(std::string& block) {
        block = std::move(remainder_);
        remainder_.clear();
        std::size_t last_break = std::string::npos;
        while (last_break == std::string::npos && file_) {
            const std::size_t searched = block.size();
            block.resize(searched + size_);
            file_.read(block.data() + searched, static_cast<std::streamsize>(size_));
            block.resize(searched + static_cast<std::size_t>(file_.gcount()));
            const std::size_t found = std::string_view(block).substr(searched).rfind('\n');
            last_break = found == std::string_view::npos ? found : searched + found;
        }
        if (file_) {
            remainder_ = block.substr(last_break + 1);
            block.erase(last_break + 1);
        }
        return !block.empty();
    }

  private:
    std::istream& file_;
    std::size_t size_;
    std::string remainder_;
};

/// Parts a block of lines into one piece of whole lines per worker, of about equal length; some may
/// be empty.
inline std::vector<std::string_view> share_lines(std::string_view block, std::size_t workers) {
    std::vector<std::string_view> pieces;
    std::size_t begin = 0;
    for (std::size_t worker = 0; worker < workers; ++worker) {
        const std::size_t wanted = static_share(block.size(), workers, worker).end;
        std::size_t end = block.size();
        if (wanted < block.size()) {
            end = std::max(begin, wanted);
            const std::size_t line_break = block.find('\n', end);
            end = line_break == std::string_view::npos ? block.size() : line_break + 1;
        }
        pieces.push_back(block.substr(begin, end - begin));
        begin = end;
    }
    return pieces;
}

/// Calls `visit(line)` with each line of a piece, without its "\n".
template <typename Visit>
void for_each_line(std::string_view piece, const Visit& visit) {
    while (!piece.empty()) {
        const std::size_t line_break = piece.find('\n');
        visit(piece.substr(0, line_break));
        piece.remove_prefix(line_break == std::string_view::npos ? piece.size() : line_break + 1);
    }
}

}  // namespace ovik
