#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "plots/child_process.h"

namespace ovik {

/// gnuplot at work on one script.
///
/// The program runs in a directory of its own beside the script, so that unfinished pictures never
/// stand under their final names.
class FigureDrawing {
  public:
    /// Starts the program on `base` + ".gp". Does not throw: what goes wrong shows at `finish`.
    explicit FigureDrawing(std::string base);

    FigureDrawing(const FigureDrawing&) = delete;
    FigureDrawing& operator=(const FigureDrawing&) = delete;

    /// Ends the program and removes the directory.
    ~FigureDrawing();

    [[nodiscard]] const std::string& base() const { return base_; }

    /// Waits for the program and moves the pictures to `base` + ".png" and ".svg".
    ///
    /// @return why there is no picture; empty if they are in their places
    std::string finish(std::chrono::milliseconds limit);

  private:
    [[nodiscard]] std::string place(const std::string& extension, const std::string& ending) const;

    std::string base_;
    std::string directory_;
    /// Why the program did not start.
    std::string failure_;
    std::unique_ptr<ChildProcess> program_;
};

}  // namespace ovik
