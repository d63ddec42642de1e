#include "input/record_blocks.h"

#include <string_view>
#include <utility>

#include "input/quoted_record.h"

namespace ovik {

RecordBlocks::RecordBlocks(std::istream& file, std::size_t size, std::string begun, char delimiter)
    : lines_(file, size, std::move(begun)),
      delimiter_(delimiter) {}

bool RecordBlocks::next(std::string& block) {
    if (!lines_.next(block)) {
        return false;
    }
    std::string more;
    std::size_t open = openRecord(block, 0);
    while (open < block.size() && block.size() - open < kLongestRecord) {
        // Twice as much each time, so that a long record is not searched too often.
        const std::size_t enough = block.size() + (block.size() - open);
        bool has_more = true;
        while (has_more && block.size() < enough) {
            has_more = lines_.next(more);
            block += has_more ? more : "";
        }
        if (!has_more && block.size() < enough) {
            break;
        }
        open = openRecord(block, open);
    }
    return true;
}

std::size_t RecordBlocks::openRecord(const std::string& block, std::size_t from) const {
    const std::string_view text = block;
    while (from < text.size()) {
        const std::size_t quote = text.find('"', from);
        if (quote == std::string_view::npos) {
            return text.size();
        }
        // Lines in front of that of the next quote are records.
        const std::size_t line_feed = text.substr(0, quote).rfind('\n');
        from = line_feed == std::string_view::npos || line_feed < from ? from : line_feed + 1;
        const QuotedRecord record = first_record(text.substr(from), delimiter_);
        if (record.is_open) {
            return from;
        }
        from += record.length;
    }
    return text.size();
}

}  // namespace ovik
