#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <istream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "input/counted_buffer.h"
#include "input/gzip_buffer.h"
#include "util/stage.h"

namespace ovik {

/// A matrix file opened for reading: a file or standard input, plain or packed by gzip, which is
/// read from its start to its end once.
class MatrixSource {
  public:
    /// Opens the file and reads its head, after the checks that opening does not make.
    ///
    /// @param path      "-" for standard input
    /// @param on_stage  takes how many bytes of the file have been read; may be empty
    /// @throws InputError if the file is missing, unreadable or a directory, or is damaged gzip
    /// @throws std::system_error if it cannot be read
    explicit MatrixSource(const std::string& path, const OnStage& on_stage = {});

    /// Text at hand, such as what another format was made into.
    ///
    /// @param name  what messages call it
    MatrixSource(std::string name, std::string text);

    /// What messages call it.
    [[nodiscard]] const std::string& name() const { return name_; }

    /// The path that opens the file; of standard input, too. Empty for text at hand.
    [[nodiscard]] const std::string& path() const { return path_; }

    /// Whether the bytes lie in a regular file as they are, not packed: a reader may then open
    /// `path` by itself and read at any place of it, instead of `takeHead` and `rest`.
    [[nodiscard]] bool isSeekable() const { return is_seekable_; }

    /// The first bytes, with the first lines whole.
    [[nodiscard]] std::string_view head() const { return head_; }

    /// Reads on until the head is about twice as long.
    ///
    /// @return whether there was more to read
    /// @throws InputError, std::system_error as the constructor
    bool growHead();

    /// Whether the head is all there is.
    [[nodiscard]] bool isWholeInHead() const { return is_whole_in_head_; }

    /// Bytes of the text, where they are known beforehand.
    [[nodiscard]] std::optional<std::uintmax_t> size() const { return size_; }

    /// The first bytes, to be taken away.
    std::string takeHead();

    /// What follows the head. Throws what cannot be read.
    std::istream& rest() { return *text_; }

  private:
    void open(const OnStage& on_stage);
    /// What the file holds, as it lies there.
    [[nodiscard]] std::streambuf& fileBytes() const;
    void readHead();
    void growHeadTo(std::size_t size);

    std::string name_;
    std::string path_;
    std::unique_ptr<std::ifstream> file_;
    /// Null if nobody asks how far it is.
    std::unique_ptr<CountedBuffer> counted_;
    std::unique_ptr<GzipBuffer> unpacked_;
    std::unique_ptr<std::istream> text_;
    std::string head_;
    bool is_whole_in_head_ = false;
    bool is_seekable_ = false;
    std::optional<std::uintmax_t> size_;
};

}  // namespace ovik
