"""Tests public_interface.py with texts of headers and a small tree."""
import pathlib
import tempfile
import unittest

import exports
import public_interface


class MarkedNames(unittest.TestCase):
    def names(self, *lines):
        return public_interface.marked_names("\n".join(lines))

    def test_are_those_of_functions_and_variables(self):
        self.assertEqual(
            self.names(
                "namespace ovik {",
                "OVIK_API double cost(const double* P, int (*visit)(int));",
                "template <typename T>",
                "OVIK_API std::vector<std::pair<T, int>> pairs(std::map<T, int> of = {});",
                "[[nodiscard]] OVIK_API const Entry* find(std::string_view name);",
                "OVIK_API extern char guard;",
                "OVIK_API inline thread_local bool silent = false;",
                "OVIK_API bool operator==(const Entry& a, const Entry& b);",
                "int unmarked();",
                "}",
            ),
            {"ovik::cost", "ovik::pairs", "ovik::find", "ovik::guard", "ovik::silent", "ovik::operator=="},
        )

    def test_have_the_scopes_that_they_stand_in(self):
        self.assertEqual(
            self.names(
                "namespace ovik { namespace inner {",
                "enum class Kind { One, Two };",
                "template <typename T> class Tree : public Base<T> {",
                "  public:",
                "    OVIK_API Tree(int size);",
                "    OVIK_API virtual ~Tree();",
                "    int size() const { if (size_ > 0) { return size_; } return 0; }",
                "    OVIK_API static void build(",
                "        int size);",
                "  private:",
                "    struct Node { OVIK_API void grow(); };",
                "    int size_ = 0;",
                "};",
                "OVIK_API void after();",
                "}}",
                "OVIK_API void outside();",
            ),
            {
                "ovik::inner::Tree::Tree",
                "ovik::inner::Tree::~Tree",
                "ovik::inner::Tree::build",
                "ovik::inner::Tree::Node::grow",
                "ovik::inner::after",
                "outside",
            },
        )

    def test_are_those_of_types_and_of_definitions(self):
        self.assertEqual(
            self.names(
                "namespace ovik {",
                "class OVIK_API Failure : public std::runtime_error { using std::runtime_error::what; };",
                "struct OVIK_API Plain { int value; };",
                "OVIK_API inline int one() { return 1; }",
                "}",
            ),
            {"ovik::Failure", "ovik::Plain", "ovik::one"},
        )

    def test_are_none_in_comments_texts_and_macros(self):
        self.assertEqual(
            self.names(
                "#define OVIK_API \\",
                "    __attribute__((visibility(\"default\")))",
                "// OVIK_API void line();",
                "/* OVIK_API void",
                "   block(); */",
                "const char* text = \"} OVIK_API void text(); \\\" {\";",
                "const char brace = '{';",
                "OVIK_API void real();",
            ),
            {"real"},
        )


class ExportedNames(unittest.TestCase):
    def test_have_no_arguments(self):
        for symbol, name in {
            "double ovik::Tree<float>::cost<2ul>(std::vector<int, std::allocator<int> > const&) const":
                "ovik::Tree::cost",
            "vtable for ovik::Failure": "ovik::Failure",
            "typeinfo name for ovik::Failure": "ovik::Failure",
            "TLS init function for ovik::silent": "ovik::silent",
            "ovik::name[abi:cxx11](int)@@OVIK_0": "ovik::name",
            "ovik::silent": "ovik::silent",
        }.items():
            with self.subTest(symbol):
                self.assertEqual(exports.qualified_name(symbol), name)


class Tree(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.root = pathlib.Path(directory.name)
        self.write("cmake/public_headers.txt", "# Why.\n\nutil/open.h\nstats/mark.h\n")
        self.write("util/open.h", '#include <map>\n#include "stats/mark.h"\nOVIK_API void open();\n')
        self.write("stats/mark.h", "#define OVIK_API\n")
        self.write("util/hidden.h", '#include "util/open.h"\nvoid hide();\n')

    def write(self, path, text):
        (self.root / path).parent.mkdir(exist_ok=True)
        (self.root / path).write_text(text, encoding="utf-8")

    def test_has_the_names_of_its_public_headers(self):
        self.assertEqual(public_interface.public_headers(self.root), ["util/open.h", "stats/mark.h"])
        self.assertEqual(public_interface.other_headers(self.root), ["util/hidden.h"])
        self.assertEqual(public_interface.public_names(self.root), {"open"})
        self.assertEqual(public_interface.misplaced(self.root), [])

    def test_is_refused_with_a_mark_in_another_header(self):
        self.write("util/hidden.h", "OVIK_API void hide();\n")
        self.assertEqual(public_interface.misplaced(self.root),
                         ["marked OVIK_API in util/hidden.h, which is not public: hide"])

    def test_is_refused_with_a_public_header_that_includes_another(self):
        self.write("stats/mark.h", '#include "util/hidden.h"\n#define OVIK_API\n')
        self.assertEqual(public_interface.misplaced(self.root),
                         ["stats/mark.h is public and includes util/hidden.h, which is not"])

    def test_is_refused_without_a_header_of_the_list(self):
        self.write("cmake/public_headers.txt", "util/open.h\nstats/mark.h\nutil/gone.h\n")
        self.assertEqual(public_interface.misplaced(self.root),
                         ["listed as public, but not there: util/gone.h"])


if __name__ == "__main__":
    unittest.main()
