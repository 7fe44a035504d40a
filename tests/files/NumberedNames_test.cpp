// Names counted up and down.
#include "TestEnvironment.h"
#include "files/FileTestTools.h"

#include <gtest/gtest.h>

namespace {

TEST(NumberedNames, ComeApartAndCountOn)
{
    struct {
        char const* spec;
        char delimiter;
        char const *prefix, *up, *down, *suffix;
    } const rows[] = {
        {"shot009.tif", '.', "shot", "010", "008", ".tif"},
        {"shot999.tif", '.', "shot", "1000", "998", ".tif"},
        {"shot000.tif", '.', "shot", "001", "000", ".tif"},
        {"shot1000", '.', "shot", "1001", "0999", ""},
        {"Root:\\dir1\\shot.tif", '.', "shot", "0", "0", ".tif"},
        {"Root:\\dir\\a1b22.c3.tif", '.', "a1b22.c", "4", "2", ".tif"},
        {"007", '.', "", "008", "006", ""},
        {"", '.', "", "0", "0", ""},
        {"a12_b.tif", '_', "a", "13", "11", "_b.tif"},
        {"12a.tif", '.', "12a", "0", "0", ".tif"},
        {"x99999999999999999999.y", '.', "x", "100000000000000000000", "99999999999999999998", ".y"},
        {"x10000000000000000000.y", '.', "x", "10000000000000000001", "09999999999999999999", ".y"},
    };
    for (auto const& row : rows) {
        char number[ZV_SPEC_SIZE], prefix[ZV_SPEC_SIZE], suffix[ZV_SPEC_SIZE];
        EXPECT_EQ(GetFileSpecNextNumber(row.spec, row.delimiter, ZVIncFileSpecUp, number, prefix, suffix),
                  suffix);
        EXPECT_STREQ(number, row.up) << row.spec;
        EXPECT_STREQ(prefix, row.prefix) << row.spec;
        EXPECT_STREQ(suffix, row.suffix) << row.spec;
        GetFileSpecNextNumber(row.spec, row.delimiter, ZVIncFileSpecDown, number, prefix, suffix);
        EXPECT_STREQ(number, row.down) << row.spec;
    }
    EXPECT_EQ(GetFileSpecNextNumber(nullptr, '.', ZVIncFileSpecUp, nullptr, nullptr, nullptr), nullptr);
}

TEST(NumberedNames, CrossAPowerOfTenByTheFilesThatAreThere)
{
    TestEnvironment const environment;
    environment.Write("wide0999.tif", "");
    environment.Write("bare0999.mqd", "");
    std::string const closed = environment.Spec(), open = closed.substr(0, closed.size() - 1);
    struct {
        char const* why;
        char const* spec;
        ZVIncFileSpec direction;
        char const* next;
    } const rows[] = {
        {"no padded file is there", "shot1000.tif", ZVIncFileSpecDown, "shot999.tif"},
        {"one is", "wide1000.tif", ZVIncFileSpecDown, "wide0999.tif"},
        {"without an extension one is looked for with a default", "bare1000", ZVIncFileSpecDown,
         "bare0999.mqd"},
        {"which goes again when it is not there", "shot1000", ZVIncFileSpecDown, "shot999"},
        {"other steps keep their width", "shot0100.tif", ZVIncFileSpecDown, "shot0099.tif"},
        {"ten is a power too", "a10.tif", ZVIncFileSpecDown, "a9.tif"},
        {"one is none", "a1.tif", ZVIncFileSpecDown, "a0.tif"},
        {"zero stays", "shot000.tif", ZVIncFileSpecDown, "shot000.tif"},
        {"up never does it", "shot0998.tif", ZVIncFileSpecUp, "shot0999.tif"},
        {"the directory of the spec is dropped", "Root:\\x\\shot009", ZVIncFileSpecUp, "shot010"},
        {"no digits", "shot.tif", ZVIncFileSpecUp, "shot0.tif"},
    };
    for (auto const& row : rows)
        for (std::string const& directory : {closed, open})
            EXPECT_EQ(Text(ManageIncrementFileSpecZV(row.spec, '.', row.direction, directory.c_str())),
                      row.next)
                << row.why;
    EXPECT_EQ(Text(ManageIncrementFileSpecZV("wide1000.tif", '.', ZVIncFileSpecDown, nullptr)), "wide999.tif")
        << "nowhere to look";
    EXPECT_EQ(ManageIncrementFileSpecZV(nullptr, '.', ZVIncFileSpecUp, nullptr), nullptr);

    // The longest that fits a buffer, and one digit more.
    std::string const nines = "a" + std::string(1022, '9');
    EXPECT_EQ(ManageIncrementFileSpecZV(nines.c_str(), '.', ZVIncFileSpecUp, nullptr), nullptr);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
    EXPECT_EQ(Text(ManageIncrementFileSpecZV(nines.c_str() + 1, '.', ZVIncFileSpecUp, nullptr)),
              "1" + std::string(1022, '0'));
}

}  // namespace
