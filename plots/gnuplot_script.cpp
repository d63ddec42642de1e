#include "plots/gnuplot_script.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string_view>

#include "plots/gnuplot_text.h"
#include "util/format.h"
#include "util/plain_text.h"

namespace ovik {

namespace {

/// The colours of Okabe and Ito, which colour-blind readers can tell apart; black comes last, and
/// the yellow is darkened to show on white.
constexpr std::array<const char*, 8> kColours = {
    "0072B2", "D55E00", "009E73", "CC79A7", "E69F00", "56B4E9", "B8A800", "000000"};

/// Circle, square, triangle, diamond: the shapes of the first eight labels, the next eight, ...
constexpr std::array<int, 4> kShapes = {7, 5, 9, 13};

/// Panels stand in rows of equal length, the last one filled as far as they go.
struct PanelGrid {
    explicit PanelGrid(std::size_t panel_count)
        : columns(static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(panel_count))))),
          rows((panel_count + columns - 1) / columns) {}

    std::size_t columns;
    std::size_t rows;
};

/// How the legend fits into the room at the right of the axes.
struct Legend {
    Legend(const Figure& figure, const FigureStyle& style) {
        constexpr double kCharacterWidth = 0.75;  // pixels per point of the font, on average
        constexpr double kWideCharacterWidth = 0.9;
        constexpr double kMarkerWidth = 44;
        constexpr double kLineHeight = 1.9;
        constexpr int kSmallestFont = 11;
        std::size_t longest = 1;
        for (const std::string& label : figure.labels) {
            longest = std::max(longest, character_count(one_line_utf8(label)));
        }
        const double room = std::max(0.0, (1.0 - style.right) * style.width - kMarkerWidth);
        const double wanted = room / (kCharacterWidth * static_cast<double>(longest));
        const double largest = std::max<double>(kSmallestFont, 0.7 * style.font_size);
        font_size = static_cast<int>(std::clamp<double>(wanted, kSmallestFont, largest));
        // Labels that are cut may have been cut among wide letters.
        const double width = font_size > kSmallestFont ? kCharacterWidth : kWideCharacterWidth;
        characters = static_cast<std::size_t>(std::max(1.0, room / (width * font_size)));
        const double height = std::max(0.0, (style.top - style.bottom) * style.height);
        lines = static_cast<std::size_t>(std::max(2.0, height / (kLineHeight * font_size)));
    }

    int font_size;
    /// How many characters fit into a line.
    std::size_t characters;
    std::size_t lines;
};

/// A label as the legend shows it.
std::string legend_title(const std::string& label, const Legend& legend) {
    return gnuplot_line(label.empty() ? "(no label)" : label, legend.characters);
}

/// The colour of points that step back.
constexpr const char* kPale = "0xC8C8C8";

/// Whether the points of a label step back.
bool is_background(const Figure& figure, std::size_t label) {
    return figure.has_background && label == 0;
}

/// The number of a label among those with colours of their own.
std::size_t colour_number(const Figure& figure, std::size_t label) {
    return label - (figure.has_background && label > 0 ? 1 : 0);
}

std::string colour(const Figure& figure, std::size_t label) {
    return is_background(figure, label)
               ? kPale
               : std::string("0x") + kColours[colour_number(figure, label) % kColours.size()];
}

std::string shape(const Figure& figure, std::size_t label) {
    return std::to_string(kShapes[colour_number(figure, label) / kColours.size() % kShapes.size()]);
}

std::string block_name(std::size_t panel, std::size_t label) {
    return "$panel" + std::to_string(panel + 1) + "_label" + std::to_string(label + 1);
}

/// The size of the points of a panel from a label on: the more points, the smaller.
std::string point_size(const FigurePanel& panel, const PanelGrid& grid, std::size_t first = 0) {
    std::size_t count = 0;
    for (std::size_t label = first; label < panel.points.size(); ++label) {
        count += panel.points[label].size();
    }
    constexpr double kFew = 1.5;
    constexpr double kHalvingCount = 4000;
    const double size = kFew / (1.0 + std::sqrt(static_cast<double>(count) / kHalvingCount));
    return shortest_text(std::round(100 * size / std::sqrt(static_cast<double>(grid.columns))) /
                         100);
}

std::string point_blocks(const Figure& figure) {
    std::string script;
    for (std::size_t panel = 0; panel < figure.panels.size(); ++panel) {
        const auto& lists = figure.panels[panel].points;
        for (std::size_t label = 0; label < lists.size(); ++label) {
            script += block_name(panel, label) + " << END_OF_POINTS\n";
            const bool has_numbers = figure.scale && label == 0;
            for (std::size_t point = 0; point < lists[label].size(); ++point) {
                const auto& [x, y] = lists[label][point];
                script += shortest_text(x) + " " + shortest_text(y);
                script += has_numbers
                              ? " " + shortest_text(figure.panels[panel].numbers[point]) + "\n"
                              : "\n";
            }
            script += "END_OF_POINTS\n";
        }
    }
    return script;
}

/// The colours of numbers: viridis without its brightest part, which vanishes on white. The bar
/// that explains them stands beside the first panel.
std::string colour_scale(const ColourScale& scale) {
    constexpr std::size_t kTitleLength = 40;
    // One number alone has no ends; any others serve.
    const double margin = scale.least < scale.most ? 0.0 : std::max(1.0, std::abs(scale.least));
    return "set palette defined (0 '#440154', 1 '#472d7b', 2 '#3b528b', 3 '#2c728e', "
           "4 '#21918c', 5 '#28ae80', 6 '#5ec962', 7 '#addc30', 7.2 '#bdde2e')\n"
           "set cbrange [" +
           shortest_text(scale.least - margin) + ":" + shortest_text(scale.most + margin) +
           "]\nset cblabel " + gnuplot_line(scale.title, kTitleLength) +
           " noenhanced offset 0.8,0\n";
}

std::string colour_bar(std::size_t position) {
    return position > 0 ? "unset colorbox\n"
                        : "set colorbox user origin right_edge + 0.02, top_edge - "
                          "0.35 size 0.02, 0.35\n";
}

/// Coordinates below 1 and from 10000 on have ticks too long for their room: they count powers of
/// ten.
constexpr std::string_view kShortTicks =
    "\n# Ticks of very small and very large coordinates count a power of ten.\n"
    "end = (abs(mid_x) > abs(mid_y) ? abs(mid_x) : abs(mid_y)) + half_x\n"
    "power = floor(log10(end))\n"
    "tick_unit = end > 1000.0 * half_x ? 1.0 : power < -1 ? 10.0**(power - 1) \\\n"
    "  : power > 3 ? 10.0**(power - 1) : 1.0\n"
    "unit_note = ''\n"
    "if (tick_unit < 1.0 ? 1 : tick_unit > 1.0) {\n"
    "  unit_note = sprintf(', in units of %g', tick_unit)\n"
    "  least_step = half_x / 4.0\n"
    "  decade = 10.0**floor(log10(least_step))\n"
    "  multiple = least_step / decade\n"
    "  step = decade * (multiple <= 2.0 ? 2.0 : multiple <= 5.0 ? 5.0 : 10.0)\n"
    "  set xtics (0)\n"
    "  set ytics (0)\n"
    "  set for [n = floor((mid_x - half_x) / step):ceil((mid_x + half_x) / step)] \\\n"
    "    xtics add (sprintf('%g', n * step / tick_unit) n * step)\n"
    "  set for [n = floor((mid_y - half_y) / step):ceil((mid_y + half_y) / step)] \\\n"
    "    ytics add (sprintf('%g', n * step / tick_unit) n * step)\n"
    "}\n";

/// What is the same for every panel: where they stand, and which part of the plane they show.
std::string frame(const Figure& figure, const PanelGrid& grid, const Legend& legend) {
    const auto& [min_x, max_x, min_y, max_y] = figure.bounds;
    const std::string columns = shortest_text(static_cast<double>(grid.columns));
    const std::string rows = shortest_text(static_cast<double>(grid.rows));
    return "set encoding utf8\n"
           "gap_x = 0.18 / " +
           columns + "\ngap_y = 0.18 / " + columns + "\npanel_width = (right_edge - left_edge - (" +
           columns + " - 1) * gap_x) / " + columns +
           "\npanel_height = (top_edge - bottom_edge - (" + rows + " - 1) * gap_y) / " + rows +
           "\n\n# One unit is as long on both axes, and the outermost points are whole.\n"
           "min_x = " +
           shortest_text(min_x) + "\nmax_x = " + shortest_text(max_x) +
           "\nmin_y = " + shortest_text(min_y) + "\nmax_y = " + shortest_text(max_y) +
           "\nunit_x = (max_x - min_x) / (panel_width * figure_width)\n"
           "unit_y = (max_y - min_y) / (panel_height * figure_height)\n"
           "unit = 1.05 * (unit_x > unit_y ? unit_x : unit_y)\n"
           "unit = unit > 0 ? unit : 1.0 / figure_width\n"
           "half_x = unit * panel_width * figure_width / 2\n"
           "half_y = unit * panel_height * figure_height / 2\n"
           "mid_x = (min_x + max_x) / 2.0\n"
           "mid_y = (min_y + max_y) / 2.0\n"
           "set xrange [mid_x - half_x : mid_x + half_x]\n"
           "set yrange [mid_y - half_y : mid_y + half_y]\n"
           "set format '%g'\n"
           "set tics out nomirror scale 0.6\n"
           "set xtics offset 0,0.3\n"
           "set ytics offset 0.5,0\n" +
           std::string(kShortTicks) +
           "set key at screen right_edge + 0.012,top_edge left top Left reverse noenhanced "
           "samplen 0.5 width -2 font 'Sans," +
           std::to_string(legend.font_size) + "'\n" +
           (figure.scale ? colour_scale(*figure.scale) : "");
}

/// One line per label, in full colour; what does not fit is counted in the last one.
std::string legend_entries(const Figure& figure, const Legend& legend) {
    const std::size_t count = figure.labels.size();
    const std::size_t shown = count <= legend.lines ? count : legend.lines - 1;
    std::string entries;
    for (std::size_t label = 0; label < shown; ++label) {
        entries += ", \\\n  keyentry with points pointtype " + shape(figure, label) +
                   " pointsize 1.5 linecolor rgb " + colour(figure, label) + " title " +
                   legend_title(figure.labels[label], legend);
    }
    if (shown < count) {
        entries += ", \\\n  keyentry with points pointtype 7 pointsize 0 title " +
                   gnuplot_text("and " + std::to_string(count - shown) + " more");
    }
    return entries;
}

/// The background first, then large groups, so that they do not bury small ones.
std::vector<std::size_t> drawing_order(const Figure& figure, const FigurePanel& panel) {
    std::vector<std::size_t> order(panel.points.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto first = order.begin() + (figure.has_background && !order.empty() ? 1 : 0);
    std::stable_sort(first, order.end(), [&panel](std::size_t a, std::size_t b) {
        return panel.points[a].size() > panel.points[b].size();
    });
    return order;
}

/// Points without a number lie beneath those that have one.
std::string draw_numbers(const FigurePanel& panel, std::size_t position, const PanelGrid& grid) {
    const std::string shared = " with points pointtype 7 pointsize " + point_size(panel, grid);
    std::string script;
    if (!panel.points[1].empty()) {
        script += ", \\\n  " + block_name(position, 1) + " using 1:2" + shared + " linecolor rgb " +
                  kPale + " notitle";
    }
    if (!panel.points[0].empty()) {
        script += ", \\\n  " + block_name(position, 0) + " using 1:2:3" + shared +
                  " linecolor palette notitle";
    }
    return script;
}

std::string draw_panel(const Figure& figure,
                       std::size_t position,
                       const PanelGrid& grid,
                       const Legend& legend) {
    constexpr std::size_t kTitleLength = 60;
    const FigurePanel& panel = figure.panels[position];
    const auto steps = [](std::size_t count) { return shortest_text(static_cast<double>(count)); };
    const std::string left =
        "left_edge + " + steps(position % grid.columns) + " * (panel_width + gap_x)";
    const std::string top =
        "top_edge - " + steps(position / grid.columns) + " * (panel_height + gap_y)";
    std::string script = "set lmargin at screen " + left + "\nset rmargin at screen " + left +
                         " + panel_width\nset tmargin at screen " + top +
                         "\nset bmargin at screen " + top + " - panel_height\nset xlabel " +
                         gnuplot_line(panel.x_title, kTitleLength) +
                         ".unit_note offset 0,0.4 noenhanced\nset ylabel " +
                         gnuplot_line(panel.y_title, kTitleLength) +
                         ".unit_note offset 1.5,0 noenhanced\n"
                         // Something to draw, so that a panel without points has its axes.
                         "plot NaN notitle";
    if (figure.scale) {
        return colour_bar(position) + script + draw_numbers(panel, position, grid) + "\n";
    }
    for (const std::size_t label : drawing_order(figure, panel)) {
        if (!panel.points[label].empty()) {
            script += ", \\\n  " + block_name(position, label) +
                      " using 1:2 with points pointtype " + shape(figure, label) + " pointsize " +
                      point_size(panel, grid, figure.has_background && label > 0 ? 1 : 0) +
                      " linecolor rgb (transparency * 0x1000000 + " + colour(figure, label) +
                      ") notitle";
        }
    }
    return script + (position == 0 ? legend_entries(figure, legend) : "") + "\n";
}

/// The drawing itself, to one of the files.
std::string draw(const Figure& figure,
                 const std::string& terminal,
                 const std::string& extension,
                 const PanelGrid& grid,
                 const Legend& legend) {
    const bool several = figure.panels.size() > 1;
    const std::string font =
        several ? "font_size / " + shortest_text(std::sqrt(grid.columns) * 1.15) + std::string()
                : "font_size";
    std::string script = "\nset terminal " + terminal +
                         " size figure_width,figure_height background 'white' font "
                         "sprintf('Sans,%d', " +
                         font + ") noenhanced\nset output " +
                         gnuplot_text("./" + figure.stem + extension) + "\n";
    if (several) {
        script += "set multiplot\n";
    }
    for (std::size_t position = 0; position < figure.panels.size(); ++position) {
        script += draw_panel(figure, position, grid, legend);
    }
    if (several) {
        script += "unset multiplot\n";
    }
    return script + "unset output\n";
}

}  // namespace

std::string figure_settings(const FigureStyle& style) {
    return "# Pixels, fractions of the canvas, points; transparency from 0 to 255.\n"
           "figure_width = " +
           shortest_text(style.width) + "\nfigure_height = " + shortest_text(style.height) +
           "\nright_edge = " + shortest_text(style.right) +
           "\nleft_edge = " + shortest_text(style.left) +
           "\nbottom_edge = " + shortest_text(style.bottom) +
           "\ntop_edge = " + shortest_text(style.top) +
           "\nfont_size = " + std::to_string(style.font_size) +
           "\ntransparency = " + (style.overlap ? "128" : "0") + "\n";
}

std::string gnuplot_script(const Figure& figure,
                           const std::string& settings,
                           const FigureStyle& style) {
    constexpr std::size_t kTitleLength = 80;
    const PanelGrid grid(std::max<std::size_t>(figure.panels.size(), 1));
    const Legend legend(figure, style);
    std::string script =
        "# Draws the figure anew, as .png and .svg, into the current directory:\n"
        "# run gnuplot on this file there.\n\n" +
        settings + "\n" + point_blocks(figure) + "\n" + frame(figure, grid, legend);
    if (!figure.title.empty()) {
        script += "set title " + gnuplot_line(figure.title, kTitleLength) + " noenhanced\n";
    }
    return script + draw(figure, "pngcairo", ".png", grid, legend) +
           draw(figure, "svg", ".svg", grid, legend);
}

}  // namespace ovik
