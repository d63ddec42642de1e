#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "input/row_texts.h"
#include "util/input_error.h"

#include "tests/fuzz/support/plain_matrix.h"
#include "tests/fuzz/support/require.h"
#include "tests/support/temporary_directory.h"

/// The reader of label files against a plain splitter. The first byte of an input says by how many
/// the matrix has more or fewer rows than the file has lines; the file follows.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ovik;
    static const test::TemporaryDirectory kDirectory;
    if (size == 0) {
        return 0;
    }
    const std::string content(data + 1, data + size);
    // Packed files and those that are no text have tests of their own.
    if (content.starts_with("\x1f\x8b") || content.find('\0') != std::string::npos) {
        return 0;
    }
    const bool is_marked = content.starts_with("\xef\xbb\xbf");
    std::vector<std::string> expected = test::plain_lines(content.substr(is_marked ? 3 : 0));
    for (std::string& label : expected) {
        if (label.ends_with('\r')) {
            label.pop_back();
        }
    }
    const std::string path = kDirectory.write("labels", content);
    OVIK_REQUIRE(read_row_texts(path, expected.size(), "label") == expected);
    // "0" is 48: as many rows as lines.
    const std::size_t rows = expected.size() + data[0] - (data[0] < 48 ? 0U : 48U);
    bool was_refused = false;
    try {
        read_row_texts(path, rows, "label");
    } catch (const InputError& error) {
        was_refused = true;
        const std::string message = error.what();
        OVIK_REQUIRE(message.starts_with(path + ": holds " + std::to_string(expected.size()) +
                                         (expected.size() == 1 ? " label," : " labels,")));
        OVIK_REQUIRE(message.find(std::to_string(rows) + " row") != std::string::npos);
    }
    OVIK_REQUIRE(was_refused == (rows != expected.size()));
    return 0;
}
