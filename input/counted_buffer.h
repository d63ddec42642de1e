#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <streambuf>
#include <utility>
#include <vector>

namespace ovik {

/// The bytes of another stream, which says how many have been read.
class CountedBuffer : public std::streambuf {
  public:
    /// @param bytes    not owned; read from where it stands
    /// @param on_read  is given how many bytes have been read, after every part
    CountedBuffer(std::streambuf& bytes, std::function<void(std::uint64_t)> on_read)
        : bytes_(bytes),
          on_read_(std::move(on_read)),
          part_(kPart) {}

  protected:
    int_type underflow() override {
        const std::streamsize count = take(part_.data(), static_cast<std::streamsize>(kPart));
        setg(part_.data(), part_.data(), part_.data() + count);
        return count > 0 ? traits_type::to_int_type(part_.front()) : traits_type::eof();
    }

    /// Large pieces go where they are wanted.
    std::streamsize xsgetn(char* to, std::streamsize wanted) override {
        const std::streamsize at_hand = std::min<std::streamsize>(egptr() - gptr(), wanted);
        std::copy_n(gptr(), at_hand, to);
        gbump(static_cast<int>(at_hand));
        std::streamsize done = at_hand;
        while (done < wanted) {
            const std::streamsize part = std::min<std::streamsize>(wanted - done, kLargestPiece);
            const std::streamsize count = take(to + done, part);
            done += count;
            if (count < part) {
                break;
            }
        }
        return done;
    }

  private:
    static constexpr std::size_t kPart = std::size_t{1} << 16U;
    static constexpr std::streamsize kLargestPiece = std::streamsize{1} << 22U;

    std::streamsize take(char* to, std::streamsize wanted) {
        const std::streamsize count = bytes_.sgetn(to, wanted);
        read_ += static_cast<std::uint64_t>(std::max<std::streamsize>(count, 0));
        on_read_(read_);
        return count;
    }

    std::streambuf& bytes_;
    std::function<void(std::uint64_t)> on_read_;
    std::vector<char> part_;
    std::uint64_t read_ = 0;
};

}  // namespace ovik
