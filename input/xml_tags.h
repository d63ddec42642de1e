#pragma once

#include <string>
#include <string_view>

#include <pugixml.hpp>

/// The parts of a workbook as XML, whatever prefix their writer gives the tags.

namespace ovik {

/// A part, parsed in the place of its text.
class XmlPart {
  public:
    /// @param name  of the file, for messages
    /// @throws InputError if the text is no XML
    XmlPart(const std::string& name, std::string text);

    XmlPart(const XmlPart&) = delete;
    XmlPart& operator=(const XmlPart&) = delete;

    ~XmlPart() = default;

    [[nodiscard]] const pugi::xml_document& document() const { return document_; }

  private:
    std::string text_;
    pugi::xml_document document_;
};

/// The name of a tag without its prefix.
std::string_view tag_of(const pugi::xml_node& node);

/// The first child of a tag; an empty node if there is none.
pugi::xml_node child(const pugi::xml_node& parent, std::string_view tag);

/// The text of a string, of one part or of several with formats of their own, without the reading
/// aids that go with Japanese ones.
std::string string_of(const pugi::xml_node& item);

}  // namespace ovik
