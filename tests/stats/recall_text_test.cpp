#include "stats/recall_text.h"

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(RecallText, TellsShareAndRows) {
    EXPECT_EQ(recall_text({0.98712, 1000}), "98.7 % of the nearest, of 1000 rows");
    EXPECT_EQ(recall_text({1.0, 1}), "100.0 % of the nearest, of 1 row");
}

}  // namespace
}  // namespace ovik
