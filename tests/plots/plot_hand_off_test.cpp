#include "plots/plot_hand_off.h"

#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {

namespace {

using testing::ElementsAre;

/// What the recording classes were called with, in order.
std::vector<std::string> calls;

template <typename Values>
std::string list(const Values& values) {
    std::ostringstream text;
    text << "[";
    for (const auto& value : values) {
        text << "<" << value << ">";
    }
    text << "]";
    return text.str();
}

template <typename T>
void record(const PlottedRun<T>& run) {
    calls.push_back("run " + std::string(run.title) + " " + run.parameters[0].first + list(run.x) +
                    list(run.y) + list(run.labels) + list(run.names) + list(run.groups) +
                    list(run.functions));
}

template <typename T>
class RecordingChart {
  public:
    RecordingChart(std::string out_dir, std::string out_name) {
        calls.push_back("chart " + out_dir + " " + out_name);
    }

    // NOLINTBEGIN(readability-identifier-naming): the names of the class that it stands in for
    void set_param(int rows, int columns, int* values) {
        rows_ = rows;
        calls.push_back("set_param " + std::to_string(rows) + " " + std::to_string(columns) +
                        (values == nullptr ? " null" : " values"));
    }

    void set_postfix(std::string postfix) { calls.push_back("set_postfix " + postfix); }

    // NOLINTEND(readability-identifier-naming)

    void setRun(const PlottedRun<T>& run) { record(run); }

    void plotting(std::string type,
                  T** coordinates,
                  std::vector<std::string> texts,
                  std::vector<std::string> category_order,
                  std::vector<std::string> colours,
                  std::vector<std::string> options,
                  int* parameters,
                  std::vector<std::string> links,
                  std::vector<std::string> labels) {
        std::vector<T> values;
        for (int row = 0; row < rows_; ++row) {
            values.insert(values.end(), coordinates[row], coordinates[row] + 2);
        }
        calls.push_back("plotting " + type + " " + list(values) + list(texts) +
                        list(category_order) + list(colours) + list(options) +
                        list(std::vector<int>(parameters, parameters + 9)) + list(links) +
                        list(labels));
    }

    [[nodiscard]] std::error_code failure() const {
        return std::make_error_code(std::errc::io_error);
    }

  private:
    int rows_ = 0;
};

template <typename T>
class RecordingFigure {
  public:
    RecordingFigure() { calls.push_back("figure"); }

    RecordingFigure(const RecordingFigure&) = delete;
    RecordingFigure& operator=(const RecordingFigure&) = delete;

    virtual ~RecordingFigure() { calls.push_back("destroyed"); }

    void setRun(const PlottedRun<T>& run) { record(run); }

    void open(bool window) { calls.push_back(std::string("open ") + (window ? "true" : "false")); }

    void style(std::string& text, T a, T b, T c, T d, T e, T f, int font_size, bool overlap) {
        style_ = &text;
        calls.push_back("style <" + text + ">" + list(std::vector<T>{a, b, c, d, e, f}) +
                        std::to_string(font_size) + (overlap ? " true" : " false"));
        text = "changed";
    }

    void plotting(std::string base,
                  std::string& style,
                  std::string style_copy,
                  std::vector<T> bounds,
                  std::vector<std::string> axis_titles,
                  std::string type,
                  std::string title,
                  std::string remark,
                  std::vector<int> columns,
                  std::vector<int> selection) {
        EXPECT_EQ(&style, style_);
        calls.push_back("plotting " + base + " <" + style + "> <" + style_copy + "> " +
                        list(bounds) + list(axis_titles) + type + "<" + title + "><" + remark +
                        ">" + list(columns) + list(selection));
    }

    void close() { calls.push_back("close"); }

    [[nodiscard]] FigureOutcome outcome() const { return FigureOutcome::ScriptOnly; }

  private:
    const std::string* style_ = nullptr;
};

template <typename T>
class PlotHandOff : public testing::Test {
  protected:
    void SetUp() override { calls.clear(); }
};

using ElementTypes = testing::Types<float, double>;
TYPED_TEST_SUITE(PlotHandOff, ElementTypes);

TYPED_TEST(PlotHandOff, MakesTheCallsInOrder) {
    using T = TypeParam;
    const std::vector<std::array<T, 2>> coordinates = {
        {T(1.5), T(-2)}, {T(-3), T(4)}, {T(0.25), T(0)}};
    const PlotColumns<T> columns(coordinates);
    const std::vector<std::pair<std::string, std::string>> parameters = {{"Theta", "0"}};
    const std::vector<std::string> labels = {"a", "b", "a"};
    const std::vector<std::string> names = {"A", "B", "C"};
    const std::vector<std::string> groups(3, "Group:1:2");
    const std::vector<std::string> functions = {"f", "g", "h"};
    PlottedRun<T> run;
    run.title = "Yeast";
    run.parameters = parameters;
    run.labels = labels;
    run.names = names;
    run.groups = groups;
    run.functions = functions;
    const PlotOutcome outcome = hand_to_plots<T, RecordingChart, RecordingFigure>(
        {"res/", "yeast", "res/yeast_tsne_30_0", "tsne_30_0"}, coordinates, columns, run);
    const std::string shown =
        "run Yeast Theta[<1.5><-3><0.25>][<-2><4><0>][<a><b><a>][<A><B><C>]"
        "[<Group:1:2><Group:1:2><Group:1:2>][<f><g><h>]";
    EXPECT_EQ(outcome.page_failure, std::errc::io_error);
    EXPECT_EQ(outcome.figure, FigureOutcome::ScriptOnly);
    EXPECT_THAT(calls,
                ElementsAre("chart res/ yeast",
                            "set_param 3 2 null",
                            "set_postfix tsne_30_0",
                            shown,
                            "plotting scatter [<1.5><-2><-3><4><0.25><0>]"
                            "[<><Component 1><Component 2><><><><>][][][<false><>]"
                            "[<30><180><75><120><130><90><-90><0><1>][<><>][<a><b><a>]",
                            "figure",
                            "open false",
                            "style <>[<1200><1200><0.85><0.1><0.1><0.9>]21 true",
                            shown,
                            "plotting res/yeast_tsne_30_0 <changed> <changed> [<-3><1.5><-2><4>]"
                            "[<Component 1><Component 2>]scatter<><>[<2><3>][]",
                            "close",
                            "destroyed"));
}

TYPED_TEST(PlotHandOff, PassesOnEmptyLabelsAndNoRows) {
    using T = TypeParam;
    const PlotColumns<T> columns({});
    const std::vector<std::pair<std::string, std::string>> parameters = {{"", ""}};
    PlottedRun<T> run;
    run.parameters = parameters;
    hand_to_plots<T, RecordingChart, RecordingFigure>({"", "n", "n_s", "s"}, {}, columns, run);
    ASSERT_EQ(calls.size(), 12U);
    EXPECT_EQ(calls[1], "set_param 0 2 null");
    EXPECT_THAT(calls[4], testing::EndsWith("[<><>][]"));
    EXPECT_THAT(calls[9], testing::HasSubstr("[<0><0><0><0>]"));
}

}  // namespace

}  // namespace ovik
