#include <algorithm>
#include <array>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "stats/option_texts.h"

/// Prints what manual page, completion, Python and R package say of the options of a fit: the
/// blocks that scripts/option-texts puts into them. Part of the build, not of what is installed.

namespace ovik::tool {

namespace {

/// An option in words.
struct Described {
    OptionWords words;
    std::string preset;
    /// The defaults as Python and R write them.
    std::string python_preset;
    std::string r_preset;
    /// What each of them takes, behind the sentence.
    std::string range;
    std::string python_range;
    std::string r_range;
    /// What R says that it should be.
    std::string requirement;
    /// What the command's value is called: "COUNT".
    std::string value_name;
    /// What zsh completes.
    std::string completion;
    /// The types of Python: what annotations and what documents say.
    std::string python_type;
    std::string python_kind;
};

/// "30.0" for 30: Python tells real numbers from whole ones.
std::string python_number(double value) {
    const std::string text = plain_number(value);
    return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

std::string python_number(int value) {
    return plain_number(value);
}

std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

/// Texts in quotes, with something between them.
std::string quoted(std::span<const std::string_view> texts, const std::string& between) {
    std::string all;
    for (const std::string_view text : texts) {
        all += (all.empty() ? "" : between) + quoted(text);
    }
    return all;
}

template <typename Number>
Described described(const FitOption<const Number>& option) {
    constexpr bool kIsWhole = std::is_same_v<Number, int>;
    const std::string type = kIsWhole ? "int" : "float";
    const bool may_be_automatic = option.automatic != nullptr;
    const std::string automatic = may_be_automatic ? quoted(kAutomatic) : "";
    const std::string behind = may_be_automatic ? ", or " + automatic : "";
    return {option.words,
            preset_text(preset_text(option), option.words),
            python_number(option.preset),
            preset_text(option),
            ", " + range_text(option),
            ", " + range_text(option.range),
            ", " + range_text(option.range) + behind,
            requirement_text(option.range) + behind,
            kIsWhole ? "COUNT" : "NUMBER",
            kIsWhole ? "count" : "number",
            type + (may_be_automatic ? " | Literal[" + automatic + "]" : ""),
            type + (may_be_automatic ? " or " + automatic : "")};
}

template <typename Kind>
Described described(const FitChoice<const Kind>& option) {
    const bool is_open = !option.open_end.empty();
    const std::string preset = quoted(choice_name(option.preset));
    std::vector<std::string> names;
    for (const std::string_view name : option.givenNames()) {
        names.push_back(quoted(name));
    }
    std::string words;
    for (const std::string_view name : option.givenNames()) {
        words += (words.empty() ? "" : " ") + std::string(name);
    }
    const std::string literal = "Literal[" + quoted(option.givenNames(), ", ") + "]";
    const std::string set = "{" + quoted(option.givenNames(), ", ") + "}";
    if (is_open) {
        names.emplace_back("a matrix of " + std::string(option.open_end));
    }
    const std::string alternatives = alternatives_text(names);
    return {option.words,
            preset_text(option),
            preset,
            preset,
            ": " + requirement_text(option, "FILE"),
            "",
            ": " + alternatives,
            alternatives,
            is_open ? "NAME | FILE" : "NAME",
            is_open ? "start:_files" : "name:(" + words + ")",
            is_open ? literal + " | ArrayLike" : literal,
            is_open ? set + " or array-like of shape (n_samples, n_components)" : set};
}

Described described(const FitList<const NumberList>& option) {
    return {option.words,
            preset_text(option),
            "None",
            "NULL",
            ", separated by commas, " + range_text(option),
            ", " + range_text(option),
            ", " + range_text(option),
            requirement_text(option),
            "NUMBER,...",
            "numbers",
            "Sequence[float] | None",
            "list of float or None"};
}

std::vector<Described> described_options() {
    std::vector<Described> all;
    const FitOptions options;
    visit_fit_options(options, [&all](const auto& option) { all.push_back(described(option)); });
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
        std::printf(".TP\n.BR %s \" \\fI%s\"\n%s%s (%s).\n",
                    names.c_str(),
                    option.value_name.c_str(),
                    text_of(option.words.sentence).c_str(),
                    option.range.c_str(),
                    option.preset.c_str());
    }
}

/// A text within single quotes of a shell.
std::string in_single_quotes(std::string text) {
    for (std::size_t at = 0; (at = text.find('\'', at)) != std::string::npos; at += 4) {
        text.replace(at, 1, "'\\''");
    }
    return text;
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
                    in_single_quotes(text_of(option.words.sentence)).c_str(),
                    option.completion.c_str());
    }
}

/// A parameter of Python that is no number of the fit; its meaning stands beside the estimator.
struct PythonParameter {
    const char* name;
    const char* type;
    const char* preset;
};

constexpr std::array<PythonParameter, 11> kPythonAlone = {{
    {"random_state", "RandomState", "None"},
    {"preset", "Preset", "\"classic\""},
    {"neighbour_graph", "NeighbourGraph", "None"},
    {"callbacks", "Callback | Sequence[Callback] | None", "None"},
    {"callbacks_every_iters", "int", "50"},
    {"on_interrupt", "OnInterrupt", "\"raise\""},
    {"quality", "int | None", "None"},
    {"reliability", "bool", "False"},
    {"seeds", "int", "1"},
    {"n_jobs", "int | None", "-1"},
    {"verbose", "bool", "False"},
}};

void print_python_description(const Described& option) {
    std::printf("    %s : %s, default %s\n        %s%s.\n",
                text_of(option.words.python).c_str(),
                option.python_kind.c_str(),
                option.python_preset.c_str(),
                text_of(option.words.sentence).c_str(),
                option.python_range.c_str());
    if (option.words.name == "learning_rate") {
        std::printf("        \"auto\" is n_samples / the exaggeration of the step, at least %s.\n",
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
                    options[i].python_type.c_str(),
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

/// What R calls an option: as the command does, in snake case.
std::string r_name(const Described& option) {
    std::string name = long_name(option.words);
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

/// The default in R, where perplexity has one of its own.
std::string r_preset(const Described& option) {
    return r_name(option) == "perplexity" ? "30" : option.r_preset;
}

/// Perplexity comes first, as the one option that may be given by its place. Behind the dots stand
/// those that are given by their whole names.
void print_r_parameters(const char* indent) {
    std::printf("%sx,\n", indent);
    const std::vector<Described> options = described_options();
    for (std::size_t i = 0; i < options.size(); ++i) {
        std::printf("%s%s%s = %s,\n",
                    i == 1 ? (std::string(indent) + "...,\n").c_str() : "",
                    indent,
                    r_name(options[i]).c_str(),
                    r_preset(options[i]).c_str());
    }
    std::printf("%spreset = \"classic\",\n", indent);
    std::printf("%slabels = NULL,\n%sthreads = NULL,\n%sverbose = FALSE\n", indent, indent, indent);
}

/// A text as R writes it.
std::string r_string(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        escaped += letter == '"' ? "\\\"" : std::string(1, letter);
    }
    return quoted(escaped);
}

void print_r() {
    std::printf("tsne.matrix <- function(\n");
    print_r_parameters("  ");
    std::printf(") {\n  options <- list(\n");
    const std::vector<Described> options = described_options();
    for (const Described& option : options) {
        std::printf("    %s = %s%s\n",
                    r_name(option).c_str(),
                    r_name(option).c_str(),
                    &option == &options.back() ? "" : ",");
    }
    std::printf(
        "  )\n  refuse_others(...)\n"
        "  embed(x, options, preset, labels, threads, verbose, match.call())\n}\n\n"
        "requirements <- c(\n");
    for (const Described& option : options) {
        std::printf("  %s = %s%s\n",
                    r_name(option).c_str(),
                    r_string(option.requirement).c_str(),
                    &option == &options.back() ? "" : ",");
    }
    std::printf(")\n");
}

void print_r_usage() {
    std::printf("\\method{tsne}{matrix}(\n");
    print_r_parameters("  ");
    std::printf(")\n");
}

void print_r_arguments() {
    for (const Described& option : described_options()) {
        std::printf("\\item{%s}{%s%s.}\n",
                    r_name(option).c_str(),
                    text_of(option.words.sentence).c_str(),
                    option.r_range.c_str());
    }
}

void print_r_document() {
    std::printf("| argument | default | meaning |\n|---|---|---|\n");
    for (const Described& option : described_options()) {
        std::printf("| `%s` | %s | %s%s |\n",
                    r_name(option).c_str(),
                    r_preset(option).c_str(),
                    text_of(option.words.sentence).c_str(),
                    option.r_range.c_str());
    }
}

struct Kind {
    std::string_view name;
    void (*print)();
};

constexpr Kind kKinds[] = {{"manual", print_manual},
                           {"zsh", print_zsh},
                           {"python", print_python},
                           {"r", print_r},
                           {"r-usage", print_r_usage},
                           {"r-arguments", print_r_arguments},
                           {"r-document", print_r_document}};

}  // namespace

}  // namespace ovik::tool

int main(int argc, char** argv) {
    const std::string_view wanted = argc == 2 ? argv[1] : "";
    for (const auto& [name, print] : ovik::tool::kKinds) {
        if (name == wanted) {
            print();
            return 0;
        }
    }
    std::fputs("usage: describe_options manual|zsh|python|r|r-usage|r-arguments|r-document\n",
               stderr);
    return 2;
}
