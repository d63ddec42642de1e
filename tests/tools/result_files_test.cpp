#include "tools/result_files.h"

#include <string>
#include <system_error>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik::tool {
namespace {

using testing::HasSubstr;

class ResultFileList : public testing::Test {
  protected:
    ResultFileList() {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
    }

    void endCapture() {
        out_ = testing::internal::GetCapturedStdout();
        err_ = testing::internal::GetCapturedStderr();
    }

    std::vector<ResultFile> files_;
    std::string out_;
    std::string err_;
};

TEST_F(ResultFileList, SaysWhereFilesAreOrWhyTheyAreMissing) {
    add_result(files_, "Result table", "a.csv", "");
    add_result(files_, "Model", "b.model", std::make_error_code(std::errc::no_space_on_device));
    endCapture();
    ASSERT_EQ(files_.size(), 2U);
    EXPECT_EQ(files_[0].failure, "");
    EXPECT_EQ(files_[1].path, "b.model");
    EXPECT_EQ(files_[1].failure, "No space left on device");
    EXPECT_EQ(out_, "-- Result table: a.csv\n");
    EXPECT_THAT(err_, HasSubstr("Model could not be written: b.model (No space left on device)"));
}

TEST_F(ResultFileList, NamesThePicturesThatThereAre) {
    add_figure(files_, "Figure", "none", FigureOutcome::None);
    EXPECT_TRUE(files_.empty());
    add_figure(files_, "Figure", "script", FigureOutcome::ScriptOnly);
    ASSERT_EQ(files_.size(), 1U);
    EXPECT_EQ(files_[0].path, "script.gp");
    add_figure(files_, "Figure", "all", FigureOutcome::Drawn);
    ASSERT_EQ(files_.size(), 4U);
    EXPECT_EQ(files_[1].path, "all.png");
    add_figure(files_, "Figure", "bad", FigureOutcome::Failed);
    endCapture();
    EXPECT_EQ(files_.back().failure, "not drawn");
    EXPECT_EQ(out_, "-- Figure: all.png (also .svg, and the script .gp)\n");
}

}  // namespace
}  // namespace ovik::tool
