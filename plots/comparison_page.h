#pragma once

#include <string>
#include <utility>
#include <vector>

namespace ovik {

/// A run as a comparison shows it. All texts are data: any bytes, escaped where they land.
struct ComparedRun {
    std::string title;
    /// Path of the picture from the page's directory; empty for none.
    std::string picture;
    /// Path of what the picture leads to; empty for nothing.
    std::string chart_page;
    /// Names and values of what is told of the run.
    std::vector<std::pair<std::string, std::string>> facts;
    /// Names and paths of further files.
    std::vector<std::pair<std::string, std::string>> files;
};

/// Runs side by side.
struct Comparison {
    std::string title;
    /// Under the title: what the runs have in common, names and values.
    std::vector<std::pair<std::string, std::string>> facts;
    std::vector<ComparedRun> runs;
};

/// The comparison as a page that shows the pictures and leads to the files of the runs, which stay
/// where they are. Without scripts. The same comparison gives the same page.
std::string comparison_page(const Comparison& comparison);

}  // namespace ovik
