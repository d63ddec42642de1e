#include "input/workbook.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "input/sheet_text.h"
#include "input/xml_tags.h"
#include "util/input_error.h"

#include <pugixml.hpp>

namespace ovik {

namespace {

/// Where a part of the workbook lies in the archive: targets are relative to the folder of the
/// workbook, unless they open with a slash.
std::string member_of(const std::string& target) {
    return target.starts_with('/') ? target.substr(1) : "xl/" + target;
}

/// The members of the worksheets by the identifiers of their relations to the workbook.
std::map<std::string, std::string> worksheets(const pugi::xml_document& relations) {
    std::map<std::string, std::string> members;
    for (const pugi::xml_node relation : child(relations, "Relationships").children()) {
        if (std::string_view(relation.attribute("Type").value()).ends_with("/worksheet")) {
            members[relation.attribute("Id").value()] =
                member_of(relation.attribute("Target").value());
        }
    }
    return members;
}

/// The attribute that relates a sheet to its part: "id" of another namespace.
std::string relation_of(const pugi::xml_node& sheet) {
    for (const pugi::xml_attribute attribute : sheet.attributes()) {
        if (std::string_view(attribute.name()).ends_with(":id")) {
            return attribute.value();
        }
    }
    return "";
}

bool is_true(const pugi::xml_attribute& attribute) {
    const std::string_view value = attribute.value();
    return value == "1" || value == "true";
}

}  // namespace

Workbook::Workbook(std::string name, std::string_view bytes)
    : name_(std::move(name)),
      archive_(name_, bytes) {
    readSheets();
    readSharedStrings();
    readStyles();
}

void Workbook::readSheets() {
    std::optional<std::string> workbook = archive_.member("xl/workbook.xml");
    std::optional<std::string> relations = archive_.member("xl/_rels/workbook.xml.rels");
    if (!workbook || !relations) {
        throw InputError(name_ +
                         ": this is a workbook of a kind that is not read (.xlsb?): save it as "
                         ".xlsx or the sheet as tab-separated text");
    }
    const XmlPart part(name_, std::move(*workbook));
    const XmlPart relation_part(name_, std::move(*relations));
    const std::map<std::string, std::string> members = worksheets(relation_part.document());
    const pugi::xml_node root = child(part.document(), "workbook");
    since_1904_ = is_true(child(root, "workbookPr").attribute("date1904"));
    for (const pugi::xml_node sheet : child(root, "sheets").children()) {
        const auto member = members.find(relation_of(sheet));
        const std::string_view state = sheet.attribute("state").value();
        if (member != members.end() && (state.empty() || state == "visible")) {
            names_.emplace_back(sheet.attribute("name").value());
            members_.push_back(member->second);
        }
    }
    if (names_.empty()) {
        throw InputError(name_ + ": the workbook has no sheet of cells that is not hidden");
    }
}

void Workbook::readSharedStrings() {
    std::optional<std::string> member = archive_.member("xl/sharedStrings.xml");
    if (!member) {
        return;
    }
    const XmlPart part(name_, std::move(*member));
    for (const pugi::xml_node item : child(part.document(), "sst").children()) {
        shared_strings_.push_back(string_of(item));
    }
}

void Workbook::readStyles() {
    std::optional<std::string> member = archive_.member("xl/styles.xml");
    if (!member) {
        return;
    }
    const XmlPart part(name_, std::move(*member));
    const pugi::xml_node sheet = child(part.document(), "styleSheet");
    std::map<int, DateFormat> own;
    for (const pugi::xml_node format : child(sheet, "numFmts").children()) {
        own[format.attribute("numFmtId").as_int()] =
            date_format_of(std::string_view(format.attribute("formatCode").value()));
    }
    for (const pugi::xml_node style : child(sheet, "cellXfs").children()) {
        const int number = style.attribute("numFmtId").as_int();
        const auto format = own.find(number);
        date_formats_.push_back(format == own.end() ? date_format_of(number) : format->second);
    }
}

SheetText Workbook::sheetText(std::size_t sheet, char decimal) const {
    std::optional<std::string> member = archive_.member(members_[sheet]);
    if (!member) {
        throw InputError(name_ + ": the workbook lacks its sheet \"" + names_[sheet] +
                         "\"\nFetch or save it anew.");
    }
    const XmlPart part(name_, std::move(*member));
    return text_of_sheet(
        name_, part.document(), CellRules{shared_strings_, date_formats_, since_1904_, decimal});
}

}  // namespace ovik
