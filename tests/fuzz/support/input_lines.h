#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace ovik::test {

/// A fuzzer's input as lines of text, so that seeds can be written by hand. Behind the last line
/// all texts are empty and all numbers 0.
class InputLines {
  public:
    InputLines(const std::uint8_t* data, std::size_t size) : left_(data, data + size) {}

    [[nodiscard]] bool isAtEnd() const { return at_ == left_.size(); }

    /// The next line. In it, "\n" stands for a line feed, "\0" for a NUL, and a backslash before
    /// any other byte for that byte.
    std::string text() {
        std::string result;
        while (!isAtEnd()) {
            char c = left_[at_++];
            if (c == '\n') {
                break;
            }
            if (c == '\\' && !isAtEnd()) {
                c = left_[at_++];
                c = c == 'n' ? '\n' : (c == '0' ? '\0' : c);
            }
            result += c;
        }
        return result;
    }

    /// The next line as `strtod` reads it.
    double number() { return std::strtod(text().c_str(), nullptr); }

    /// The next line as `strtol` reads it.
    long wholeNumber() { return std::strtol(text().c_str(), nullptr, 10); }

    /// The next line as a whole number from 0 to `most`.
    std::size_t count(std::size_t most) {
        return std::strtoul(text().c_str(), nullptr, 10) % (most + 1);
    }

    bool flag() { return count(1) == 1; }

    /// All that is left, as it stands.
    std::string rest() {
        std::string result = left_.substr(at_);
        at_ = left_.size();
        return result;
    }

  private:
    std::string left_;
    std::size_t at_ = 0;
};

}  // namespace ovik::test
