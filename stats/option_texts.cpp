#include "stats/option_texts.h"

#include <cfloat>
#include <charconv>

#include <climits>

#include "util/format.h"

namespace ovik {

std::string plain_number(double value) {
    constexpr std::ptrdiff_t kFewDigits = 6;
    char fixed[512];
    const auto end = std::to_chars(fixed, fixed + sizeof fixed, value, std::chars_format::fixed);
    if (end.ptr - fixed <= kFewDigits) {
        return {fixed, end.ptr};
    }
    std::string number = shortest_text(value);
    // Without the sign and the zero of 1e+09.
    const std::size_t exponent = number.find("e+");
    if (exponent != std::string::npos) {
        const std::size_t digits = number.find_first_not_of('0', exponent + 2);
        number.erase(exponent + 1, digits - exponent - 1);
    }
    return number;
}

std::string plain_number(int value) {
    return std::to_string(value);
}

std::string list_text(const NumberList& numbers) {
    std::string text;
    for (const double number : numbers) {
        text += (text.empty() ? "" : ",") + plain_number(number);
    }
    return text;
}

std::string long_name(const OptionWords& words) {
    return std::string(words.flags.substr(words.flags.find("--") + 2));
}

std::string alternatives_text(std::span<const std::string> texts) {
    std::string text;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        text += i == 0 ? "" : i + 1 == texts.size() ? " or " : ", ";
        text += texts[i];
    }
    return text;
}

std::string range_text(const OptionRange<double>& range) {
    std::string text = (range.holds_least ? "at least " : "above ") + plain_number(range.least);
    if (range.most < DBL_MAX) {
        text += (range.holds_most ? ", at most " : ", below ") + plain_number(range.most);
    }
    return text;
}

std::string range_text(const OptionRange<int>& range) {
    return range.most == INT_MAX ? "at least " + plain_number(range.least)
                                 : plain_number(range.least) + " to " + plain_number(range.most);
}

std::string preset_text(const std::string& preset, const OptionWords& words) {
    return words.unit.empty() ? preset : preset + " " + std::string(words.unit);
}

std::string requirement_text(const OptionRange<double>& range) {
    return "a number " + range_text(range);
}

std::string requirement_text(const OptionRange<int>& range) {
    return "a whole number from " + plain_number(range.least) + " to " + plain_number(range.most);
}

}  // namespace ovik
