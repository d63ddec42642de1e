#include "input/matrix_source.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <sstream>
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

}  // namespace

MatrixSource::MatrixSource(const std::string& path, const OnStage& on_stage)
    : name_(path == "-" ? "standard input" : path),
      path_(path == "-" ? "/dev/stdin" : path) {
    with_read_failures_named(name_, [&] {
        open(on_stage);
        readHead();
    });
}

MatrixSource::MatrixSource(std::string name, std::string text)
    : name_(std::move(name)),
      size_(text.size()) {
    text_ = std::make_unique<std::istringstream>(std::move(text));
    text_->exceptions(std::ios::badbit);
    readHead();
}

std::string MatrixSource::takeHead() {
    return std::exchange(head_, {});
}

bool MatrixSource::growHead() {
    if (is_whole_in_head_) {
        return false;
    }
    with_read_failures_named(name_, [&] { growHeadTo(2 * head_.size()); });
    is_whole_in_head_ = !*text_;
    return true;
}

void MatrixSource::open(const OnStage& on_stage) {
    std::error_code error;
    const auto status = std::filesystem::status(path_, error);
    if (status.type() == std::filesystem::file_type::not_found) {
        refuse(name_, "there is no such file");
    }
    if (error) {
        refuse(name_, "cannot be read (" + error.message() + ")");
    }
    if (std::filesystem::is_directory(status)) {
        refuse(name_, "this is a directory: name the matrix file in it");
    }
    file_ = std::make_unique<std::ifstream>(open_input_file(path_));
    if (!file_->is_open()) {
        refuse(name_, "cannot be read (" + std::generic_category().message(errno) + ")");
    }
    is_seekable_ = std::filesystem::is_regular_file(status);
    if (is_seekable_) {
        size_ = std::filesystem::file_size(path_, error);
    }
    if (on_stage) {
        const std::uint64_t size = size_.value_or(0);
        tell(on_stage, Stage::Reading, 0, size);
        counted_ = std::make_unique<CountedBuffer>(
            *file_->rdbuf(),
            [on_stage, size](std::uint64_t count) { tell(on_stage, Stage::Reading, count, size); });
    }
    text_ = std::make_unique<std::istream>(&fileBytes());
    text_->exceptions(std::ios::badbit);
}

std::streambuf& MatrixSource::fileBytes() const {
    if (counted_) {
        return *counted_;
    }
    return *file_->rdbuf();
}

/// Reads the first bytes, as they are unpacked, until they hold the first lines.
void MatrixSource::readHead() {
    growHeadTo(kGzipMagic.size());
    if (file_ && head_ == kGzipMagic) {
        // Back to the start, without a step back, which a pipe does not allow.
        unpacked_ = std::make_unique<GzipBuffer>(fileBytes(), std::exchange(head_, {}), name_);
        text_ = std::make_unique<std::istream>(unpacked_.get());
        text_->exceptions(std::ios::badbit);
        size_.reset();
        is_seekable_ = false;
    }
    growHeadTo(kHeadBytes);
    const auto is_enough = [this] {
        const auto lines = std::count(head_.begin(), head_.end(), '\n');
        return lines >= (head_.size() < kUsualHead ? kHeadLines : kFewestLines) ||
               head_.size() >= kLargestHead;
    };
    while (*text_ && !is_enough()) {
        growHeadTo(2 * head_.size());
    }
    is_whole_in_head_ = !*text_;
}

void MatrixSource::growHeadTo(std::size_t size) {
    const std::size_t before = head_.size();
    head_.resize(size);
    text_->read(head_.data() + before, static_cast<std::streamsize>(size - before));
    head_.resize(before + static_cast<std::size_t>(text_->gcount()));
}

}  // namespace ovik
