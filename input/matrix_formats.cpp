#include "input/matrix_formats.h"

#include <algorithm>

#include "input/delimited_text.h"
#include "input/foreign_formats.h"
#include "input/matrix_market.h"
#include "input/npy_matrix.h"
#include "input/text_head.h"
#include "input/xlsx_matrix.h"
#include "util/input_error.h"

namespace ovik {

const std::vector<MatrixFormat>& matrix_formats() {
    static const std::vector<MatrixFormat> kFormats = {
        {.name = "npy",
         .recognises = [](std::string_view head) { return head.starts_with("\x93NUMPY"); },
         .read = [](MatrixSource& source,
                    const LoadOptions& /*options*/) { return read_npy_matrix(source); }},
        {.name = "matrix market",
         .recognises = [](std::string_view head) { return head.starts_with("%%MatrixMarket"); },
         .read = read_matrix_market,
         .is_text = true},
#ifdef OVIK_READS_XLSX
        {.name = "xlsx", .recognises = is_workbook, .read = read_xlsx_matrix, .has_names = true},
#endif
        {.name = "text",
         .recognises = [](std::string_view head) { return foreign_format(head).empty(); },
         .read = read_delimited_text,
         .has_names = true,
         .is_text = true}};
    return kFormats;
}

const MatrixFormat& format_of(const MatrixSource& source,
                              const std::vector<MatrixFormat>& formats) {
    const auto format =
        std::find_if(formats.begin(), formats.end(), [&source](const MatrixFormat& known) {
            return known.recognises(source.head());
        });
    if (format == formats.end()) {
        const std::string foreign = foreign_format(source.head());
        throw InputError(source.name() + ": " +
                         (foreign.empty() ? "this is of no format that is read" : foreign));
    }
    if (format->is_text) {
        check_text_head(source);
    }
    return *format;
}

}  // namespace ovik
