#include "tools/earlier_results.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik::tool {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class EarlierResults : public testing::Test {
  protected:
    EarlierResults() : base_(directory_.file("m_tsne_30_0")) {
        for (const char* const ending :
             {".csv", ".html", ".png", ".clusters.tsv", ".reliability.tsv", "_cost.png"}) {
            directory_.write(std::string("m_tsne_30_0") + ending, "");
        }
        directory_.write("m_tsne_5_0.html", "");
    }

    /// What is printed of them on standard error.
    [[nodiscard]] std::string told(const std::vector<ResultFile>& written) const {
        testing::internal::CaptureStderr();
        tell_of_earlier_results(base_, written);
        return testing::internal::GetCapturedStderr();
    }

    test::TemporaryDirectory directory_;
    std::string base_;
};

TEST_F(EarlierResults, AreThoseOfTheMapThatThisRunHasNotWritten) {
    const std::vector<ResultFile> written = {{"Result table", base_ + ".csv", ""},
                                             {"Chart page", base_ + ".html", ""},
                                             {"Figure", base_ + ".png", "not drawn"}};
    EXPECT_THAT(earlier_results(base_, written),
                UnorderedElementsAre(
                    base_ + ".clusters.tsv", base_ + ".reliability.tsv", base_ + "_cost.png"));
    EXPECT_THAT(earlier_results(directory_.file("m_tsne_5_0"), written),
                ElementsAre(directory_.file("m_tsne_5_0.html")));
    EXPECT_THAT(earlier_results(directory_.file("other"), written), IsEmpty());
}

TEST_F(EarlierResults, AreNamedOnceAndOnlyWhereThereAreAny) {
    const std::vector<ResultFile> written = {{"Chart page", base_ + ".html", ""},
                                             {"Figure", base_ + ".png", ""},
                                             {"Cost figure", base_ + "_cost.png", ""},
                                             {"Clusters", base_ + ".clusters.tsv", ""}};
    EXPECT_EQ(told(written),
              "ovik-tsne: note: of an earlier run, not of this map: " + base_ +
                  ".reliability.tsv\nRemove what you do not need, or give each run a --name or "
                  "--suffix of its own.\n");
    std::vector<ResultFile> all = written;
    all.push_back({"Reliability", base_ + ".reliability.tsv", ""});
    EXPECT_EQ(told(all), "");
}

}  // namespace
}  // namespace ovik::tool
