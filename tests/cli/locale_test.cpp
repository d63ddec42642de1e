#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <locale>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "util/matrix_reader.h"

#include "tests/support/command_test.h"
#include "tests/support/engine_run.h"
#include "tests/support/locales.h"

/// Locales with a decimal comma, with groups of thousands and with other small letters: the command
/// takes no notice of them, and the library only of the numeric one of the program.

namespace ovik {
namespace {

using test::CommandOutcome;
using test::kSuccess;

constexpr const char* kLocales[] = {"de_DE.UTF-8", "tr_TR.UTF-8"};

class Locale : public test::CommandTest {
  protected:
    static void SetUpTestSuite() {
        made_ = new test::MadeLocales({std::begin(kLocales), std::end(kLocales)});
        ASSERT_EQ(made_->failure(), "");
    }

    static void TearDownTestSuite() { delete made_; }

    void TearDown() override {
        std::locale::global(std::locale::classic());
        unsetenv("LC_ALL");
    }

    static void set_environment(const char* locale) {
        setenv("LC_ALL", locale, 1);
        // What a program gets that asks for the locale of its user.
        ASSERT_NE(std::setlocale(LC_ALL, ""), nullptr);
        ASSERT_EQ(std::string(std::localeconv()->decimal_point), ",");
        std::setlocale(LC_ALL, "C");
    }

    static test::MadeLocales* made_;
};

test::MadeLocales* Locale::made_ = nullptr;

TEST_F(Locale, DoesNotChangeWhatTheCommandReadsAndWrites) {
    const std::string matrix = test::first_rows(directory_, "brauer2008_chemostat.tsv", 100);
    const auto outcome_in = [&](const std::string& results) {
        return run({matrix, "-o", results, "-n", "TITLE", "-i", "20", "-p", "12.5"});
    };
    const std::string expected = directory_.file("C");
    const CommandOutcome in_c = outcome_in(expected);
    ASSERT_EQ(in_c.exit_status, kSuccess);
    for (const char* locale : kLocales) {
        set_environment(locale);
        const std::string results = directory_.file(locale);
        const CommandOutcome outcome = outcome_in(results);
        EXPECT_EQ(outcome.exit_status, kSuccess);
        EXPECT_EQ(outcome.err, in_c.err);
        std::size_t files = 0;
        for (const auto& entry : std::filesystem::directory_iterator(expected)) {
            const std::string name = entry.path().filename().string();
            EXPECT_EQ(test::read_file(results + "/" + name), test::read_file(entry.path().string()))
                << locale << name;
            ++files;
        }
        // Table, log, page, figure twice, script.
        EXPECT_EQ(files, 6U);
        const CommandOutcome options =
            run({matrix, "-o", results, "--perplexity", "12.5", "--theta", "0.25", "--dry-run"});
        EXPECT_NE(options.out.find("(theta = 0.25), perplexity 12.50"), std::string::npos);
        // Small letters that a Turkish program would not match with I.
        EXPECT_NE(run({"--gene", "imp2'"}).err.find("Did you mean IMP2'?"), std::string::npos);
    }
}

TEST_F(Locale, OfNumbersIsAllThatTheLibraryFollows) {
    const std::string matrix = test::first_rows(directory_, "brauer2008_chemostat.tsv", 100);
    const test::RunSettings settings{.perplexity = 12.5, .max_iter = 20};
    const test::RunOutcome expected = test::run_engine(matrix, settings);
    for (const char* locale : kLocales) {
        set_environment(locale);
        std::locale::global(std::locale(""));
        std::setlocale(LC_NUMERIC, "C");
        const test::RunOutcome outcome = test::run_engine(matrix, settings);
        EXPECT_EQ(outcome.table, expected.table) << locale;
        EXPECT_EQ(outcome.log, expected.log) << locale;
        EXPECT_EQ(outcome.Y, expected.Y) << locale;
    }
}

TEST_F(Locale, OfNumbersDecidesWhatTheLibraryReads) {
    const std::string path = directory_.write("m.txt", "h\nG1\t0,5\t0.5\n");
    set_environment(kLocales[0]);
    ASSERT_NE(std::setlocale(LC_NUMERIC, ""), nullptr);
    std::vector<std::vector<double>> matrix;
    std::vector<std::string> names;
    read_matrix_w_index<double>(matrix, names, path, 1, '\t');
    EXPECT_EQ(matrix, (std::vector<std::vector<double>>{{0.5, 0.0}}));
}

}  // namespace
}  // namespace ovik
