#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "plots/child_process.h"
#include "util/partial_entry.h"

namespace ovik {

/// gnuplot at work on one script.
///
/// The program runs in a directory of its own beside the script, so that unfinished pictures never
/// stand under their final names. The object's end is the program's, too.
class FigureDrawing {
  public:
    /// Starts the program on `base` + ".gp". What goes wrong, but for memory, shows at `finish`.
    explicit FigureDrawing(std::string base);

    FigureDrawing(const FigureDrawing&) = delete;
    FigureDrawing& operator=(const FigureDrawing&) = delete;

    [[nodiscard]] const std::string& base() const { return base_; }

    /// Whether gnuplot is not installed.
    [[nodiscard]] bool lacksProgram() const { return lacks_program_; }

    /// Waits for the program and moves the pictures to `base` + ".png" and ".svg".
    ///
    /// @return why there is no picture; empty if they are in their places
    std::string finish(std::chrono::milliseconds limit);

  private:
    /// Path of a picture as the program leaves it.
    [[nodiscard]] std::string drawn(const std::string& extension) const;

    std::string base_;
    PartialEntry directory_;
    /// Why the program did not start.
    std::string failure_;
    bool lacks_program_ = false;
    /// Ends before the directory is removed.
    std::unique_ptr<ChildProcess> program_;
};

}  // namespace ovik
