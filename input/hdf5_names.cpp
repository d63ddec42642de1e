#include "input/hdf5_names.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "input/hdf5_dataset.h"
#include "util/memory_text.h"
#include "util/plain_text.h"

namespace ovik::hdf5 {

namespace {

/// What a text takes beside its characters.
constexpr double kTextBytes = 64.0;

/// Counts what texts take, for a file of little may have many long ones: a damaged or packed one,
/// or one that has the same text for every element.
class TextBytes {
  public:
    TextBytes(const File& file, std::string place) : file_(file), place_(std::move(place)) {}

    /// @throws InputError if one more text is more than fits in memory
    void add(const std::string& text) {
        bytes_ += kTextBytes + static_cast<double>(text.size());
        if (bytes_ > file_.mostBytes()) {
            refuse(place_,
                   "its texts take more than the " + memory_text(std::max(file_.mostBytes(), 0.0)) +
                       " of memory that are left\nTake a part of the rows, or, if they should be "
                       "short, fetch or write the file again.");
        }
    }

  private:
    const File& file_;
    std::string place_;
    double bytes_ = 0.0;
};

/// Refuses what would break the lines of tables, or hide in them.
void check_name(const Dataset& names, std::size_t i, const std::string& name) {
    constexpr std::size_t kShown = 40;
    const auto is_control = [](unsigned char c) { return c < 0x20 || c == 0x7f; };
    if (std::any_of(name.begin(), name.end(), is_control)) {
        refuse(names.place(),
               "element " + std::to_string(i + 1) + ", \"" +
                   shortened(one_line_utf8(name), kShown) +
                   "\", holds a line break, a tab or another control character, which would break "
                   "the tables of the map\nWrite the names without them.");
    }
}

void check_name_memory(const File& file, const Dataset& names) {
    file.checkMemory("the " + std::to_string(names.size()) + " names",
                     kTextBytes * static_cast<double>(names.size()),
                     "Take a part of the rows.");
}

std::vector<std::int64_t> read_whole_numbers(const File& file, const Dataset& array) {
    array.requireDimensions(1);
    array.requireWholeNumbers();
    check_name_memory(file, array);
    std::vector<std::int64_t> numbers(array.size());
    for (std::size_t begin = 0; begin < array.size(); begin += array.block()) {
        array.read(begin, std::min(begin + array.block(), array.size()), numbers.data() + begin);
    }
    return numbers;
}

std::vector<std::string> texts_of(const File& file, const Dataset& array) {
    array.requireDimensions(1);
    check_name_memory(file, array);
    std::vector<std::string> texts(array.size());
    TextBytes bytes(file, array.place());
    array.forEachText([&](std::size_t i, std::string text) {
        bytes.add(text);
        check_name(array, i, text);
        texts[i] = std::move(text);
    });
    return texts;
}

std::vector<std::string> numbers_as_texts(const File& file, const Dataset& array) {
    std::vector<std::string> texts;
    texts.reserve(array.size());
    for (const std::int64_t number : read_whole_numbers(file, array)) {
        texts.push_back(std::to_string(number));
    }
    return texts;
}

/// The texts of categories, of which -1 is none.
std::vector<std::string> categories_as_texts(const File& file, const std::string& path) {
    const std::vector<std::string> categories = read_texts(file, path + "/categories");
    const Dataset codes(file, path + "/codes");
    TextBytes bytes(file, codes.place());
    std::vector<std::string> texts;
    texts.reserve(codes.size());
    for (const std::int64_t code : read_whole_numbers(file, codes)) {
        if (code < -1 || code >= static_cast<std::int64_t>(categories.size())) {
            refuse(codes.place(),
                   "element " + std::to_string(texts.size() + 1) + " is " + std::to_string(code) +
                       ", and there are " + std::to_string(categories.size()) +
                       " categories\nThe file may be damaged: fetch or write it again.");
        }
        texts.push_back(code < 0 ? "" : categories[static_cast<std::size_t>(code)]);
        bytes.add(texts.back());
    }
    return texts;
}

}  // namespace

std::vector<std::string> read_texts(const File& file, const std::string& path) {
    if (file.kindOf(path) == Kind::Group) {
        const std::string encoding = file.textAttribute(path, "encoding-type").value_or("");
        if (encoding == "categorical") {
            return categories_as_texts(file, path);
        }
        if (encoding == "nullable-string-array") {
            return texts_of(file, Dataset(file, path + "/values"));
        }
        refuse(file.place(path),
               "names are written as " +
                   (encoding.empty() ? std::string("a group") : "\"" + encoding + "\"") +
                   ", which is not read\nWrite them as an array of texts.");
    }
    const Dataset array(file, path);
    return array.holdsWholeNumbers() ? numbers_as_texts(file, array) : texts_of(file, array);
}

std::vector<std::string> read_index(const File& file, const std::string& table) {
    const Kind kind = file.kindOf(table);
    if (kind == Kind::Dataset) {
        refuse(file.place(table),
               "is a table of an old kind\nWrite the file again (in Python: "
               "anndata.read_h5ad(\"FILE\").write_h5ad(\"FILE\")).");
    }
    if (kind == Kind::Nothing) {
        refuse(file.place(table),
               "is not there\nThe file may be damaged: fetch or write it again.");
    }
    const std::string index = file.textAttribute(table, "_index").value_or("");
    if (index.empty() || index.find('/') != std::string::npos) {
        refuse(file.place(table),
               "does not say in its attribute \"_index\" which column has the names\nThe file may "
               "be damaged: fetch or write it again.");
    }
    return read_texts(file, table + "/" + index);
}

}  // namespace ovik::hdf5
