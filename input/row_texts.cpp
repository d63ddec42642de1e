#include "input/row_texts.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

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

}  // namespace

std::string read_row_file(const std::string& path, const std::string& what) {
    std::ifstream file = open_input_file(path);
    if (!file.is_open() || std::filesystem::is_directory(path)) {
        throw InputError(path + ": the " + what + "s cannot be read (" +
                         std::generic_category().message(errno != 0 ? errno : EISDIR) + ")");
    }
    return with_read_failures_named(path, [&] { return rest_of(file); });
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
