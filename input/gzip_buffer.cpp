#include "input/gzip_buffer.h"

#include <new>
#include <utility>

#include <zlib.h>

#include "util/input_error.h"

namespace ovik {

namespace {

constexpr std::size_t kBufferBytes = std::size_t{1} << 18U;

}  // namespace

/// The state of zlib.
class GzipBuffer::Inflater {
  public:
    Inflater() {
        // The data are gzip members only, with the largest window.
        constexpr int kGzipWindow = 15 + 16;
        if (inflateInit2(&stream_, kGzipWindow) != Z_OK) {
            throw std::bad_alloc();
        }
    }

    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    ~Inflater() { inflateEnd(&stream_); }

    [[nodiscard]] bool needsInput() const { return stream_.avail_in == 0; }

    void give(char* bytes, std::size_t count) {
        stream_.next_in = reinterpret_cast<Bytef*>(bytes);
        stream_.avail_in = static_cast<uInt>(count);
    }

    /// Whether no member has been begun that has not ended.
    [[nodiscard]] bool isBetweenMembers() const { return is_between_members_; }

    /// @return bytes written
    /// @throws InputError if the data are damaged
    std::size_t inflateInto(std::vector<char>& output, const std::string& name) {
        if (is_between_members_) {
            inflateReset(&stream_);
            is_between_members_ = false;
        }
        stream_.next_out = reinterpret_cast<Bytef*>(output.data());
        stream_.avail_out = static_cast<uInt>(output.size());
        const int status = inflate(&stream_, Z_NO_FLUSH);
        if (status == Z_MEM_ERROR) {
            throw std::bad_alloc();
        }
        is_between_members_ = status == Z_STREAM_END;
        if (status != Z_OK && status != Z_STREAM_END && status != Z_BUF_ERROR) {
            throw InputError(name + ": the gzip data are damaged (" +
                             (stream_.msg != nullptr ? stream_.msg : "no gzip member") +
                             ")\nFetch or pack the file anew; gzip -t checks it.");
        }
        return output.size() - stream_.avail_out;
    }

  private:
    z_stream stream_{};
    bool is_between_members_ = true;
};

GzipBuffer::GzipBuffer(std::streambuf& packed, std::string begun, std::string name)
    : packed_(packed),
      name_(std::move(name)),
      inflater_(std::make_unique<Inflater>()),
      input_(std::move(begun)),
      output_(kBufferBytes) {
    inflater_->give(input_.data(), input_.size());
}

GzipBuffer::~GzipBuffer() = default;

GzipBuffer::int_type GzipBuffer::underflow() {
    std::size_t count = 0;
    while (count == 0) {
        if (inflater_->needsInput()) {
            input_.resize(kBufferBytes);
            const std::streamsize read =
                packed_.sgetn(input_.data(), static_cast<std::streamsize>(input_.size()));
            inflater_->give(input_.data(), static_cast<std::size_t>(read));
            if (read == 0 && inflater_->isBetweenMembers()) {
                return traits_type::eof();
            }
            if (read == 0) {
                throw InputError(
                    name_ +
                    ": the gzip data end in the middle: the file was cut off\nFetch or "
                    "pack it anew; gzip -t checks it.");
            }
        }
        count = inflater_->inflateInto(output_, name_);
    }
    setg(output_.data(), output_.data(), output_.data() + count);
    return traits_type::to_int_type(output_[0]);
}

}  // namespace ovik
