#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "stats/option_texts.h"

/// Prints what manual page, completion and Python package say of the options of a fit: the blocks
/// that scripts/option-texts puts into them. Part of the build, not of what is installed.

namespace ovik::tool {

namespace {

/// An option in words.
struct Described {
    OptionWords words;
    std::string preset;
    /// The default as Python writes it.
    std::string python_preset;
    std::string range;
    bool is_whole;
};

/// "30.0" for 30: Python tells real numbers from whole ones.
std::string python_number(double value) {
    const std::string text = plain_number(value);
    return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

std::string python_number(int value) {
    return plain_number(value);
}

std::vector<Described> described_options() {
    std::vector<Described> all;
    const FitOptions options;
    visit_fit_options(options, [&all](const auto& option) {
        all.push_back({option.words,
                       plain_number(option.preset),
                       python_number(option.preset),
                       range_text(option.range),
                       std::is_same_v<decltype(option.preset), int>});
    });
    return all;
}

std::string text_of(std::string_view view) {
    return std::string(view);
}

/// "-p" and "--perplexity"; the short form may be missing.
struct Flags {
    std::string short_form;
    std::string long_form;
};

Flags flags_of(const Described& option) {
    const std::string flags(option.words.flags);
    const std::size_t comma = flags.find(',');
    return comma == std::string::npos ? Flags{"", flags}
                                      : Flags{flags.substr(0, comma), flags.substr(comma + 1)};
}

void print_manual() {
    for (const Described& option : described_options()) {
        const auto [short_form, long_form] = flags_of(option);
        std::string names = short_form.empty() ? "" : "\\" + short_form + " \", \" ";
        names += "\\-\\" + long_form.substr(1);
        std::printf(".TP\n.BR %s \" \\fI%s\"\n%s, %s (%s).\n",
                    names.c_str(),
                    option.is_whole ? "COUNT" : "NUMBER",
                    text_of(option.words.sentence).c_str(),
                    option.range.c_str(),
                    preset_text(option.preset, option.words).c_str());
    }
}

void print_zsh() {
    for (const Described& option : described_options()) {
        const auto [short_form, long_form] = flags_of(option);
        std::string names = "'";
        if (!short_form.empty()) {
            names.append("(").append(short_form).append(" ").append(long_form).append(")'{");
            names.append(short_form).append(",").append(long_form).append("}'");
        } else {
            names.append(long_form);
        }
        std::printf("  %s[%s]:%s'\n",
                    names.c_str(),
                    text_of(option.words.sentence).c_str(),
                    option.is_whole ? "count" : "number");
    }
}

/// A parameter of Python that is no number of the fit; its meaning stands beside the estimator.
struct PythonParameter {
    const char* name;
    const char* type;
    const char* preset;
};

constexpr std::array<PythonParameter, 9> kPythonAlone = {{
    {"random_state", "RandomState", "None"},
    {"metric", "Metric", "\"euclidean\""},
    {"init", "Start", "\"random\""},
    {"callbacks", "Callback | Sequence[Callback] | None", "None"},
    {"callbacks_every_iters", "int", "50"},
    {"on_interrupt", "OnInterrupt", "\"raise\""},
    {"quality", "int | None", "None"},
    {"n_jobs", "int | None", "-1"},
    {"verbose", "bool", "False"},
}};

/// Whether Python takes "auto" in the place of a number.
bool is_automatic_in_python(const Described& option) {
    return option.words.python == "learning_rate";
}

std::string python_type(const Described& option) {
    const std::string number = option.is_whole ? "int" : "float";
    return is_automatic_in_python(option) ? number + " | Literal[\"auto\"]" : number;
}

void print_python_description(const Described& option) {
    std::printf("    %s : %s%s, default %s\n        %s, %s.\n",
                text_of(option.words.python).c_str(),
                option.is_whole ? "int" : "float",
                is_automatic_in_python(option) ? " or \"auto\"" : "",
                option.python_preset.c_str(),
                text_of(option.words.sentence).c_str(),
                option.range.c_str());
    if (is_automatic_in_python(option)) {
        std::printf("        \"auto\" is n_samples / exaggeration, at least %s.\n",
                    option.preset.c_str());
    }
}

void print_python() {
    std::vector<Described> options = described_options();
    // `n_components` comes first, as the one parameter that may be given by its place.
    std::stable_partition(options.begin(), options.end(), [](const Described& option) {
        return option.words.python == "n_components";
    });
    std::printf("class FitParameters:\n    \"\"\"The options of a fit as attributes.\"\"\"\n\n");
    std::printf("    def __init__(\n        self,\n");
    for (std::size_t i = 0; i < options.size(); ++i) {
        std::printf("%s        %s: %s = %s,\n",
                    i == 1 ? "        *,\n" : "",
                    text_of(options[i].words.python).c_str(),
                    python_type(options[i]).c_str(),
                    options[i].python_preset.c_str());
    }
    for (const auto& [name, type, preset] : kPythonAlone) {
        std::printf("        %s: %s = %s,\n", name, type, preset);
    }
    std::printf("    ) -> None:\n");
    for (const Described& option : options) {
        const std::string name(option.words.python);
        std::printf("        self.%s = %s\n", name.c_str(), name.c_str());
    }
    for (const auto& [name, type, preset] : kPythonAlone) {
        std::printf("        self.%s = %s\n", name, name);
    }
    std::printf("\n");
    std::printf("    def _fit_options(self) -> dict[str, Any]:\n        return {\n");
    for (const Described& option : options) {
        const std::string name(option.words.python);
        std::printf("            \"%s\": self.%s,\n", name.c_str(), name.c_str());
    }
    std::printf("        }\n\n\nDESCRIPTIONS = \"\"\"\\\n");
    for (const Described& option : options) {
        print_python_description(option);
    }
    std::printf("\"\"\"\n");
}

}  // namespace

}  // namespace ovik::tool

int main(int argc, char** argv) {
    const std::string_view kind = argc == 2 ? argv[1] : "";
    if (kind == "manual") {
        ovik::tool::print_manual();
    } else if (kind == "zsh") {
        ovik::tool::print_zsh();
    } else if (kind == "python") {
        ovik::tool::print_python();
    } else {
        std::fputs("usage: describe_options manual|zsh|python\n", stderr);
        return 2;
    }
    return 0;
}
