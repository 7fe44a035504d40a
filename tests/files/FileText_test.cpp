// Numbers, lines and encodings in files.
#include "TestEnvironment.h"
#include "files/FileTestTools.h"

#include <gtest/gtest.h>

#include <cstring>
#include <optional>

namespace {

TEST(FileNumbers, AreBigEndianAndAllOrNothing)
{
    TestEnvironment const environment;
    std::string const spec = environment.Spec("numbers");
    OpenFile file = Create_File(spec);
    EXPECT_TRUE(PutLongZV(file.get(), 0x01020304) && PutLongZV(file.get(), static_cast<uint32_t>(-2)) &&
                PutShortZV(file.get(), 0x8001));
    file.reset();
    std::string block = "\1\2\3\4\xFF\xFF\xFF\xFE\x80\1";
    EXPECT_EQ(Bytes_In_File(environment.Path("numbers")), To_Bytes(block));

    for (OpenFile const& opened : {Open_File(spec), Open_Block(block)}) {
        uint32_t unsignedLong;
        int32_t signedLong;
        int16_t signedShort;
        uint16_t unsignedShort;
        EXPECT_TRUE(GetULongZV(opened.get(), &unsignedLong) && GetLongZV(opened.get(), &signedLong));
        EXPECT_TRUE(GetShortZV(opened.get(), &signedShort));
        EXPECT_FALSE(GetLongZV(opened.get(), &signedLong));
        SeekFileZV(opened.get(), 8, 0);
        EXPECT_TRUE(GetUShortZV(opened.get(), &unsignedShort));
        EXPECT_EQ(unsignedLong, 0x01020304U);
        EXPECT_EQ(signedLong, -2) << "not written on failure";
        EXPECT_EQ(signedShort, -32767);
        EXPECT_EQ(unsignedShort, 0x8001);
        EXPECT_FALSE(GetUShortZV(nullptr, &unsignedShort) || GetShortZV(opened.get(), nullptr));
    }
    std::string small = "abc";
    int32_t untouched = 5;
    EXPECT_FALSE(PutLongZV(Open_Block(small).get(), 1) || GetLongZV(Open_Block(small).get(), &untouched));
    EXPECT_EQ(untouched, 5);
}

std::vector<std::string> Lines(ZVFileInfo* file, long size)
{
    std::vector<std::string> lines;
    std::vector<char> buffer(static_cast<std::size_t>(size));
    while (FGetStringZV(file, buffer.data(), size))
        lines.emplace_back(buffer.data());
    return lines;
}

TEST(FileLines, EndWithAnyOfTheUsualEnds)
{
    TestEnvironment const environment;
    using namespace std::string_literals;
    struct {
        char const* why;
        std::string text;
        std::vector<std::string> lines;
        long size;
    } const rows[] = {
        {"CR LF is one end", "a\r\nb", {"a", "b"}, 80},
        {"LF, CR and NUL", "a\nb\rc\0d"s, {"a", "b", "c", "d"}, 80},
        {"empty lines do not count", "\n\r\n\0\0a\n\n\nb\n\n"s, {"a", "b"}, 80},
        {"only empty lines", "\n\n\r", {}, 80},
        {"an empty file", "", {}, 80},
        {"a long line comes in pieces", "abcdefg\nh", {"abc", "def", "g", "h"}, 4},
        {"a piece leaves its end behind", "abc\ndef\n", {"abc", "def"}, 4},
        {"high bytes are text", "\xE4\xFF\n\xC3\xA4", {"\xE4\xFF", "\xC3\xA4"}, 80},
        {"a line across the end of the buffer",
         std::string(4090, 'x') + "\n12345678\n9",
         {std::string(4090, 'x'), "12345678", "9"},
         5000},
    };
    for (auto const& row : rows) {
        std::string block = row.text;
        EXPECT_EQ(Lines(Open_Block(block).get(), row.size), row.lines) << row.why;
        std::string const spec = environment.Write("lines", row.text);
        for (ZVFilePermission permission : {ZVFilePermRead, ZVFilePermReadWrite, ZVFilePermReadLarge})
            EXPECT_EQ(Lines(Open_File(spec, permission).get(), row.size), row.lines) << row.why;
    }
}

TEST(FileLines, LeaveThePositionBehindTheirEnd)
{
    TestEnvironment const environment;
    OpenFile const file = Open_File(environment.Write("lines", "one\ntwo\n"));
    char line[80];
    SetError(7);
    EXPECT_EQ(FGetStringZV(file.get(), line, 80), line);
    EXPECT_EQ(GetErrorZV(), 0U);
    EXPECT_EQ(Position(file), 4);
    EXPECT_STREQ(FGetStringZV(file.get(), line, 1), "") << "room for no character";
    EXPECT_EQ(Position(file), 4) << "reads nothing";
    EXPECT_FALSE(FGetStringZV(file.get(), line, 0) || FGetStringZV(file.get(), nullptr, 80) ||
                 FGetStringZV(nullptr, line, 80));
}

TEST(FileLines, AreWrittenWithACarriageReturn)
{
    TestEnvironment const environment;
    std::string const longLine(3000, 'x');
    OpenFile file = Create_File(environment.Spec("lines"));
    for (char const* line : {"one", "", longLine.c_str()})
        EXPECT_TRUE(FPutStringZV(file.get(), line));
    EXPECT_FALSE(FPutStringZV(file.get(), nullptr) || FPutStringZV(nullptr, "one"));
    file.reset();
    EXPECT_EQ(Bytes_In_File(environment.Path("lines")), To_Bytes("one\r\r" + longLine + "\r"));

    std::string block = "....";
    EXPECT_FALSE(FPutStringZV(Open_Block(block).get(), "four")) << "no room for the CR";
    EXPECT_EQ(block, "....") << "nothing is half written";
}

struct EncodingCase {
    char const* why;
    std::string text;
    std::optional<std::vector<uint16_t>> units;  ///< none for text that is not UTF-8
};

EncodingCase const encodingCases[] = {
    {"nothing", "", {{}}},
    {"plain", "aZ", {{'a', 'Z'}}},
    {"two bytes", "\xC2\x80\xDF\xBF", {{0x80, 0x7FF}}},
    {"three bytes", "\xE0\xA0\x80\xEF\xBF\xBF", {{0x800, 0xFFFF}}},
    {"around the surrogates", "\xED\x9F\xBF\xEE\x80\x80", {{0xD7FF, 0xE000}}},
    {"pairs",
     "\xF0\x90\x80\x80\xF0\x9D\x84\x9E\xF4\x8F\xBF\xBF",
     {{0xD800, 0xDC00, 0xD834, 0xDD1E, 0xDBFF, 0xDFFF}}},
    {"a lone continuation", "a\x80", {}},
    {"cut short", "a\xE2\x82", {}},
    {"cut short by plain text", "\xE2\x82z", {}},
    {"overlong slash, two bytes", "\xC0\xAF", {}},
    {"overlong, three bytes", "\xE0\x9F\xBF", {}},
    {"overlong, four bytes", "\xF0\x8F\xBF\xBF", {}},
    {"a surrogate", "\xED\xA0\x80", {}},
    {"above the last code point", "\xF4\x90\x80\x80", {}},
    {"no lead byte at all", "\xFF", {}},
};

TEST(TextEncoding, AcceptsWellFormedTextOnly)
{
    for (EncodingCase const& row : encodingCases) {
        char copy[32];
        uint16_t units[32];
        unsigned long count = 99;
        long const result = row.units ? 0 : -108;
        EXPECT_EQ(UTF8ToSystemEncoding(row.text.c_str(), copy, sizeof copy, &count), result) << row.why;
        EXPECT_EQ(count, row.units ? row.text.size() : 0) << row.why;
        EXPECT_EQ(SystemEncodingToUTF8(row.text.c_str(), copy, sizeof copy, nullptr), result) << row.why;
        EXPECT_EQ(std::string(copy), row.units ? row.text : "") << row.why;
        EXPECT_EQ(SystemEncodingToUnicode(row.text.c_str(), units, sizeof units, &count), result) << row.why;
        std::vector<uint16_t> const expected = row.units.value_or(std::vector<uint16_t>{});
        EXPECT_EQ(std::vector<uint16_t>(units, units + count), expected) << row.why;
        EXPECT_EQ(units[count], 0) << row.why;
    }
    EXPECT_EQ(UTF8ToSystemEncoding(nullptr, nullptr, 0, nullptr), -108);
}

TEST(TextEncoding, CutsAtWholeCharacters)
{
    struct {
        char const* why;
        std::string text;
        unsigned long size, bytes, units;
        long bytesResult, unitsResult;
    } const rows[] = {
        {"fits without a closing zero", "abcd", 4, 4, 2, 0, -50},
        {"a character of two bytes", "a\xC3\xA4", 2, 1, 1, -50, -50},
        {"one of three", "a\xE2\x82\xACz", 4, 4, 2, -50, -50},
        {"one of four, a pair of units", "\xF0\x9D\x84\x9E", 3, 0, 0, -50, -50},
        {"the pair fits", "\xF0\x9D\x84\x9E", 4, 4, 2, 0, 0},
        {"what follows a cut is not taken",
         "\xF0\x9D\x84\x9E"
         "a",
         3, 0, 0, -50, -50},
        {"no room at all", "a", 0, 0, 0, -50, -50},
    };
    for (auto const& row : rows) {
        std::string copy(8, '#');
        uint16_t units[4] = {7, 7, 7, 7};
        unsigned long count;
        EXPECT_EQ(SystemEncodingToUTF8(row.text.c_str(), copy.data(), row.size, &count), row.bytesResult)
            << row.why;
        EXPECT_EQ(count, row.bytes) << row.why;
        EXPECT_EQ(copy.substr(0, count), row.text.substr(0, count)) << row.why;
        EXPECT_EQ(copy[row.size], '#') << row.why;
        EXPECT_EQ(SystemEncodingToUnicode(row.text.c_str(), units, row.size, &count), row.unitsResult)
            << row.why;
        EXPECT_EQ(count, row.units) << row.why;
        EXPECT_EQ(units[row.size / 2], 7) << row.why;
    }
}

}  // namespace
