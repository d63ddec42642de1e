#include "plots/cost_figure.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "plots/figure_drawing.h"
#include "plots/gnuplot_text.h"
#include "util/format.h"
#include "util/whole_file.h"

namespace ovik {

namespace {

constexpr std::chrono::milliseconds kTimeLimit{600000};

/// The curve: iteration and cost, a line each; what is not finite is left out.
std::string cost_block(const CostCurve& curve) {
    std::string block = "$costs << END_OF_COSTS\n";
    for (std::size_t i = 0; i < curve.costs.size(); ++i) {
        if (std::isfinite(curve.costs[i])) {
            block += std::to_string(curve.first_iteration + static_cast<int>(i)) + " " +
                     shortest_text(curve.costs[i]) + "\n";
        }
    }
    return block + "END_OF_COSTS\n";
}

/// A line where the costs change their meaning.
std::string exaggeration_mark(const CostCurve& curve) {
    const int last = curve.first_iteration + static_cast<int>(curve.costs.size()) - 1;
    if (curve.stop_lying_iter <= curve.first_iteration || curve.stop_lying_iter > last) {
        return "";
    }
    const std::string x = std::to_string(curve.stop_lying_iter);
    return "set arrow from " + x + ",graph 0 to " + x +
           ",graph 1 nohead dashtype 2 linecolor rgb 0x888888\n"
           "set label 'early exaggeration ends' at " +
           x + ",graph 0.96 offset 0.7,0 textcolor rgb 0x666666\n";
}

std::string draw(const std::string& terminal, const std::string& file, const std::string& title) {
    return "\nset terminal " + terminal +
           " size figure_width,figure_height background 'white' font sprintf('Sans,%d', font_size) "
           "noenhanced\nset output " +
           gnuplot_text("./" + file) + "\n" + title +
           "plot $costs using 1:2 with lines linewidth 2 linecolor rgb 0x0072B2 notitle\n"
           "unset output\n";
}

}  // namespace

std::string cost_figure_script(const std::string& stem, const CostCurve& curve) {
    constexpr std::size_t kTitleLength = 70;
    const bool all_positive =
        std::all_of(curve.costs.begin(), curve.costs.end(), [](double cost) { return cost > 0.0; });
    const std::string title = gnuplot_line(curve.title, kTitleLength);
    const bool has_unusual = title.find("fonts_have(") != std::string::npos;
    const std::string set_title = "set title " + title + " noenhanced\n";
    return "# Draws the cost of the iterations anew, as .png and .svg, into the current "
           "directory:\n# run gnuplot on this file there.\n\n"
           "figure_width = 1000\nfigure_height = 600\nfont_size = 16\n\n" +
           cost_block(curve) +
           "\nset encoding utf8\nset xlabel 'iteration'\nset ylabel 'cost'\nset format '%g'\n"
           "set tics out nomirror scale 0.6\nset border 3\nset grid linecolor rgb 0xdddddd\n"
           "set xrange [" +
           std::to_string(curve.first_iteration) + ":*]\n" +
           (all_positive ? "set logscale y\n" : "") + exaggeration_mark(curve) +
           draw("pngcairo", stem + ".png", (has_unusual ? gnuplot_font_search() : "") + set_title) +
           draw("svg", stem + ".svg", (has_unusual ? gnuplot_any_font() : "") + set_title);
}

FigureOutcome draw_cost_figure(const std::string& base, const CostCurve& curve) {
    const std::string stem = base.substr(base.rfind('/') + 1);
    const std::string script = base + ".gp";
    if (const auto failure = write_whole_text(script, cost_figure_script(stem, curve))) {
        tell_missing_figure(base, script + " could not be written (" + failure.message() + ")");
        return FigureOutcome::Failed;
    }
    return FigureDrawing(base).complete(kTimeLimit);
}

}  // namespace ovik
