#include "input/row_texts.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "util/counted.h"
#include "util/input_error.h"
#include "util/input_file.h"

namespace ovik {

std::vector<std::string> read_row_texts(const std::string& path,
                                        std::size_t row_count,
                                        const std::string& what) {
    std::ifstream file = open_input_file(path);
    if (!file.is_open() || std::filesystem::is_directory(path)) {
        throw InputError(path + ": the " + what + "s cannot be read (" +
                         std::generic_category().message(errno != 0 ? errno : EISDIR) + ")");
    }
    std::vector<std::string> texts;
    with_read_failures_named(path, [&] {
        std::string line;
        while (std::getline(file, line)) {
            if (!line.empty() && line.back() == '\r') {
                line.pop_back();
            }
            texts.push_back(line);
        }
    });
    if (texts.size() != row_count) {
        throw InputError(path + ": holds " + counted(texts.size(), what, what + "s") +
                         ", but the matrix has " + counted(row_count, "row", "rows") +
                         "\nGive one " + what +
                         " per line, in the order of the rows, without a header.");
    }
    return texts;
}

}  // namespace ovik
