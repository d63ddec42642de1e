#include "tools/options.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/fuzz/support/input_lines.h"
#include "tests/fuzz/support/require.h"

/// The command line: an input is one argument per line. Whatever they are, it is either understood,
/// with values within their ranges that were given so, or explained.

namespace ovik::tool {
namespace {

/// Takes what a stream prints for a scope.
class Capture {
  public:
    explicit Capture(std::ostream& stream)
        : stream_(stream),
          before_(stream.rdbuf(text_.rdbuf())) {}

    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    ~Capture() { stream_.rdbuf(before_); }

    [[nodiscard]] std::string text() const { return text_.str(); }

  private:
    std::ostream& stream_;
    std::ostringstream text_;
    std::streambuf* before_;
};

/// Whether a number is a default, or stands as a decimal number at the end of an argument.
bool was_given(double value, double normal, const std::vector<std::string>& arguments) {
    return value == normal ||
           std::any_of(arguments.begin(), arguments.end(), [value](const std::string& argument) {
               for (const char* at = argument.c_str(); *at != '\0'; ++at) {
                   char* end = nullptr;
                   if (std::strtod(at, &end) == value && *end == '\0') {
                       return true;
                   }
               }
               return false;
           });
}

void check_options(const Options& options, const std::vector<std::string>& arguments) {
    OVIK_REQUIRE(!options.matrix.empty() || !options.gene.empty());
    OVIK_REQUIRE(options.out_dir.ends_with('/'));
    OVIK_REQUIRE(options.name.find('/') == std::string::npos);
    OVIK_REQUIRE(options.suffix.find('/') == std::string::npos);
    OVIK_REQUIRE(!options.title.empty() || options.name.empty());
    for (const double perplexity : options.perplexities) {
        OVIK_REQUIRE(perplexity >= 1.0 && perplexity <= 1e9);
    }
    if (options.perplexities.size() == 1) {
        OVIK_REQUIRE(was_given(options.perplexities.front(), 0.0, arguments));
    }
    OVIK_REQUIRE(options.fit.theta >= 0.0 && std::isfinite(options.fit.theta));
    OVIK_REQUIRE(was_given(options.fit.theta, 0.5, arguments));
    OVIK_REQUIRE(options.fit.out_dims >= 2 && options.fit.out_dims <= 50);
    OVIK_REQUIRE(was_given(options.fit.out_dims, 2, arguments));
    OVIK_REQUIRE(options.fit.max_iter >= 1 && options.fit.max_iter <= 1000000000);
    OVIK_REQUIRE(was_given(options.fit.max_iter, 1000, arguments));
    OVIK_REQUIRE(options.fit.stop_lying_iter >= 0);
    OVIK_REQUIRE(was_given(options.fit.stop_lying_iter, 250, arguments));
    OVIK_REQUIRE(options.fit.mom_switch_iter >= 0);
    OVIK_REQUIRE(was_given(options.fit.mom_switch_iter, 250, arguments));
    OVIK_REQUIRE(options.threads >= 0 && options.threads <= 1000000);
    OVIK_REQUIRE(was_given(options.threads, 0, arguments));
    OVIK_REQUIRE(options.checkpoint_every >= 1 && options.checkpoint_every <= 1000000000);
    OVIK_REQUIRE(was_given(options.checkpoint_every, 50, arguments));
    OVIK_REQUIRE(options.checkpoint_every == 50 || !options.checkpoint.empty());
    if (options.load.delimiter) {
        OVIK_REQUIRE(*options.load.delimiter != '\n' && *options.load.delimiter != '\r');
    }
    OVIK_REQUIRE(options.precision == Precision::Double || options.precision == Precision::Float);
}

void check_command_line(const std::vector<std::string>& arguments) {
    std::vector<const char*> argv = {"ovik-tsne"};
    for (const std::string& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    const Capture out(std::cout);
    const Capture err(std::cerr);
    const ParsedCommand command = parse_command_line(static_cast<int>(argv.size()), argv.data());
    if (!command.exit_status) {
        OVIK_REQUIRE(out.text().empty() && err.text().empty());
        check_options(command.options, arguments);
    } else if (*command.exit_status == 0) {
        OVIK_REQUIRE(out.text().find("ovik-tsne") != std::string::npos && err.text().empty());
    } else {
        OVIK_REQUIRE(*command.exit_status == 2);
        OVIK_REQUIRE(out.text().empty());
        OVIK_REQUIRE(err.text().starts_with("ovik-tsne: "));
        OVIK_REQUIRE(err.text().ends_with("\nRun with --help for the options.\n"));
    }
}

}  // namespace
}  // namespace ovik::tool

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kMostArguments = 24;
    ovik::test::InputLines input(data, size);
    std::vector<std::string> arguments;
    while (!input.isAtEnd() && arguments.size() < kMostArguments) {
        // An argument ends at its first NUL.
        arguments.emplace_back(input.text().c_str());
    }
    ovik::tool::check_command_line(arguments);
    return 0;
}
