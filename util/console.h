#pragma once

#include <atomic>
#include <cmath>
#include <cstdio>
#include <string>

#include "util/api.h"

/// The console lines of the toolkit.
/// Everything that the user reads on standard output opens with the marker "-- ".

namespace ovik {

/// Whether what this thread would print is held back: see `ConsoleSilence`.
OVIK_API inline thread_local bool console_is_silent = false;

/// While it lives, its thread prints neither console lines nor remarks, and the engine logs
/// nothing. Failures of files, and what ends the process, are told all the same.
class ConsoleSilence {
  public:
    ConsoleSilence() : was_silent_(console_is_silent) { console_is_silent = true; }

    ConsoleSilence(const ConsoleSilence&) = delete;
    ConsoleSilence& operator=(const ConsoleSilence&) = delete;

    ~ConsoleSilence() { console_is_silent = was_silent_; }

  private:
    bool was_silent_;
};

/// What somebody does who keeps a line of his own on the terminal, where others are printed. Throws
/// nothing, and prints nothing by what follows here.
struct PlaceOwner {
    /// Takes his line away, for as long as until `release`.
    void (*clear)();
    void (*release)();
};

/// Null for nobody.
OVIK_API inline std::atomic<const PlaceOwner*> place_owner = nullptr;

/// How many columns of the cursor's line on standard output are in use, as far as these functions
/// printed them: those of the progress bar, which leaves the cursor behind it.
OVIK_API inline std::atomic<unsigned> columns_in_use = 0;

/// While it lives, nobody's line stands where something is printed.
class ClearedPlace {
  public:
    ClearedPlace() : owner_(place_owner.load()) {
        if (owner_ != nullptr) {
            owner_->clear();
        }
    }

    ClearedPlace(const ClearedPlace&) = delete;
    ClearedPlace& operator=(const ClearedPlace&) = delete;

    ~ClearedPlace() {
        if (owner_ != nullptr) {
            // What was printed is there before the line comes back.
            std::fflush(stdout);
            owner_->release();
        }
    }

  private:
    const PlaceOwner* owner_;
};

/// Prints a remark on standard error, as it stands.
static inline void print_remark(const char* text) {
    if (!console_is_silent) {
        const ClearedPlace place;
        std::fputs(text, stderr);
    }
}

/// Prints "-- " and one message, then the end character. Does not flush but where somebody's line
/// is to come back.
///
/// @param message  the text, printed up to its first NUL
/// @param colour   1 red, 2 green, 3 yellow, 4 blue; others print without escape sequences
/// @param end      written last; a blank leaves the cursor on the line
/// @return what `putchar` returned for `end`; `end` if it is held back
static inline int print_text(std::string message, int colour = -1, char end = '\n') {
    if (console_is_silent) {
        return static_cast<unsigned char>(end);
    }
    const ClearedPlace place;
    if (colour >= 1 && colour <= 4) {
        std::printf("-- \x1b[%dm%s\x1b[0m", 30 + colour, message.c_str());
    } else {
        std::printf("-- %s", message.c_str());
    }
    return std::putchar(end);
}

/// Prints one informational message: `print_text` without colour.
///
/// The unnamed argument is reserved; every value prints plainly.
static inline void print_info(std::string message, int /*reserved*/ = -1, char end = '\n') {
    print_text(message, -1, end);
}

/// Prints, in bold red, that an operation on a file failed, and names the file.
///
/// @param failure  the sentence up to the path, such as "I cannot open file"
static inline void print_file_error(const char* failure, const std::string& path) {
    const ClearedPlace place;
    std::printf("\n-- \033[1;31m");
    std::printf("Error: %s: %s\n", failure, path.c_str());
    std::puts("\033[0m");
}

/// Redraws the one-line progress bar in place; the caller ends the line after the last call.
///
/// The bar is 27 characters wide. The fraction is computed in `T`. A `total` of 0 has no fraction:
/// the bar is then empty and the percentage no number.
///
/// @param message  drawn before the counter
/// @param current  steps done
/// @param total    steps in all
/// @param unit     drawn behind the counter when not empty
///
/// The two unnamed arguments are reserved: the width and the factor 100 of the percentage are
/// fixed.
template <typename T>
static inline void progress_bar(std::string message,
                                int current,
                                int total,
                                std::string unit,
                                T /*reserved*/ = T(),
                                int /*reserved*/ = 0) {
    if (console_is_silent) {
        return;
    }
    const ClearedPlace place;
    static const std::string progress_bar_ = "===========================";
    std::fflush(stdout);
    const int width = static_cast<int>(progress_bar_.size());
    const T fraction = static_cast<T>(static_cast<double>(current) / static_cast<double>(total));
    const T filled_width = fraction * static_cast<T>(width);
    // No int holds a NaN or an infinity; what the processor makes of them is a bar of two billion
    // blanks.
    const int filled = std::isfinite(filled_width) ? static_cast<int>(filled_width) : 0;
    const int empty = width - filled;
    const double percent = static_cast<double>(fraction * static_cast<T>(100));
    int printed = 0;
    if (unit.empty()) {
        printed = std::printf("\r-- %s (%d/%d) [%.*s%*s] %.2f%% completed ",
                              message.c_str(),
                              current,
                              total,
                              filled,
                              progress_bar_.c_str(),
                              empty,
                              "",
                              percent);
    } else {
        printed = std::printf("\r-- %s (%d/%d %s) [%.*s%*s] %.2f%% completed ",
                              message.c_str(),
                              current,
                              total,
                              unit.c_str(),
                              filled,
                              progress_bar_.c_str(),
                              empty,
                              "",
                              percent);
    }
    // Without the return to the start of the line.
    columns_in_use = printed > 1 ? static_cast<unsigned>(printed) - 1U : 0U;
    std::fflush(stdout);
}

/// Ends the line of the progress bar, after its last call.
static inline void end_progress_bar() {
    if (!console_is_silent) {
        const ClearedPlace place;
        columns_in_use = 0;
        std::putchar('\n');
    }
}

}  // namespace ovik
