#pragma once

#include <string_view>

/// Files of this directory, which the build makes strings of.

namespace ovik::golden {

/// Every 22nd row of the chemostat matrix, with a header and names.
std::string_view chemostat_text();

/// Every 24th row of the time courses, a hundred.
std::string_view timecourses_text();

/// What each part is to come to: a line each, with part, stage and digest between tabs.
std::string_view digests_text();

/// The same of parts that several processes share.
std::string_view rank_digests_text();

}  // namespace ovik::golden
