#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "plots/figure_style.h"
#include "plots/plot_outcome.h"
#include "plots/plotted_run.h"
#include "util/api.h"

namespace ovik {

struct Figure;
class FigureDrawing;

/// A scatter figure, drawn by the program gnuplot.
///
/// Use: construct, `open`, `style`, `plotting`, `close`. The figure is optional: if gnuplot is
/// missing or fails, one line on standard error says what was not drawn and how to get it, and the
/// script stays.
///
/// Points and the labels that colour them are those of the run that `setRun` was given. By itself,
/// the figure shows the points of a result table, without labels.
template <typename T>
class Gnuplot {
  public:
    /// How long the program may take.
    std::chrono::milliseconds time_limit{600000};

    OVIK_API Gnuplot();
    Gnuplot(const Gnuplot&) = delete;
    Gnuplot& operator=(const Gnuplot&) = delete;

    /// Closes the session.
    OVIK_API virtual ~Gnuplot();

    /// Prepares a session.
    ///
    /// @param window  false: figures go to files
    /// @throws std::invalid_argument if a window is asked for
    OVIK_API void open(bool window);

    /// Fills in the settings that open the script: variables that a reader may change.
    ///
    /// @param settings   replaced
    /// @param width      pixels, as `height`
    /// @param right      margins: where the axes end, as fractions of the canvas
    /// @param font_size  points
    /// @param overlap    whether points are translucent, so that darker means overlaps
    // NOLINTNEXTLINE(readability-function-size): a published signature
    OVIK_API void style(std::string& settings,
                        T width,
                        T height,
                        T right,
                        T left,
                        T bottom,
                        T top,
                        int font_size,
                        bool overlap);

    /// Draws this run instead of reading a table.
    ///
    /// @param run  what it shows outlives `plotting`
    OVIK_API void setRun(const PlottedRun<T>& run);

    /// Draws the run, or else columns of the result table `base` + ".csv": writes the script
    /// `base` + ".gp", whole or not at all, and has gnuplot draw `base` + ".png" and ".svg", which
    /// take the places of earlier ones at `close`. Each pair of components becomes a panel. Points
    /// of a run stand in the script as the shortest texts that read as the same T.
    ///
    /// @param base         path without extension
    /// @param settings     the string that `style` filled; left as it is
    /// @param script_head  a copy of it, which opens the script
    /// @param bounds       minimum x, maximum x, minimum y, maximum y; a range of zero width is
    ///                     widened in the drawing
    /// @param axis_titles  of x and y
    /// @param type         "scatter"
    /// @param title        above the axes; empty for none
    /// @param remark       reserved
    /// @param columns      of the table, counted from 1: 2 and 3, the coordinates
    /// @param selection    reserved
    /// @throws std::logic_error if the session is not open
    /// @throws std::invalid_argument for another type, other columns, bounds that are not four, or
    /// a run whose lists have unequal lengths
    // NOLINTNEXTLINE(readability-function-size): a published signature
    OVIK_API void plotting(std::string base,
                           std::string& settings,
                           std::string script_head,
                           std::vector<T> bounds,
                           std::vector<std::string> axis_titles,
                           std::string type,
                           std::string title,
                           std::string remark,
                           std::vector<int> columns,
                           std::vector<int> selection);

    /// Waits for the program, reaps it and puts the pictures in their places. Says so if there are
    /// none.
    OVIK_API void close();

    /// What became of the last figure, once it is closed.
    [[nodiscard]] FigureOutcome outcome() const { return outcome_; }

  private:
    void draw(const std::string& base, const Figure& figure, const std::string& script_head);
    void fail(const std::string& base, const std::string& reason);

    bool is_open_ = false;
    FigureStyle style_;
    std::optional<PlottedRun<T>> run_;
    FigureOutcome outcome_ = FigureOutcome::None;
    std::unique_ptr<FigureDrawing> drawing_;
};

}  // namespace ovik
