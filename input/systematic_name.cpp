#include "input/systematic_name.h"

#include <algorithm>

namespace ovik {

namespace {

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

/// Whether a letter, in capitals or not, is one of a range of capitals.
bool is_letter(char c, char first, char last) {
    const char capital = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return capital >= first && capital <= last;
}

/// Chromosome, arm, three digits, strand; overlapping and later found genes have a letter more.
bool is_nuclear(std::string_view text) {
    return (text.size() == 7 ||
            (text.size() == 9 && text[7] == '-' && is_letter(text[8], 'A', 'Z'))) &&
           is_letter(text[0], 'Y', 'Y') && is_letter(text[1], 'A', 'P') &&
           (is_letter(text[2], 'L', 'L') || is_letter(text[2], 'R', 'R')) &&
           std::all_of(text.begin() + 3, text.begin() + 6, is_digit) &&
           (is_letter(text[6], 'W', 'W') || is_letter(text[6], 'C', 'C'));
}

bool is_mitochondrial(std::string_view text) {
    return text.size() == 5 && is_letter(text[0], 'Q', 'Q') &&
           std::all_of(text.begin() + 1, text.end(), is_digit);
}

}  // namespace

bool is_systematic_name(std::string_view text) {
    return is_nuclear(text) || is_mitochondrial(text);
}

}  // namespace ovik
