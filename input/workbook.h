#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "input/number_format.h"
#include "input/sheet_text.h"
#include "input/zip_archive.h"

namespace ovik {

/// An Excel workbook (.xlsx, .xlsm): its sheets.
class Workbook {
  public:
    /// @param name   of the file, for messages
    /// @param bytes  all of the file; not owned, they outlive the workbook
    /// @throws InputError if it is damaged, or of a kind that is not read (.xlsb)
    Workbook(std::string name, std::string_view bytes);

    /// The names of the sheets that have cells and are not hidden, in their order; at least one.
    [[nodiscard]] const std::vector<std::string>& sheetNames() const { return names_; }

    /// @param sheet    less than the number of names
    /// @param decimal  the decimal sign of the numbers in the text
    /// @throws InputError if the sheet is damaged, too large, or has a formula without a result
    [[nodiscard]] SheetText sheetText(std::size_t sheet, char decimal) const;

  private:
    void readSheets();
    void readSharedStrings();
    void readStyles();

    std::string name_;
    ZipArchive archive_;
    bool since_1904_ = false;
    std::vector<std::string> names_;
    /// The member of the archive that holds each of them.
    std::vector<std::string> members_;
    std::vector<std::string> shared_strings_;
    /// How the cells of each style show dates.
    std::vector<DateFormat> date_formats_;
};

}  // namespace ovik
