# Writes a source that holds a text as a string.
# Takes TEXT, the file, HEADER, which declares the function that returns it, NAMESPACE and FUNCTION,
# its name, and OUTPUT, the source to write.

file(READ ${TEXT} text)
string(FIND "${text}" ")ovik_text\"" delimiter)
if(NOT delimiter EQUAL -1)
  message(FATAL_ERROR "${TEXT} holds the delimiter of the string that it becomes")
endif()
file(WRITE ${OUTPUT} "#include \"${HEADER}\"

namespace ${NAMESPACE} {

std::string_view ${FUNCTION}() {
    static constexpr char kText[] = R\"ovik_text(${text})ovik_text\";
    return {kText, sizeof kText - 1};
}

}  // namespace ${NAMESPACE}
")
