#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <random>
#include <signal.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/command_test.h"
#include "tests/support/engine_run.h"
#include "tests/support/running_command.h"

/// The choice of a perplexity by the real program.

namespace ovik {
namespace {

using nlohmann::json;
using test::CommandOutcome;
using test::kBadInput;
using test::kSuccess;
using testing::HasSubstr;
using testing::StartsWith;

using Contents = std::map<std::string, std::string>;
using Arguments = std::vector<std::string>;

/// Starts a program that prints nothing.
pid_t start(const Arguments& command) {
    Arguments texts = command;
    std::vector<char*> arguments;
    for (std::string& text : texts) {
        arguments.push_back(text.data());
    }
    arguments.push_back(nullptr);
    const pid_t process = fork();
    if (process == 0) {
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    return process;
}

class ChoosePerplexityCommand : public test::CommandTest {
  protected:
    [[nodiscard]] Arguments options(const std::string& out_dir, const Arguments& more) const {
        Arguments all = {matrix_, "-n", "y", "--names", "other", "-o", directory_.file(out_dir)};
        all.insert(all.end(), {"-i", iterations_});
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    CommandOutcome choose(const std::string& out_dir, const Arguments& more = {}) {
        Arguments all = few_;
        all.insert(all.end(), more.begin(), more.end());
        return run(options(out_dir, all));
    }

    [[nodiscard]] std::string file(const std::string& name) const {
        return test::read_file(directory_.file(name));
    }

    /// All results but the kept fits.
    [[nodiscard]] Contents results(const std::string& out_dir) const {
        Contents contents;
        for (const auto& entry : std::filesystem::directory_iterator(directory_.file(out_dir))) {
            if (entry.is_regular_file()) {
                contents[entry.path().filename().string()] = test::read_file(entry.path().string());
            }
        }
        return contents;
    }

    /// When the fits that are kept were written.
    [[nodiscard]] std::map<std::string, std::filesystem::file_time_type> keptFits(
        const std::string& out_dir) const {
        std::map<std::string, std::filesystem::file_time_type> times;
        const std::string kept = directory_.file(out_dir) + "/y_tsne_choice.runs";
        std::error_code ignored;
        for (const auto& entry : std::filesystem::directory_iterator(kept, ignored)) {
            if (entry.path().extension() == ".run") {
                times[entry.path().filename().string()] = entry.last_write_time();
            }
        }
        return times;
    }

    /// Kills the command again and again, and looks at what it leaves in the end.
    void expectTheSameBytesAfterKills(const Arguments& more, std::size_t kills, unsigned int seed);

    std::string iterations_ = "40";
    std::string matrix_ = test::first_rows(directory_, "brauer2008_chemostat.tsv", 120);
    Arguments few_ = {"--choose-perplexity",
                      "12,5,8.5",
                      "--seeds",
                      "2",
                      "--stability",
                      "1",
                      "--against-noise",
                      "1"};
};

void ChoosePerplexityCommand::expectTheSameBytesAfterKills(const Arguments& more,
                                                           std::size_t kills,
                                                           unsigned int seed) {
    Arguments one_thread = more;
    one_thread.insert(one_thread.end(), {"--threads", "1"});
    ASSERT_EQ(run(options("whole", one_thread)).exit_status, kSuccess);
    const std::size_t all = keptFits("whole").size();
    std::mt19937 draws(seed);
    Arguments command = options("killed", more);
    command.insert(command.begin(), OVIK_TSNE_COMMAND);
    std::map<std::string, std::filesystem::file_time_type> before;
    std::size_t kills_between = 0;
    for (std::size_t killed = 0; killed < kills;) {
        // As many fits more, at least one, are waited for.
        const std::size_t left = all - before.size();
        const std::size_t wanted = before.size() + 1 + draws() % std::max<std::size_t>(left / 2, 1);
        const pid_t process = start(command);
        int status = 0;
        bool is_over = false;
        while (!is_over && keptFits("killed").size() < wanted) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            is_over = waitpid(process, &status, WNOHANG) == process;
        }
        if (!is_over) {
            kill(process, SIGKILL);
            waitpid(process, &status, 0);
        }
        const auto after = keptFits("killed");
        kills_between += WIFSIGNALED(status) && !after.empty() && after.size() < all ? 1 : 0;
        for (const auto& [name, time] : before) {
            ASSERT_TRUE(after.contains(name)) << name;
            EXPECT_EQ(after.at(name), time) << name << " was made again";
        }
        before = after;
        if (WIFSIGNALED(status)) {
            ++killed;
        } else {
            // It had come to its end: it begins anew.
            std::filesystem::remove_all(directory_.file("killed"));
            before.clear();
        }
    }
    EXPECT_GT(kills_between, 0U);
    ASSERT_EQ(run(options("killed", more)).exit_status, kSuccess);
    EXPECT_EQ(results("killed"), results("whole"));
    EXPECT_EQ(keptFits("killed").size(), all);
}

TEST_F(ChoosePerplexityCommand, LeavesTableFigurePageAndMaps) {
    const CommandOutcome outcome = choose("out", {"--json", directory_.file("out/r.json")});
    ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("-- Fits: 12; those that have ended are kept in "));
    EXPECT_THAT(outcome.out, HasSubstr("Kept fits: "));
    const json report = json::parse(file("out/r.json"));
    const std::string sentence = report["choice"]["sentence"];
    EXPECT_THAT(outcome.out, HasSubstr("-- " + sentence + "\n"));
    ASSERT_EQ(report["runs"].size(), 3U);
    EXPECT_EQ(report["runs"][0]["perplexity"], 5);
    EXPECT_EQ(report["runs"][1]["noise"]["matrices"], 1);
    EXPECT_TRUE(report["runs"][1]["trials"]["shared_by_columns"].is_number());
    const std::string table = file("out/y_tsne_choice.tsv");
    EXPECT_THAT(table, StartsWith("perplexity\trecommended\tfinal_cost\ttrustworthiness_10\t"));
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 4);
    const std::string page = file("out/y_tsne_comparison.html");
    EXPECT_THAT(page, HasSubstr("<h2>Choice of perplexity</h2>"));
    EXPECT_THAT(page, HasSubstr("src=\"./y_tsne_choice.svg\""));
    EXPECT_THAT(page, HasSubstr("<th scope=\"col\">Better than noise</th>"));
    EXPECT_TRUE(std::filesystem::exists(directory_.file("out/y_tsne_choice.png")));
    // The map of a perplexity is that of a run by itself.
    ASSERT_EQ(run(options("one", {"-p", "8.5", "--no-plots"})).exit_status, kSuccess);
    EXPECT_EQ(file("out/y_tsne_8_5.csv"), file("one/y_tsne_8_5.csv"));
}

TEST_F(ChoosePerplexityCommand, IsTheSameForAnyNumberOfThreads) {
    ASSERT_EQ(choose("1", {"--threads", "1"}).exit_status, kSuccess);
    for (const char* const threads : {"2", "5"}) {
        ASSERT_EQ(choose(threads, {"--threads", threads}).exit_status, kSuccess);
        EXPECT_EQ(results(threads), results("1"));
    }
}

TEST_F(ChoosePerplexityCommand, GoesOnWhereItWasKilled) {
    expectTheSameBytesAfterKills(few_, 3, 20);
}

/// Takes a minute: run by itself.
TEST_F(ChoosePerplexityCommand, DISABLED_GoesOnWhereItWasKilledManyTimes) {
    matrix_ = test::first_rows(directory_, "brauer2008_chemostat.tsv", 1000);
    iterations_ = "150";
    expectTheSameBytesAfterKills({"--choose-perplexity",
                                  "5,10,20,50,100",
                                  "--seeds",
                                  "2",
                                  "--stability",
                                  "2",
                                  "--against-noise",
                                  "2",
                                  "--preset",
                                  "refined"},
                                 20,
                                 1);
}

TEST_F(ChoosePerplexityCommand, MakesNoFitTwiceAndMixesNoOthersIn) {
    ASSERT_EQ(choose("out", {"--no-plots"}).exit_status, kSuccess);
    const Contents first = results("out");
    const auto kept = keptFits("out");
    ASSERT_EQ(kept.size(), 12U);
    EXPECT_THAT(choose("out", {"--no-plots"}).out,
                HasSubstr("-- Fits: 12, of which 12 are kept from before;"));
    EXPECT_EQ(results("out"), first);
    EXPECT_EQ(keptFits("out"), kept);
    // Another seed, other iterations and other values are others.
    EXPECT_THAT(choose("out", {"--no-plots", "--seed", "9"}).out, HasSubstr("-- Fits: 12; those"));
    iterations_ = "41";
    EXPECT_THAT(choose("out", {"--no-plots"}).out, HasSubstr("-- Fits: 12; those"));
    iterations_ = "40";
    EXPECT_THAT(choose("out", {"--no-plots", "--center", "rows"}).out,
                HasSubstr("-- Fits: 12; those"));
    EXPECT_NE(results("out"), first);
    // More of them cost those alone that are missing.
    EXPECT_THAT(run(options("out",
                            {"--no-plots",
                             "--choose-perplexity",
                             "5,7,8.5",
                             "--seeds",
                             "3",
                             "--stability",
                             "1",
                             "--against-noise",
                             "1"}))
                    .out,
                HasSubstr("-- Fits: 15, of which 8 are kept from before;"));
    ASSERT_EQ(choose("out", {"--no-plots"}).exit_status, kSuccess);
    const Contents again = results("out");
    for (const auto& [name, content] : first) {
        EXPECT_EQ(again.at(name), content) << name;
    }
    // What is damaged is made again.
    const std::string one = directory_.file("out") + "/y_tsne_choice.runs/" + kept.begin()->first;
    const std::string whole = test::read_file(one);
    directory_.write("out/y_tsne_choice.runs/" + kept.begin()->first, whole.substr(0, 99));
    EXPECT_THAT(choose("out", {"--no-plots"}).out, HasSubstr("of which 11 are kept"));
    EXPECT_EQ(test::read_file(one), whole);
}

TEST_F(ChoosePerplexityCommand, EndsWithCtrlCAndGoesOn) {
    iterations_ = "300";
    Arguments command = options("out", few_);
    command.insert(command.begin(), OVIK_TSNE_COMMAND);
    command.insert(command.end(), {"--no-plots"});
    {
        test::RunningCommand running(command);
        running.waitFor("Fits: 12");
        while (keptFits("out").empty()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        running.typeInterrupt();
        const CommandOutcome outcome = running.finish();
        EXPECT_EQ(outcome.exit_status, 130) << outcome.out;
        EXPECT_THAT(outcome.out, HasSubstr("the fits that have ended are kept, and the same "));
        EXPECT_THAT(outcome.out, HasSubstr("the same command goes on from there"));
    }
    EXPECT_TRUE(results("out").empty());
    EXPECT_EQ(choose("out", {"--no-plots"}).exit_status, kSuccess);
    EXPECT_EQ(choose("whole", {"--no-plots"}).exit_status, kSuccess);
    EXPECT_EQ(results("out"), results("whole"));
}

TEST_F(ChoosePerplexityCommand, IsMadeOfTheReportsOfSeveralMachines) {
    ASSERT_EQ(choose("whole").exit_status, kSuccess);
    Arguments collect = {"--collect"};
    for (const std::string perplexity : {"5", "8.5", "12"}) {
        Arguments single = few_;
        single[1] = perplexity;
        single.insert(single.end(), {"--json", directory_.file("parts/" + perplexity + ".json")});
        const CommandOutcome outcome = run(options("parts", single));
        ASSERT_EQ(outcome.exit_status, kSuccess) << outcome.err;
        EXPECT_THAT(outcome.out, HasSubstr("nothing to choose from"));
        collect.push_back(directory_.file("parts/" + perplexity + ".json"));
    }
    collect.insert(collect.end(), {"-n", "y", "-o", directory_.file("parts")});
    ASSERT_EQ(run(collect).exit_status, kSuccess);
    for (const char* const name : {"y_tsne_choice.tsv",
                                   "y_tsne_choice.gp",
                                   "y_tsne_choice.svg",
                                   "y_tsne_choice.png",
                                   "y_tsne_5_0.csv"}) {
        EXPECT_EQ(file(std::string("parts/") + name), file(std::string("whole/") + name)) << name;
    }
    EXPECT_THAT(file("parts/y_tsne_comparison.html"), HasSubstr("<h2>Choice of perplexity</h2>"));
    // One of another kind, and there is none: not without a word.
    const std::string ordinary = directory_.file("parts/ordinary.json");
    ASSERT_EQ(run(options("parts", {"-p", "7", "--no-plots", "--json", ordinary})).exit_status,
              kSuccess);
    collect.insert(collect.begin() + 1, ordinary);
    const CommandOutcome mixed = run(collect);
    EXPECT_EQ(mixed.exit_status, kSuccess);
    EXPECT_THAT(mixed.err,
                HasSubstr("note: no perplexity is chosen. " + ordinary + ": an ordinary run"));
}

TEST_F(ChoosePerplexityCommand, RefusesWhatCannotBeOneBeforeItWritesAnything) {
    const std::string places = directory_.write("places.tsv", "name\tx\ty\n");
    const std::vector<std::pair<Arguments, std::string>> kCases = {
        {{"--choose-perplexity", "5,x"}, "should be a number at least 1, at most 1e9, not x"},
        {{"--choose-perplexity", "5,10,5.0"}, "5.0 stands there twice"},
        {{"--choose-perplexity", "5,40"},
         "40 is too large for 120 rows\nGive at most 39.6, a third of the others"},
        {{"--choose-perplexity", "5", "-p", "7"}, "--perplexity: does not go with"},
        {{"--choose-perplexity", "5", "--quality"}, "--quality: does not go with"},
        {{"--choose-perplexity", "5", "--checkpoint", "c"}, "--checkpoint: does not go with"},
        {{"--choose-perplexity", "5", "--model", "m"}, "Give it to the run of the perplexity"},
        {{"--choose-perplexity", "5", "--metric", "precomputed"}, "shuffles the values of columns"},
        {{"--choose-perplexity", "5", "--affinity", "uniform"}, "no effect beside --affinity"},
        {{"--choose-perplexity", "5", "--start", places}, "Leave --start out"},
        {{"--choose-perplexity", "5", "--seeds", "0"}, "not 0"},
        {{"--choose-perplexity", "5", "--stability", "0"}, "not 0"},
        {{"--choose-perplexity", "5", "--against-noise", "0"}, "not 0"},
        {{"--choose-perplexity", "5,5.01"}, "two results would be called y_tsne_5_0.csv"},
    };
    for (const auto& [more, message] : kCases) {
        const CommandOutcome outcome = run(options("refused", more));
        EXPECT_EQ(outcome.exit_status, kBadInput) << message;
        EXPECT_THAT(outcome.err, HasSubstr(message));
        EXPECT_FALSE(std::filesystem::exists(directory_.file("refused")));
    }
    // Shuffled, some rows have the same value in all columns.
    std::string text = "name\ta\tb\tc\n";
    const Arguments rows = {"\t1\t0\t0\n", "\t0\t1\t0\n", "\t0\t0\t1\n"};
    for (std::size_t n = 0; n < 60; ++n) {
        text += "r" + std::to_string(n) + rows[n % rows.size()];
    }
    matrix_ = directory_.write("shuffled.tsv", text);
    const CommandOutcome shuffled =
        run(options("refused", {"--choose-perplexity", "5,10", "--metric", "pearson"}));
    EXPECT_EQ(shuffled.exit_status, kBadInput);
    EXPECT_THAT(shuffled.err,
                HasSubstr("--choose-perplexity also embeds matrices of shuffled values"));
    EXPECT_FALSE(std::filesystem::exists(directory_.file("refused")));
    matrix_ = test::first_rows(directory_, "brauer2008_chemostat.tsv", 29);
    const CommandOutcome outcome = choose("refused");
    EXPECT_EQ(outcome.exit_status, kBadInput);
    EXPECT_THAT(outcome.err, HasSubstr("--choose-perplexity takes at least 30 rows"));
}

TEST_F(ChoosePerplexityCommand, TellsBeforehandWhatItTakes) {
    const CommandOutcome outcome =
        run(options("dry", {"--choose-perplexity", "5,20", "--dry-run"}));
    EXPECT_EQ(outcome.exit_status, kSuccess);
    EXPECT_THAT(outcome.out,
                HasSubstr("-- Fits: 30, each perplexity from 5 seeds, of 5 draws of columns and of "
                          "5 matrices of noise; kept in "));
    EXPECT_THAT(outcome.out, HasSubstr("y_tsne_choice.tsv\n"));
    EXPECT_FALSE(std::filesystem::exists(directory_.file("dry")));
}

}  // namespace
}  // namespace ovik
