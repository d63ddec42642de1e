#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/support/zip.h"

namespace ovik::test {

/// An Excel workbook of sheets, as far as a reader needs it.
struct WorkbookFile {
    /// Name and rows: what stands between the tags of the sheet's data.
    std::vector<std::pair<std::string, std::string>> sheets = {};
    /// Items of the list of texts.
    std::string shared_strings = {};
    /// Formats and styles.
    std::string styles = {};
    /// Attributes of the first sheet in the list, such as `state="hidden"`.
    std::string first_attributes = {};
    /// What stands in front of the list of sheets.
    std::string properties = {};

    [[nodiscard]] ZipWriter::Members members() const {
        std::string list;
        std::string relations;
        ZipWriter::Members members = {{"[Content_Types].xml", "<Types/>"}};
        for (std::size_t i = 0; i < sheets.size(); ++i) {
            const std::string number = std::to_string(i + 1);
            list += "<sheet name=\"" + sheets[i].first + "\" r:id=\"rId" + number + "\" " +
                    (i == 0 ? first_attributes : "") + "/>";
            relations += "<Relationship Id=\"rId" + number +
                         "\" Type=\"http://a/relationships/worksheet\" Target=\"worksheets/sheet" +
                         number + ".xml\"/>";
            members.emplace_back(
                "xl/worksheets/sheet" + number + ".xml",
                "<worksheet><sheetData>" + sheets[i].second + "</sheetData></worksheet>");
        }
        members.emplace_back("xl/workbook.xml",
                             "<?xml version=\"1.0\"?><workbook>" + properties + "<sheets>" + list +
                                 "</sheets></workbook>");
        members.emplace_back("xl/_rels/workbook.xml.rels",
                             "<Relationships>" + relations + "</Relationships>");
        if (!shared_strings.empty()) {
            members.emplace_back("xl/sharedStrings.xml", "<sst>" + shared_strings + "</sst>");
        }
        if (!styles.empty()) {
            members.emplace_back("xl/styles.xml", "<styleSheet>" + styles + "</styleSheet>");
        }
        return members;
    }

    [[nodiscard]] std::string bytes() const { return ZipWriter::archive(members()); }
};

}  // namespace ovik::test
