#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "plots/child_process.h"
#include "plots/plot_outcome.h"
#include "util/partial_entry.h"

namespace ovik {

/// Says on standard error, in one line, that a figure is not there; standard output may be
/// silenced.
void tell_missing_figure(const std::string& base, const std::string& reason);

/// Says on standard error, in one line, that a figure lacks names that it was to show; nothing
/// without names.
void tell_unplaced_names(const std::string& base, const std::vector<std::string>& names);

/// What is done to the bytes of a picture before it is placed; the second text is ".png" or ".svg".
using PictureFinish =
    std::function<std::string(const std::string& bytes, const std::string& extension)>;

/// What gnuplot draws by, in the place of the script that is kept.
struct DrawingFiles {
    std::string script;
    /// Bytes of the image `stem` + "_points.png" that it takes.
    std::string points;
    /// Whether the script that is kept draws the figure by itself.
    bool can_be_drawn_later = true;
};

/// Removes what killed runs left of their drawings: the directories in which gnuplot was at work
/// beside a base, as far as they hold nothing but its messages, its script and pictures whose names
/// begin with that of the base and "_". See `remove_left_over_directories`.
///
/// @param base  path that the names of all figures of a run begin with
void remove_left_over_drawings(const std::string& base);

/// gnuplot at work on one script.
///
/// The program runs in a directory of its own beside the script, so that unfinished pictures never
/// stand under their final names. The object's end is the program's, too.
class FigureDrawing {
  public:
    /// Starts the program. What goes wrong, but for memory, shows at `complete`.
    ///
    /// @param finish  none places the pictures as the program leaves them
    /// @param files   none: it draws by `base` + ".gp"
    explicit FigureDrawing(std::string base,
                           PictureFinish finish = {},
                           const std::optional<DrawingFiles>& files = std::nullopt);

    FigureDrawing(const FigureDrawing&) = delete;
    FigureDrawing& operator=(const FigureDrawing&) = delete;

    /// Waits for the program and moves the pictures to `base` + ".png" and ".svg". Says on standard
    /// error if there are none.
    FigureOutcome complete(std::chrono::milliseconds limit);

  private:
    /// @return why there is no picture; empty if they are in their places
    std::string finish(std::chrono::milliseconds limit);

    /// Path of a picture as the program leaves it.
    [[nodiscard]] std::string drawn(const std::string& extension) const;

    std::string base_;
    PictureFinish finish_;
    PartialEntry directory_;
    /// Why the program did not start.
    std::string failure_;
    bool can_be_drawn_later_;
    /// Whether gnuplot is not installed.
    bool lacks_program_ = false;
    /// The program, which ends before the directory is removed: it is the last member.
    std::unique_ptr<ChildProcess> program_;
};

}  // namespace ovik
