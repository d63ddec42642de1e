#include "plots/point_style.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "util/format.h"

namespace ovik {

namespace {

/// The colours of Okabe and Ito, which colour-blind readers can tell apart; the yellow is darkened
/// to show on white.
constexpr std::array<const char*, 8> kColours = {
    "0072b2", "d55e00", "009e73", "cc79a7", "e69f00", "56b4e9", "a39200", "333333"};

/// Viridis without its brightest part, which vanishes on white.
constexpr std::array<const char*, 9> kViridis = {
    "440154", "472d7b", "3b528b", "2c728e", "21918c", "28ae80", "5ec962", "addc30", "bdde2e"};

/// Where these stand on the scale, in eighths.
constexpr std::array<double, 9> kViridisPlaces = {0, 1, 2, 3, 4, 5, 6, 7, 7.2};

/// Blue below 0 and orange above it, which colour-blind readers can tell apart; the middle is still
/// to be seen on white.
constexpr std::array<const char*, 5> kDiverging = {
    "06316b", "2f78bf", "c9c3b0", "d9771c", "7a2f00"};

constexpr std::array<double, 5> kDivergingPlaces = {0, 1, 2, 3, 4};

/// @param share  of the way from the first colour to the last
template <std::size_t N>
std::string colour_between(const std::array<const char*, N>& colours,
                           const std::array<double, N>& places,
                           double share) {
    const double place = share * places.back();
    std::size_t above = 1;
    while (above + 1 < N && places[above] < place) {
        ++above;
    }
    const double part = (place - places[above - 1]) / (places[above] - places[above - 1]);
    std::string colour;
    for (const std::size_t at : {0U, 2U, 4U}) {
        const auto channel = [at](const char* text) {
            return static_cast<double>(std::stoul(std::string(text).substr(at, 2), nullptr, 16));
        };
        const double mixed =
            channel(colours[above - 1]) * (1 - part) + channel(colours[above]) * part;
        char text[3];
        std::snprintf(text, sizeof text, "%02x", static_cast<unsigned>(std::lround(mixed)));
        colour += text;
    }
    return colour;
}

template <std::size_t N>
std::string defined_palette(const std::array<const char*, N>& colours,
                            const std::array<double, N>& places) {
    std::string result;
    for (std::size_t n = 0; n < N; ++n) {
        result += (n == 0 ? "" : ", ") + shortest_text(places[n]) + " '#" + colours[n] + "'";
    }
    return "set palette defined (" + result + ")\n";
}

}  // namespace

bool is_grey(const Figure& figure, std::size_t list) {
    return figure.scale
               ? list == 1
               : list + figure.grey_labels >= figure.labels.size() && !figure.labels.empty();
}

const std::array<PointShape, 8>& point_shapes() {
    static constexpr std::array<PointShape, 8> kShapes = {{
        {"circle", 7, 1.0, 1.0, 0.0, 1.0, "M8 .5A7.5 7.5 0 1 1 8 15.5A7.5 7.5 0 1 1 8 .5Z"},
        {"triangle", 9, 1.15, 0.865, 0.0, 1.15, "M8 .5L15.5 15.5H.5Z"},
        {"square", 5, 0.8, 0.8, 0.0, 0.9, "M1.5 1.5H14.5V14.5H1.5Z"},
        {"diamond", 13, 1.3, 0.94, 0.0, 1.25, "M8 0L16 8L8 16L0 8Z"},
        {"down", 11, 1.15, 0.865, 0.0, 1.15, "M.5 .5H15.5L8 15.5Z"},
        {"plus",
         1,
         1.15,
         1.15,
         0.55,
         1.15,
         "M5.5 .5H10.5V5.5H15.5V10.5H10.5V15.5H5.5V10.5H.5V5.5H5.5Z"},
        {"cross",
         2,
         1.0,
         1.0,
         0.5,
         1.15,
         "M4 .5L8 4.5L12 .5L15.5 4L11.5 8L15.5 12L12 15.5L8 11.5L4 15.5L.5 12L4.5 8L.5 4Z"},
        {"star",
         3,
         1.2,
         1.2,
         0.3,
         1.3,
         "M8 .3L10.2 5.4L15.8 5.9L11.6 9.6L12.8 15.2L8 12.2L3.2 15.2L4.4 9.6L.2 5.9L5.8 5.4Z"},
    }};
    return kShapes;
}

const PointShape& shape_of_label(const Figure& figure, std::size_t label) {
    const auto& shapes = point_shapes();
    if (is_grey(figure, label)) {
        return shapes[0];
    }
    return shapes[(label + label / shapes.size()) % shapes.size()];
}

std::string colour_of_label(const Figure& figure, std::size_t label) {
    return is_grey(figure, label) ? kGreyPoint : kColours[label % kColours.size()];
}

std::string colour_of_point(const Figure& figure, const NamedPoint& point) {
    if (!figure.scale) {
        return colour_of_label(figure, point.list);
    }
    if (point.list == 1) {
        return kNumberlessPoint;
    }
    const ColourScale& scale = *figure.scale;
    const double width = scale.most - scale.least;
    const double place =
        width > 0.0 ? std::clamp((point.number - scale.least) / width, 0.0, 1.0) : 0.5;
    return scale.diverging ? colour_between(kDiverging, kDivergingPlaces, place)
                           : colour_between(kViridis, kViridisPlaces, place);
}

std::string gnuplot_palette(const ColourScale& scale) {
    if (scale.diverging) {
        return defined_palette(kDiverging, kDivergingPlaces);
    }
    return defined_palette(kViridis, kViridisPlaces);
}

}  // namespace ovik
