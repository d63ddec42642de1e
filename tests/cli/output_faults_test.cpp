#include <csignal>
#include <filesystem>
#include <map>
#include <string>
#include <unistd.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/command.h"
#include "tests/support/temporary_directory.h"

/// The real program where its output cannot be written.

namespace ovik {
namespace {

using test::CommandOutcome;
using testing::AnyOf;
using testing::HasSubstr;

constexpr int kSuccess = 0;
constexpr int kFailedRun = 1;

/// Of the shell, where what it is to try is not permitted.
constexpr int kNotPermitted = 77;

std::string matrix_of(int rows) {
    std::string content = "gene\ta\tb\n";
    for (int n = 0; n < rows; ++n) {
        content += "G" + std::to_string(n) + "\t" + std::to_string(n % 7) + "\t" +
                   std::to_string(n * n % 11) + ".5\n";
    }
    return content;
}

using Files = std::map<std::string, std::string>;

Files files_in(const std::string& directory) {
    Files files;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        files[entry.path().filename().string()] =
            entry.is_regular_file() ? test::read_file(entry.path().string()) : "no file";
    }
    return files;
}

class OutputFaults : public testing::Test {
  protected:
    void SetUp() override { std::filesystem::create_directory(results_); }

    /// Runs a shell script, in which $run stands for the command on a matrix of so many rows.
    CommandOutcome shell(const std::string& script, int rows = 70) const {
        return test::run_command(
            {"/bin/sh",
             "-c",
             "run=\"$0 $1 -i 5 -p 20 --names other -o $2\"; results=$2; " + script,
             OVIK_TSNE_COMMAND,
             directory_.write("m.txt", matrix_of(rows)),
             results_});
    }

    /// What the results of an undisturbed run on 70 rows are.
    static const Files& expected() {
        static const Files files = [] {
            const test::TemporaryDirectory directory;
            const std::string matrix = directory.write("m.txt", matrix_of(70));
            const std::string results = directory.file("results");
            test::run_command({OVIK_TSNE_COMMAND,
                               matrix,
                               "-i",
                               "5",
                               "-p",
                               "20",
                               "--names",
                               "other",
                               "-o",
                               results});
            return files_in(results);
        }();
        return files;
    }

    test::TemporaryDirectory directory_;
    std::string results_ = directory_.file("results");
    std::string base_ = results_ + "/m_tsne_20_0";
};

TEST_F(OutputFaults, FullOrClosedStandardOutputIsReportedAndCostsNoResult) {
    for (const auto& [script, reason] :
         {std::pair{"$run >/dev/full", "No space left on device"},
          std::pair{"$run >&-", "Bad file descriptor"},
          std::pair{"$run <&- >&-", "Bad file descriptor"},
          std::pair{"$run --quiet >/dev/full; $run >/dev/full", "No space left on device"}}) {
        const CommandOutcome outcome = shell(std::string("rm -f $results/*; ") + script);
        EXPECT_EQ(outcome.exit_status, kFailedRun) << script;
        EXPECT_EQ(
            outcome.err,
            std::string("ovik-tsne: standard output could not be written (") + reason + ")\n");
        EXPECT_EQ(files_in(results_).at("m_tsne_20_0.html"), expected().at("m_tsne_20_0.html"));
    }
    EXPECT_EQ(shell("$0 --help >/dev/full").exit_status, kFailedRun);
    EXPECT_EQ(shell("$0 --gene CDC28 >/dev/full").exit_status, kFailedRun);
}

TEST_F(OutputFaults, ClosedStreamsThatAreNotNeededDoNotMatter) {
    EXPECT_EQ(shell("$run --quiet <&- >&- 2>&-").exit_status, kSuccess);
    EXPECT_EQ(files_in(results_), expected());
}

TEST_F(OutputFaults, ClosedOrFullStandardErrorFailsARunThatHasSomethingToSay) {
    // The exact method says what it does.
    for (const char* target : {"&-", "/dev/full"}) {
        EXPECT_EQ(shell(std::string("$run -t 0 2>") + target).exit_status, kFailedRun);
        EXPECT_EQ(files_in(results_).size(), 6U);
    }
}

TEST_F(OutputFaults, AClosedPipeEndsTheRunAsItEndsOtherPrograms) {
    // Many more iterations than it will come to.
    const CommandOutcome outcome =
        shell("($0 $1 -i 1000000 --names other -o $2; echo $? >&2) | head -c 1 >/dev/null");
    EXPECT_EQ(outcome.err, std::to_string(128 + SIGPIPE) + "\n");
}

TEST_F(OutputFaults, AReadOnlyDirectoryIsReportedBeforeTheRun) {
    const CommandOutcome outcome = shell(
        "chmod -R a+rX ${results%/*}; chmod a-w $results; command -v setpriv >/dev/null || "
        "exit 77; setpriv --reuid=65534 --clear-groups test -x $0 || exit 77; "
        "setpriv --reuid=65534 --clear-groups $run");
    if (outcome.exit_status == kNotPermitted) {
        GTEST_SKIP() << "needs to become another user";
    }
    EXPECT_EQ(outcome.exit_status, kFailedRun);
    EXPECT_EQ(outcome.err, "ovik-tsne: cannot write in " + results_ + "/: Permission denied\n");
    EXPECT_EQ(outcome.out, "");
}

/// A result and what is said when a directory lies in its place.
struct Occupied {
    const char* name;
    const char* file;
    const char* message;
};

class OccupiedPlace : public OutputFaults, public testing::WithParamInterface<Occupied> {};

TEST_P(OccupiedPlace, IsReportedWithItsReasonAndCostsNothingElse) {
    const std::string place = results_ + "/" + GetParam().file;
    std::filesystem::create_directories(place + "/occupied");
    const CommandOutcome outcome = shell("$run --quiet");
    EXPECT_EQ(outcome.exit_status, kFailedRun);
    EXPECT_THAT(outcome.err, HasSubstr(GetParam().message));
    EXPECT_THAT(outcome.err, HasSubstr(place));
    EXPECT_THAT(outcome.err, HasSubstr("Is a directory"));
    EXPECT_TRUE(std::filesystem::is_directory(place + "/occupied"));
    // The script that is not there cannot be drawn; a picture comes without the other one or not
    // at all.
    for (const auto& [name, content] : files_in(results_)) {
        if (name != GetParam().file) {
            EXPECT_EQ(content, expected().at(name)) << name;
        }
    }
    const std::string extension = std::filesystem::path(place).extension();
    if (extension == ".csv" || extension == ".log" || extension == ".html") {
        EXPECT_EQ(files_in(results_).size(), expected().size());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Results,
    OccupiedPlace,
    testing::Values(Occupied{"Table", "m_tsne_20_0.csv", "Result table could not be written"},
                    Occupied{"Log", "m.log", "Run log could not be written"},
                    Occupied{"Page", "m_tsne_20_0.html", "Chart page could not be written"},
                    Occupied{"Script", "m_tsne_20_0.gp", "could not be written"},
                    Occupied{"Png", "m_tsne_20_0.png", "was not drawn"},
                    Occupied{"Svg", "m_tsne_20_0.svg", "was not drawn"}),
    [](const testing::TestParamInfo<Occupied>& place) { return std::string(place.param.name); });

TEST_F(OutputFaults, DanglingLinksAreWrittenThroughOrReported) {
    std::filesystem::create_symlink("../table", base_ + ".csv");
    std::filesystem::create_symlink("no/such/directory/f", base_ + ".tsv");
    std::filesystem::create_symlink("no/such/directory/f", results_ + "/m.log");
    const CommandOutcome outcome = shell("$run --quiet --no-plots --coordinates tsv");
    EXPECT_EQ(outcome.exit_status, kFailedRun);
    EXPECT_EQ(outcome.err,
              "ovik-tsne: Run log could not be written: " + results_ +
                  "/m.log (No such file or directory)\n"
                  "ovik-tsne: Coordinates could not be written: " +
                  base_ + ".tsv (No such file or directory)\n");
    EXPECT_EQ(files_in(results_).at("m_tsne_20_0.csv"), expected().at("m_tsne_20_0.csv"));
    EXPECT_EQ(test::read_file(directory_.file("table")), expected().at("m_tsne_20_0.csv"));
    for (const std::string& link : {base_ + ".csv", base_ + ".tsv", results_ + "/m.log"}) {
        EXPECT_TRUE(std::filesystem::is_symlink(link)) << link;
    }

    const std::string link = directory_.file("link");
    std::filesystem::create_symlink("no/such/directory", link);
    const CommandOutcome directory = shell("$0 $1 --quiet -o " + link);
    EXPECT_EQ(directory.exit_status, kFailedRun);
    EXPECT_THAT(directory.err, HasSubstr(link));
}

TEST_F(OutputFaults, ARecordThatDoesNotFitLeavesTheLogAsItWas) {
    // In blocks of 512 bytes: there is room for a part of the record.
    const std::string earlier(std::size_t{8} * 512 - 20, 'x');
    directory_.write("results/m.log", earlier);
    const CommandOutcome outcome = shell("ulimit -f 8; $run --quiet --no-plots");
    EXPECT_EQ(outcome.exit_status, kFailedRun);
    EXPECT_EQ(outcome.err,
              "ovik-tsne: Run log could not be written: " + results_ + "/m.log (File too large)\n");
    EXPECT_EQ(files_in(results_).at("m.log"), earlier);
    EXPECT_EQ(files_in(results_).at("m_tsne_20_0.csv"), expected().at("m_tsne_20_0.csv"));
}

TEST_F(OutputFaults, PlotsShowTheirOwnRunWhereATableOfAnEarlierOneStays) {
    ASSERT_EQ(shell("$run").exit_status, kSuccess);
    const Files earlier = files_in(results_);
    ASSERT_EQ(shell("$0 $1 -i 5 -p 20 --names other -o $2.whole", 700).exit_status, kSuccess);
    const Files whole = files_in(results_ + ".whole");
    // The table of this run cannot take its place: an earlier one stays in it.
    std::filesystem::remove(base_ + ".csv");
    std::filesystem::create_directory(base_ + ".csv");
    directory_.write("results/m_tsne_20_0.csv/earlier", earlier.at("m_tsne_20_0.csv"));
    const CommandOutcome outcome = shell("$run --quiet", 700);
    EXPECT_EQ(outcome.exit_status, kFailedRun);
    EXPECT_EQ(outcome.err,
              "ovik-tsne: Result table could not be written: " + base_ + ".csv (Is a directory)\n");
    const Files later = files_in(results_);
    for (const char* extension : {".html", ".gp", ".png", ".svg"}) {
        const std::string name = std::string("m_tsne_20_0") + extension;
        EXPECT_EQ(later.at(name), whole.at(name)) << name;
        EXPECT_NE(later.at(name), earlier.at(name)) << name;
    }
    EXPECT_EQ(later.size(), earlier.size());
}

TEST_F(OutputFaults, WhatOutgrowsALimitLeavesEarlierResults) {
    ASSERT_EQ(shell("$run").exit_status, kSuccess);
    const Files earlier = files_in(results_);
    // There is room for a log record, but not for this table, nor for plots.
    const CommandOutcome outcome = shell("ulimit -f 8; $run --quiet", 700);
    EXPECT_EQ(outcome.exit_status, kFailedRun);
    EXPECT_THAT(outcome.err,
                HasSubstr("Figure " + base_ + ".png was not drawn: " + base_ +
                          ".gp could not be written (File too large).\n"));
    EXPECT_THAT(
        outcome.err,
        HasSubstr("Result table could not be written: " + base_ + ".csv (File too large)\n"));
    const Files later = files_in(results_);
    for (const char* extension : {".csv", ".gp", ".png", ".svg"}) {
        const std::string name = std::string("m_tsne_20_0") + extension;
        EXPECT_EQ(later.at(name), earlier.at(name)) << name;
    }
    EXPECT_EQ(later.size(), earlier.size());
}

TEST_F(OutputFaults, LinksAndPermissionsOfEarlierResultsStay) {
    const std::string elsewhere = directory_.file("elsewhere");
    std::filesystem::create_directory(elsewhere);
    for (const char* extension : {".csv", ".html", ".gp", ".png", ".svg"}) {
        std::filesystem::create_symlink("../elsewhere/f" + std::string(extension),
                                        base_ + extension);
    }
    directory_.write("elsewhere/f.html", "earlier");
    std::filesystem::permissions(elsewhere + "/f.html", std::filesystem::perms(0640));
    EXPECT_EQ(shell("$run").exit_status, kSuccess);
    EXPECT_EQ(files_in(results_), expected());
    EXPECT_EQ(files_in(elsewhere).size(), 5U);
    EXPECT_EQ(test::read_file(elsewhere + "/f.png"), expected().at("m_tsne_20_0.png"));
    EXPECT_TRUE(std::filesystem::is_symlink(base_ + ".png"));
    EXPECT_EQ(std::filesystem::status(elsewhere + "/f.html").permissions(),
              std::filesystem::perms(0640));
}

TEST_F(OutputFaults, AReportGoesToStandardOutputOrAPipe) {
    for (const char* const place : {"/dev/stdout", "/dev/fd/1"}) {
        const CommandOutcome outcome = shell(std::string("$run --no-plots --json ") + place +
                                             " | tail -c 18; "
                                             "$run --no-plots --json " +
                                             place + " >$2.out; tail -n 1 $2.out | cut -c 1-9");
        EXPECT_EQ(outcome.err, "") << place;
        EXPECT_THAT(outcome.out, HasSubstr("\n")) << place;
        const std::string file = test::read_file(results_ + ".out");
        EXPECT_THAT(file, HasSubstr("-- Random seed:  11\n")) << place;
        EXPECT_THAT(file, HasSubstr("\n{\"report\":1,")) << place;
        EXPECT_THAT(file, HasSubstr("-- Report: " + std::string(place) + "\n")) << place;
    }
    const CommandOutcome piped = shell(
        "mkfifo $2.pipe; cat $2.pipe >$2.json & $run --quiet --no-plots --json $2.pipe; wait");
    EXPECT_EQ(piped.err, "");
    EXPECT_EQ(test::read_file(results_ + ".json").substr(0, 11), "{\"report\":1");
    EXPECT_TRUE(std::filesystem::is_fifo(results_ + ".pipe"));
}

TEST_F(OutputFaults, WritableFilesOfAReadOnlyDirectoryAreWrittenInPlace) {
    const std::string table = directory_.write("results/m_tsne_20_0.csv", std::string(9999, 'x'));
    const std::string log = directory_.write("results/m.log", "");
    const CommandOutcome outcome = shell(
        "chmod -R a+rX ${results%/*}; chmod a+w $results/*; chmod a-w $results; "
        "command -v setpriv >/dev/null || exit 77; "
        "setpriv --reuid=65534 --clear-groups test -x $0 || exit 77; "
        "setpriv --reuid=65534 --clear-groups $run --no-plots; status=$?; "
        "chmod u+w $results; exit $status");
    if (outcome.exit_status == kNotPermitted) {
        GTEST_SKIP() << "needs to become another user";
    }
    EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    EXPECT_THAT(outcome.out,
                HasSubstr("-- Nothing can be made in the directory of " + table +
                          ", so the file is overwritten in place: an interrupted write leaves a "
                          "part of it\n"));
    EXPECT_EQ(test::read_file(table), expected().at("m_tsne_20_0.csv"));
    EXPECT_EQ(test::read_file(log), expected().at("m.log"));
    EXPECT_EQ(files_in(results_).size(), 2U);
}

/// A disk of so many bytes, with another user's needs left to nobody.
class FullDisk : public OutputFaults, public testing::WithParamInterface<const char*> {};

TEST_P(FullDisk, HoldsWholeResultsOrNone) {
    const std::string kept = directory_.file("kept");
    const CommandOutcome outcome =
        shell(std::string("unshare -m /bin/sh -c 'mount -t tmpfs -o size=") + GetParam() +
              " tmpfs \"$0\"' $results || exit 77; "
              "exec unshare -m /bin/sh -c 'mount -t tmpfs -o size=" +
              GetParam() +
              " tmpfs \"$0\"; \"$@\"; status=$?; cp -R \"$0\" \"${0%/*}/kept\"; exit $status' "
              "$results $run --quiet");
    if (outcome.exit_status == kNotPermitted) {
        GTEST_SKIP() << "needs to mount a file system";
    }
    EXPECT_EQ(outcome.exit_status, kFailedRun);
    // gnuplot says nothing of it.
    EXPECT_THAT(outcome.err,
                AnyOf(HasSubstr("(No space left on device)"), HasSubstr("the disk may be full")));
    for (const auto& [name, content] : files_in(kept)) {
        ASSERT_TRUE(expected().contains(name)) << name;
        EXPECT_EQ(content, expected().at(name)) << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, FullDisk, testing::Values("4k", "8k", "64k", "128k"));

TEST_F(OutputFaults, WhatKilledRunsLeftOverIsRemoved) {
    // Larger than any number of a process.
    directory_.write("results/.ovik-99999999-1.part", "half a table");
    std::filesystem::create_directory(results_ + "/.ovik-99999999-2.part");
    directory_.write("results/.ovik-99999999-2.part/messages", "");
    directory_.write("results/.ovik-99999999-2.part/m_tsne_20_0.png", "half a picture");
    directory_.write("results/.ovik-notes", "not ours");
    std::filesystem::create_directory(results_ + "/.ovik-99999999-3.part");
    directory_.write("results/.ovik-99999999-3.part/thesis.txt", "not ours");
    std::filesystem::create_directory(results_ + "/.ovik-x.part");
    EXPECT_EQ(shell("$run").exit_status, kSuccess);
    Files all = expected();
    all[".ovik-notes"] = "not ours";
    all[".ovik-99999999-3.part"] = all[".ovik-x.part"] = "no file";
    EXPECT_EQ(files_in(results_), all);
    EXPECT_EQ(test::read_file(results_ + "/.ovik-99999999-3.part/thesis.txt"), "not ours");
}

TEST_F(OutputFaults, IgnoredEndsOfChildrenDoNotCostTheFigure) {
    EXPECT_EQ(shell("trap '' CHLD; exec $run").exit_status, kSuccess);
    EXPECT_EQ(files_in(results_), expected());
}

}  // namespace
}  // namespace ovik
