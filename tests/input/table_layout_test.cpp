#include "input/table_layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::ElementsAre;

TEST(TableLayout, IsOneOfNamesAndValuesAsItIsMade) {
    const TableLayout layout;
    EXPECT_TRUE(layout.isOrdinary());
    EXPECT_FALSE(layout.isValue(0));
    EXPECT_TRUE(layout.isValue(1));
    EXPECT_EQ(layout.valuesAmong(0), 0U);
    EXPECT_EQ(layout.valuesAmong(3), 2U);
    EXPECT_THAT(layout.valueFields(2), ElementsAre(1U, 2U));
}

TEST(TableLayout, LeavesFieldsOut) {
    TableLayout layout;
    layout.names_field = 1;
    layout.leaveOut(3);
    EXPECT_FALSE(layout.isOrdinary());
    EXPECT_TRUE(layout.isValue(0));
    EXPECT_FALSE(layout.isValue(1));
    EXPECT_FALSE(layout.isValue(3));
    EXPECT_EQ(layout.valuesAmong(4), 2U);
    EXPECT_THAT(layout.valueFields(3), ElementsAre(0U, 2U, 4U));
}

TEST(TableLayout, WithoutNamesHasValuesAlone) {
    TableLayout layout;
    layout.names_field.reset();
    EXPECT_FALSE(layout.isOrdinary());
    EXPECT_EQ(layout.valuesAmong(2), 2U);
}

TEST(TableLayout, CallsFieldsByHeaderAndNumber) {
    TableLayout layout;
    layout.header = {"gene", ""};
    EXPECT_EQ(layout.fieldText(0), "column \"gene\" (field 1)");
    EXPECT_EQ(layout.fieldText(1), "field 2");
    EXPECT_EQ(layout.fieldText(2), "field 3");
}

TEST(ColumnHandle, IsTheHeaderIfThatIsNoOtherColumn) {
    const std::vector<std::string> header = {"gene", "", "2", "a", " a", "b,c", "#4", "d", "0.5"};
    const std::vector<std::string> handles = {
        "gene", "#2", "#3", "#4", "#5", "#6", "#7", "d", "0.5", "#10"};
    for (std::size_t field = 0; field < handles.size(); ++field) {
        EXPECT_EQ(column_handle(header, field), handles[field]);
    }
}

}  // namespace
}  // namespace ovik
