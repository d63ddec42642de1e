#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "plots/choice_figure.h"
#include "results/label_column.h"

namespace ovik {

/// A number that is told of each run.
struct ComparedNumber {
    std::string name;
    /// What it says, in one sentence.
    std::string sentence;
    /// One per run; empty for a run that has none.
    std::vector<std::string> values;
    /// One per run: whether no other is better.
    std::vector<bool> is_best;
};

/// A run as a comparison shows it. All texts are data: any bytes, escaped where they land.
struct ComparedRun {
    std::string title;
    /// Path of the picture from the page's directory; empty for none.
    std::string picture;
    /// Path of what the title leads to; empty for nothing.
    std::string chart_page;
    /// What there is to say of how its map lies; empty for nothing.
    std::string note;
    /// Names and paths of further files.
    std::vector<std::pair<std::string, std::string>> files;
    /// The place of each gene of the comparison, NaN where the map has none; empty for no map.
    std::vector<double> x;
    std::vector<double> y;
};

/// The genes of a comparison, of which each run has some or all. Texts are any bytes.
struct ComparedGenes {
    std::vector<std::string> names;
    /// One per gene, or empty: what it does, and the name that the gene table has where it is
    /// another.
    std::vector<std::string> functions;
    std::vector<std::string> listed_names;
    std::vector<LabelColumn> label_columns;
};

/// Which of the runs' perplexities to take.
struct ComparedChoice {
    /// What is recommended, and why.
    std::string sentence;
    /// One perplexity per run.
    ChoiceCurves curves;
    /// Path of the picture of the curves from the page's directory; empty for none.
    std::string picture;
    /// Names and paths of files that tell more.
    std::vector<std::pair<std::string, std::string>> files;
};

/// Runs side by side.
struct Comparison {
    std::string title;
    /// What downloads from the page are named after.
    std::string name;
    /// Under the title: what the runs have in common, names and values.
    std::vector<std::pair<std::string, std::string>> facts;
    /// How the maps came to lie as they do; empty for nothing to say.
    std::string alignment;
    std::vector<ComparedNumber> numbers;
    std::vector<ComparedRun> runs;
    /// The run that the others were laid onto.
    std::size_t reference = 0;
    ComparedGenes genes;
    /// None unless a perplexity is to be chosen.
    std::optional<ComparedChoice> choice = std::nullopt;
};

/// The comparison as a page. With scripts its maps show the same genes together; without them, and
/// on paper, the pictures of the runs stand in their place, which stay where they are, as the other
/// files to which the page leads. Places are rounded to a 65,000th of the width of a map. The same
/// comparison gives the same page.
std::string comparison_page(const Comparison& comparison);

}  // namespace ovik
