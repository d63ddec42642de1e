#pragma once

#include <string>

#include "util/input_error.h"

namespace ovik::test {

/// What the user is told by the `InputError` of a call; empty if it throws none.
template <typename Call>
std::string refusal_of(const Call& call) {
    try {
        call();
    } catch (const InputError& error) {
        return error.what();
    }
    return "";
}

}  // namespace ovik::test
