#include <algorithm>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/command_test.h"

/// The files that users have: each is read right, or refused or warned of with a reason.

namespace ovik {
namespace {

using test::CommandOutcome;
using test::kBadInput;
using test::kSuccess;

const std::string kPlain = "g\ta\tb\nG1\t1\t2\nG2\t3\t5\nG3\t-4\t0.5\nG4\t2\t2\n";

class MatrixFile : public test::CommandTest {
  protected:
    std::string table_of(const std::string& content, const std::vector<std::string>& options) {
        std::filesystem::remove_all(results_);
        const CommandOutcome outcome = run_on(content, options);
        EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        return table();
    }

    /// A matrix of another kind than a file of text; nothing may be written.
    std::string refusal_of(const std::string& path) {
        const CommandOutcome outcome = run({path, "-o", results_});
        EXPECT_EQ(outcome.exit_status, kBadInput) << path;
        EXPECT_FALSE(std::filesystem::exists(results_));
        return outcome.err;
    }
};

TEST_F(MatrixFile, IsReadWhateverItsFormOfText) {
    const std::string expected = table_of(kPlain, {"-q"});
    const std::string tabs = kPlain.substr(kPlain.find('\n') + 1);

    const struct {
        const char* what;
        std::string content;
    } kCases[] = {
        {"no line end at the end", kPlain.substr(0, kPlain.size() - 1)},
        {"Windows line ends", "g\ta\tb\r\nG1\t1\t2\r\nG2\t3\t5\r\nG3\t-4\t0.5\r\nG4\t2\t2\r\n"},
        {"mixed line ends", "g\ta\tb\nG1\t1\t2\r\nG2\t3\t5\nG3\t-4\t0.5\r\nG4\t2\t2"},
        {"a byte order mark", "\xEF\xBB\xBF" + kPlain},
        {"a header of one word", "g\n" + tabs},
        {"an empty header", "\n" + tabs},
        {"a header that is too long", "g\ta\tb\tc\td\n" + tabs},
        {"duplicate columns", "g\ta\ta\n" + tabs},
        {"blank lines", "g\ta\tb\n\nG1\t1\t2\n  \nG2\t3\t5\n\r\nG3\t-4\t0.5\nG4\t2\t2\n\n\n"},
        {"comments", "g\ta\tb\n#x\nG1\t1\t2\n  # y\t1\nG2\t3\t5\nG3\t-4\t0.5\nG4\t2\t2\n#"},
        {"blanks around rows", "g\ta\tb\n  G1\t1\t2  \nG2\t3\t5 \n G3\t-4\t0.5\nG4\t2\t2\n"},
        {"blanks around numbers", "g\ta\tb\nG1\t 1\t2\nG2\t3 \t5\nG3\t -4 \t0.5\nG4\t2\t2\n"},
        {"delimiters at line ends", "g\ta\tb\nG1\t1\t2\t\nG2\t3\t5\t\t\nG3\t-4\t0.5\nG4\t2\t2\n"},
        {"plus signs", "g\ta\tb\nG1\t+1\t2\nG2\t3\t+5\nG3\t-4\t0.5\nG4\t2\t2\n"},
        {"exponents", "g\ta\tb\nG1\t1e0\t.2e1\nG2\t3.\t5E+0\nG3\t-40e-1\t5e-1\nG4\t2\t2\n"},
        {"hexadecimal numbers", "g\ta\tb\nG1\t0x1\t2\nG2\t3\t5\nG3\t-4\t0x1p-1\nG4\t2\t2\n"},
        {"numbers with many digits",
         "g\ta\tb\nG1\t1.00000000000000000000000000\t2\nG2\t3\t5\nG3\t-4\t"
         "0.5000000000000000000000000000000000001\nG4\t00000000000000000000002\t2\n"},
        {"numbers too small for double",
         "g\ta\tb\nG1\t1\t2\nG2\t3\t5\nG3\t-4\t0.5\nG4\t2\t2\n# 1e-999\t1\n"},
    };

    for (const auto& [what, content] : kCases) {
        EXPECT_EQ(table_of(content, {"-q"}), expected) << what;
    }
    for (const char delimiter : {',', ';', ' '}) {
        std::string content = kPlain;
        std::replace(content.begin(), content.end(), '\t', delimiter);
        EXPECT_EQ(table_of(content, {"-q"}), expected) << delimiter;
    }
    EXPECT_EQ(table_of("g\ta\tb\nG1\t1\t0\nG2\t3\t5\nG3\t-4\t0.5\nG4\t2\t2\n", {"-q"}),
              table_of("g\ta\tb\nG1\t1\t1e-999\nG2\t3\t5\nG3\t-4\t0.5\nG4\t2\t2\n", {"-q"}));
}

TEST_F(MatrixFile, IsRefusedWithTheReasonWhenItIsNoMatrix) {
    const std::string elf = std::string("\x7f") + "ELF\x02\x01\x01" + std::string(9, '\0') + "\n1";
    const std::string png = std::string("\x89PNG\r\n\x1a\n") + std::string(3, '\0') + "\rIHDR";
    const std::string utf16 = std::string("g\0\t\0a\0\n\0G\0\t\0", 12);

    const struct {
        const char* what;
        std::string content;
        std::vector<std::string> options;
        const char* reason;
    } kCases[] = {
        {"empty", "", {}, ": the file is empty"},
        {"a line end alone", "\n", {}, ": the file holds blanks alone"},
        {"a header alone", "g\ta\tb\n", {}, "found no numbers"},
        {"a header alone, delimiter given", "g\ta\tb\n", {"--delimiter", "tab"}, "has 0 rows"},
        {"one cell", "5", {}, "found no numbers"},
        {"names alone", "g\nG1\nG2\nG3\n", {}, "found no numbers"},
        {"one row", "g\ta\nG1\t1\n", {}, "has 1 row, and an embedding needs at least 3"},
        {"UTF-16, little-endian", "\xFF\xFEg\n", {}, "UTF-16"},
        {"UTF-16, big-endian", "\xFE\xFF\ng\n", {}, "UTF-16"},
        {"UTF-16 without a mark", utf16, {}, "UTF-16"},
        {"NUL in a name", std::string("g\nG1\t1\nG\0\t2\nG3\t3\n", 17), {}, ":3: the line holds"},
        {"NUL in a number",
         std::string("g\nG1\t1\0\nG2\t2\nG3\t3\n", 18),
         {},
         ":2: the line holds"},
        {"NUL at the end", kPlain + std::string(1, '\0'), {}, ":6: the line holds a NUL byte"},
        {"far NUL",
         "g\n" + std::string(70000, '#') + "\nG1\t1\n" + std::string(1, '\0'),
         {},
         ":4: the line holds a NUL byte"},
        {"NUL in a long header",
         std::string(70000, 'h') + std::string(1, '\0') + "\nG1\t1\n",
         {},
         ":1: the line holds a NUL byte"},
        {"a program", elf, {}, "this is a program"},
        {"a picture", png, {}, "this is a picture (PNG)"},
        {"gzip", "\x1f\x8b\x08xyz", {}, "the gzip data are damaged"},
        {"zip", "PK\x03\x04xyz", {}, "this is a zip archive: unpack it"},
        {"carriage returns alone", "g\ta\rG1\t1\rG2\t2\rG3\t4\r", {}, "old Macintoshes"},
        {"a short row", "g\nG1\t1\t2\nG2\t3\nG3\t1\t2\n", {}, ":3: row \"G2\" has 1 value"},
        {"a long row", "g\nG1\t1\t2\nG2\t3\t4\t5\nG3\t1\t2\n", {}, ":3: row \"G2\" has 3 values"},
        {"an unbalanced quote", "g\nG1\t1\n\"G2\t3\nG3\t2\n", {}, ":3: a quote opens a field"},
        {"a quote closed amid a field",
         "g\nG1\t1\n\"G2\t3\nG3\"x\t2\n",
         {},
         ":3: a quote opens a field"},
        {"a name lost to trimming", "g\nG1\t1\t2\n\t3\t4\t5\nG3\t1\t2\n", {}, "has no name"},
        {"infinity", "g\nG1\t1\nG2\tinf\nG3\t3\n", {}, "\"inf\", which is not a finite number"},
        {"a number too large", "g\nG1\t1\nG2\t1e999\nG3\t3\n", {}, "\"1e999\", which is not"},
        {"a NaN with a sign", "g\nG1\t1\nG2\t-nan\nG3\t3\n", {}, "\"-nan\", which is not"},
        {"equal rows", "g\nG1\t1\nG2\t1\nG3\t1\n", {}, "all rows hold the same values"},
        {"a name lost in front of the names",
         "g\th\ta\n\tG1\t1\n2\tG2\t2\n3\tG3\n",
         {"--names-column", "h"},
         ":4: row \"G3\" has 0 values"},
        {"no number, delimiter given",
         "g\nG1\tx\nG2\ty\nG3\tz\n",
         {"--delimiter", "tab"},
         "holds no numbers with tab between the fields\nEvery line behind the first should be"},
        {"another delimiter",
         kPlain,
         {"--delimiter", "comma"},
         "holds no numbers with , between the fields\nThere are with --delimiter tab, which"},
        {"another delimiter",
         "g;a\nG1;1\nG2;2\nG3;4\n",
         {"--delimiter", "space"},
         "holds no numbers with space between the fields\nThere are with --delimiter ';'"},
    };

    for (const auto& [what, content, options, reason] : kCases) {
        const std::string message = refusal(content, options);
        EXPECT_NE(message.find(reason), std::string::npos) << what << ": " << message;
        EXPECT_EQ(message.find("ovik-tsne: " + matrix_path() + ":"), 0U) << what << ": " << message;
    }
}

TEST_F(MatrixFile, IsRefusedWhenAValueIsText) {
    const struct {
        const char* what;
        /// What stands for the value 3 of row G2.
        std::string value;
        const char* reason;
    } kCases[] = {
        {"a word",
         "x",
         ": 1 field is no number\n  line 3: row \"G2\", column \"a\" (field 2): \"x\""},
        {"a gene named like a missing value", "NAN1", "(field 2): \"NAN1\"\nand text is no value"},
        {"a typographic minus",
         "\xE2\x88\x92"
         "3",
         ": 1 field is no number"},
        {"Arabic digits", "\xD9\xA3", ": 1 field is no number"},
        {"a decimal comma", "3,5", ": 1 number has a decimal comma\n  line 3: row \"G2\", column"},
        {"a comma between thousands", "3,500", ": 1 number has a comma among the digits"},
        {"an unfinished exponent", "3e", ": 1 field is no number"},
        {"a Fortran exponent", "3d5", ": 1 field is no number"},
        {"an error of a spreadsheet", "#DIV/0!", "say so with --na '#DIV/0!';"},
    };

    for (const auto& [what, value, reason] : kCases) {
        const std::string message =
            refusal("g\ta\tb\nG1\t1\t2\nG2\t" + value + "\t5\nG3\t-4\t0.5\nG4\t2\t2\n");
        EXPECT_NE(message.find(reason), std::string::npos) << what << ": " << message;
    }
    const std::string column = refusal("g\tnote\ta\nG1\t1 x\t2\nG2\ty\t5\nG3\tz\t0.5\nG4\t7\t2\n");
    EXPECT_NE(column.find("column \"note\" (field 2): 3 of 4 rows"), std::string::npos) << column;
    EXPECT_NE(column.find("with --skip-columns note;"), std::string::npos) << column;
}

TEST_F(MatrixFile, IsReadAsTheOptionsSay) {
    const std::string expected = table_of(kPlain, {"-q"});

    const struct {
        const char* what;
        std::string content;
        std::vector<std::string> options;
    } kCases[] = {
        {"decimal commas",
         "g;a;b\nG1;1,0;2\nG2;3;5\nG3;-4;0,5\nG4;2;2\n",
         {"-q", "--decimal", ","}},
        {"columns that are no values",
         "g\tx\ta\ty\tb\nG1\tu\t1\tv\t2\nG2\tu\t3\tv\t5\nG3\tu\t-4\tv\t0.5\nG4\tu\t2\tv\t2\n",
         {"-q", "--skip-columns", "x,4"}},
        {"names in the last column",
         "a\tb\tg\n1\t2\tG1\n3\t5\tG2\n-4\t0.5\tG3\n2\t2\tG4\n",
         {"-q", "--names-column", "g"}},
        {"no header", kPlain.substr(kPlain.find('\n') + 1), {"-q", "--no-header"}},
        {"no names",
         "a\tb\n1\t2\n3\t5\n-4\t0.5\n2\t2\n",
         {"-q", "--no-names", "--row-names", directory_.write("names", "G1\nG2\nG3\nG4\n")}},
        {"signs of missing values",
         "g\ta\tb\nG1\t1\t2\nG2\t3\t5\nG3\t-4\t0.5\nG4\t2\t2\nG5\tND\t7\nG6\t1\t-999\n",
         {"-q", "--na", "ND", "--na=-999", "--missing", "drop"}},
        {"quotes",
         "\"g\",\"a\",\"b\"\n\"G1\",\"1\",\"2\"\nG2,3,5\n\"G3\",-4,0.5\nG4,\"2\",\"2\"\n",
         {"-q"}},
    };

    for (const auto& [what, content, options] : kCases) {
        EXPECT_EQ(table_of(content, options), expected) << what;
    }
}

TEST_F(MatrixFile, IsReadWithAWarningWhenItIsOdd) {
    const struct {
        const char* what;
        /// What stands for row G2.
        std::string row;
        const char* warning;
    } kCases[] = {
        {"a missing value", "G2\tNA\t5", ": 1 of 8 values is missing, in 1 of 4 rows and 1 of 2"},
        {"a name twice", "G1\t3\t5", ": 1 row repeats the name of an earlier one (\"G1\")"},
    };

    for (const auto& [what, row, warning] : kCases) {
        const CommandOutcome outcome =
            run_on("g\ta\tb\nG1\t1\t2\n" + row + "\nG3\t-4\t0.5\nG4\t2\t2\n");
        EXPECT_EQ(outcome.exit_status, kSuccess) << what;
        EXPECT_NE(outcome.err.find(warning), std::string::npos) << what << ": " << outcome.err;
        EXPECT_EQ(outcome.err.find("warning"), outcome.err.rfind("warning")) << what;
    }
    const CommandOutcome unnamed = run_on("g,a\nG1,1\n,2\nG3,4\n", {"--delimiter", "comma"});
    EXPECT_NE(unnamed.err.find(":3: the row has no name (1 such row in all)"), std::string::npos);
    const CommandOutcome transposed =
        run_on("s\tCDC28\tYAL001C\tRPL3\nt0\t1\t2\t3\nt1\t2\t2\t4\nt2\t5\t2\t3\n");
    EXPECT_EQ(transposed.exit_status, kSuccess);
    EXPECT_NE(transposed.err.find(": 3 of 3 columns are named as genes"), std::string::npos);
    const CommandOutcome pcl = run_on(
        "YORF\tNAME\tGWEIGHT\ta\nEWEIGHT\t\t\t1\nYAL001C\t3 x\t1\t1\nYAL002W\ty\t1\t2\n"
        "YAL003W\tz\t1\t4\n");
    EXPECT_EQ(pcl.exit_status, kSuccess);
    EXPECT_NE(pcl.err.find("note: " + matrix_path() +
                           ": gene expression table (.pcl): names from YORF; no values: NAME and "
                           "GWEIGHT\n"),
              std::string::npos)
        << pcl.err;
}

TEST_F(MatrixFile, MayHaveVeryLongNamesAndManyColumns) {
    const std::string name(1000000, 'n');
    const CommandOutcome long_name =
        run_on("g\ta\n" + name + "\t1\nG2\t2\nG3\t4\n", {"--no-plots"});
    EXPECT_EQ(long_name.exit_status, kSuccess) << long_name.err;
    EXPECT_NE(table().find("\n" + name + ","), std::string::npos);
    std::filesystem::remove_all(results_);
    std::string wide = "g";
    for (int n = 0; n < 4; ++n) {
        wide += n == 0 ? "\n" : "1\n";
        wide += "G" + std::to_string(n);
        for (int d = 0; d < 100000; ++d) {
            wide += "\t" + std::to_string((d + n) % 7);
        }
        wide += "\t";
    }
    const CommandOutcome columns = run_on(wide, {"--missing", "row-mean"});
    EXPECT_EQ(columns.exit_status, kSuccess) << columns.err;
    EXPECT_NE(columns.out.find(": 1 of 400004 values is missing, in 1 of 4 rows and 1 of 100001"),
              std::string::npos);
}

TEST_F(MatrixFile, CannotSteerTheTerminal) {
    const CommandOutcome outcome =
        run_on("g\ta\nG\x1b[2J1\t1\nG2\t2\nG3\t4\nG4\t4\n", {"--no-plots", "--names", "file"});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_EQ(outcome.err.find('\x1b'), std::string::npos);
    EXPECT_EQ(outcome.err.find('\x07'), std::string::npos);
    EXPECT_NE(outcome.out.find("not found: G [2J1, G2, G3, ...\n"), std::string::npos);
    const CommandOutcome refused = run_on("g\ta\nG\x1b[2J1\tx\x1b]0;t\x07\nG2\t2\nG3\t4\nG4\t4\n");
    EXPECT_EQ(refused.exit_status, kBadInput);
    EXPECT_NE(refused.err.find("line 2: row \"G"), std::string::npos);
    EXPECT_EQ(refused.err.find('\x1b'), std::string::npos);
    EXPECT_EQ(refused.err.find('\x07'), std::string::npos);
}

TEST_F(MatrixFile, IsRefusedWhenItIsNoFile) {
    EXPECT_NE(refusal_of(directory_.prefix()).find("this is a directory"), std::string::npos);
    EXPECT_NE(refusal_of("/dev/null").find("the file is empty"), std::string::npos);
    const std::string dangling = directory_.file("link");
    std::filesystem::create_symlink("nowhere", dangling);
    EXPECT_NE(refusal_of(dangling).find("there is no such file"), std::string::npos);
    EXPECT_NE(refusal_of(std::string(5000, 'x')).find("cannot be read (File name too long)"),
              std::string::npos);
    EXPECT_NE(refusal_of(directory_.write("file", "x") + "/m.tsv").find("there is no such file"),
              std::string::npos);
}

TEST_F(MatrixFile, IsRefusedWhenItMayNotBeRead) {
    const std::string path = directory_.write("m.txt", kPlain);
    std::filesystem::permissions(path, std::filesystem::perms::none);
    std::filesystem::permissions(directory_.prefix(), std::filesystem::perms(0755));
    // The system lets root read everything.
    const std::string command = directory_.file("ovik-tsne");
    std::filesystem::copy_file(OVIK_TSNE_COMMAND, command);
    const std::string as_nobody =
        geteuid() == 0 ? "setpriv --reuid 65534 --regid 65534 --clear-groups " : "";
    const CommandOutcome outcome = test::run_command(
        {"/bin/sh", "-c", "cd / && exec " + as_nobody + "\"$0\" \"$1\"", command, path});
    EXPECT_EQ(outcome.exit_status, kBadInput);
    EXPECT_EQ(outcome.err, "ovik-tsne: " + path + ": cannot be read (Permission denied)\n");
}

TEST_F(MatrixFile, MayHaveAnyName) {
    for (const char* name : {"a\nb.tsv",
                             "a'b\".tsv",
                             "-m.tsv",
                             "--help",
                             "a\xFF"
                             "b.tsv",
                             "%s%n.tsv",
                             "$(id).tsv",
                             "*.tsv",
                             "a\\b.tsv",
                             "\xC3\xA4.tsv",
                             " .tsv"}) {
        const std::string matrix = directory_.write(name, kPlain);
        const std::string stem = std::filesystem::path(name).stem().string();
        const CommandOutcome outcome =
            test::run_command({"/bin/sh",
                               "-c",
                               "cd \"$1\" && exec \"$0\" -q -i 5 --names other -o \"$2\" -- \"$3\"",
                               OVIK_TSNE_COMMAND,
                               directory_.prefix(),
                               results_,
                               name});
        EXPECT_EQ(outcome.exit_status, kSuccess) << name << outcome.err;
        EXPECT_EQ(outcome.err, "") << name;
        for (const char* extension : {".csv", ".html", ".png", ".svg", ".gp"}) {
            EXPECT_NE(result(stem + "_tsne_1_0" + extension), "") << name << extension;
        }
        EXPECT_NE(result(stem + ".log"), "") << name;
    }
}

}  // namespace
}  // namespace ovik
