#include "plots/name_placement.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace ovik {

namespace {

using Point = std::array<double, 2>;

/// How many points lie in rectangles of a frame, counted in cells.
class PointCounts {
  public:
    PointCounts(const FigurePlace& frame, std::span<const Point> points)
        : frame_(frame),
          columns_(cellsIn(frame.width)),
          rows_(cellsIn(frame.height)),
          sums_((columns_ + 1) * (rows_ + 1)) {
        for (const Point& point : points) {
            ++sums_[index(columnOf(point[0]), rowOf(point[1])) + columns_ + 2];
        }
        for (std::size_t row = 1; row <= rows_; ++row) {
            for (std::size_t column = 1; column <= columns_; ++column) {
                const std::size_t at = index(column, row);
                sums_[at] += sums_[at - 1] + sums_[at - columns_ - 1] - sums_[at - columns_ - 2];
            }
        }
    }

    [[nodiscard]] double in(const FigurePlace& box) const {
        const std::size_t left = columnOf(box.left);
        const std::size_t top = rowOf(box.top);
        const std::size_t right = columnOf(box.left + box.width) + 1;
        const std::size_t bottom = rowOf(box.top + box.height) + 1;
        return static_cast<double>(sums_[index(right, bottom)] + sums_[index(left, top)] -
                                   sums_[index(left, bottom)] - sums_[index(right, top)]);
    }

  private:
    static constexpr double kCell = 4.0;

    static std::size_t cellsIn(double length) {
        constexpr double kMost = 4000;
        return static_cast<std::size_t>(std::clamp(std::ceil(length / kCell), 1.0, kMost));
    }

    static std::size_t cellOf(double offset, std::size_t count) {
        const double cell = std::clamp(offset / kCell, 0.0, static_cast<double>(count - 1));
        return static_cast<std::size_t>(cell);
    }

    [[nodiscard]] std::size_t columnOf(double x) const { return cellOf(x - frame_.left, columns_); }

    [[nodiscard]] std::size_t rowOf(double y) const { return cellOf(y - frame_.top, rows_); }

    [[nodiscard]] std::size_t index(std::size_t column, std::size_t row) const {
        return row * (columns_ + 1) + column;
    }

    FigurePlace frame_;
    std::size_t columns_;
    std::size_t rows_;
    std::vector<std::size_t> sums_;
};

bool overlap(const FigurePlace& a, const FigurePlace& b) {
    return a.left < b.left + b.width && b.left < a.left + a.width && a.top < b.top + b.height &&
           b.top < a.top + a.height;
}

bool is_within(const FigurePlace& box, const FigurePlace& frame) {
    return box.left >= frame.left && box.top >= frame.top &&
           box.left + box.width <= frame.left + frame.width &&
           box.top + box.height <= frame.top + frame.height;
}

/// The point of a rectangle that is nearest to a point.
Point nearest_in(const FigurePlace& box, const Point& point) {
    return {std::clamp(point[0], box.left, box.left + box.width),
            std::clamp(point[1], box.top, box.top + box.height)};
}

double distance(const Point& a, const Point& b) {
    return std::hypot(a[0] - b[0], a[1] - b[1]);
}

/// Twice the area of a triangle, with its sign.
double turn(const Point& a, const Point& b, const Point& c) {
    return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]);
}

bool cross(const Point& a, const Point& b, const Point& c, const Point& d) {
    return turn(a, b, c) * turn(a, b, d) < 0.0 && turn(c, d, a) * turn(c, d, b) < 0.0;
}

/// Whether a line passes through a rectangle.
bool passes(const Point& a, const Point& b, const FigurePlace& box) {
    const Point corners[] = {{box.left, box.top},
                             {box.left + box.width, box.top},
                             {box.left + box.width, box.top + box.height},
                             {box.left, box.top + box.height}};
    return cross(a, b, corners[0], corners[2]) || cross(a, b, corners[1], corners[3]);
}

/// Names and the places found so far.
class Placement {
  public:
    Placement(std::span<const NameToPlace> names,
              double radius,
              const FigurePlace& frame,
              std::span<const Point> others)
        : names_(names),
          radius_(radius),
          frame_(frame),
          counts_(frame, others),
          placed_(names.size()) {}

    /// Gives a name the best place beside those of the others.
    void place(std::size_t name) {
        placed_[name].is_placed = false;
        std::optional<double> least;
        PlacedName best;
        for (int step = 0; step < kSteps; ++step) {
            for (int direction = 0; direction < kDirections; ++direction) {
                const PlacedName candidate = candidateOf(name, step, direction);
                if (!isFree(name, candidate.box)) {
                    continue;
                }
                const double cost = costOf(name, candidate, direction);
                if (!least || cost < *least) {
                    least = cost;
                    best = candidate;
                }
            }
        }
        if (least) {
            placed_[name] = best;
        }
    }

    [[nodiscard]] std::vector<PlacedName> result() const { return placed_; }

  private:
    static constexpr int kSteps = 28;
    static constexpr int kDirections = 16;

    [[nodiscard]] PlacedName candidateOf(std::size_t name, int step, int direction) const {
        const NameToPlace& text = names_[name];
        // To the right first, then around.
        const double angle = 2 * 3.14159265358979 * direction / kDirections;
        const double cosine = std::cos(angle);
        const double sine = -std::sin(angle);
        const double away = radius_ + 0.15 * text.height + 0.5 * step * text.height;
        // The side or the corner of the name that is next to the point.
        constexpr double kCorner = 2.6;
        const double middle_x =
            text.at[0] + cosine * away + std::clamp(kCorner * cosine, -1.0, 1.0) * text.width / 2;
        const double middle_y =
            text.at[1] + sine * away + std::clamp(kCorner * sine, -1.0, 1.0) * text.height / 2;
        PlacedName candidate{
            true,
            {middle_x - text.width / 2, middle_y - text.height / 2, text.width, text.height},
            step > 0,
            {}};
        candidate.line_end = nearest_in(candidate.box, text.at);
        return candidate;
    }

    [[nodiscard]] bool isFree(std::size_t name, const FigurePlace& box) const {
        if (!is_within(box, frame_)) {
            return false;
        }
        for (std::size_t n = 0; n < names_.size(); ++n) {
            if (distance(nearest_in(box, names_[n].at), names_[n].at) < radius_ ||
                (n != name && placed_[n].is_placed && overlap(box, placed_[n].box))) {
                return false;
            }
        }
        return true;
    }

    /// Points that are hidden, the length of the line, and what it meets.
    [[nodiscard]] double costOf(std::size_t name,
                                const PlacedName& candidate,
                                int direction) const {
        const Point& at = names_[name].at;
        const double height = names_[name].height;
        double cost = 0.6 * counts_.in(candidate.box) +
                      4 * distance(at, candidate.line_end) / height + 0.05 * direction;
        for (std::size_t n = 0; n < names_.size(); ++n) {
            const bool is_other = n != name && placed_[n].is_placed;
            if (is_other && placed_[n].has_line) {
                const Point& from = names_[n].at;
                const Point& to = placed_[n].line_end;
                cost += passes(from, to, candidate.box) ? kMeets : 0.0;
                cost += cross(from, to, at, candidate.line_end) ? kMeets : 0.0;
            }
            if (is_other && candidate.has_line && passes(at, candidate.line_end, placed_[n].box)) {
                cost += kMeets;
            }
        }
        return cost;
    }

    static constexpr double kMeets = 200;

    std::span<const NameToPlace> names_;
    double radius_;
    FigurePlace frame_;
    PointCounts counts_;
    std::vector<PlacedName> placed_;
};

}  // namespace

std::vector<PlacedName> place_names(std::span<const NameToPlace> names,
                                    double radius,
                                    const FigurePlace& frame,
                                    std::span<const std::array<double, 2>> others) {
    Placement placement(names, radius, frame, others);
    // Later rounds mend what the first one could not foresee.
    constexpr int kRounds = 3;
    for (int round = 0; round < kRounds; ++round) {
        for (std::size_t name = 0; name < names.size(); ++name) {
            placement.place(name);
        }
    }
    return placement.result();
}

}  // namespace ovik
