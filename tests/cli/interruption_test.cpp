#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "results/checkpoint.h"

#include "tests/support/engine_run.h"
#include "tests/support/path_variable.h"
#include "tests/support/running_command.h"
#include "tests/support/temporary_directory.h"

/// The real program, interrupted by real signals, and its checkpoints.

namespace ovik {
namespace {

using test::CommandOutcome;
using test::RunningCommand;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kTakenNote =
    "\r\novik-tsne: interrupted: the results of what was reached are written, then the run ends (a "
    "second signal stops it at once)\r\n";
constexpr const char* kStoppedNote =
    "\r\novik-tsne: interrupted again: stopped at once, before all results were written\r\n";
constexpr const char* kEndless = "1000000000";

class Interruption : public testing::Test {
  protected:
    [[nodiscard]] std::vector<std::string> command(const std::string& results,
                                                   const std::vector<std::string>& options) const {
        std::vector<std::string> words = {OVIK_TSNE_COMMAND,
                                          matrix_,
                                          "--names",
                                          "other",
                                          "-o",
                                          directory_.file(results),
                                          "-n",
                                          "y"};
        words.insert(words.end(), options.begin(), options.end());
        return words;
    }

    [[nodiscard]] CommandOutcome run(const std::string& results,
                                     const std::vector<std::string>& options) const {
        return test::run_command(command(results, options));
    }

    [[nodiscard]] std::string result(const std::string& results, const std::string& ending) const {
        return test::read_file(directory_.file(results) + "/y_tsne_20_0" + ending);
    }

    /// Expects two runs to have left the same table and drawings.
    void expectSameResults(const std::string& results, const std::string& others) const {
        for (const char* ending : {".csv", ".html", ".gp", ".png", ".svg"}) {
            EXPECT_NE(result(results, ending), "") << ending;
            EXPECT_EQ(result(results, ending), result(others, ending)) << ending;
        }
    }

    test::TemporaryDirectory directory_;
    std::string matrix_ = test::first_rows(directory_, "brauer2008_chemostat.tsv", 150);
    std::string checkpoint_ = directory_.file("fit.ckpt");
};

/// The iteration at which a run says that it was ended.
std::string ended_at(const std::string& out) {
    const std::string before = "-- Ended early, at iteration ";
    const std::size_t at = out.find(before);
    if (at == std::string::npos) {
        return "none";
    }
    const std::size_t start = at + before.size();
    return out.substr(start, out.find(' ', start) - start);
}

TEST_F(Interruption, EndsTheFitWithTheResultsOfWhatWasReached) {
    for (const auto& [signal, theta] : {std::pair{SIGINT, "0.5"}, std::pair{SIGTERM, "0"}}) {
        RunningCommand running(command("ended", {"-i", kEndless, "-t", theta}));
        running.waitFor("at iteration (20/");
        running.signal(signal);
        const CommandOutcome outcome = running.finish();
        EXPECT_EQ(outcome.exit_status, 128 + signal);
        EXPECT_THAT(outcome.out, HasSubstr(kTakenNote));
        EXPECT_THAT(outcome.out, HasSubstr("-- Result table: "));
        const std::string iteration = ended_at(outcome.out);
        EXPECT_EQ(run("whole", {"-i", iteration, "-t", theta}).exit_status, 0);
        expectSameResults("ended", "whole");
    }
}

TEST_F(Interruption, TakesCtrlCInATerminal) {
    RunningCommand running(command("ended", {"-i", kEndless, "-t", "0"}));
    running.waitFor("at iteration (1/");
    running.typeInterrupt();
    const CommandOutcome outcome = running.finish();
    EXPECT_EQ(outcome.exit_status, 130);
    EXPECT_NE(ended_at(outcome.out), "none");
}

TEST_F(Interruption, TakesSignalsThatComeTogetherAsOne) {
    RunningCommand running(command("results", {"-i", kEndless, "--no-plots"}));
    running.waitFor("at iteration (20/");
    // As timeout(1) does.
    running.signal(SIGTERM);
    running.signal(SIGTERM);
    const CommandOutcome outcome = running.finish();
    EXPECT_EQ(outcome.exit_status, 143);
    EXPECT_THAT(outcome.out, HasSubstr("-- Result table: "));
}

TEST_F(Interruption, EndsAtOnceBeforeTheFirstIteration) {
    EXPECT_EQ(run("results", {"-i", "10"}).exit_status, 0);
    const std::string table = result("results", ".csv");
    matrix_ = OVIK_DATA_DIR "/brauer2008_chemostat.tsv";
    for (const int signal : {SIGINT, SIGTERM}) {
        // The exact similarities of all genes take seconds.
        RunningCommand running(command("results", {"-t", "0"}));
        running.waitFor("Exact?");
        running.signal(signal);
        const CommandOutcome outcome = running.finish();
        EXPECT_EQ(outcome.exit_status, 128 + signal);
        EXPECT_THAT(outcome.out,
                    HasSubstr("\r\novik-tsne: interrupted before the first iteration: no results "
                              "are written\r\n"));
        EXPECT_THAT(outcome.out, Not(HasSubstr("at iteration (")));
    }
    EXPECT_EQ(result("results", ".csv"), table);
    const auto entries = std::filesystem::directory_iterator(directory_.file("results"));
    EXPECT_EQ(std::distance(entries, {}), 6);
}

TEST_F(Interruption, LeavesTheMapWithoutThoseThatItWasToBeComparedWith) {
    const std::vector<std::string> options = {"-i", "200", "--clusters"};
    EXPECT_EQ(run("whole", options).exit_status, 0);
    RunningCommand running(command("ended", {"-i", "200", "--clusters", "--stability", "1000"}));
    running.waitFor("-- Clusters: ");
    running.signal(SIGINT);
    const CommandOutcome outcome = running.finish();
    EXPECT_EQ(outcome.exit_status, 130);
    EXPECT_THAT(outcome.out, HasSubstr("Stability is not measured of a run that was interrupted"));
    expectSameResults("ended", "whole");
    EXPECT_FALSE(std::filesystem::exists(directory_.file("ended") + "/y_tsne_20_0.stability.tsv"));
}

TEST_F(Interruption, LeavesTheMapWithoutTheNoiseThatItWasToBeComparedWith) {
    const std::vector<std::string> options = {"-i", "200", "--reliability"};
    EXPECT_EQ(run("whole", options).exit_status, 0);
    RunningCommand running(command("ended", {"-i", "200", "--against-noise", "1000"}));
    running.waitFor("-- Embedding 1000 matrices of shuffled values");
    running.signal(SIGINT);
    const CommandOutcome outcome = running.finish();
    EXPECT_EQ(outcome.exit_status, 130);
    EXPECT_THAT(outcome.out,
                HasSubstr("The rows are not compared with noise, as the run was interrupted"));
    expectSameResults("ended", "whole");
    EXPECT_EQ(test::read_file(directory_.file("ended") + "/y_tsne_20_0.reliability.tsv"),
              test::read_file(directory_.file("whole") + "/y_tsne_20_0.reliability.tsv"));
}

TEST_F(Interruption, LeavesASignalIgnoredThatWasIgnored) {
    std::vector<std::string> words = command("results", {"-i", kEndless, "--no-plots"});
    words.insert(words.begin(), {"/bin/sh", "-c", "trap '' INT; exec \"$0\" \"$@\""});
    RunningCommand running(words);
    running.waitFor("at iteration (20/");
    running.signal(SIGINT);
    running.waitFor("at iteration (60/");
    running.signal(SIGTERM);
    const CommandOutcome outcome = running.finish();
    EXPECT_EQ(outcome.exit_status, 143);
    EXPECT_NE(ended_at(outcome.out), "none");
}

/// A gnuplot that says when it has been started, and waits to be let go.
class GnuplotAtWork {
  public:
    explicit GnuplotAtWork(const test::TemporaryDirectory& directory)
        : started_(fifo(directory.file("started"))),
          // For both, so that neither opening it nor writing waits for the program.
          release_(fifo(directory.file("release")), std::ios::in | std::ios::out),
          path_(directory.prefix()) {
        test::write_program(directory,
                            "gnuplot",
                            "exec 3> '" + started_ + "'\necho started >&3\nread line < '" +
                                directory.file("release") +
                                "'\necho released >&3\nexec 3>&-\n"
                                "PATH=${PATH#*:} exec gnuplot \"$@\"\n");
    }

    void waitForStart() {
        says_.open(started_);
        EXPECT_EQ(nextLine(), "started");
    }

    void letGo() { release_ << "go" << std::endl; }

    /// What it says next; empty if it has ended.
    std::string nextLine() {
        std::string line;
        std::getline(says_, line);
        return line;
    }

  private:
    static std::string fifo(const std::string& path) {
        mkfifo(path.c_str(), 0600);
        return path;
    }

    std::string started_;
    std::fstream release_;
    test::PathVariable path_;
    std::ifstream says_;
};

TEST_F(Interruption, WaitsForAFigureThatIsBeingDrawn) {
    GnuplotAtWork gnuplot(directory_);
    RunningCommand running(command("results", {"-i", "20"}));
    gnuplot.waitForStart();
    // The terminal sends the signal to gnuplot, too.
    running.typeInterrupt();
    running.waitFor(kTakenNote);
    gnuplot.letGo();
    EXPECT_EQ(gnuplot.nextLine(), "released");
    const CommandOutcome outcome = running.finish();
    EXPECT_EQ(outcome.exit_status, 130);
    EXPECT_THAT(outcome.out, HasSubstr("-- Figure: "));
    EXPECT_EQ(result("results", ".png").rfind("\x89PNG", 0), 0U);
}

TEST_F(Interruption, StopsAtOnceTheSecondTime) {
    EXPECT_EQ(run("results", {"-i", "10"}).exit_status, 0);
    const std::string figure = result("results", ".png");
    for (const int second : {SIGINT, SIGTERM}) {
        GnuplotAtWork gnuplot(directory_);
        RunningCommand running(command("results", {"-i", kEndless}));
        running.waitFor("at iteration (20/");
        running.signal(SIGINT);
        // Read before gnuplot is waited for: a terminal that is full would hold the command up.
        running.waitFor(kTakenNote);
        gnuplot.waitForStart();
        running.repeatUntil(kStoppedNote, [&] { running.signal(second); });
        EXPECT_EQ(running.finish().exit_status, 128 + second);
        EXPECT_EQ(result("results", ".png"), figure);
        EXPECT_NE(result("results", ".csv"), "");
    }
}

TEST_F(Interruption, LeavesNoGnuplotBehindWhenItStopsAtOnce) {
    GnuplotAtWork gnuplot(directory_);
    std::vector<std::string> words = command("results", {"-i", "20"});
    // The end of the terminal would end gnuplot, too: a shell keeps it.
    words.insert(words.begin(),
                 {"/bin/sh", "-c", "trap : INT; \"$0\" \"$@\"; echo \"status $?\"; read line"});
    RunningCommand running(words);
    gnuplot.waitForStart();
    running.typeInterrupt();
    running.waitFor(kTakenNote);
    running.repeatUntil(kStoppedNote, [&] { running.typeInterrupt(); });
    running.waitFor("status 130");
    gnuplot.letGo();
    EXPECT_EQ(gnuplot.nextLine(), "");
}

TEST_F(Interruption, GoesOnFromWhereItWasInterrupted) {
    for (const char* theta : {"0", "0.5"}) {
        RunningCommand running(
            command("broken", {"-i", kEndless, "-t", theta, "--checkpoint", checkpoint_}));
        running.waitFor("at iteration (30/");
        running.signal(SIGINT);
        const CommandOutcome interrupted = running.finish();
        EXPECT_THAT(interrupted.out,
                    HasSubstr("-- Checkpoint: " + checkpoint_ + " (to go on: --resume)\r\n"));
        const std::string last = std::to_string(std::stol(ended_at(interrupted.out)) + 60);
        const CommandOutcome resumed =
            run("broken", {"-i", last, "-t", theta, "--resume", checkpoint_, "-j", "1"});
        EXPECT_EQ(resumed.exit_status, 0);
        EXPECT_EQ(run("whole", {"-i", last, "-t", theta}).exit_status, 0);
        expectSameResults("broken", "whole");
    }
}

TEST_F(Interruption, GoesOnFromTheLastCheckpointOfARunThatWasKilled) {
    RunningCommand running(
        command("broken", {"-i", "3000", "--checkpoint", checkpoint_, "--checkpoint-every", "3"}));
    running.waitFor("at iteration (20/");
    running.signal(SIGKILL);
    EXPECT_EQ(running.finish().exit_status, 137);
    const int reached = read_checkpoint(checkpoint_).iteration;
    EXPECT_GE(reached, 18);
    const std::string last = std::to_string(reached + 60);
    EXPECT_EQ(run("broken", {"-i", last, "--resume", checkpoint_}).exit_status, 0);
    EXPECT_EQ(run("whole", {"-i", last}).exit_status, 0);
    expectSameResults("broken", "whole");
}

TEST_F(Interruption, ExtendsARun) {
    EXPECT_EQ(run("results", {"-i", "40", "--checkpoint", checkpoint_}).exit_status, 0);
    EXPECT_EQ(run("results",
                  {"-i",
                   "90",
                   "--resume",
                   checkpoint_,
                   "--checkpoint",
                   checkpoint_,
                   "--precision",
                   "float"})
                  .exit_status,
              0);
    EXPECT_EQ(run("whole", {"-i", "90", "--precision", "float"}).exit_status, 0);
    expectSameResults("results", "whole");
    EXPECT_EQ(read_checkpoint(checkpoint_).iteration, 90);
}

TEST_F(Interruption, RefusesACheckpointOfAnotherRunBeforeItWritesAnything) {
    EXPECT_EQ(run("results", {"-i", "20", "--checkpoint", checkpoint_}).exit_status, 0);
    const CommandOutcome other =
        run("refused", {"-i", "50", "--resume", checkpoint_, "--perplexity", "12"});
    EXPECT_EQ(other.exit_status, 2);
    EXPECT_EQ(other.out, "");
    EXPECT_EQ(other.err,
              "ovik-tsne: " + checkpoint_ +
                  ": this checkpoint is not of this run\n"
                  "  perplexity: 20 in the checkpoint, 12 now\n"
                  "Give the matrix and the options of the run that wrote it, or start anew.\n");
    const std::string damaged =
        directory_.write("damaged.ckpt", test::read_file(checkpoint_).substr(0, 1000));
    const CommandOutcome cut = run("refused", {"-i", "50", "--resume", damaged});
    EXPECT_EQ(cut.exit_status, 2);
    EXPECT_THAT(cut.err, HasSubstr("the checkpoint is damaged"));
    EXPECT_EQ(run("refused", {"-i", "19", "--resume", checkpoint_}).exit_status, 2);
    EXPECT_EQ(run("refused", {"--resume", "no/such/file"}).exit_status, 2);
    EXPECT_FALSE(std::filesystem::exists(directory_.file("refused")));
}

TEST_F(Interruption, NeverReplacesWhatIsNoCheckpoint) {
    const std::string content = test::read_file(matrix_);
    const CommandOutcome outcome = run("refused", {"--checkpoint", matrix_});
    EXPECT_EQ(outcome.exit_status, 2);
    EXPECT_EQ(outcome.err,
              "ovik-tsne: " + matrix_ +
                  ": this is not a checkpoint, and one would replace it\nGive another name with "
                  "--checkpoint, or remove it.\n");
    EXPECT_EQ(test::read_file(matrix_), content);
    EXPECT_EQ(run("refused", {"--checkpoint", "/dev/null"}).exit_status, 2);
    EXPECT_EQ(run("refused", {"--checkpoint", directory_.prefix()}).exit_status, 2);
    EXPECT_FALSE(std::filesystem::exists(directory_.file("refused")));
    const std::string empty = directory_.write("empty", "");
    EXPECT_EQ(run("results", {"-i", "20", "--checkpoint", empty}).exit_status, 0);
    EXPECT_EQ(read_checkpoint(empty).iteration, 20);
}

TEST_F(Interruption, RefusesIntervalsThatAreNone) {
    EXPECT_EQ(run("refused", {"--checkpoint-every", "5"}).exit_status, 2);
    EXPECT_EQ(run("refused", {"--checkpoint", checkpoint_, "--checkpoint-every", "0"}).exit_status,
              2);
    EXPECT_FALSE(std::filesystem::exists(checkpoint_));
}

TEST_F(Interruption, FailsInTheEndWhenTheCheckpointCannotBeWritten) {
    const std::string missing = directory_.file("missing/fit.ckpt");
    const CommandOutcome outcome = run("results", {"-i", "20", "-q", "--checkpoint", missing});
    EXPECT_EQ(outcome.exit_status, 1);
    EXPECT_EQ(outcome.err,
              "ovik-tsne: Checkpoint could not be written: " + missing +
                  " (No such file or directory)\n");
    EXPECT_EQ(run("whole", {"-i", "20"}).exit_status, 0);
    expectSameResults("results", "whole");
}

TEST_F(Interruption, WritesNoEmbeddingThatIsNotFinite) {
    EXPECT_EQ(run("results", {"-i", "20", "--checkpoint", checkpoint_}).exit_status, 0);
    const std::string table = result("results", ".csv");
    Checkpoint checkpoint = read_checkpoint(checkpoint_);
    checkpoint.embedding.back() = 1e308;
    checkpoint.velocity.back() = 1.7e308;
    ASSERT_EQ(write_checkpoint(checkpoint_, checkpoint), "");
    const CommandOutcome outcome = run("results", {"-i", "50", "--resume", checkpoint_});
    EXPECT_EQ(outcome.exit_status, 1);
    EXPECT_THAT(outcome.err,
                HasSubstr("ovik-tsne: the embedding got out of range at iteration 21, and no "
                          "results are written\n"));
    EXPECT_EQ(result("results", ".csv"), table);
}

}  // namespace
}  // namespace ovik
