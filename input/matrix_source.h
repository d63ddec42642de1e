#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <istream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "input/gzip_buffer.h"

namespace ovik {

enum class MatrixFormat {
    /// A header line, then a name and its values per line.
    DelimitedText,
    /// An array saved by NumPy (.npy).
    NumPy,
    MatrixMarket,
};

/// A matrix file opened for reading: a file or standard input, plain or packed by gzip, which is
/// read from its start to its end once.
class MatrixSource {
  public:
    /// Opens the file and looks at its head, after the checks that opening does not make.
    ///
    /// @param path  "-" for standard input
    /// @throws InputError if the file is missing, unreadable or a directory, or of none of the
    /// formats: packed otherwise than by gzip, a spreadsheet, UTF-16, text with NUL bytes, or
    /// without line feeds between its lines. Only the head is looked at.
    /// @throws std::system_error if it cannot be read
    explicit MatrixSource(const std::string& path);

    /// What messages call it.
    [[nodiscard]] const std::string& name() const { return name_; }

    /// By its first bytes.
    [[nodiscard]] MatrixFormat format() const { return format_; }

    /// The first bytes, with the first lines whole.
    [[nodiscard]] std::string_view head() const { return head_; }

    /// Whether the head is all there is.
    [[nodiscard]] bool isWholeInHead() const { return is_whole_in_head_; }

    /// Bytes of the text, where they are known beforehand.
    [[nodiscard]] std::optional<std::uintmax_t> size() const { return size_; }

    /// The first bytes, to be taken away.
    std::string takeHead();

    /// What follows the head. Throws what cannot be read.
    std::istream& rest() { return *text_; }

  private:
    void open(const std::string& path);
    void readHead();

    std::string name_;
    std::unique_ptr<std::ifstream> file_;
    std::unique_ptr<GzipBuffer> unpacked_;
    std::unique_ptr<std::istream> text_;
    std::string head_;
    MatrixFormat format_ = MatrixFormat::DelimitedText;
    bool is_whole_in_head_ = false;
    std::optional<std::uintmax_t> size_;
};

/// @param name  of the file
/// @param line  of it, from 1
/// @throws InputError always: a line with a NUL byte is no text
[[noreturn]] void refuse_nul_byte(const std::string& name, std::size_t line);

}  // namespace ovik
