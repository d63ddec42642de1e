#include "input/thousands_points.h"

#include "util/counted.h"

namespace ovik {

std::string thousands_points_warning(const std::string& path,
                                     const OptionSpelling& spell,
                                     const MatrixReport& report) {
    const FieldFindings& points = report.doubtful_points;
    if (points.count == 0 || report.whole_numbers == 0 || report.plain_fractions > 0) {
        return "";
    }
    const FieldPlace& first = points.places.front();
    return path + ": " + counted(points.count, "number has", "numbers have") +
           " three digits behind a point, as \"" + first.text + "\" on line " +
           std::to_string(first.line) +
           ", and all others are whole: points between thousands would look so, and they are read "
           "as decimal points\nIf they stand between thousands, take them out of the file; if they "
           "are decimal points, " +
           spell("decimal", ".") + " says so.";
}

}  // namespace ovik
