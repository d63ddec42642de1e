#include "input/row_texts.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <istream>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "input/byte_order_mark.h"
#include "input/foreign_formats.h"
#include "input/gzip_buffer.h"
#include "util/counted.h"
#include "util/input_error.h"
#include "util/input_file.h"

namespace ovik {

namespace {

std::string rest_of(std::istream& stream) {
    constexpr std::size_t kBlock = std::size_t{1} << 16U;
    std::string text;
    while (stream) {
        const std::size_t before = text.size();
        text.resize(before + kBlock);
        stream.read(text.data() + before, static_cast<std::streamsize>(kBlock));
        text.resize(before + static_cast<std::size_t>(stream.gcount()));
    }
    return text;
}

std::string unpacked(std::string text, const std::string& path) {
    constexpr std::string_view kGzipMagic = "\x1f\x8b";
    if (!text.starts_with(kGzipMagic)) {
        return text;
    }
    std::stringbuf nothing_more;
    GzipBuffer content(nothing_more, std::move(text), path);
    std::istream stream(&content);
    stream.exceptions(std::ios::badbit);
    std::ostringstream result;
    for (char c = 0; stream.get(c);) {
        result.put(c);
    }
    return result.str();
}

/// @throws InputError if this is no text
void check_text(const std::string& text, const std::string& path) {
    if (text.find('\0') == std::string::npos) {
        return;
    }
    const std::string foreign = foreign_format(text);
    throw InputError(path + ": " +
                     (foreign.empty() ? "this holds NUL bytes, and so is no text" : foreign));
}

}  // namespace

std::string read_row_file(const std::string& path, const std::string& what) {
    std::ifstream file = open_input_file(path);
    if (!file.is_open() || std::filesystem::is_directory(path)) {
        throw InputError(path + ": the " + what + "s cannot be read (" +
                         std::generic_category().message(errno != 0 ? errno : EISDIR) + ")");
    }
    std::string text =
        unpacked(with_read_failures_named(path, [&] { return rest_of(file); }), path);
    check_text(text, path);
    return std::string(without_byte_order_mark(text));
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const bool has_return = end > begin && text[end - 1] == '\r';
        lines.push_back(text.substr(begin, end - begin - (has_return ? 1 : 0)));
        begin = end + 1;
    }
    return lines;
}

std::vector<std::string> row_texts_of(const std::string& text,
                                      const std::string& path,
                                      std::size_t row_count,
                                      const std::string& what) {
    std::vector<std::string> texts = lines_of(text);
    if (texts.size() != row_count) {
        throw InputError(path + ": holds " + counted(texts.size(), what, what + "s") +
                         ", but the matrix has " + counted(row_count, "row", "rows") +
                         "\nGive one " + what +
                         " per line, in the order of the rows, without a header.");
    }
    return texts;
}

std::vector<std::string> read_row_texts(const std::string& path,
                                        std::size_t row_count,
                                        const std::string& what) {
    return row_texts_of(read_row_file(path, what), path, row_count, what);
}

}  // namespace ovik
