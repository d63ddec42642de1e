#include "util/json_text.h"

#include <limits>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <rapidcheck/gtest.h>

namespace ovik {
namespace {

using nlohmann::json;

TEST(JsonText, WritesValues) {
    EXPECT_EQ(json_text(std::string("a\"\n\xE2\x80\xA8\xFF")), "\"a\\\"\\n\\u2028\\ufffd\"");
    EXPECT_EQ(json_text(-2), "-2");
    EXPECT_EQ(json_text(std::size_t{7}), "7");
    EXPECT_EQ(json_text(true), "true");
    EXPECT_EQ(json_text(0.1), "0.1");
    EXPECT_EQ(json_text(std::numeric_limits<double>::infinity()), "null");
    EXPECT_EQ(json_text(std::numeric_limits<double>::quiet_NaN()), "null");
}

TEST(JsonText, JoinsListsAndObjects) {
    EXPECT_EQ(json_list({}), "[]");
    EXPECT_EQ(json_list({"1", "[]"}), "[1,[]]");
    EXPECT_EQ(json_list_of(std::vector<int>{1, 2}), "[1,2]");
    EXPECT_EQ(json_object({}), "{}");
    EXPECT_EQ(json_object({{"a", "1"}, {"b", "{}"}}), "{\"a\":1,\"b\":{}}");
}

RC_GTEST_PROP(JsonText, NumbersReadAsTheSame, (double number)) {
    RC_ASSERT(json::parse(json_text(number)).get<double>() == number);
}

}  // namespace
}  // namespace ovik
