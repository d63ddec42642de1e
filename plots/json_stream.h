#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "util/json_text.h"

namespace ovik {

/// Takes a text piece by piece.
using TextSink = std::function<void(std::string_view piece)>;

/// JSON that leaves as it is written, so that long lists are nowhere as a whole. Its text is that
/// of `json_for_script`: it may stand within a script of a page.
class JsonStream {
  public:
    /// Writes a value.
    using Write = std::function<void(JsonStream&)>;

    explicit JsonStream(TextSink sink) : sink_(std::move(sink)) {}

    JsonStream(const JsonStream&) = delete;
    JsonStream& operator=(const JsonStream&) = delete;

    /// Without `end`, what was not handed over yet is lost.
    ~JsonStream() = default;

    /// Hands over what is left.
    void end() { flush(); }

    /// JSON as it stands.
    void text(std::string_view json) {
        text_ += json;
        flushIfLong();
    }

    /// A value that `append_json` takes.
    template <typename T>
    void value(const T& value) {
        append_json(text_, value);
        flushIfLong();
    }

    /// A list of such values.
    template <typename Range>
    void list(const Range& values) {
        list(values, [this](const auto& one) { this->value(one); });
    }

    /// A list.
    ///
    /// @param write_one  is given each element
    template <typename Range, typename WriteOne>
    void list(const Range& elements, const WriteOne& write_one) {
        text("[");
        bool is_first = true;
        for (const auto& element : elements) {
            text(is_first ? "" : ",");
            write_one(element);
            is_first = false;
        }
        text("]");
    }

    /// @param members  names, which need no escapes, and values
    void object(std::initializer_list<std::pair<std::string_view, Write>> members) {
        text("{");
        bool is_first = true;
        for (const auto& [name, write] : members) {
            text(is_first ? "\"" : ",\"");
            text(name);
            text("\":");
            write(*this);
            is_first = false;
        }
        text("}");
    }

  private:
    static constexpr std::size_t kPart = std::size_t{1} << 16U;

    void flushIfLong() {
        if (text_.size() >= kPart) {
            flush();
        }
    }

    void flush();

    TextSink sink_;
    /// Not handed over yet.
    std::string text_;
};

}  // namespace ovik
