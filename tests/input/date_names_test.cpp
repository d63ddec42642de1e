#include "input/date_names.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(NameBehindDate, IsTheGeneThatTheSpreadsheetTookForIt) {
    const struct {
        const char* date;
        const char* gene;
    } kCases[] = {
        {"1-Oct", "OCT1"},
        {"01-Oct", "OCT1"},
        {"1-oct", "OCT1"},
        {"1-OCT", "OCT1"},
        {"1-Oct-24", "OCT1"},
        {"01-Oct-2024", "OCT1"},
        {"Oct-01", "OCT1"},
        {"Oct-1", "OCT1"},
        {"24-May", "MAY24"},
        {"2-Sep", "SEP2"},
        {"2024-10-01", "OCT1"},
        {"2024-10-01 00:00:00", "OCT1"},
        {"2024-10-01T00:00:00", "OCT1"},
    };

    for (const auto& [date, gene] : kCases) {
        EXPECT_EQ(name_behind_date(date), gene) << date;
    }
}

TEST(NameBehindDate, IsNoneOfOtherNames) {
    for (const char* const name :
         {"",           "OCT1",    "MAY24",       "YKL134C", "YAL001C-A",   "1-Okt",
          "0-Oct",      "32-Oct",  "100-Oct",     "1-Oct-2", "1-Oct-20245", "1-October",
          "1-Oct-24x",  "Oct-",    "Oct-100",     "-Oct",    "1-",          "2024-13-01",
          "2024-10-32", "2024-10", "2024-10-011", "24-10-01"}) {
        EXPECT_EQ(name_behind_date(name), std::nullopt) << name;
    }
}

TEST(DateNames, AreNamedByPlaceWithWhatTheyMayHaveBeen) {
    EXPECT_EQ(date_names_warning("m.csv", {"TFC3", "1-Oct", "VPS8"}, {2, 3, 4}),
              "m.csv: a name is a date, as spreadsheets make of the names of genes\n"
              "  line 3: \"1-Oct\", which may have been OCT1\n"
              "Set the names right in the file; in a spreadsheet, import their column as text.");
    std::vector<std::string> names = {"1-Oct", "2-Sep", "24-May", "1-Mar"};
    names.insert(names.end(), 5, "TFC3");
    EXPECT_EQ(date_names_warning("m.csv", names, std::vector<std::size_t>(9, 0)),
              "m.csv: 4 names are dates, as spreadsheets make of the names of genes\n"
              "  row 1: \"1-Oct\", which may have been OCT1\n"
              "  row 2: \"2-Sep\", which may have been SEP2\n"
              "  row 3: \"24-May\", which may have been MAY24\n"
              "  ...\n"
              "Set the names right in the file; in a spreadsheet, import their column as text.");
}

TEST(DateNames, AreLeftAloneWhereTheRowsAreDays) {
    EXPECT_EQ(date_names_warning("m.csv", {"1-Oct", "2-Oct", "mean"}, {2, 3, 4}), "");
    EXPECT_EQ(date_names_warning("m.csv", {"1-Oct", "TFC3"}, {2, 3}), "");
    EXPECT_EQ(date_names_warning("m.csv", {"TFC3"}, {2}), "");
}

}  // namespace
}  // namespace ovik
