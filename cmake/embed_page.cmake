# Writes a source that holds a page as a string.
# Takes PAGE, the file, FUNCTION, the function of plots/page_template.h that returns it, and OUTPUT,
# the source to write.

file(READ ${PAGE} page)
string(FIND "${page}" ")ovik_page\"" delimiter)
if(NOT delimiter EQUAL -1)
  message(FATAL_ERROR "${PAGE} holds the delimiter of the string that it becomes")
endif()
file(WRITE ${OUTPUT} "#include \"plots/page_template.h\"

namespace ovik {

std::string_view ${FUNCTION}() {
    static constexpr char kPage[] = R\"ovik_page(${page})ovik_page\";
    return {kPage, sizeof kPage - 1};
}

}  // namespace ovik
")
