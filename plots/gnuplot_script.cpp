#include "plots/gnuplot_script.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <set>
#include <string_view>

#include "plots/colour_bar.h"
#include "plots/gnuplot_text.h"
#include "plots/panel_names.h"
#include "plots/point_style.h"
#include "plots/text_width.h"
#include "util/format.h"
#include "util/plain_text.h"

namespace ovik {

namespace {

/// How a picture shows the points.
enum class PointLayer { None, Drawn, Image };

/// A picture that a script draws.
struct Picture {
    const char* terminal;
    std::string extension;
    /// What gnuplot multiplies a radius in pixels by for a "pointsize".
    double pointsize;
    double PointShape::*shape_scale;
    /// What the font's size in points is multiplied by.
    const char* font_factor;
    /// Defines which characters of texts can be shown.
    std::string (*fonts)();
    /// What it shows of the points, and whether it shows everything else.
    PointLayer points;
    bool has_frame;
};

std::string steps(std::size_t count) {
    return shortest_text(static_cast<double>(count));
}

/// A length as a part of another one, in few digits.
std::string share(double part, double whole) {
    return shortest_text(std::round(1e5 * part / whole) / 1e5);
}

std::string pixels(double length) {
    return shortest_text(std::round(100 * length) / 100);
}

std::string block_name(std::size_t panel, std::size_t label) {
    return "$panel" + std::to_string(panel + 1) + "_label" + std::to_string(label + 1);
}

std::string part_name(std::size_t panel, const char* part) {
    return "$panel" + std::to_string(panel + 1) + "_" + part;
}

/// The width of the lines of a shape that is made of them.
std::string line_of(const PointShape& shape, double radius) {
    return shape.line > 0.0 ? " linewidth " + pixels(std::max(shape.line * radius, 0.5)) : "";
}

class Script {
  public:
    Script(const Figure& figure, const std::string& settings, const FigureLayout& layout)
        : figure_(figure),
          settings_(settings),
          layout_(layout) {
        for (std::size_t panel = 0; panel < figure.panels.size(); ++panel) {
            names_.push_back(names_of(figure, layout, panel));
            for (const auto& list : figure.panels[panel].points) {
                point_count_ += list.size();
            }
        }
    }

    /// What draws the points, too.
    [[nodiscard]] std::string text() const {
        std::string script = head() + settings_ + "\n" + pointBlocks() + "\n" + frame() +
                             draw(bitmap(".png", PointLayer::Drawn, true));
        const bool has_image = point_count_ >= kFewestImagePoints;
        if (has_image) {
            script += draw(bitmap("_points.png", PointLayer::Drawn, false));
        }
        return script + draw(vectors(has_image ? PointLayer::Image : PointLayer::Drawn));
    }

    /// What draws everything around the points, of which there is an image.
    [[nodiscard]] std::string surroundings() const {
        std::string names;
        for (std::size_t panel = 0; panel < figure_.panels.size(); ++panel) {
            names += nameBlocks(panel);
        }
        return settings_ + "\n" + names + frame() + draw(bitmap(".png", PointLayer::Image, true)) +
               draw(vectors(PointLayer::None));
    }

    /// What says why it draws nothing.
    [[nodiscard]] std::string refusal() const {
        const std::string text = "This figure has " + std::to_string(point_count_) +
                                 " points. Its script would hold them all, which is done up to " +
                                 std::to_string(kMostScriptPoints) + ".";
        return "# " + text + "\nexit error \"" + text + "\"\n";
    }

    [[nodiscard]] std::size_t pointCount() const { return point_count_; }

    [[nodiscard]] std::vector<std::string> unplacedNames() const {
        std::set<std::string> unplaced;
        for (std::size_t panel = 0; panel < names_.size(); ++panel) {
            for (std::size_t n = 0; n < names_[panel].places.size(); ++n) {
                if (!names_[panel].places[n].is_placed) {
                    unplaced.insert(figure_.panels[panel].named[n].name);
                }
            }
        }
        return {unplaced.begin(), unplaced.end()};
    }

  private:
    static std::string head() {
        return "# Draws the figure anew, as .png and .svg, into the current directory:\n"
               "# run gnuplot on this file there.\n\n";
    }

    static Picture bitmap(const char* extension, PointLayer points, bool has_frame) {
        return {has_frame ? "pngcairo background 'white'" : "pngcairo transparent",
                extension,
                1.0 / 3,
                &PointShape::png_scale,
                "1.0",
                &gnuplot_font_search,
                points,
                has_frame};
    }

    [[nodiscard]] Picture vectors(PointLayer points) const {
        return {"svg standalone background 'white'",
                ".svg",
                1 / (0.375 * layout_.font),
                &PointShape::svg_scale,
                "4.0 / 3.0",
                &gnuplot_any_font,
                points,
                true};
    }

    [[nodiscard]] std::string pointBlocks() const;
    [[nodiscard]] std::string nameBlocks(std::size_t position) const;
    [[nodiscard]] std::string frame() const;
    [[nodiscard]] std::string draw(const Picture& picture) const;
    [[nodiscard]] std::string drawImage() const;
    [[nodiscard]] std::string drawPanel(std::size_t position, const Picture& picture) const;
    [[nodiscard]] std::string drawPoints(std::size_t position) const;
    [[nodiscard]] std::string drawNames(std::size_t position) const;
    [[nodiscard]] std::string namedPoints(std::size_t position, double radius, double rim) const;
    [[nodiscard]] bool hasNamed(std::size_t position, const PointShape& shape) const;
    [[nodiscard]] std::string axisTitles(std::size_t position, const Picture& picture) const;
    [[nodiscard]] std::string nameTexts(std::size_t position, const Picture& picture) const;
    [[nodiscard]] std::string legend(const Picture& picture) const;
    [[nodiscard]] std::string colourBar(const Picture& picture) const;

    [[nodiscard]] std::string left(double x) const { return share(x, layout_.style.width); }

    [[nodiscard]] std::string up(double y) const {
        return share(layout_.style.height - y, layout_.style.height);
    }

    /// A font whose size is in pixels, as an expression.
    [[nodiscard]] static std::string fontText(double size, const Picture& picture) {
        return "sprintf('Arial,%.4g', " + pixels(0.75 * size) + " * " + picture.font_factor + ")";
    }

    /// A text's font, in pixels of the picture.
    [[nodiscard]] static std::string font(double size, const Picture& picture) {
        return " font " + fontText(size, picture);
    }

    [[nodiscard]] std::string lineWidth(double width) const {
        return " linewidth " + pixels(width * layout_.font / kUsualFont);
    }

    const Figure& figure_;
    const std::string& settings_;
    const FigureLayout& layout_;
    std::vector<PanelNames> names_;
    std::size_t point_count_ = 0;
};

std::string Script::pointBlocks() const {
    std::string script;
    for (std::size_t panel = 0; panel < figure_.panels.size(); ++panel) {
        const auto& lists = figure_.panels[panel].points;
        for (std::size_t label = 0; label < lists.size(); ++label) {
            script += block_name(panel, label) + " << END_OF_POINTS\n";
            const bool has_numbers = figure_.scale && label == 0;
            for (std::size_t point = 0; point < lists[label].size(); ++point) {
                const auto& [x, y] = lists[label][point];
                script += shortest_text(x) + " " + shortest_text(y);
                script += has_numbers
                              ? " " + shortest_text(figure_.panels[panel].numbers[point]) + "\n"
                              : "\n";
            }
            script += "END_OF_POINTS\n";
        }
        script += nameBlocks(panel);
    }
    return script;
}

/// The named points with their shapes and colours, the ground of their names, and the lines.
std::string Script::nameBlocks(std::size_t position) const {
    const FigurePanel& panel = figure_.panels[position];
    if (panel.named.empty()) {
        return "";
    }
    const PanelView view(figure_, layout_, position);
    std::string points;
    std::string grounds;
    std::string lines;
    for (std::size_t n = 0; n < panel.named.size(); ++n) {
        const NamedPoint& point = panel.named[n];
        const PlacedName& name = names_[position].places[n];
        const std::string at = shortest_text(point.at[0]) + " " + shortest_text(point.at[1]);
        const int shape =
            figure_.scale ? point_shapes()[0].number : shape_of_label(figure_, point.list).number;
        points += at + " " + std::to_string(shape) + " 0x" + colour_of_point(figure_, point) + "\n";
        if (!name.is_placed) {
            continue;
        }
        const auto low = view.toMap({name.box.left, name.box.top + name.box.height});
        const auto high = view.toMap({name.box.left + name.box.width, name.box.top});
        for (const double value :
             {(low[0] + high[0]) / 2, (low[1] + high[1]) / 2, low[0], high[0], low[1], high[1]}) {
            grounds += shortest_text(value) + " ";
        }
        grounds += "\n";
        if (name.has_line) {
            const auto end = view.toMap(name.line_end);
            lines += at + " " + shortest_text(end[0] - point.at[0]) + " " +
                     shortest_text(end[1] - point.at[1]) + "\n";
        }
    }
    const auto block = [position](const char* part, const std::string& rows) {
        return rows.empty()
                   ? ""
                   : part_name(position, part) + " << END_OF_POINTS\n" + rows + "END_OF_POINTS\n";
    };
    return block("named", points) + block("grounds", grounds) + block("lines", lines);
}

/// Numbers at the axes, which say nothing of the data, for readers of the script who want them.
/// Coordinates below 1 and from 10000 on have ticks too long for their room: they count powers of
/// ten.
constexpr std::string_view kAxisNumbers =
    "\n# 1 shows the numbers at the axes. Ticks of very small and very large coordinates count a\n"
    "# power of ten.\n"
    "axis_numbers = 0\n"
    "title_gap = 0.55 * font_size * 4.0 / 3.0\n"
    "unit_note = ''\n"
    "unset xtics\n"
    "unset ytics\n"
    "if (axis_numbers) {\n"
    "  set format '%g'\n"
    "  set tics out nomirror scale 0.6\n"
    "  set xtics offset 0,0.3\n"
    "  set ytics offset 0.5,0\n"
    "  title_gap = 2.6 * font_size * 4.0 / 3.0\n"
    "  end = (abs(mid_x) > abs(mid_y) ? abs(mid_x) : abs(mid_y)) + half_x\n"
    "  power = floor(log10(end))\n"
    "  tick_unit = end > 1000.0 * half_x ? 1.0 : power < -1 ? 10.0**(power - 1) \\\n"
    "    : power > 3 ? 10.0**(power - 1) : 1.0\n"
    "  if (tick_unit < 1.0 ? 1 : tick_unit > 1.0) {\n"
    "    unit_note = sprintf(', in units of %g', tick_unit)\n"
    "    least_step = half_x / 4.0\n"
    "    decade = 10.0**floor(log10(least_step))\n"
    "    multiple = least_step / decade\n"
    "    step = decade * (multiple <= 2.0 ? 2.0 : multiple <= 5.0 ? 5.0 : 10.0)\n"
    "    set xtics (0)\n"
    "    set ytics (0)\n"
    "    set for [n = floor((mid_x - half_x) / step):ceil((mid_x + half_x) / step)] \\\n"
    "      xtics add (sprintf('%g', n * step / tick_unit) n * step)\n"
    "    set for [n = floor((mid_y - half_y) / step):ceil((mid_y + half_y) / step)] \\\n"
    "      ytics add (sprintf('%g', n * step / tick_unit) n * step)\n"
    "  }\n"
    "}\n";

/// What is the same for every panel: where they stand, and which part of the plane they show.
std::string Script::frame() const {
    const auto& [min_x, max_x, min_y, max_y] = figure_.bounds;
    const std::string columns = steps(layout_.columns);
    const std::string rows = steps(layout_.rows);
    return "set encoding utf8\n"
           "unset key\n"
           "gap_x = " +
           share(layout_.gap_x, layout_.style.width) +
           "\ngap_y = " + share(layout_.gap_y, layout_.style.height) +
           "\npanel_width = (right_edge - left_edge - (" + columns + " - 1) * gap_x) / " + columns +
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
           "mid_y = (min_y + max_y) / 2.0\n" +
           std::string(kAxisNumbers) + "set border" + lineWidth(1.0) + "\n" +
           (figure_.scale ? gnuplot_palette(*figure_.scale) : "");
}

std::string Script::drawPoints(std::size_t position) const {
    const FigurePanel& panel = figure_.panels[position];
    std::string script;
    for (const std::size_t list : order_of_lists(figure_, position)) {
        if (panel.points[list].empty()) {
            continue;
        }
        const bool grey = is_grey(figure_, list);
        const PointShape& shape = figure_.scale ? point_shapes()[0] : shape_of_label(figure_, list);
        const double radius = radius_of(figure_, layout_, position, grey);
        script += ", \\\n  " + block_name(position, list) +
                  (figure_.scale && !grey ? " using 1:2:3" : " using 1:2") +
                  " with points pointtype " + std::to_string(shape.number) + " pointsize " +
                  pixels(radius) + " * " + shape.name + line_of(shape, radius);
        if (figure_.scale && !grey) {
            script += " linecolor palette notitle";
        } else {
            const std::string colour =
                figure_.scale ? kNumberlessPoint : colour_of_label(figure_, list);
            script += " linecolor rgb (transparency * 0x1000000 + 0x" + colour + ") notitle";
        }
    }
    return script;
}

/// Named points over all others, with a dark rim, and the ground of their names.
std::string Script::drawNames(std::size_t position) const {
    const PanelNames& names = names_[position];
    if (names.places.empty()) {
        return "";
    }
    const bool has_any = std::any_of(
        names.places.begin(), names.places.end(), [](const auto& name) { return name.is_placed; });
    const bool has_lines = std::any_of(names.places.begin(), names.places.end(), [](const auto& n) {
        return n.is_placed && n.has_line;
    });
    std::string script;
    if (has_any) {
        script += ", \\\n  " + part_name(position, "grounds") +
                  " using 1:2:3:4:5:6 with boxxyerror fillstyle transparent solid 0.8 noborder "
                  "fillcolor rgb 0xFFFFFF notitle";
    }
    if (has_lines) {
        script += ", \\\n  " + part_name(position, "lines") + " using 1:2:3:4 with vectors nohead" +
                  lineWidth(1.0) + " linecolor rgb 0x333333 notitle";
    }
    return script + namedPoints(position, names.radius, 1.2 * layout_.font / kUsualFont);
}

/// Filled shapes, and then each shape of lines in its width: first those in black, then the colours
/// upon them.
std::string Script::namedPoints(std::size_t position, double radius, double rim) const {
    const std::string block = ", \\\n  " + part_name(position, "named") + " using 1:2:(";
    const auto filled = [&](double size, const std::string& colour) {
        return block + "$3 < 4 ? NaN : " + pixels(size) + " * size_of($3)):3" + colour + " notitle";
    };
    const std::string variable =
        " with points pointsize variable pointtype variable linecolor rgb ";
    std::string script =
        filled(radius, variable + "0x000000") + filled(radius - rim, ":4" + variable + "variable");
    for (const PointShape& shape : point_shapes()) {
        if (shape.line == 0.0 || !hasNamed(position, shape)) {
            continue;
        }
        const std::string number = std::to_string(shape.number);
        const double width = std::max(shape.line * radius, 0.5);
        for (const bool is_rim : {true, false}) {
            const double more = is_rim ? rim : 0.0;
            script += block;
            script += "$3 == " + number + " ? " + pixels(radius + more) + " * " + shape.name;
            script += is_rim ? " : NaN)" : " : NaN):4";
            script += " with points pointtype " + number + " pointsize variable linecolor rgb ";
            script += is_rim ? "0x000000" : "variable";
            script += " linewidth " + pixels(width + 2 * more) + " notitle";
        }
    }
    return script;
}

bool Script::hasNamed(std::size_t position, const PointShape& shape) const {
    const auto& named = figure_.panels[position].named;
    return !figure_.scale && std::any_of(named.begin(), named.end(), [&](const NamedPoint& point) {
        return &shape_of_label(figure_, point.list) == &shape;
    });
}

std::string Script::nameTexts(std::size_t position, const Picture& picture) const {
    const FigurePanel& panel = figure_.panels[position];
    const PanelView view(figure_, layout_, position);
    std::string script;
    for (std::size_t n = 0; n < panel.named.size(); ++n) {
        const PlacedName& name = names_[position].places[n];
        if (!name.is_placed) {
            continue;
        }
        const auto middle =
            view.toMap({name.box.left + name.box.width / 2, name.box.top + name.box.height / 2});
        script += "set label " + gnuplot_shown_text(one_line_utf8(panel.named[n].name)) + " at " +
                  shortest_text(middle[0]) + "," + shortest_text(middle[1]) + " center front" +
                  font(names_[position].font, picture) + "\n";
    }
    return script;
}

std::string Script::axisTitles(std::size_t position, const Picture& picture) const {
    const FigurePanel& panel = figure_.panels[position];
    const FigurePlace place = layout_.panel(position);
    const auto cut = [&](const std::string& title, double room) {
        return gnuplot_shown_text(cut_distinctly({title}, layout_.font, room)[0]);
    };
    return "set label " + cut(panel.x_title, place.width) +
           ".unit_note at screen left + panel_width / 2, "
           "top - panel_height - (title_gap + 3) / figure_height center" +
           font(layout_.font, picture) + "\nset label " + cut(panel.y_title, place.height) +
           ".unit_note at screen left - title_gap * 1.2 / figure_width, "
           "top - panel_height / 2 center rotate by 90" +
           font(layout_.font, picture) + "\n";
}

/// One entry per label, in full colour; what does not fit is counted in the last one.
std::string Script::legend(const Picture& picture) const {
    const LegendLayout& legend = layout_.legend;
    std::string script;
    for (std::size_t entry = 0; entry < legend.texts.size(); ++entry) {
        const std::size_t rows = std::max<std::size_t>(legend.rows, 1);
        const std::size_t column = entry / rows;
        const auto row = static_cast<double>(entry % rows);
        const double x = legend.place.left + static_cast<double>(column) * legend.column_width;
        const double y = legend.place.top + (row + 0.5) * legend.line_height;
        const bool is_count = legend.left_out > 0 && entry + 1 == legend.texts.size();
        if (!is_count) {
            const PointShape& shape =
                figure_.scale ? point_shapes()[0] : shape_of_label(figure_, entry);
            const std::string colour =
                figure_.scale ? kNumberlessPoint : colour_of_label(figure_, entry);
            script += "set label '' at screen " + left(x + 0.36 * legend.font) + "," + up(y) +
                      " point pointtype " + std::to_string(shape.number) + " pointsize " +
                      pixels(0.3 * legend.font) + " * " + shape.name +
                      line_of(shape, 0.3 * legend.font) + " linecolor rgb 0x" + colour + "\n";
        }
        script += "set label " + gnuplot_shown_text(legend.texts[entry]) + " at screen " +
                  left(x + legend.marker_width) + "," + up(y) + " left" +
                  font(legend.font, picture) + "\n";
    }
    return script;
}

/// The bar that explains the colours, beside the first panel.
std::string Script::colourBar(const Picture& picture) const {
    const FigurePlace& place = layout_.bar;
    const double font_size = bar_font(layout_);
    // Numbers have a line between them.
    const double lines = std::clamp(place.height / (2 * font_size), 2.0, 10.0);
    const ColourBar bar = colour_bar(*figure_.scale, static_cast<int>(lines));
    std::string numbers;
    for (const BarNumber& number : bar.numbers) {
        numbers += (numbers.empty() ? "" : ", ") + gnuplot_text(number.text) + " " +
                   shortest_text(number.at);
    }
    // Tics take no expression.
    return "tick_font = " + fontText(font_size, picture) + "\nset cbrange [" +
           shortest_text(bar.least) + ":" + shortest_text(bar.most) +
           "]\nset colorbox user origin screen " + left(place.left) + "," +
           up(place.top + place.height) + " size screen " + left(place.width) + "," +
           share(place.height, layout_.style.height) + "\nset cbtics (" + numbers +
           ") scale 0.4 offset -0.5,0 font tick_font\nset label " +
           gnuplot_shown_text(cut_distinctly({figure_.scale->title}, font_size, place.height)[0]) +
           " at screen " + left(layout_.bar_title_x) + "," + up(place.top + place.height / 2) +
           " center rotate by 90" + font(font_size, picture) + "\n";
}

std::string Script::drawPanel(std::size_t position, const Picture& picture) const {
    std::string script = "left = left_edge + " + steps(position % layout_.columns) +
                         " * (panel_width + gap_x)\n" + "top = top_edge - " +
                         steps(position / layout_.columns) + " * (panel_height + gap_y)\n" +
                         "set lmargin at screen left\nset rmargin at screen left + panel_width\n"
                         "set tmargin at screen top\nset bmargin at screen top - panel_height\n"
                         "set xrange [mid_x - half_x : mid_x + half_x]\n"
                         "set yrange [mid_y - half_y : mid_y + half_y]\n"
                         "unset label\n";
    if (picture.has_frame) {
        script += axisTitles(position, picture) + nameTexts(position, picture);
        if (position == 0) {
            script += legend(picture);
            if (!layout_.title.empty()) {
                script += "set label " + gnuplot_shown_text(layout_.title) + " at screen " +
                          left(layout_.title_x) + "," + up(layout_.title_y) + " center" +
                          font(layout_.font, picture) + "\n";
            }
        }
    }
    if (figure_.scale) {
        script += position == 0 && picture.has_frame ? colourBar(picture) : "unset colorbox\n";
    }
    // Something to draw, so that a panel without points has its axes.
    script += figure_.scale ? "plot NaN with points palette notitle" : "plot NaN notitle";
    if (picture.points == PointLayer::Drawn) {
        script += drawPoints(position);
    }
    if (picture.has_frame) {
        script += drawNames(position);
    }
    return script + "\n";
}

/// The points as an image behind everything else.
std::string Script::drawImage() const {
    return "unset border\nset lmargin at screen 0\nset rmargin at screen 1\n"
           "set tmargin at screen 1\nset bmargin at screen 0\n"
           "set xrange [-0.5 : figure_width - 0.5]\nset yrange [-0.5 : figure_height - 0.5]\n"
           "unset label\nplot " +
           gnuplot_text("./" + figure_.stem + "_points.png") +
           " binary filetype=png with rgbalpha notitle\nset border\n";
}

/// The drawing itself, to one of the files.
std::string Script::draw(const Picture& picture) const {
    std::string script =
        "\nset terminal " + std::string(picture.terminal) +
        " size figure_width,figure_height font sprintf('Arial,%.4g', font_size * " +
        picture.font_factor + ") noenhanced\nset output " +
        gnuplot_text("./" + figure_.stem + picture.extension) + "\n";
    std::string sizes = "size_of(shape) = ";
    for (const PointShape& shape : point_shapes()) {
        script += std::string(shape.name) + " = " +
                  share(picture.pointsize * shape.*picture.shape_scale, 1.0) + "\n";
        sizes += "shape == " + std::to_string(shape.number) + " ? " + shape.name + " : ";
    }
    script += sizes + "0\n";
    std::string panels;
    for (std::size_t position = 0; position < figure_.panels.size(); ++position) {
        panels += drawPanel(position, picture);
    }
    if (panels.find("fonts_have(") != std::string::npos) {
        script += picture.fonts();
    }
    script += "set multiplot\n";
    if (!picture.has_frame) {
        script += "unset border\n";
    } else if (picture.points == PointLayer::Image) {
        script += drawImage();
    }
    return script + panels + "unset multiplot\nunset output\n" +
           (picture.has_frame ? "" : "set border" + lineWidth(1.0) + "\n");
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
           "\nfont_size = " + shortest_text(style.font_size) +
           "\ntransparency = " + (style.overlap ? "128" : "0") + "\n";
}

GnuplotScript gnuplot_script(const Figure& figure,
                             const std::string& settings,
                             const FigureLayout& layout) {
    const Script script(figure, settings, layout);
    const std::size_t points = script.pointCount();
    const bool draws_all = points <= kMostScriptPoints;
    return {draws_all ? script.text() : script.refusal(),
            draws_all,
            points >= kFewestImagePoints ? script.surroundings() : "",
            script.unplacedNames()};
}

}  // namespace ovik
