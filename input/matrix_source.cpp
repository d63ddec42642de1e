#include "input/matrix_source.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "util/input_error.h"
#include "util/input_file.h"

namespace ovik {

namespace {

constexpr std::string_view kGzipMagic = "\x1f\x8b";
/// The head grows from the first of these sizes until it holds the first lines: many if they are
/// short, few if they are long.
constexpr std::size_t kHeadBytes = std::size_t{1} << 16U;
constexpr std::size_t kUsualHead = std::size_t{1} << 20U;
constexpr std::size_t kLargestHead = std::size_t{1} << 26U;
constexpr std::ptrdiff_t kHeadLines = 22;
constexpr std::ptrdiff_t kFewestLines = 3;

[[noreturn]] void refuse(const std::string& name, const std::string& reason) {
    throw InputError(name + ": " + reason);
}

/// The formats that users take for one of these.
void check_format(const std::string& name, std::string_view bytes) {
    if (bytes.starts_with("PK\x03\x04")) {
        refuse(name,
               "this is a zip archive or a spreadsheet: save the sheet as tab-separated text");
    }
    for (const auto& [magic, program] : {std::pair{"\xfd"
                                                   "7zXZ",
                                                   "xz"},
                                         std::pair{"BZh", "bzip2"},
                                         std::pair{"\x28\xb5\x2f\xfd", "zstd"}}) {
        if (bytes.starts_with(magic)) {
            refuse(name,
                   std::string("this is packed by ") + program + ": unpack it first (" + program +
                       " -d), or pack it with gzip");
        }
    }
    if (bytes.starts_with("\xff\xfe") || bytes.starts_with("\xfe\xff")) {
        refuse(name, "this is UTF-16 text: save it as UTF-8 or plain ASCII");
    }
}

MatrixFormat format_of(std::string_view head) {
    if (head.starts_with("\x93NUMPY")) {
        return MatrixFormat::NumPy;
    }
    return head.starts_with("%%MatrixMarket") ? MatrixFormat::MatrixMarket
                                              : MatrixFormat::DelimitedText;
}

void check_text(const std::string& name, std::string_view bytes) {
    const std::size_t nul = bytes.find('\0');
    if (nul != std::string_view::npos) {
        refuse_nul_byte(
            name,
            static_cast<std::size_t>(std::count(bytes.begin(), bytes.begin() + nul, '\n')) + 1);
    }
    // One at the very end may be the half of a Windows line end.
    if (bytes.substr(0, bytes.size() - 1).find('\r') != std::string_view::npos &&
        bytes.find('\n') == std::string_view::npos) {
        refuse(name,
               "its lines end with carriage returns alone, as on old Macintoshes: save it with "
               "Unix or Windows line ends (tr '\\r' '\\n')");
    }
}

}  // namespace

MatrixSource::MatrixSource(const std::string& path) : name_(path == "-" ? "standard input" : path) {
    with_read_failures_named(name_, [&] {
        open(path == "-" ? "/dev/stdin" : path);
        readHead();
    });
    check_format(name_, head_);
    format_ = format_of(head_);
    if (format_ != MatrixFormat::NumPy) {
        check_text(name_, head_);
    }
}

std::string MatrixSource::takeHead() {
    return std::exchange(head_, {});
}

void MatrixSource::open(const std::string& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found) {
        refuse(name_, "there is no such file");
    }
    if (error) {
        refuse(name_, "cannot be read (" + error.message() + ")");
    }
    if (std::filesystem::is_directory(status)) {
        refuse(name_, "this is a directory: name the matrix file in it");
    }
    file_ = std::make_unique<std::ifstream>(open_input_file(path));
    if (!file_->is_open()) {
        refuse(name_, "cannot be read (" + std::generic_category().message(errno) + ")");
    }
    text_ = std::make_unique<std::istream>(file_->rdbuf());
    text_->exceptions(std::ios::badbit);
    if (std::filesystem::is_regular_file(status)) {
        size_ = std::filesystem::file_size(path, error);
    }
}

/// Reads the first bytes, as they are unpacked, until they hold the first lines.
void MatrixSource::readHead() {
    const auto grow = [this](std::size_t size) {
        const std::size_t before = head_.size();
        head_.resize(size);
        text_->read(head_.data() + before, static_cast<std::streamsize>(size - before));
        head_.resize(before + static_cast<std::size_t>(text_->gcount()));
    };
    grow(kGzipMagic.size());
    if (head_ == kGzipMagic) {
        // Back to the start, without a step back, which a pipe does not allow.
        unpacked_ = std::make_unique<GzipBuffer>(*file_->rdbuf(), std::exchange(head_, {}), name_);
        text_ = std::make_unique<std::istream>(unpacked_.get());
        text_->exceptions(std::ios::badbit);
        size_.reset();
    }
    grow(kHeadBytes);
    const auto is_enough = [this] {
        const auto lines = std::count(head_.begin(), head_.end(), '\n');
        return lines >= (head_.size() < kUsualHead ? kHeadLines : kFewestLines) ||
               head_.size() >= kLargestHead;
    };
    while (*text_ && !is_enough()) {
        grow(2 * head_.size());
    }
    is_whole_in_head_ = !*text_;
}

void refuse_nul_byte(const std::string& name, std::size_t line) {
    refuse(name + ":" + std::to_string(line), "the line holds a NUL byte, so this is no text file");
}

}  // namespace ovik
