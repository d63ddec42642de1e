#include "plots/gnuplot_script.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "plots/gnuplot_text.h"

#include "tests/fuzz/support/input_lines.h"
#include "tests/fuzz/support/require.h"
#include "tests/fuzz/support/utf8.h"

/// The script of a figure, read as gnuplot does: whatever the texts, they are the contents of its
/// strings, and the script around them is that of harmless texts.

namespace ovik {
namespace {

/// A script without its texts, and they.
struct Lexed {
    /// Each text is one "\1".
    std::string skeleton;
    std::vector<std::string> texts;
};

/// Takes a string in single quotes off the front, quotes and all, and returns what it holds.
std::string take_string(std::string_view& script) {
    OVIK_REQUIRE(script.starts_with('\''));
    const std::size_t end = script.find('\'', 1);
    OVIK_REQUIRE(end != std::string_view::npos);
    const std::string_view text = script.substr(1, end - 1);
    OVIK_REQUIRE(std::none_of(text.begin(), text.end(), [](char c) { return c >= 0 && c < ' '; }));
    script.remove_prefix(end + 1);
    // Would be a quote within the string.
    OVIK_REQUIRE(!script.starts_with('\''));
    return std::string(text);
}

/// Takes what is known to come next off the front.
void take(std::string_view& script, std::string_view known) {
    OVIK_REQUIRE(script.starts_with(known));
    script.remove_prefix(known.size());
}

std::string take_text(std::string_view& script);

/// Takes characters that a font may lack, behind the question that asks for it, and returns them.
std::string take_unusual_text(std::string_view& script) {
    const std::string codes = take_string(script);
    OVIK_REQUIRE(!codes.empty() &&
                 codes.find_first_not_of("0123456789abcdefABCDEF ") == std::string::npos);
    take(script, ") ? ");
    std::string text = take_text(script);
    take(script, " : ");
    OVIK_REQUIRE(take_string(script).find_first_not_of('?') == std::string::npos);
    take(script, ").");
    return text;
}

/// Takes an expression of strings, characters by their codes and characters that a font may lack,
/// joined by dots.
std::string take_text(std::string_view& script) {
    constexpr std::string_view kCharacter = ".sprintf('%c',";
    constexpr std::string_view kUnusual = ".(fonts_have(";
    std::string text = take_string(script);
    while (script.starts_with(kCharacter) || script.starts_with(kUnusual)) {
        if (script.starts_with(kUnusual)) {
            script.remove_prefix(kUnusual.size());
            text += take_unusual_text(script);
            text += take_string(script);
            continue;
        }
        script.remove_prefix(kCharacter.size());
        const std::size_t end = script.find(')');
        OVIK_REQUIRE(end != std::string_view::npos && end >= 1 && end <= 3);
        text += static_cast<char>(std::stoi(std::string(script.substr(0, end))));
        script.remove_prefix(end);
        OVIK_REQUIRE(script.starts_with(").'"));
        script.remove_prefix(2);
        text += take_string(script);
    }
    return text;
}

Lexed lex(std::string_view script) {
    Lexed result;
    while (!script.empty()) {
        const char c = script[0];
        if (script.starts_with(gnuplot_font_search())) {
            take(script, gnuplot_font_search());
        } else if (script.starts_with(gnuplot_any_font())) {
            take(script, gnuplot_any_font());
        } else if (c == '\'') {
            result.texts.push_back(take_text(script));
            result.skeleton += '\1';
        } else if (c == '#') {
            const std::string_view comment = script.substr(0, script.find('\n'));
            OVIK_REQUIRE(!comment.ends_with('\\'));
            result.skeleton += comment;
            script.remove_prefix(comment.size());
        } else {
            // Neither a command of the shell nor another string, macro or further statement.
            OVIK_REQUIRE(c == '\n' || (c >= ' ' && c <= '~'));
            OVIK_REQUIRE(std::string_view("`\"@;!|").find(c) == std::string_view::npos);
            result.skeleton += c;
            script.remove_prefix(1);
        }
    }
    return result;
}

/// As many characters as a text has, none of which means anything.
std::string harmless(const std::string& text) {
    const std::string line = test::plain_line(text);
    return std::string(test::code_points(line).size(), 'a');
}

Figure with_harmless_texts(Figure figure) {
    figure.stem = harmless(figure.stem);
    figure.title = harmless(figure.title);
    for (std::string& label : figure.labels) {
        label = harmless(label);
    }
    for (FigurePanel& panel : figure.panels) {
        panel.x_title = harmless(panel.x_title);
        panel.y_title = harmless(panel.y_title);
    }
    return figure;
}

FigureLayout with_harmless_texts(FigureLayout layout) {
    layout.title = harmless(layout.title);
    for (std::string& text : layout.legend.texts) {
        text = harmless(text);
    }
    return layout;
}

/// The text as one line, or what fits of it.
void require_shown(const std::string& shown, const std::string& text) {
    OVIK_REQUIRE(test::is_valid_utf8(shown));
    const auto expected = test::code_points(test::plain_line(text));
    const auto characters = test::code_points(shown);
    if (characters != expected) {
        constexpr std::uint32_t kEllipsis = 0x2026;
        const auto dots = std::find(characters.begin(), characters.end(), kEllipsis);
        OVIK_REQUIRE(dots != characters.end());
        OVIK_REQUIRE(std::equal(characters.begin(), dots, expected.begin()));
    }
}

/// Whether a text stands right behind some words of a script.
bool follows(const std::string& skeleton, std::size_t at, std::string_view words) {
    return std::string_view(skeleton).substr(0, at).ends_with(words);
}

std::string_view line_from(const std::string& skeleton, std::size_t at) {
    const std::string_view rest = std::string_view(skeleton).substr(at);
    return rest.substr(0, rest.find('\n'));
}

/// The titles of the axes, those of a panel after each other, and the legend's entries behind those
/// of the first panel.
std::vector<std::string> labels_of(const Figure& figure, const FigureLayout& layout) {
    std::vector<std::string> texts;
    for (std::size_t panel = 0; panel < figure.panels.size(); ++panel) {
        texts.push_back(figure.panels[panel].x_title);
        texts.push_back(figure.panels[panel].y_title);
        for (std::size_t n = 0; panel == 0 && n < layout.legend.texts.size(); ++n) {
            const bool is_count = layout.legend.left_out > 0 && n + 1 == layout.legend.texts.size();
            texts.push_back(is_count ? layout.legend.texts[n] : legend_text(figure.labels[n]));
        }
        if (panel == 0 && !layout.title.empty()) {
            texts.push_back(figure.title);
        }
    }
    return texts;
}

void check_texts(const Lexed& script, const Figure& figure, const FigureLayout& layout) {
    const std::vector<std::string> expected = labels_of(figure, layout);
    std::size_t at = 0;
    std::size_t outputs = 0;
    std::size_t labels = 0;
    for (const std::string& text : script.texts) {
        at = script.skeleton.find('\1', at);
        if (follows(script.skeleton, at, "\nset output ")) {
            const std::string extension = outputs++ == 0 ? ".png" : ".svg";
            OVIK_REQUIRE(text == "./" + figure.stem + extension);
            labels = 0;
        } else if (follows(script.skeleton, at, "\nset label ") &&
                   line_from(script.skeleton, at).find(" point ") == std::string_view::npos) {
            OVIK_REQUIRE(labels < expected.size());
            require_shown(text, expected[labels++]);
        }
        ++at;
    }
    OVIK_REQUIRE(outputs == 2);
}

/// A number of this size at most; 0 for what is none.
double number_within(test::InputLines& input, double largest) {
    const double number = input.number();
    return std::fabs(number) <= largest ? number : 0.0;
}

std::string file_name_from(test::InputLines& input) {
    std::string name = input.text();
    std::erase(name, '\0');
    return name;
}

Figure figure_from(test::InputLines& input) {
    Figure figure;
    figure.stem = file_name_from(input);
    figure.title = input.text();
    for (double& bound : figure.bounds) {
        bound = number_within(input, 1e300);
    }
    figure.labels.resize(input.count(40));
    for (std::string& label : figure.labels) {
        label = input.text();
    }
    figure.panels.resize(input.count(5));
    for (FigurePanel& panel : figure.panels) {
        panel.x_title = input.text();
        panel.y_title = input.text();
        panel.points.resize(std::max<std::size_t>(figure.labels.size(), 1));
        for (auto& points : panel.points) {
            points.resize(input.count(2));
            for (auto& point : points) {
                point = {number_within(input, 1e308), number_within(input, 1e308)};
            }
        }
    }
    return figure;
}

FigureStyle style_from(test::InputLines& input) {
    constexpr double kLargest = 1e6;
    FigureStyle style;
    if (input.flag()) {
        style = {number_within(input, kLargest),
                 number_within(input, kLargest),
                 number_within(input, 1.0),
                 number_within(input, 1.0),
                 number_within(input, 1.0),
                 number_within(input, 1.0),
                 static_cast<double>(input.count(100)),
                 input.flag()};
    }
    return style;
}

}  // namespace
}  // namespace ovik

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ovik;
    test::InputLines input(data, size);
    const FigureStyle style = style_from(input);
    const Figure figure = figure_from(input);
    const std::string settings = figure_settings(style);
    const FigureLayout layout = layout_in_style(figure, style);
    const Lexed script = lex(gnuplot_script(figure, settings, layout).text);
    check_texts(script, figure, layout);
    const Lexed expected = lex(
        gnuplot_script(with_harmless_texts(figure), settings, with_harmless_texts(layout)).text);
    OVIK_REQUIRE(script.skeleton == expected.skeleton);
    return 0;
}
