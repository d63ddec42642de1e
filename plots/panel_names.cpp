#include "plots/panel_names.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "plots/point_style.h"
#include "plots/text_width.h"
#include "util/plain_text.h"

namespace ovik {

std::vector<std::size_t> order_of_lists(const Figure& figure, std::size_t panel) {
    const auto& lists = figure.panels[panel].points;
    std::vector<std::size_t> order(lists.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        const bool a_is_grey = is_grey(figure, a);
        return a_is_grey == is_grey(figure, b) ? lists[a].size() > lists[b].size() : a_is_grey;
    });
    return order;
}

double radius_of(const Figure& figure, const FigureLayout& layout, std::size_t panel, bool grey) {
    const auto& lists = figure.panels[panel].points;
    std::size_t count = 0;
    for (std::size_t list = 0; list < lists.size(); ++list) {
        count += grey || !is_grey(figure, list) ? lists[list].size() : 0;
    }
    constexpr double kOfFew = 5.5;
    constexpr double kHalvingCount = 4000;
    constexpr double kUsualSide = 900;
    const FigurePlace place = layout.panel(panel);
    const double side = std::sqrt(std::max(place.width * place.height, 1.0));
    // Smaller panels have smaller points, though not as much.
    constexpr double kPower = 0.8;
    const double radius = kOfFew / (1.0 + std::sqrt(static_cast<double>(count) / kHalvingCount));
    const double least = 0.8 * layout.font / kUsualFont;
    return std::max(radius * std::pow(side / kUsualSide, kPower), least);
}

PanelView::PanelView(const Figure& figure, const FigureLayout& layout, std::size_t panel)
    : place_(layout.panel(panel)) {
    const auto& [min_x, max_x, min_y, max_y] = figure.bounds;
    unit_ = 1.05 * std::max((max_x - min_x) / place_.width, (max_y - min_y) / place_.height);
    unit_ = unit_ > 0.0 ? unit_ : 1.0 / layout.style.width;
    middle_ = {(min_x + max_x) / 2.0, (min_y + max_y) / 2.0};
}

PanelNames names_of(const Figure& figure, const FigureLayout& layout, std::size_t position) {
    constexpr double kFont = 0.8;
    const FigurePanel& panel = figure.panels[position];
    PanelNames names;
    if (panel.named.empty()) {
        return names;
    }
    names.font = kFont * layout.font;
    names.radius =
        std::max(1.5 * radius_of(figure, layout, position, false), 5.0 * layout.font / kUsualFont);
    const PanelView view(figure, layout, position);
    std::vector<NameToPlace> texts;
    for (const NamedPoint& point : panel.named) {
        constexpr double kHeight = 1.2;
        texts.push_back({view.toPixels(point.at),
                         text_width(one_line_utf8(point.name), names.font) + 0.3 * names.font,
                         kHeight * names.font});
    }
    std::vector<std::array<double, 2>> others;
    for (const auto& list : panel.points) {
        for (const auto& point : list) {
            others.push_back(view.toPixels(point));
        }
    }
    names.places =
        place_names(texts, names.radius + layout.font / kUsualFont, layout.panel(position), others);
    return names;
}

}  // namespace ovik
