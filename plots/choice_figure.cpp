#include "plots/choice_figure.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>

#include "plots/figure_drawing.h"
#include "plots/gnuplot_text.h"
#include "util/format.h"
#include "util/whole_file.h"

namespace ovik {

namespace {

constexpr std::chrono::milliseconds kTimeLimit{600000};

/// Okabe and Ito's blue, vermilion and green; further curves begin anew.
constexpr std::array<const char*, 3> kColours = {"0x0072B2", "0xD55E00", "0x009E73"};

/// Gnuplot's filled circle, square and triangle.
constexpr std::array<const char*, 3> kPointTypes = {"7", "5", "9"};

/// A line per perplexity: it, and the shares in per cent.
std::string share_block(const ChoiceCurves& curves) {
    std::string block = "$shares << END_OF_SHARES\n";
    for (std::size_t i = 0; i < curves.perplexities.size(); ++i) {
        block += shortest_text(curves.perplexities[i]);
        for (const ChoiceCurve& curve : curves.curves) {
            const double share = curve.shares[i];
            block += std::isfinite(share) ? " " + shortest_text(100.0 * share) : " NaN";
        }
        block += "\n";
    }
    return block + "END_OF_SHARES\n";
}

std::string marks(const ChoiceCurves& curves) {
    std::string marks;
    if (std::isfinite(curves.of_noise)) {
        const std::string y = shortest_text(100.0 * curves.of_noise);
        marks += "set arrow from graph 0,first " + y + " to graph 1,first " + y +
                 " nohead dashtype 2 linecolor rgb " + kColours[0] +
                 "\nset label 'noise may reach this' at graph 0.99,first " + y +
                 " right offset 0,0.6 textcolor rgb 0x666666\n";
    }
    if (curves.recommended) {
        const std::string x = shortest_text(*curves.recommended);
        marks += "set arrow from " + x + ",graph 0 to " + x +
                 ",graph 1 nohead dashtype 3 linecolor rgb 0x888888\nset label 'recommended' at " +
                 x + ",graph 0.96 offset 0.7,0 textcolor rgb 0x666666\n";
    }
    return marks;
}

/// The axis, with marks at the perplexities that were tried.
std::string perplexity_axis(const ChoiceCurves& curves) {
    std::string list;
    for (const double perplexity : curves.perplexities) {
        const std::string text = shortest_text(perplexity);
        list.append(list.empty() ? "'" : ", '").append(text).append("' ").append(text);
    }
    constexpr double kMargin = 1.2;
    return "set xtics (" + list + ")\nset xrange [" +
           shortest_text(curves.perplexities.front() / kMargin) + ":" +
           shortest_text(curves.perplexities.back() * kMargin) + "]\n";
}

std::string draw(const std::string& terminal,
                 const std::string& file,
                 const std::string& title,
                 const std::string& plot) {
    return "\nset terminal " + terminal +
           " size figure_width,figure_height background 'white' font sprintf('Sans,%d', font_size) "
           "noenhanced\nset output " +
           gnuplot_text("./" + file) + "\n" + title + plot + "unset output\n";
}

std::string plot_of(const ChoiceCurves& curves) {
    std::string plot = "plot ";
    for (std::size_t i = 0; i < curves.curves.size(); ++i) {
        plot += (i == 0 ? "" : ", \\\n     ") + std::string("$shares using 1:") +
                std::to_string(i + 2) + " with linespoints linewidth 2 pointtype " +
                kPointTypes[i % kColours.size()] + " linecolor rgb " +
                kColours[i % kColours.size()] + " title " + gnuplot_text(curves.curves[i].name);
    }
    return plot + "\n";
}

}  // namespace

std::string choice_figure_script(const std::string& stem, const ChoiceCurves& curves) {
    constexpr std::size_t kTitleLength = 70;
    const std::string title = gnuplot_line(curves.title, kTitleLength);
    const bool has_unusual = title.find("fonts_have(") != std::string::npos;
    const std::string set_title = "set title " + title + " noenhanced\n";
    const std::string plot = plot_of(curves);
    return "# Draws anew what the maps of several perplexities come to, as .png and .svg, into "
           "the current directory:\n# run gnuplot on this file there.\n\n"
           "figure_width = 1000\nfigure_height = 600\nfont_size = 16\n\n" +
           share_block(curves) +
           "\nset encoding utf8\nset xlabel 'perplexity'\nset ylabel 'per cent'\n"
           "set tics out nomirror scale 0.6\nset border 3\nset grid linecolor rgb 0xdddddd\n"
           "set logscale x\nset yrange [0:100]\nset key tmargin center horizontal samplen 2\n" +
           perplexity_axis(curves) + marks(curves) +
           draw("pngcairo",
                stem + ".png",
                (has_unusual ? gnuplot_font_search() : "") + set_title,
                plot) +
           draw("svg", stem + ".svg", (has_unusual ? gnuplot_any_font() : "") + set_title, plot);
}

FigureOutcome draw_choice_figure(const std::string& base, const ChoiceCurves& curves) {
    const std::string stem = base.substr(base.rfind('/') + 1);
    const std::string script = base + ".gp";
    if (const auto failure = write_whole_text(script, choice_figure_script(stem, curves))) {
        tell_missing_figure(base, script + " could not be written (" + failure.message() + ")");
        return FigureOutcome::Failed;
    }
    return FigureDrawing(base).complete(kTimeLimit);
}

}  // namespace ovik
