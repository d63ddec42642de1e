#pragma once

#include <cstddef>
#include <deque>
#include <istream>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "util/parallel.h"
#include "util/thread_locale.h"

namespace ovik {

/// Reads a text file in blocks of whole lines.
class LineBlocks {
  public:
    /// @param file   not owned; read from where it stands
    /// @param size   bytes of a block, more if a line is longer; at least 1
    /// @param begun  what has been read of it
    LineBlocks(std::istream& file, std::size_t size, std::string begun = {})
        : file_(file),
          size_(size),
          remainder_(std::move(begun)) {}

    /// Fetches the next block.
    ///
    /// @param block  replaced by lines that end with "\n", all but the last one of the file
    /// @return false at the end of the file
    bool next(std::string& block) {
        block = std::move(remainder_);
        remainder_.clear();
        // The last line break of the block that was begun.
        std::size_t last_break = block.rfind('\n');
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

    /// Whether there may be more of the file.
    [[nodiscard]] bool hasMore() const { return static_cast<bool>(file_); }

  private:
    std::istream& file_;
    std::size_t size_;
    std::string remainder_;
};

/// Calls `visit(line)` with each line of a text, without its "\n".
template <typename Visit>
void for_each_line(std::string_view text, const Visit& visit) {
    while (!text.empty()) {
        const std::size_t line_break = text.find('\n');
        visit(text.substr(0, line_break));
        text.remove_prefix(line_break == std::string_view::npos ? text.size() : line_break + 1);
    }
}

/// Parses a text in blocks, threads taking them in turns; a text of one block takes no other
/// thread. All of them parse under the locale of the caller.
///
/// @param blocks  `next` and `hasMore`, as `LineBlocks` has them
/// @param parse   `parse(block, parsed)` takes a block into a `Parsed` of its own, which is as new
/// @return what was made of each block, in file order
template <typename Parsed, typename Blocks, typename Parse>
std::deque<Parsed> parse_blocks(Blocks& blocks, const Parse& parse) {
    // The places of blocks stay while others are added.
    std::deque<Parsed> results;
    std::mutex turn;
    const auto fetch = [&](std::string& block) -> Parsed* {
        const std::lock_guard lock(turn);
        return blocks.next(block) ? &results.emplace_back() : nullptr;
    };
    std::string first;
    Parsed* const first_parsed = fetch(first);
    if (first_parsed == nullptr) {
        return results;
    }
    const auto workers = static_cast<std::size_t>(blocks.hasMore() ? most_workers() : 1);
    // The caller waits for the workers, and so keeps its locale while they use it.
    const locale_t callers_locale = thread_locale();
    parallel_for(workers, 1, [&](std::size_t worker, IndexRange /*share*/) {
        const ThreadLocale scope(callers_locale);
        std::string block = worker == 0 ? std::move(first) : std::string();
        Parsed* parsed = worker == 0 ? first_parsed : fetch(block);
        for (; parsed != nullptr; parsed = fetch(block)) {
            parse(std::string_view(block), *parsed);
        }
    });
    return results;
}

/// Bytes of a block: long enough to be worth taking turns for, short enough for the caches.
constexpr std::size_t kTextBlockBytes = std::size_t{1} << 20U;

/// Parses the rest of a text file in blocks of whole lines. See `parse_blocks`.
///
/// @param file   not owned; read from where it stands
/// @param begun  what has been read of it
template <typename Parsed, typename Parse>
std::deque<Parsed> parse_line_blocks(std::istream& file, std::string begun, const Parse& parse) {
    LineBlocks blocks(file, kTextBlockBytes, std::move(begun));
    return parse_blocks<Parsed>(blocks, parse);
}

}  // namespace ovik
