#pragma once

#include <string>

#include "util/api.h"

namespace ovik {

/// How a language writes arguments of a call.
struct ArgumentSyntax {
    /// Between name and value.
    const char* assigns;
    const char* is_true;
    const char* is_false;
    const char* list_begin;
    const char* list_end;
    /// Whether a list of one is written as the one.
    bool single_is_list;
};

/// Writes an option of the command as the argument of `read_matrix` that it is in another language,
/// for `LoadOptions::spell`: `--no-header` as `header=False`, `--skip-columns a,b` as
/// `skip_columns = c("a", "b")`.
OVIK_API std::string spelled_as_argument(const std::string& option,
                                         const std::string& value,
                                         const ArgumentSyntax& syntax);

}  // namespace ovik
