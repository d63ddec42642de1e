#include "util/base64.h"

#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(Base64, IsThatOfTheStandard) {
    const std::pair<const char*, const char*> known[] = {{"", ""},
                                                         {"f", "Zg=="},
                                                         {"fo", "Zm8="},
                                                         {"foo", "Zm9v"},
                                                         {"foob", "Zm9vYg=="},
                                                         {"fooba", "Zm9vYmE="},
                                                         {"foobar", "Zm9vYmFy"}};
    for (const auto& [bytes, text] : known) {
        EXPECT_EQ(base64(bytes), text);
    }
}

TEST(Base64, TakesAnyBytes) {
    EXPECT_EQ(base64(std::string_view("\0\0\0", 3)), "AAAA");
    EXPECT_EQ(base64("\xFB\xFF\xFE"), "+//+");
}

}  // namespace
}  // namespace ovik
