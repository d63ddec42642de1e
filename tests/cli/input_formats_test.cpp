#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/command_test.h"

/// One matrix in every format that is read: the results are the same bytes.

namespace ovik {
namespace {

using test::CommandOutcome;
using test::kBadInput;
using test::kSuccess;

constexpr std::size_t kRows = 40;
constexpr std::size_t kColumns = 5;

double value(std::size_t n, std::size_t d) {
    return static_cast<double>((n * 37 + d * 101 + n * d * 7) % 997) / 64.0 - 5.0;
}

std::string name(std::size_t n) {
    return "GENE" + std::to_string(n);
}

std::string number_text(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", number);
    return text;
}

std::string delimited() {
    std::string content = "gene\ta\tb\tc\td\te";
    for (std::size_t n = 0; n < kRows; ++n) {
        content += "\n" + name(n);
        for (std::size_t d = 0; d < kColumns; ++d) {
            content += "\t" + number_text(value(n, d));
        }
    }
    return content + "\n";
}

template <typename Number>
std::string bytes_of(Number number) {
    std::string bytes(sizeof number, '\0');
    std::memcpy(bytes.data(), &number, sizeof number);
    return bytes;
}

std::string npy(const std::string& type, bool is_column_major, const std::string& data) {
    std::string header =
        "{'descr': '" + type + "', 'fortran_order': " + (is_column_major ? "True" : "False") +
        ", 'shape': (" + std::to_string(kRows) + ", " + std::to_string(kColumns) + "), }";
    header.resize(118, ' ');
    header.back() = '\n';
    return std::string("\x93NUMPY\x01\x00", 8) + bytes_of<std::uint16_t>(118) + header + data;
}

/// The values by rows, or by columns.
template <typename Encode>
std::string encoded(bool is_column_major, const Encode& encode) {
    std::string data;
    for (std::size_t i = 0; i < kRows * kColumns; ++i) {
        data += is_column_major ? encode(value(i % kRows, i / kRows))
                                : encode(value(i / kColumns, i % kColumns));
    }
    return data;
}

std::string matrix_market(bool is_sparse) {
    std::string content = std::string("%%MatrixMarket matrix ") +
                          (is_sparse ? "coordinate" : "array") + " real general\n% a remark\n" +
                          std::to_string(kRows) + " " + std::to_string(kColumns) +
                          (is_sparse ? " " + std::to_string(kRows * kColumns) : "") + "\n";
    for (std::size_t d = 0; d < kColumns; ++d) {
        for (std::size_t n = 0; n < kRows; ++n) {
            content += is_sparse ? std::to_string(n + 1) + " " + std::to_string(d + 1) + " " : "";
            content += number_text(value(n, d)) + "\n";
        }
    }
    return content;
}

class InputFormats : public test::CommandTest {
  protected:
    /// The table of a run on a file of the test's directory.
    std::string tableOf(const std::string& file, std::vector<std::string> options = {}) {
        options.insert(options.begin(),
                       {file, "-o", results_, "-n", "m", "-i", "30", "-q", "--no-plots"});
        const CommandOutcome outcome = run(options);
        EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        return test::read_file(results_ + "/m_tsne_" + "13_0.csv");
    }

    std::string names() {
        std::string content;
        for (std::size_t n = 0; n < kRows; ++n) {
            content += name(n) + "\n";
        }
        return directory_.write("names.txt", content);
    }

    std::string refusalOf(const std::string& file, std::vector<std::string> options = {}) {
        options.insert(options.begin(), {file, "-o", results_});
        const CommandOutcome outcome = run(options);
        EXPECT_EQ(outcome.exit_status, kBadInput);
        return outcome.err;
    }

    /// @param script  of a shell: "$1" is the plain matrix, "$0" the command
    std::string tableOfScript(const std::string& script) {
        const CommandOutcome outcome =
            run_in_shell(script, {directory_.write("m.txt", delimited())});
        EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        return test::read_file(results_ + "/m_tsne_" + "13_0.csv");
    }
};

TEST_F(InputFormats, GiveTheSameResults) {
    const std::string expected = tableOf(directory_.write("m.txt", delimited()), {"-p", "13"});
    EXPECT_NE(expected, "");
    const auto doubles = [](double number) { return bytes_of(number); };
    const auto swapped = [](double number) {
        const std::string bytes = bytes_of(number);
        return std::string(bytes.rbegin(), bytes.rend());
    };
    const auto floats = [](double number) { return bytes_of(static_cast<float>(number)); };

    const struct {
        const char* what;
        std::string content;
    } kFiles[] = {
        {"doubles", npy("<f8", false, encoded(false, doubles))},
        {"doubles by columns", npy("<f8", true, encoded(true, doubles))},
        {"doubles in the other order of bytes", npy(">f8", false, encoded(false, swapped))},
        {"floats", npy("<f4", false, encoded(false, floats))},
        {"dense Matrix Market", matrix_market(false)},
        {"sparse Matrix Market", matrix_market(true)}};

    for (const auto& [what, content] : kFiles) {
        EXPECT_EQ(tableOf(directory_.write("m.bin", content), {"-p", "13", "--row-names", names()}),
                  expected)
            << what;
    }
    const std::string options = " -o " + results_ + " -n m -i 30 -q --no-plots -p 13";
    EXPECT_EQ(tableOfScript("gzip -c \"$1\" >\"$1.gz\"; exec \"$0\" \"$1.gz\"" + options),
              expected);
    EXPECT_EQ(tableOfScript("\"$0\" -" + options + " <\"$1\""), expected);
    EXPECT_EQ(tableOfScript("cat \"$1\" | \"$0\" -" + options), expected);
    EXPECT_EQ(tableOfScript("gzip -c \"$1\" | \"$0\" -" + options), expected);
    // Two members, as `cat` of two archives leaves them.
    EXPECT_EQ(
        tableOfScript("(head -n 17 \"$1\" | gzip; tail -n +18 \"$1\" | gzip) | \"$0\" -" + options),
        expected);
}

TEST_F(InputFormats, ThatAreDamagedAreRefused) {
    const std::string gzip = "gzip -c \"$1\" | ";
    const std::string plain = directory_.write("m.txt", delimited());
    const auto refusal_of_script = [&](const std::string& script) {
        const CommandOutcome outcome = run_in_shell(script, {plain});
        EXPECT_EQ(outcome.exit_status, kBadInput);
        return outcome.err;
    };
    EXPECT_NE(refusal_of_script(gzip + "head -c 300 | \"$0\" -").find("cut off"),
              std::string::npos);
    EXPECT_NE(refusal_of_script("(" + gzip + "head -c -8; printf abcdefgh) | \"$0\" -")
                  .find("standard input: the gzip data are damaged"),
              std::string::npos);
    const auto doubles = [](double number) { return bytes_of(number); };
    const std::string whole = npy("<f8", false, encoded(false, doubles));
    EXPECT_NE(refusalOf(directory_.write("a.npy", whole.substr(0, 900))).find("cut off"),
              std::string::npos);
    EXPECT_NE(refusalOf(directory_.write("a.npy", npy("<U7", false, ""))).find("of type '<U7'"),
              std::string::npos);
    EXPECT_NE(refusalOf(directory_.write("a.npy", "\x93NUMPY\x01")).find("cut off"),
              std::string::npos);
    EXPECT_NE(refusalOf(directory_.write("a.npy", whole), {"--row-names", plain})
                  .find("holds 41 names, but the matrix has 40 rows"),
              std::string::npos);
    EXPECT_NE(refusalOf(plain, {"--row-names", plain}).find("have names of their own"),
              std::string::npos);
}

TEST_F(InputFormats, MatrixMarketFilesAreRefusedWithTheLine) {
    const struct {
        const char* content;
        const char* message;
    } kFiles[] = {
        {"%%MatrixMarket vector array real general\n", ":1: a file of this format opens with"},
        {"%%MatrixMarket matrix array complex general\n", ":1: the entries are \"complex\""},
        {"%%MatrixMarket matrix array real hermitian\n", ":1: the matrix is \"hermitian\""},
        {"%%MatrixMarket matrix array real general\n%\n3\n",
         ":3: the size should be rows and columns"},
        {"%%MatrixMarket matrix array real general\n3 1\n1\n2\n", ": it was cut off"},
        {"%%MatrixMarket matrix array real general\n1 1\n1\n2\n", ":4: there are more entries"},
        {"%%MatrixMarket matrix array real general\n1 1\nx\n", ":3: \"x\" should be a number"},
        {"%%MatrixMarket matrix coordinate real general\n3 2 1\n4 1 1\n",
         ":3: row 4 is not one of 1 to 3"},
        {"%%MatrixMarket matrix coordinate real general\n3 2 1\n1 0 1\n", ":3: column 0 is not"},
        {"%%MatrixMarket matrix coordinate real symmetric\n3 2 1\n", ":2: a symmetric matrix"},
        {"%%MatrixMarket matrix coordinate real general\n", ": the line with the size"},
    };

    for (const auto& [content, message] : kFiles) {
        EXPECT_NE(refusalOf(directory_.write("m.mtx", content)).find(message), std::string::npos)
            << content;
    }
}

}  // namespace
}  // namespace ovik
