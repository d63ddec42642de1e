#include "tools/onto_run.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "results/map_model.h"
#include "stats/row_placement.h"
#include "util/format.h"

#include "tests/support/random_points.h"
#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"
#include "tools/command_report.h"

namespace ovik::tool {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr std::size_t kRows = 60;

/// A model of two columns whose scaled input is its matrix.
MapModel model_of_random_rows() {
    MapModel model;
    model.rows = kRows;
    model.columns = 2;
    model.out_dims = 2;
    model.options = {{"perplexity", "5"}, {"theta", "0.5"}};
    model.perplexity = 5.0;
    for (std::size_t n = 0; n < kRows; ++n) {
        model.row_names.push_back("old" + std::to_string(n));
    }
    model.column_names = {"heat", "cold"};
    model.column_means = {10.0, 20.0};
    model.centres = {0.0, 0.0};
    model.input = test::random_values(2 * kRows, 1);
    for (const double value : model.input) {
        model.embedding.push_back(10.0 * value);
    }
    model.largest_nearest_distance = 1.0;
    return model;
}

class OntoRunTest : public testing::Test {
  protected:
    OntoRunTest() {
        options_.out_dir = directory_.file("made/");
        options_.name = "new";
        options_.title = "New genes";
        options_.names = RowNames::Other;
        options_.plots = false;
        options_.onto = directory_.file("map.model");
        options_.report_file = directory_.file("made/new.json");
        saveModel();
    }

    void saveModel() { EXPECT_FALSE(write_map_model(options_.onto, model_)); }

    /// Places the rows of a text.
    ExitStatus placeRows(const std::string& text) {
        options_.matrix = directory_.write("new.tsv", text);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const EndOfCapture end_of_capture(*this);
        return place_onto(options_, begin_report(options_, {"ovik-tsne"}), Stopwatch());
    }

    std::string refusal(const std::string& text) {
        return test::refusal_of([&] { placeRows(text); });
    }

    [[nodiscard]] std::string result(const std::string& name) const {
        return test::read_file(directory_.file("made/" + name));
    }

    /// The line of the table for a row of these values.
    std::string lineOf(const std::string& name, const std::vector<double>& values) {
        const InputScale scale{model_.centres, model_.factor};
        const PlacedRows placed = place_rows(
            {{model_.input.data(), kRows, 2}, scale, {model_.embedding.data(), kRows, 2}, 5.0},
            {values.data(), 1, 2});
        char line[100];
        std::snprintf(line,
                      sizeof line,
                      "%s,%.3f,%.3f,1,",
                      name.c_str(),
                      placed.embedding[0],
                      placed.embedding[1]);
        return line;
    }

    test::TemporaryDirectory directory_;
    Options options_;
    MapModel model_ = model_of_random_rows();
    std::string out_;
    std::string err_;

  private:
    struct EndOfCapture {
        explicit EndOfCapture(OntoRunTest& test) : test(test) {}

        EndOfCapture(const EndOfCapture&) = delete;
        EndOfCapture& operator=(const EndOfCapture&) = delete;

        ~EndOfCapture() {
            test.out_ = testing::internal::GetCapturedStdout();
            test.err_ = testing::internal::GetCapturedStderr();
        }

        OntoRunTest& test;
    };
};

TEST_F(OntoRunTest, PlacesRowsWhateverTheOrderOfTheirColumns) {
    EXPECT_EQ(placeRows("gene\tcold\theat\nA\t0.5\t0.25\nB\t-0.5\t1\n"), Success);
    EXPECT_THAT(result("new_onto.csv"), HasSubstr("\n" + lineOf("A", {0.25, 0.5})));
    EXPECT_THAT(result("new_onto.csv"), HasSubstr("\n" + lineOf("B", {1.0, -0.5})));
    EXPECT_THAT(result("new_onto.csv"), Not(HasSubstr("old")));
    EXPECT_THAT(out_, HasSubstr("-- Placing 2 rows on the map of 60 rows\n"));
    EXPECT_THAT(out_, HasSubstr("-- Result table: " + directory_.file("made/new_onto.csv")));
    EXPECT_EQ(err_, "");
}

TEST_F(OntoRunTest, GivesARowTheSameLineAloneAndAmongOthers) {
    placeRows("gene\theat\tcold\nA\t0.5\t0.25\n");
    const std::string alone = result("new_onto.csv");
    std::string text = "gene\theat\tcold\n";
    for (int n = 0; n < 30; ++n) {
        text += "G" + std::to_string(n) + "\t" + std::to_string(0.1 * n) + "\t0.3\n";
    }
    placeRows(text + "A\t0.5\t0.25\n");
    const std::string line = alone.substr(alone.find("\nA,"));
    EXPECT_THAT(result("new_onto.csv"), HasSubstr(line));
}

TEST_F(OntoRunTest, ReportsPlacesAndWhatTheMapWasMadeBy) {
    placeRows("gene\theat\tcold\nA\t0.5\t0.25\n");
    const std::string report = result("new.json");
    EXPECT_THAT(report, HasSubstr("\"options\":{\"perplexity\":5,\"theta\":0.5,"));
    EXPECT_THAT(report, HasSubstr("\"placement\":{\"model\":\"../map.model\",\"map_rows\":60,"));
    EXPECT_THAT(report, HasSubstr("\"names\":[\"A\"]"));
    EXPECT_THAT(report, HasSubstr("\"exit_status\":0"));
}

TEST_F(OntoRunTest, ShowsTheRowsOfTheMapBeneathTheNewOnes) {
    options_.plots = true;
    options_.load.labels_file = directory_.write("labels.txt", "known\n\n");
    placeRows("gene\theat\tcold\nA\t0.5\t0.25\nB\t1\t2\n");
    const std::string page = result("new_onto.html");
    EXPECT_THAT(page, HasSubstr("\"background\":\"old rows\""));
    EXPECT_THAT(page, HasSubstr("\"old59\",\"A\",\"B\"]"));
    EXPECT_THAT(page, HasSubstr("\"old rows\",\"known\",\"\"]"));
    EXPECT_THAT(page, HasSubstr("\"old rows\",\"new rows\",\"new rows\"]"));
    EXPECT_THAT(result("new_onto.gp"), HasSubstr("set label 'old rows' at screen"));
}

TEST_F(OntoRunTest, NeverTakesALabelForTheMap) {
    options_.plots = true;
    options_.load.labels_file = directory_.write("labels.txt", "old rows\nx\n");
    placeRows("gene\theat\tcold\nA\t0.5\t0.25\nB\t1\t2\n");
    EXPECT_THAT(result("new_onto.html"), HasSubstr("\"background\":\"old rows'\""));
}

TEST_F(OntoRunTest, TellsOfRowsThatAreKnownEqualOrFarAway) {
    const auto text = [this](std::size_t i) { return shortest_text(model_.input[i]); };
    placeRows("gene\theat\tcold\nold3\t0\t0\nA\t" + text(8) + "\t" + text(9) +
              "\nB\t50\t50\nC\t0.1\t0.1\n");
    EXPECT_THAT(err_, HasSubstr("1 row (\"old3\") with a name that a row of the map has, too"));
    EXPECT_THAT(err_, HasSubstr("1 row (\"A\") with the very values of a row of the map"));
    EXPECT_THAT(err_, HasSubstr("1 row (\"B\") farther from all rows of the map than any of"));
}

TEST_F(OntoRunTest, WarnsOfRowsWhoseNeighboursLieApart) {
    placeRows("gene\theat\tcold\nA\t0.5\t0.25\n");
    EXPECT_THAT(err_, Not(HasSubstr("nowhere near")));
    model_.embedding = test::random_values(2 * kRows, 2, 1e5);
    saveModel();
    placeRows("gene\theat\tcold\nA\t0.5\t0.25\n");
    EXPECT_THAT(err_, HasSubstr("warning: 1 row (\"A\") nowhere near the rows of the map that"));
}

TEST_F(OntoRunTest, ReportsDistancesInTheUnitsOfTheData) {
    model_.factor = 0.5;
    model_.input[0] = 100.0;
    model_.input[1] = 100.0;
    saveModel();
    placeRows("gene\theat\tcold\nA\t203\t204\n");
    EXPECT_THAT(result("new.json"), HasSubstr("\"nearest\":[\"old0\"],\"nearest_distances\":[5]"));
}

TEST_F(OntoRunTest, WritesNewRowsInOtherFormsToo) {
    options_.coordinates_tsv = true;
    options_.coordinates_npy = true;
    options_.annotated_tsv = true;
    options_.load.labels_file = directory_.write("labels.txt", "known\n");
    placeRows("gene\theat\tcold\nA\t0.5\t0.25\n");
    EXPECT_THAT(result("new_onto.tsv"), HasSubstr("\nA\t"));
    EXPECT_THAT(result("new_onto.tsv"), Not(HasSubstr("old")));
    EXPECT_THAT(result("new_onto.npy"), HasSubstr("'shape': (1, 2)"));
    EXPECT_THAT(result("new_onto_annotated.tsv"), HasSubstr("\tknown\t"));
    EXPECT_THAT(result("new.json"), HasSubstr("new_onto_annotated.tsv"));
}

TEST_F(OntoRunTest, RefusesRowsWithoutDirectionByNameOrLeavesThemOut) {
    const std::string text = "gene\theat\tcold\nA\t0.5\t0.25\nB\t0\t0\n";
    options_.drops_constant_rows = true;
    EXPECT_THAT(refusal(text), HasSubstr("is a map by --metric euclidean\nLeave it out."));
    model_.options.emplace_back("metric", "cosine");
    saveModel();
    EXPECT_EQ(placeRows(text), Success);
    EXPECT_THAT(out_, HasSubstr("1 row without variation left out: \"B\" (line 3); 1 remain"));
    EXPECT_THAT(result("new_onto.csv"), Not(HasSubstr("\nB,")));
    EXPECT_THAT(refusal("gene\theat\tcold\nB\t0\t0\n"), HasSubstr("so there is none to place"));
    options_.drops_constant_rows = false;
    EXPECT_THAT(refusal(text),
                HasSubstr("new.tsv: 1 row has no cosine with any other, since all values are 0: "
                          "\"B\" (line 3)\nLeave such rows out (--constant-rows drop), or place"));
}

TEST_F(OntoRunTest, FillsInMeansOfTheMapsColumns) {
    options_.load.missing = MissingPolicy::ColumnMean;
    placeRows("gene\theat\tcold\nA\tNA\t0.25\n");
    EXPECT_THAT(result("new_onto.csv"), HasSubstr("\n" + lineOf("A", {10.0, 0.25})));
}

TEST_F(OntoRunTest, FillsInWhatTheMapFilledInUnlessToldOtherwise) {
    model_.missing = "column-mean";
    saveModel();
    placeRows("gene\theat\tcold\nA\tNA\t0.25\n");
    EXPECT_THAT(result("new_onto.csv"), HasSubstr("\n" + lineOf("A", {10.0, 0.25})));
    options_.load.missing = MissingPolicy::Zero;
    placeRows("gene\theat\tcold\nA\tNA\t0.25\n");
    EXPECT_THAT(result("new_onto.csv"), HasSubstr("\n" + lineOf("A", {0.0, 0.25})));
}

TEST_F(OntoRunTest, TransformsRowsAsThoseOfTheMapWere) {
    model_.transformations = "center columns, scale";
    model_.subtracted = {1.0, 2.0};
    model_.divisors = {4.0, 8.0};
    saveModel();
    placeRows("gene\theat\tcold\nA\t2\t4\n");
    EXPECT_THAT(result("new_onto.csv"), HasSubstr("\n" + lineOf("A", {0.25, 0.25})));
    EXPECT_THAT(out_, HasSubstr("transformed by center columns, scale, as the rows of the map"));
    options_.load.transformations = {.log1p = true};
    EXPECT_THAT(refusal("gene\theat\tcold\nA\t2\t4\n"),
                HasSubstr("the map's values were transformed by center columns, scale, and log1p "
                          "is asked for\nLeave --log1p"));
    options_.load.transformations = transformations_of(model_.transformations).value();
    EXPECT_EQ(placeRows("gene\theat\tcold\nA\t2\t4\n"), Success);
    model_.transformations = "log2";
    saveModel();
    EXPECT_THAT(refusal("gene\theat\tcold\nA\t2\t4\n"), HasSubstr("not known: log2"));
}

TEST_F(OntoRunTest, RefusesWhatDoesNotFitBeforeItWritesAnything) {
    EXPECT_THAT(refusal("gene\theat\tsalt\nA\t2\t4\n"),
                HasSubstr("1 column of the map is missing: \"cold\""));
    EXPECT_THAT(refusal("gene\theat\tcold\tsalt\nA\t2\t4\t6\n"),
                HasSubstr("Leave them out with --skip-columns salt."));
    EXPECT_THAT(refusal("gene\ta\tb\nA\t2\t4\n"), HasSubstr("no column has a name of the map's"));
    EXPECT_THAT(refusal("gene\theat\tcold\nA\t2\t1e200\n"), HasSubstr("new.tsv: row 1 has values"));
    options_.load.missing = MissingPolicy::Error;
    EXPECT_THAT(refusal("gene\theat\tcold\nA\t2\tNA\n"), HasSubstr("1 of 2 values is missing"));
    options_.load.missing = MissingPolicy::Drop;
    EXPECT_THAT(refusal("gene\theat\tcold\nA\t2\tNA\n"), HasSubstr("so there is none to place"));
    options_.onto = directory_.write("bad.model", "OVIKMODL and more");
    EXPECT_THAT(refusal("gene\theat\tcold\nA\t2\t4\n"), HasSubstr("the model is damaged"));
    EXPECT_FALSE(std::filesystem::exists(directory_.file("made")));
}

}  // namespace
}  // namespace ovik::tool
