#include "plots/gnuplot.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>

#include "plots/figure_drawing.h"
#include "plots/figure_layout.h"
#include "plots/finished_picture.h"
#include "plots/gnuplot_script.h"
#include "plots/png_image.h"
#include "plots/point_image.h"
#include "plots/run_figure.h"
#include "plots/table_run.h"
#include "util/whole_file.h"

namespace ovik {

namespace {

/// Pixels of the image in the vector picture for one of the figure: a figure on paper has 300 to an
/// inch, one in pixels as many on the 183 mm of a page at least.
double image_scale(const FigureLayout& layout) {
    constexpr double kPixelsOfPage = 183.0 / 25.4 * 300.0;
    return layout.pixels_per_millimetre > 0.0
               ? 1.0
               : std::clamp(kPixelsOfPage / layout.style.width, 1.0, 4.0);
}

}  // namespace

template <typename T>
Gnuplot<T>::Gnuplot() = default;

template <typename T>
Gnuplot<T>::~Gnuplot() = default;

template <typename T>
void Gnuplot<T>::open(bool window) {
    if (window) {
        throw std::invalid_argument("figures are drawn to files, not to a window");
    }
    is_open_ = true;
}

template <typename T>
// NOLINTNEXTLINE(readability-function-size): a published signature
void Gnuplot<T>::style(std::string& settings,
                       T width,
                       T height,
                       T right,
                       T left,
                       T bottom,
                       T top,
                       int font_size,
                       bool overlap) {
    style_ = {as_written(width),
              as_written(height),
              as_written(right),
              as_written(left),
              as_written(bottom),
              as_written(top),
              static_cast<double>(font_size),
              overlap};
    settings = figure_settings(style_);
}

template <typename T>
void Gnuplot<T>::setRun(const PlottedRun<T>& run) {
    run_ = run;
}

template <typename T>
// NOLINTNEXTLINE(readability-function-size): a published signature
void Gnuplot<T>::plotting(std::string base,
                          std::string& /*settings*/,
                          std::string script_head,
                          std::vector<T> bounds,
                          std::vector<std::string> axis_titles,
                          std::string type,
                          std::string title,
                          std::string /*remark*/,
                          std::vector<int> columns,
                          std::vector<int> /*selection*/) {
    if (!is_open_) {
        throw std::logic_error("the session is not open: call open before plotting");
    }
    if (type != "scatter" || columns != std::vector<int>{2, 3} || bounds.size() != 4 ||
        axis_titles.size() != 2) {
        throw std::invalid_argument(
            "a figure is a scatter of columns 2 and 3 with four bounds and two axis titles");
    }
    // A drawing that is still open ends here.
    close();
    is_open_ = true;
    FigureFrame frame{
        base.substr(base.rfind('/') + 1), std::move(title), std::move(axis_titles), {}};
    std::transform(bounds.begin(), bounds.end(), frame.bounds.begin(), &as_written<T>);
    if (run_) {
        draw(base, figure_of_run(*run_, frame), script_head);
    } else if (const auto table = TableRun::read(base + ".csv")) {
        draw(base, figure_of_run(table->run(), frame), script_head);
    } else {
        fail(base, "there is no whole result table beside it");
    }
}

template <typename T>
void Gnuplot<T>::draw(const std::string& base,
                      const Figure& figure,
                      const std::string& script_head) {
    const FigureOptions* const options = run_ ? run_->figure : nullptr;
    const FigureLayout layout = options != nullptr ? layout_of_size(figure, options->size)
                                                   : layout_in_style(figure, style_);
    const std::string settings = options != nullptr ? figure_settings(layout.style) : script_head;
    const GnuplotScript drawn = gnuplot_script(figure, settings, layout);
    const std::string script = base + ".gp";
    if (const auto failure = write_whole_text(script, drawn.text)) {
        fail(base, script + " could not be written (" + failure.message() + ")");
        return;
    }
    tell_unplaced_names(base, drawn.unplaced_names);
    const double per_millimetre = layout.pixels_per_millimetre;
    std::optional<DrawingFiles> files;
    std::string image;
    if (!drawn.around_image.empty()) {
        files = {drawn.around_image, png_of(point_image(figure, layout, 1.0)), drawn.draws_all};
        const double scale = image_scale(layout);
        image = scale == 1.0 ? files->points : png_of(point_image(figure, layout, scale));
    }
    drawing_ = std::make_unique<FigureDrawing>(
        base,
        [per_millimetre, image = std::move(image)](const std::string& bytes,
                                                   const std::string& extension) {
            return extension == ".svg" ? finished_svg(bytes, per_millimetre, image)
                                       : finished_png(bytes, per_millimetre);
        },
        files);
}

template <typename T>
void Gnuplot<T>::close() {
    is_open_ = false;
    if (drawing_ == nullptr) {
        return;
    }
    outcome_ = drawing_->complete(time_limit);
    drawing_.reset();
}

template <typename T>
void Gnuplot<T>::fail(const std::string& base, const std::string& reason) {
    outcome_ = FigureOutcome::Failed;
    tell_missing_figure(base, reason);
}

template class Gnuplot<float>;
template class Gnuplot<double>;

}  // namespace ovik
