#include "plots/json_stream.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "plots/html_text.h"

namespace ovik {
namespace {

TEST(JsonStream, WritesWhatTheTextsTogetherWould) {
    std::string written;
    JsonStream json([&written](std::string_view piece) { written += piece; });
    const std::vector<std::string> texts = {"a", "</script>", "\"&\xFF"};
    json.object({{"n", [](JsonStream& to) { to.value(2.5); }},
                 {"texts", [&](JsonStream& to) { to.list(texts); }},
                 {"none", [](JsonStream& to) { to.list(std::vector<int>()); }},
                 {"lists", [](JsonStream& to) {
                      to.list(std::vector<std::vector<int>>{{1, 2}, {}},
                              [&to](const std::vector<int>& one) { to.list(one); });
                  }}});
    json.end();
    EXPECT_EQ(written,
              json_for_script(json_object({{"n", "2.5"},
                                           {"texts", json_list_of(texts)},
                                           {"none", "[]"},
                                           {"lists", "[[1,2],[]]"}})));
}

TEST(JsonStream, HoldsNoMoreThanAPart) {
    std::vector<std::size_t> sizes;
    JsonStream json([&sizes](std::string_view piece) { sizes.push_back(piece.size()); });
    json.list(std::vector<int>(500'000, 7));
    json.end();
    std::size_t sum = 0;
    for (const std::size_t size : sizes) {
        EXPECT_LT(size, 70'000U);
        sum += size;
    }
    EXPECT_EQ(sum, 1'000'001U);
}

}  // namespace
}  // namespace ovik
