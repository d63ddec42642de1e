#include "plots/figure_layout.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "plots/colour_bar.h"
#include "plots/text_width.h"
#include "util/plain_text.h"

namespace ovik {

namespace {

/// Resolution of figures in millimetres, which journals ask for: 300 dots per inch.
constexpr double kPixelsPerMillimetre = 300 / 25.4;

/// Pixels for each typographic point of a font.
constexpr double kPixelsPerPoint = 4.0 / 3.0;

// Parts of the size of the text.
constexpr double kLegendFont = 0.85;
constexpr double kLine = 1.4;
constexpr double kMarker = 1.2;
constexpr double kColumnGap = 0.9;
constexpr double kEdge = 0.4;
/// An axis title and the room around it.
constexpr double kAxisTitle = 1.6;
constexpr double kTitle = 1.9;
/// A bar of colours, from it to its numbers, and from these to the middle of its title.
constexpr double kBar = 0.9;
constexpr double kBarGap = 0.6;
constexpr double kBarTitle = 0.9;
constexpr double kHalfBarTitle = 0.6;
constexpr double kBarWithEntry = 5.2;

/// A legend has so much of a figure's width at most.
constexpr double kLargestShare = 0.42;

double aspect_of(const Figure& figure) {
    const auto& [min_x, max_x, min_y, max_y] = figure.bounds;
    constexpr double kLongest = 2.0;
    const double aspect = (max_x - min_x) / (max_y - min_y);
    return std::isfinite(aspect) && aspect > 0.0 ? std::clamp(aspect, 1 / kLongest, kLongest) : 1.0;
}

/// What a width shows of the title.
std::string title_of(const Figure& figure, double font, double width) {
    return figure.title.empty() ? "" : cut_distinctly({figure.title}, font, width - font)[0];
}

/// The entries of a legend: labels, or points without a number.
std::vector<std::string> entries_of(const Figure& figure) {
    std::vector<std::string> entries;
    for (const std::string& label : figure.labels) {
        entries.push_back(legend_text(label));
    }
    const bool has_numberless =
        figure.scale && std::any_of(figure.panels.begin(), figure.panels.end(), [](const auto& p) {
            return p.points.size() > 1 && !p.points[1].empty();
        });
    if (has_numberless) {
        entries.emplace_back("no number");
    }
    return entries;
}

/// A legend of so many columns, as wide as the texts and a width allow. What does not fit into the
/// lines is counted in the last one.
LegendLayout legend_of(const std::vector<std::string>& entries,
                       double font,
                       std::size_t columns,
                       double width,
                       std::size_t rows) {
    LegendLayout legend;
    legend.font = font;
    legend.line_height = kLine * font;
    legend.marker_width = kMarker * font;
    legend.columns = columns;
    legend.rows = std::max<std::size_t>(rows, 1);
    const std::size_t room = legend.rows * columns;
    const std::size_t shown = entries.size() <= room ? entries.size() : room - 1;
    legend.left_out = entries.size() - shown;
    const double gap = kColumnGap * font;
    const double widest = (width + gap) / static_cast<double>(columns) - gap - legend.marker_width;
    legend.texts = cut_distinctly(
        {entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(shown)}, font, widest);
    if (legend.left_out > 0) {
        legend.texts.push_back("and " + std::to_string(legend.left_out) + " more");
    }
    double text = 0.0;
    for (const std::string& entry : legend.texts) {
        text = std::max(text, text_width(entry, font));
    }
    legend.rows = std::min(legend.rows, (legend.texts.size() + columns - 1) / columns);
    legend.column_width = legend.marker_width + text + gap;
    legend.place.width = static_cast<double>(columns) * legend.column_width - gap;
    legend.place.height = static_cast<double>(legend.rows) * legend.line_height;
    return legend;
}

/// From the left of a bar to the right of its numbers.
double numbers_end(const ColourScale& scale, double font) {
    return (kBar + kBarGap) * font + numbers_width(colour_bar(scale), kLegendFont * font);
}

std::size_t lines_in(double height, double font) {
    constexpr double kMost = 10000;
    const double lines = height / (kLine * font);
    return static_cast<std::size_t>(lines > 1.0 ? std::min(lines, kMost) : 1.0);
}

/// A legend in a given place: as few columns as hold all entries, if there is such a number.
LegendLayout legend_within(const std::vector<std::string>& entries,
                           double font,
                           const FigurePlace& place) {
    constexpr std::size_t kMostColumns = 6;
    constexpr double kNarrowest = 6.0;  // of the font
    std::optional<LegendLayout> best;
    for (std::size_t columns = 1; columns <= kMostColumns; ++columns) {
        if (columns > 1 && place.width / static_cast<double>(columns) < kNarrowest * font) {
            break;
        }
        const LegendLayout legend =
            legend_of(entries, font, columns, place.width, lines_in(place.height, font));
        if (!best || legend.left_out < best->left_out) {
            best = legend;
        }
        if (best->left_out == 0) {
            break;
        }
    }
    best->place.left = place.left;
    best->place.top = place.top;
    return *best;
}

/// Where a legend can be.
enum class LegendSide { None, Right, Below, FreePanel };

/// A way to fill a figure.
struct Candidate {
    FigureLayout layout;
    /// How good it is: how large the map is, less for what the legend lacks.
    double worth = 0.0;
};

/// The whole canvas of a figure of a given size.
class SizedFigure {
  public:
    SizedFigure(const Figure& figure, const FigureSize& size)
        : figure_(figure),
          entries_(entries_of(figure)),
          aspect_(aspect_of(figure)),
          panels_(std::max<std::size_t>(figure.panels.size(), 1)) {
        const double unit = size.millimetres ? kPixelsPerMillimetre : 1.0;
        base_.pixels_per_millimetre = size.millimetres ? kPixelsPerMillimetre : 0.0;
        base_.style.width = std::round(size.width * unit);
        base_.style.height = std::round(size.height * unit);
        // Seven points on paper, and as much of 1200 pixels as 21 points of a screen.
        constexpr double kOnPaper = 7 * 25.4 / 72;
        constexpr double kSmallest = 11;
        constexpr double kShareOfWidth = 28.0 / 1200;
        base_.font = size.millimetres ? kOnPaper * kPixelsPerMillimetre
                                      : std::max(kSmallest, kShareOfWidth * base_.style.width);
        base_.style.font_size = base_.font / kPixelsPerPoint;
    }

    [[nodiscard]] FigureLayout best() const {
        std::optional<Candidate> best;
        for (std::size_t columns = 1; columns <= panels_; ++columns) {
            for (const LegendSide side : sides(columns)) {
                tryLegends(columns, side, best);
            }
        }
        return best->layout;
    }

  private:
    [[nodiscard]] bool heightIsFree() const { return base_.style.height == 0.0; }

    /// From the left of the bar to the right of its numbers.
    [[nodiscard]] double numbersEnd() const { return numbers_end(*figure_.scale, base_.font); }

    /// Of the bar with its texts.
    [[nodiscard]] double barWidth() const {
        const double title = figure_.scale->title.empty() ? 0.0 : kBarTitle + kHalfBarTitle;
        const double texts = numbersEnd() + title * base_.font;
        return std::max(texts, entries_.empty() ? 0.0 : kBarWithEntry * base_.font);
    }

    [[nodiscard]] double legendFont() const { return kLegendFont * base_.font; }

    /// 1 for a legend that shows everything in full: one that does not is worth less than a smaller
    /// map.
    [[nodiscard]] double worthOfLegend(const LegendLayout& legend) const {
        double cut = 0.0;
        for (std::size_t n = 0; n + legend.left_out < entries_.size(); ++n) {
            cut += 1 - std::min(text_width(legend.texts[n], 1.0) /
                                    text_width(one_line_utf8(entries_[n]), 1.0),
                                1.0);
        }
        const auto all = static_cast<double>(std::max<std::size_t>(entries_.size(), 1));
        constexpr double kLeftOut = 5.0;
        constexpr double kCut = 3.0;
        return std::exp(-(kLeftOut * static_cast<double>(legend.left_out) + kCut * cut) / all);
    }

    [[nodiscard]] std::size_t freePanels(std::size_t columns) const {
        return (columns - panels_ % columns) % columns;
    }

    [[nodiscard]] std::size_t mostLegendColumns(LegendSide side) const {
        const std::size_t most = side == LegendSide::Right ? 3 : side == LegendSide::Below ? 8 : 1;
        return figure_.scale ? 1 : std::clamp<std::size_t>(entries_.size(), 1, most);
    }

    /// Where the legend can be beside panels in so many columns. A place for a panel stays free
    /// only for the legend.
    [[nodiscard]] std::vector<LegendSide> sides(std::size_t columns) const {
        const bool has_free = freePanels(columns) > 0;
        if (figure_.scale) {
            return has_free && heightIsFree() ? std::vector<LegendSide>()
                                              : std::vector<LegendSide>{LegendSide::Right};
        }
        if (entries_.empty()) {
            return has_free && heightIsFree() ? std::vector<LegendSide>()
                                              : std::vector<LegendSide>{LegendSide::None};
        }
        if (has_free) {
            return {LegendSide::FreePanel};
        }
        return {LegendSide::Right, LegendSide::Below};
    }

    /// The legend at the right of panels of a height.
    [[nodiscard]] LegendLayout atRight(std::size_t columns, double panels_height) const {
        if (figure_.scale) {
            LegendLayout legend = legend_of(entries_, legendFont(), 1, barWidth(), 1);
            legend.place.width = barWidth();
            return legend;
        }
        return legend_of(entries_,
                         legendFont(),
                         columns,
                         kLargestShare * base_.style.width,
                         lines_in(panels_height, legendFont()));
    }

    /// The legend below panels of a width.
    [[nodiscard]] LegendLayout below(std::size_t columns, double panels_width) const {
        constexpr double kMostLines = 0.6;  // of the size of the figure
        const double room = kMostLines * (heightIsFree() ? base_.style.width : base_.style.height);
        const std::size_t rows =
            std::min((entries_.size() + columns - 1) / columns, lines_in(room, legendFont()));
        return legend_of(entries_, legendFont(), columns, panels_width, rows);
    }

    [[nodiscard]] double tallest() const;
    void settleFrame(FigureLayout& layout, LegendSide side, std::size_t legend_columns) const;
    void placeLegend(FigureLayout& layout, LegendSide side) const;
    [[nodiscard]] double worthOf(const FigureLayout& layout, LegendSide side) const;

    /// @param columns         of panels
    /// @param legend_columns  of the legend at the right or below
    [[nodiscard]] Candidate filled(std::size_t columns,
                                   LegendSide side,
                                   std::size_t legend_columns) const;
    void tryLegends(std::size_t columns, LegendSide side, std::optional<Candidate>& best) const;

    const Figure& figure_;
    std::vector<std::string> entries_;
    double aspect_;
    std::size_t panels_;
    FigureLayout base_;
};

double SizedFigure::tallest() const {
    // Parts of the width.
    constexpr double kTallestPanel = 1.4;
    constexpr double kTallestPanels = 1.2;
    constexpr double kTallestOnPaper = 225 * kPixelsPerMillimetre;
    const double height = base_.style.width * (panels_ == 1 ? kTallestPanel : kTallestPanels);
    return base_.pixels_per_millimetre > 0.0 ? std::min(height, kTallestOnPaper) : height;
}

/// Sets the margins, the height that is free, and a legend at the right or below.
void SizedFigure::settleFrame(FigureLayout& layout,
                              LegendSide side,
                              std::size_t legend_columns) const {
    const double font = base_.font;
    const double width = base_.style.width;
    const double left = kAxisTitle * font;
    const double top = (figure_.title.empty() ? kEdge : kTitle) * font;
    double right = kEdge * font;
    double bottom = kAxisTitle * font;
    if (side == LegendSide::Below) {
        layout.legend = below(legend_columns, width - left - right);
        bottom += layout.legend.place.height + 0.4 * font;
    }
    const auto across = static_cast<double>(layout.columns);
    const auto down = static_cast<double>(layout.rows);
    const auto height_beside = [&](double right_margin) {
        if (!heightIsFree()) {
            return base_.style.height - top - bottom;
        }
        const double panels_width = width - left - right_margin;
        const double one = (panels_width - (across - 1) * layout.gap_x) / across / aspect_;
        return std::min(down * one + (down - 1) * layout.gap_y, tallest() - top - bottom);
    };
    // The height of the panels and of the legend beside them depend on each other.
    constexpr int kRounds = 4;
    for (int round = 0; side == LegendSide::Right && round < kRounds; ++round) {
        layout.legend = atRight(legend_columns, height_beside(right));
        right = layout.legend.place.width + (kEdge + 0.6) * font;
    }
    const double panels_height = height_beside(right);
    if (heightIsFree()) {
        layout.style.height = std::round(top + panels_height + bottom);
    }
    const double height = layout.style.height;
    layout.style.left = left / width;
    layout.style.right = 1 - right / width;
    layout.style.top = 1 - top / height;
    layout.style.bottom = bottom / height;
    layout.title_x = (left + width - right) / 2;
    layout.title_y = top / 2;
}

/// Puts the legend, and the bar of colours, into their places.
void SizedFigure::placeLegend(FigureLayout& layout, LegendSide side) const {
    const double font = base_.font;
    const FigurePlace first = layout.panel(0);
    const FigurePlace last = layout.panel(panels_ - 1);
    const double panels_height = last.top + last.height - first.top;
    FigurePlace& place = layout.legend.place;
    if (side == LegendSide::Right) {
        const double line = kLine * legendFont();
        place.left = layout.style.right * layout.style.width + 0.8 * font;
        place.top = first.top + (figure_.scale ? panels_height - line : 0.0);
        const double entry = entries_.empty() ? 0.0 : 1.3 * line;
        layout.bar = {
            place.left, first.top + 0.3 * font, kBar * font, panels_height - 0.6 * font - entry};
        if (figure_.scale) {
            layout.bar_title_x = place.left + numbersEnd() + kBarTitle * font;
        }
    } else if (side == LegendSide::Below) {
        place.left = first.left;
        place.top = layout.style.height - place.height - 0.2 * font;
    } else if (side == LegendSide::FreePanel) {
        const auto free = static_cast<double>(freePanels(layout.columns));
        const FigurePlace room = {last.left + last.width + 0.4 * layout.gap_x,
                                  last.top,
                                  free * (last.width + layout.gap_x) - 0.4 * layout.gap_x,
                                  last.height};
        layout.legend = legend_within(entries_, legendFont(), room);
    }
}

double SizedFigure::worthOf(const FigureLayout& layout, LegendSide side) const {
    const FigurePlace panel = layout.panel(0);
    const FigurePlace& legend = layout.legend.place;
    const double map = std::min(panel.width / aspect_, panel.height);
    if (panel.width <= 4 * base_.font || panel.height <= 2 * base_.font) {
        return 1e-9 * std::max(map, 0.0);
    }
    // Less for what leaves much of the figure to other things than maps.
    const double maps = static_cast<double>(panels_) * map * map * aspect_;
    double worth =
        map * worthOfLegend(layout.legend) * maps / (layout.style.width * layout.style.height);
    // For a legend that leaves most of its side, or of a missing panel, empty.
    const bool is_beside = side == LegendSide::Right && !figure_.scale && heightIsFree();
    if (legend.height < 0.5 * panel.height && (is_beside || side == LegendSide::FreePanel)) {
        worth *= 0.5;
    }
    // For one that is wider than its place, even if its texts are cut to nothing.
    return legend.left + legend.width > layout.style.width ? 0.01 * worth : worth;
}

Candidate SizedFigure::filled(std::size_t columns,
                              LegendSide side,
                              std::size_t legend_columns) const {
    FigureLayout layout = base_;
    layout.columns = columns;
    layout.rows = (panels_ + columns - 1) / columns;
    layout.gap_x = layout.gap_y = 1.2 * kAxisTitle * base_.font;
    settleFrame(layout, side, legend_columns);
    placeLegend(layout, side);
    return {layout, worthOf(layout, side)};
}

void SizedFigure::tryLegends(std::size_t columns,
                             LegendSide side,
                             std::optional<Candidate>& best) const {
    for (std::size_t entries = 1; entries <= mostLegendColumns(side); ++entries) {
        const Candidate candidate = filled(columns, side, entries);
        if (!best || candidate.worth > 1.001 * best->worth) {
            best = candidate;
        }
    }
}

}  // namespace

FigurePlace FigureLayout::panel(std::size_t position) const {
    const double left = style.left * style.width;
    const double top = (1 - style.top) * style.height;
    const auto across = static_cast<double>(columns);
    const auto down = static_cast<double>(rows);
    const double width = ((style.right - style.left) * style.width - (across - 1) * gap_x) / across;
    const double height = ((style.top - style.bottom) * style.height - (down - 1) * gap_y) / down;
    const std::size_t row = position / columns;
    return {left + static_cast<double>(position % columns) * (width + gap_x),
            top + static_cast<double>(row) * (height + gap_y),
            width,
            height};
}

double bar_font(const FigureLayout& layout) {
    return kLegendFont * layout.font;
}

std::string legend_text(const std::string& label) {
    return label.empty() ? "(no label)" : label;
}

FigureLayout layout_in_style(const Figure& figure, const FigureStyle& style) {
    const std::size_t panels = std::max<std::size_t>(figure.panels.size(), 1);
    FigureLayout layout;
    layout.style = style;
    layout.columns = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(panels))));
    layout.rows = (panels + layout.columns - 1) / layout.columns;
    layout.font = style.font_size * kPixelsPerPoint;
    layout.gap_x = layout.gap_y = 1.2 * kAxisTitle * layout.font;
    layout.title = title_of(figure, layout.font, style.width);
    layout.title_x = (style.left + style.right) / 2 * style.width;
    layout.title_y = (1 - style.top) * style.height / 2;
    const std::vector<std::string> entries = entries_of(figure);
    const double font = kLegendFont * layout.font;
    const double top = (1 - style.top) * style.height;
    const double left = style.right * style.width + 0.6 * layout.font;
    const double height = (style.top - style.bottom) * style.height;
    const std::size_t free = layout.columns * layout.rows - panels;
    FigurePlace room = {left, top, std::max(0.0, style.width - left - 0.2 * font), height};
    if (free > 0 && !figure.scale) {
        const FigurePlace first_free = layout.panel(panels);
        room = first_free;
        room.left -= 0.6 * layout.gap_x;
        room.width = style.width - room.left - 0.2 * font;
    }
    if (figure.scale) {
        const double entry = entries.empty() ? 0.0 : 1.3 * kLine * font;
        layout.bar = {
            left, top + 0.3 * layout.font, kBar * layout.font, height - 0.6 * layout.font - entry};
        layout.bar_title_x =
            std::min(left + numbers_end(*figure.scale, layout.font) + kBarTitle * layout.font,
                     style.width - kHalfBarTitle * layout.font);
        room.top = top + height - kLine * font;
        room.height = kLine * font;
    }
    if (!entries.empty()) {
        layout.legend = legend_within(entries, font, room);
    }
    return layout;
}

FigureLayout layout_of_size(const Figure& figure, const FigureSize& size) {
    FigureLayout layout = SizedFigure(figure, size).best();
    layout.title = title_of(figure, layout.font, layout.style.width);
    return layout;
}

}  // namespace ovik
