# Writes a source that holds the page as a string.
# Takes PAGE, the file, and OUTPUT, the source to write.

file(READ ${PAGE} page)
string(FIND "${page}" ")ovik_page\"" delimiter)
if(NOT delimiter EQUAL -1)
  message(FATAL_ERROR "${PAGE} holds the delimiter of the string that it becomes")
endif()
file(WRITE ${OUTPUT} "#include \"plots/page_template.h\"

namespace ovik {

std::string_view page_template() {
    static constexpr char kPage[] = R\"ovik_page(${page})ovik_page\";
    return {kPage, sizeof kPage - 1};
}

}  // namespace ovik
")
