// The small text helpers.
#include <ZVLib.h>

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>

TEST(Text, BlanksAreStrippedAtBothEnds)
{
    std::pair<std::string, std::string> const rows[] = {
        {"", ""},
        {"a", "a"},
        {" \t ", ""},
        {"  a b  ", "a b"},
        {"\ta\tb\t", "a b"},
        {"a\n ", "a\n"},
        {std::string(70000, ' ') + "x", "x"},
    };
    for (auto [text, result] : rows) {
        StripBlankZV(text.data());
        EXPECT_STREQ(text.c_str(), result.c_str());
    }
    StripBlankZV(nullptr);
}

TEST(Text, NumbersAreTruncatedTo32Bits)
{
    std::pair<double, char const*> const rows[] = {
        {0, "0"},
        {-0.9, "0"},
        {1.99, "1"},
        {-12.5, "-12"},
        {2147483647.0, "2147483647"},
        {-2147483648.0, "-2147483648"},
        {1e30, "2147483647"},
        {-INFINITY, "-2147483648"},
        {std::numeric_limits<double>::quiet_NaN(), "0"},
    };
    for (auto const& [value, text] : rows) {
        char out[12];
        EXPECT_EQ(ItoStr(value, out), static_cast<long>(std::strlen(text)));
        EXPECT_STREQ(out, text);
    }
}

TEST(Text, EntriesOfCommaLists)
{
    struct {
        char const* list;
        long index;
        char const* entry;
    } const rows[] = {{"a,,c", 1, "a"},  {"a,,c", 2, ""},      {"a,,c", 3, "c"},  {"a,,c", 4, ""},
                      {"a,,c", 0, ""},   {"a,,c", -1, ""},     {"a|bc", 2, "bc"}, {"", 1, ""},
                      {"one", 1, "one"}, {" a , b ", 2, " b "}};
    for (auto const& row : rows) {
        char out[32] = "old";
        EXPECT_EQ(strcpycsv(out, row.list, row.index), out);
        EXPECT_STREQ(out, row.entry) << row.list << " " << row.index;
    }
    char out[4];
    EXPECT_EQ(strcpycsv(nullptr, "a", 1), nullptr);
    EXPECT_EQ(strcpycsv(out, nullptr, 1), nullptr);
    EXPECT_EQ(CSV_Entries(nullptr), 0);
    EXPECT_EQ(CSV_Entries(""), 1);
    EXPECT_EQ(CSV_Entries("a|b,c"), 3);
    EXPECT_EQ(CSV_Entries(","), 2);
}

TEST(Text, TheMiddleOfALongTextGoes)
{
    struct {
        char const* text;
        long maxLength;
        char const* result;
    } const rows[] = {
        {"abcdefghijklmnopqrst", 11, "abcd...pqrst"},
        {"abcdefghijklmnopqrst", 20, "abcdefghijklmnopqrst"},
        {"abcdefghijklmnopqrst", 19, "abcdefgh...lmnopqrst"},
        {"abcdefghijklmnopqrst", 4, "...t"},
        {"abcdefghijklmnopqrst", 3, "...t"},
        {"abcdefghijklmnopqrst", 2, "abcdefghijklmnopqrst"},
        {"abcdefghijklmnopqrst", -1000, "abcdefghijklmnopqrst"},
        {"abcde", 4, "...de"},
        {"abc", 2, "abc"},
        {"", 0, ""},
    };
    for (auto const& row : rows) {
        std::string text = row.text;
        EXPECT_EQ(ShortenString(text.data(), row.maxLength), static_cast<long>(std::strlen(row.result)));
        EXPECT_STREQ(text.c_str(), row.result) << row.maxLength;
    }
    EXPECT_EQ(ShortenString(nullptr, 5), 0);
}

TEST(Text, WordsMayStandInQuotes)
{
    struct {
        char const *text, *word, *rest;
    } const rows[] = {
        {"", "", ""},
        {"  \t\n", "", ""},
        {"one two", "one", "two"},
        {"  one", "one", ""},
        {"\t\"two words\" x", "two words", " x"},
        {"\"\"x", "", "x"},
        {"\"no end", "no end", ""},
        {"a\"b c", "a\"b", "c"},
    };
    for (auto const& row : rows) {
        char out[32] = "old";
        EXPECT_STREQ(GetStringWithQuotes(out, row.text), row.rest) << row.text;
        EXPECT_STREQ(out, row.word) << row.text;
    }
}

TEST(Text, LengthPrefixedTextsHold255Bytes)
{
    for (std::size_t length : {0, 1, 200, 255, 256, 400}) {
        std::string const text(length, 'x');
        std::string const kept(std::min<std::size_t>(length, 255), 'x');
        char prefixed[256], back[256], inPlace[512];
        CtoPstrcpy(prefixed, text.c_str());
        EXPECT_EQ(static_cast<unsigned char>(prefixed[0]), kept.size());
        PtoCstrcpy(back, prefixed);
        EXPECT_EQ(back, kept);
        std::strcpy(inPlace, text.c_str());
        CtoPStr(inPlace);
        PtoCStr(inPlace);
        EXPECT_EQ(inPlace, kept);
    }
}

TEST(Text, CharactersAreSteppedUpToTheEnd)
{
    char text[] = "a\303\244";
    EXPECT_EQ(CharSize(text), 1);
    EXPECT_EQ(CharSize(text + 3), 0);
    EXPECT_EQ(GetChar(text + 1), 0xC3u);
    char* cursor = text;
    for (unsigned long expected : {0x61u, 0xC3u, 0xA4u, 0u, 0u})
        EXPECT_EQ(GetCharAdvance(&cursor), expected);
    EXPECT_EQ(cursor, text + 3);
}
