#include "input/systematic_name.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(IsSystematicName, KnowsThoseOfYeast) {
    for (const char* name : {"YAL001C", "YPR204W", "YDL246C-A", "yal001c", "Q0045"}) {
        EXPECT_TRUE(is_systematic_name(name)) << name;
    }
}

TEST(IsSystematicName, KnowsNoOthers) {
    for (const char* name : {"",
                             "CDC28",
                             "YQL001C",
                             "YAX001C",
                             "YAL01C",
                             "YAL001X",
                             "YAL001C-",
                             "YAL001C-AB",
                             "YAL001CA",
                             "Q045",
                             "XAL001C"}) {
        EXPECT_FALSE(is_systematic_name(name)) << name;
    }
}

}  // namespace
}  // namespace ovik
