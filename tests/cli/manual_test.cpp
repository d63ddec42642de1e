#include <algorithm>
#include <regex>
#include <set>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stats/fit_options.h"
#include "stats/option_texts.h"

#include "tests/support/command_test.h"

/// The manual page and the completions know what the real program knows.

namespace ovik {
namespace {

using test::CommandOutcome;
using test::kSuccess;

/// All long options of a text.
std::set<std::string> options_in(const std::string& text) {
    static const std::regex kOption("--[a-z0-9]+(-[a-z0-9]+)*");
    return {std::sregex_token_iterator(text.begin(), text.end(), kOption),
            std::sregex_token_iterator()};
}

std::string source(const std::string& path) {
    return test::read_file(std::string(OVIK_SOURCE_DIR "/") + path);
}

/// Without the backslashes that a manual page puts before dashes.
std::string manual() {
    std::string text = source("docs/ovik-tsne.1");
    text.erase(std::remove(text.begin(), text.end(), '\\'), text.end());
    return text;
}

class Manual : public test::CommandTest {
  protected:
    /// What bash offers for a word after another one, a line each.
    static std::string offers(const std::string& previous, const std::string& word) {
        const CommandOutcome outcome = test::run_command(
            {"/bin/bash",
             "-c",
             "ovik-tsne() { \"$0\" \"$@\"; }; compopt() { :; }; . \"$1\"; "
             "_ovik_tsne ovik-tsne \"$2\" \"$3\"; printf '%s\\n' \"${COMPREPLY[@]}\"",
             OVIK_TSNE_COMMAND,
             OVIK_SOURCE_DIR "/tools/completion/ovik-tsne.bash",
             word,
             previous});
        EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        return outcome.out;
    }
};

TEST_F(Manual, NamesAllOptionsAndNoOthers) {
    const std::set<std::string> options = options_in(run({"--help"}).out);
    EXPECT_GT(options.size(), 30U);
    EXPECT_EQ(options_in(manual()), options);
}

TEST_F(Manual, IsWellFormed) {
    const CommandOutcome outcome = test::run_command(
        {"/bin/sh", "-c", "groff -man -Tascii -ww -z \"$0\"", OVIK_SOURCE_DIR "/docs/ovik-tsne.1"});
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(Manual, CompletionsKnowAllOptions) {
    const std::set<std::string> options = options_in(run({"--help"}).out);
    EXPECT_EQ(options_in(source("tools/completion/_ovik-tsne")), options);
    EXPECT_EQ(options_in(offers("", "--")), options);
}

TEST_F(Manual, CompletionsAreParsedByAShell) {
    // Quoting is alike in all shells, as far as the completion of zsh goes.
    for (const char* const name : {"_ovik-tsne", "ovik-tsne.bash"}) {
        const CommandOutcome outcome = test::run_command(
            {"/bin/bash", "-n", std::string(OVIK_SOURCE_DIR "/tools/completion/") + name});
        EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    }
}

TEST_F(Manual, BashCompletesValuesAndFiles) {
    EXPECT_EQ(offers("", "--ch"), "--choose-perplexity\n--checkpoint\n--checkpoint-every\n");
    EXPECT_EQ(offers("", "--log"), "--log1p\n");
    EXPECT_EQ(offers("--missing", "c"), "column-mean\n");
    EXPECT_EQ(offers("--precision", ""), "double\nfloat\n");
    EXPECT_EQ(offers("--perplexity", "3"), "\n");
    directory_.write("my matrix.tsv", "");
    EXPECT_EQ(offers("--json", directory_.file("my")), directory_.file("my matrix.tsv") + "\n");
}

TEST_F(Manual, BashCompletesChoicesOfTheFit) {
    EXPECT_EQ(offers("--preset", "re"), "refined\n");
    EXPECT_EQ(offers("--start", "pc"), "pca\n");
    directory_.write("pcs.tsv", "");
    EXPECT_EQ(offers("--start", directory_.file("pc")), directory_.file("pcs.tsv") + "\n");
    const FitOptions options;
    visit_fit_options(options, [](const auto& option) {
        if constexpr (requires { option.names(); }) {
            if (option.words.name != "start") {
                std::string names;
                for (const std::string_view name : option.givenNames()) {
                    names.append(name).append("\n");
                }
                EXPECT_EQ(offers("--" + long_name(option.words), ""), names);
            }
        }
    });
}

TEST_F(Manual, OwnLinesHaveNoColours) {
    // In a terminal as well.
    const CommandOutcome outcome =
        test::run_command({"/usr/bin/script",
                           "-qec",
                           OVIK_TSNE_COMMAND " --gene CDC28; " OVIK_TSNE_COMMAND " nowhere",
                           "/dev/null"});
    EXPECT_THAT(outcome.out, testing::HasSubstr("there is no such file"));
    EXPECT_EQ(outcome.out.find('\x1b'), std::string::npos);
}

}  // namespace
}  // namespace ovik
