#include "input/gene_set_file.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

#include "input/row_texts.h"
#include "util/counted.h"
#include "util/input_error.h"

namespace ovik {

namespace {

constexpr const char* kForm =
    "\nA set is one line: its name, a description (which may be empty), then its genes, with a tab "
    "between each.";

[[noreturn]] void refuse(const std::string& path, std::size_t line, const std::string& reason) {
    throw InputError(path + ", line " + std::to_string(line) + ": " + reason + kForm);
}

std::string_view without_blanks(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == std::string_view::npos
               ? std::string_view()
               : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

std::vector<std::string_view> fields_of(std::string_view line) {
    std::vector<std::string_view> fields;
    for (std::size_t begin = 0; begin <= line.size();) {
        const std::size_t end = std::min(line.find('\t', begin), line.size());
        fields.push_back(without_blanks(line.substr(begin, end - begin)));
        begin = end + 1;
    }
    return fields;
}

bool is_colour(std::string_view text) {
    constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
    return text.size() == 7 && text.front() == '#' &&
           text.find_first_not_of(kDigits, 1) == std::string_view::npos;
}

/// @throws InputError if the line is no set
ListedSet set_of(std::string_view text, std::size_t line, const std::string& path) {
    const std::vector<std::string_view> fields = fields_of(text);
    if (fields.size() < 3) {
        refuse(path, line, "has " + counted(fields.size(), "field", "fields") + " and so no gene");
    }
    if (fields.front().empty()) {
        refuse(path, line, "the set has no name");
    }
    ListedSet set{std::string(fields.front()), line, {}};
    if (is_colour(fields[1])) {
        set.colour = fields[1];
    }
    for (std::size_t field = 2; field < fields.size(); ++field) {
        if (!fields[field].empty()) {
            set.genes.emplace_back(fields[field]);
        }
    }
    if (set.genes.empty()) {
        refuse(path, line, "the set \"" + set.name + "\" has no gene");
    }
    return set;
}

}  // namespace

std::vector<ListedSet> read_gene_sets(const std::string& path) {
    const std::vector<std::string> lines = lines_of(read_row_file(path, "set"));
    std::vector<ListedSet> sets;
    std::map<std::string, std::size_t> line_of;
    for (std::size_t line = 1; line <= lines.size(); ++line) {
        const std::string& text = lines[line - 1];
        if (without_blanks(text).empty()) {
            continue;
        }
        sets.push_back(set_of(text, line, path));
        const auto [known, is_new] = line_of.emplace(sets.back().name, line);
        if (!is_new) {
            throw InputError(path + ": the sets on lines " + std::to_string(known->second) +
                             " and " + std::to_string(line) + " are both called \"" + known->first +
                             "\"\nGive each set a name of its own.");
        }
    }
    if (sets.empty()) {
        throw InputError(path + ": holds no set" + kForm);
    }
    if (sets.size() > kMostSets) {
        throw InputError(path + ": holds " + std::to_string(sets.size()) +
                         " sets, and the chart page takes at most " + std::to_string(kMostSets) +
                         "\nLeave those in that you want to look at.");
    }
    return sets;
}

}  // namespace ovik
