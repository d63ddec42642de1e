#include "plots/finished_picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "plots/figure_font.h"
#include "plots/png_chunk.h"
#include "plots/point_style.h"
#include "util/base64.h"
#include "util/format.h"

namespace ovik {

namespace {

/// Those that have the measures of the font, in the order in which viewers look for them. The first
/// one is what the picture carries, too, where a viewer reads that.
constexpr std::string_view kFamilies = "Arial, Liberation Sans, Helvetica, sans-serif";

/// The font and the shapes, which stand before everything that is drawn.
std::string definitions() {
    return "<style>@font-face{font-family:Arial;src:url(data:font/woff2;base64," +
           std::string(figure_font_woff2()) + ") format('woff2')}</style>\n";
}

/// A shape of the page, in gnuplot's unit.
std::string shape_definition(const PointShape& shape) {
    constexpr double kRadius = 7.5;  // of the page's circle
    const double scale = std::round(1e4 * shape.page_scale / kRadius / shape.svg_scale) / 1e4;
    return "<path id='gpPt" + std::to_string(shape.number - 1) +
           "' fill='currentColor' stroke='none' transform='scale(" + shortest_text(scale) +
           ") translate(-8,-8)' d='" + shape.path + "'/>";
}

/// The line of a definition in the place of gnuplot's own.
std::string line_of_definition(std::string_view line) {
    for (const PointShape& shape : point_shapes()) {
        const std::string id = "id='gpPt" + std::to_string(shape.number - 1) + "'";
        if (line.find(id) != std::string_view::npos) {
            return shape_definition(shape);
        }
    }
    return std::string(line);
}

/// "rgb(  0, 114, 178)" as "#0072b2".
void shorten_colours(std::string& line) {
    constexpr std::string_view kStart = "rgb(";
    for (std::size_t at = line.find(kStart); at != std::string::npos; at = line.find(kStart, at)) {
        const std::size_t end = line.find(')', at);
        if (end == std::string::npos) {
            return;
        }
        std::string colour = "#";
        const char* next = line.c_str() + at + kStart.size();
        for (int channel = 0; channel < 3; ++channel) {
            char* behind = nullptr;
            std::array<char, 3> digits{};
            std::snprintf(digits.data(),
                          digits.size(),
                          "%02x",
                          static_cast<unsigned>(std::strtoul(next, &behind, 10) & 0xFFU));
            colour += digits.data();
            next = *behind == '\0' ? behind : behind + 1;
        }
        line.replace(at, end + 1 - at, colour);
    }
}

void replace_all(std::string& text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
}

/// A length of the head of a picture in millimetres: `width="1051"` as `width="89mm"`.
void put_on_paper(std::string& line, std::string_view name, double pixels_per_millimetre) {
    const std::string start = std::string(name) + "=\"";
    const std::size_t at = line.find(start);
    const std::size_t end = at == std::string::npos ? at : line.find('"', at + start.size());
    if (end == std::string::npos) {
        return;
    }
    const double length = std::stod(line.substr(at + start.size(), end - at - start.size()));
    const double millimetres = std::round(10 * length / pixels_per_millimetre) / 10;
    line.replace(at + start.size(), end - at - start.size(), shortest_text(millimetres) + "mm");
}

std::string finished_line(std::string line, double pixels_per_millimetre) {
    if (line.find("<use ") != std::string::npos || line.starts_with("<g ")) {
        shorten_colours(line);
    }
    // Texts of the data stand further right.
    if (line.starts_with("\t<") && line.find("id='gpPt") != std::string::npos) {
        return line_of_definition(line);
    }
    if (line.starts_with("\t<g transform=\"")) {
        replace_all(
            line, "font-family=\"Arial\"", "font-family=\"" + std::string(kFamilies) + "\"");
    }
    if (pixels_per_millimetre > 0.0 && line.starts_with(" width=\"")) {
        put_on_paper(line, "width", pixels_per_millimetre);
        put_on_paper(line, "height", pixels_per_millimetre);
    }
    return line;
}

/// A PNG as an element that covers as much as the ground of a picture.
///
/// @param ground  `<rect x="0" y="0" width="1200" height="900" fill="#ffffff"/>`
std::string image_over(const std::string& ground, const std::string& png) {
    const std::size_t end = std::min(ground.find(" fill="), ground.size());
    constexpr std::string_view kRect = "<rect";
    return "<image" + ground.substr(kRect.size(), end - kRect.size()) +
           " preserveAspectRatio=\"none\" xlink:href=\"data:image/png;base64," + base64(png) +
           "\"/>\n";
}

/// Takes points that follow each other in one colour together: the group has what is theirs.
class PointGroups {
  public:
    /// Appends a line of the picture.
    void add(std::string& text, std::string line) {
        constexpr std::string_view kPoint = "\t<use xlink:href='#gpPt";
        constexpr std::string_view kColour = " color='";
        const std::size_t start = line.find(kColour);
        if (!line.starts_with(kPoint) || start == std::string::npos || !line.ends_with("/>")) {
            close(text);
            text += line + "\n";
            return;
        }
        std::string look = line.substr(start, line.size() - start - 2);
        // The opacity of a group would be that of all its points as one.
        replace_all(look, " opacity=", " fill-opacity=");
        if (look != look_) {
            close(text);
            text += "<g" + look + ">\n";
            look_ = look;
        }
        text += line.substr(0, start) + "/>\n";
    }

  private:
    void close(std::string& text) {
        if (!look_.empty()) {
            text += "</g>\n";
            look_.clear();
        }
    }

    /// Of the group that is open; empty for none.
    std::string look_;
};

}  // namespace

std::string finished_svg(const std::string& svg,
                         double pixels_per_millimetre,
                         const std::string& points) {
    std::string result;
    result.reserve(svg.size() + 2 * points.size());
    bool is_defined = false;
    bool has_ground = false;
    PointGroups groups;
    for (std::size_t start = 0; start < svg.size();) {
        const std::size_t end = std::min(svg.find('\n', start), svg.size());
        std::string line = svg.substr(start, end - start);
        start = end + 1;
        if (!is_defined && line == "<defs>") {
            result += definitions();
            is_defined = true;
        }
        // Images may be most of the file, on a line of their own.
        constexpr std::size_t kLongest = 4096;
        groups.add(result,
                   line.size() > kLongest ? line : finished_line(line, pixels_per_millimetre));
        if (!has_ground && line.starts_with("<rect ")) {
            result += points.empty() ? "" : image_over(line, points);
            has_ground = true;
        }
    }
    return result;
}

std::string finished_png(const std::string& png, double pixels_per_millimetre) {
    // The size stands behind the signature and the head of the picture.
    constexpr std::size_t kHead = 33;
    if (pixels_per_millimetre <= 0.0 || png.size() < kHead) {
        return png;
    }
    const auto per_metre = static_cast<std::uint32_t>(std::lround(1000 * pixels_per_millimetre));
    const std::string size = big_endian(per_metre) + big_endian(per_metre) + '\x01';
    return png.substr(0, kHead) + png_chunk("pHYs", size) + png.substr(kHead);
}

}  // namespace ovik
