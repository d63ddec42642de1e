#include "stats/embedding.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "stats/engine.h"
#include "stats/tsne.h"
#include "util/console.h"
#include "util/input_error.h"

#include "tests/support/random_points.h"
#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

constexpr std::size_t kRows = 40;
constexpr std::size_t kColumns = 3;
constexpr FitOptions kOptions{.perplexity = 5.0, .max_iter = 20};

std::vector<std::string> names() {
    std::vector<std::string> names(kRows);
    for (std::size_t n = 0; n < kRows; ++n) {
        names[n] = "G" + std::to_string(n);
    }
    names[7] = "CDC28";
    return names;
}

const std::vector<double>& values() {
    static const std::vector<double> values = test::random_values(kRows * kColumns, 17);
    return values;
}

Embedding embedded(std::vector<std::string> names, const FitOptions& options = kOptions) {
    Engine engine(options);
    engine.setInput(values(), kColumns, std::move(names));
    return engine.run();
}

/// The results of the published class, for the same matrix and options.
void write_by_published_class(const ResultSettings& settings) {
    TSNE<double> tsne(
        settings.out_dir, settings.out_name, settings.out_suffix, settings.data_title);
    const ConsoleSilence silence;
    tsne.X = new double[values().size()];
    std::copy(values().begin(), values().end(), tsne.X);
    tsne.N = kRows;
    tsne.D = kColumns;
    tsne.row_names = names();
    tsne.theta = kOptions.theta;
    tsne.max_iter = kOptions.max_iter;
    tsne.actuate(2, kOptions.perplexity, settings.labels, 250, 250);
    tsne.finish();
}

std::vector<std::string> files_in(const std::string& directory) {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        files.push_back(entry.path().filename());
    }
    std::sort(files.begin(), files.end());
    return files;
}

TEST(Embedding, WritesTheFilesOfThePublishedClass) {
    const test::TemporaryDirectory own;
    const test::TemporaryDirectory published;
    ResultSettings settings{.out_name = "run", .out_suffix = "_x", .data_title = "Title"};
    settings.labels.assign(kRows, "A");
    settings.labels.back() = "B";
    settings.out_dir = published.prefix();
    write_by_published_class(settings);
    settings.out_dir = own.prefix();
    const WrittenResults written = embedded(names()).write(settings);
    EXPECT_TRUE(written.areWhole());
    const std::vector<std::string> files = files_in(published.prefix());
    EXPECT_THAT(files,
                testing::IsSupersetOf({"run.log", "run_tsne_5_0_x.csv", "run_tsne_5_0_x.html"}));
    ASSERT_EQ(files_in(own.prefix()), files);
    for (const char* const file : {"run.log", "run_tsne_5_0_x.csv", "run_tsne_5_0_x.html"}) {
        EXPECT_EQ(test::read_file(own.file(file)), test::read_file(published.file(file))) << file;
    }
}

TEST(Embedding, WritesNumbersWhereRowsHaveNoNames) {
    const test::TemporaryDirectory directory;
    const Embedding map = embedded({});
    EXPECT_TRUE(map.names().empty());
    EXPECT_TRUE(map.write({.out_dir = directory.prefix(), .out_name = "run", .draw_plots = false})
                    .areWhole());
    EXPECT_EQ(files_in(directory.prefix()),
              (std::vector<std::string>{"run.log", "run_tsne_5_0.csv"}));
    const std::string table = test::read_file(directory.file("run_tsne_5_0.csv"));
    EXPECT_NE(table.find("\n1,"), std::string::npos);
    EXPECT_NE(table.find("\n40,"), std::string::npos);
}

TEST(Embedding, TellsWhatCouldNotBeWritten) {
    testing::internal::CaptureStdout();
    const WrittenResults written =
        embedded(names()).write({.out_dir = "/missing/", .out_name = "run", .draw_plots = false});
    testing::internal::GetCapturedStdout();
    EXPECT_FALSE(written.areWhole());
    EXPECT_EQ(written.table_failure, std::errc::no_such_file_or_directory);
    EXPECT_EQ(written.log_failure, std::errc::no_such_file_or_directory);
}

TEST(Embedding, RefusesTextsOfAnotherNumber) {
    const test::TemporaryDirectory directory;
    const Embedding map = embedded(names());
    const std::vector<std::string> few(3, "A");
    const ResultSettings plain{.out_dir = directory.prefix(), .out_name = "run"};
    std::vector<ResultSettings> refused(4, plain);
    refused[0].labels = few;
    refused[1].label_columns = {{.title = "group", .texts = few, .numbers = {}}};
    refused[2].functions = few;
    refused[3].genes = few;
    for (const ResultSettings& settings : refused) {
        EXPECT_THROW(static_cast<void>(map.write(settings)), InputError);
    }
    EXPECT_TRUE(files_in(directory.prefix()).empty());
}

TEST(Embedding, HasTheShapeOfItsOptions) {
    FitOptions options = kOptions;
    options.out_dims = 3;
    Embedding map = embedded(names(), options);
    EXPECT_EQ(map.points().rows, kRows);
    EXPECT_EQ(map.points().columns, 3U);
    EXPECT_EQ(map.options().out_dims, 3);
    EXPECT_EQ(map.names()[7], "CDC28");
    const std::vector<double> expected(map.points().all().begin(), map.points().all().end());
    EXPECT_EQ(std::move(map).takeValues(), expected);
}

}  // namespace
}  // namespace ovik
