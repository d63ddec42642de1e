#pragma once

#include <string>
#include <utility>
#include <vector>

#include "util/api.h"

namespace ovik {

/// What the drawings of a run tell beside its coordinates.
struct RunCaption {
    /// What the data are.
    std::string title;
    /// Names and values of the run's parameters, in the order in which they are shown.
    std::vector<std::pair<std::string, std::string>> parameters;
    /// One label per point, which gives it its colour; empty for none.
    std::vector<std::string> labels;
    /// Whether the result table in its place is the one of this run. If not, since that one could
    /// not be written, nothing is drawn from it.
    bool has_table = true;
};

/// Makes a caption the current one of this thread as long as the object lives.
///
/// The plotting classes are called with coordinates and file names alone; whoever calls them for a
/// run that has more to tell puts a caption around the calls. Scopes nest.
class CaptionScope {
  public:
    /// @param caption  not copied; outlives the scope
    OVIK_API explicit CaptionScope(const RunCaption& caption);

    CaptionScope(const CaptionScope&) = delete;
    CaptionScope& operator=(const CaptionScope&) = delete;

    OVIK_API ~CaptionScope();

  private:
    const RunCaption* outer_;
};

/// The current caption; an empty one outside every scope.
OVIK_API const RunCaption& current_caption();

}  // namespace ovik
