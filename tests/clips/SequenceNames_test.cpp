// Names of image sequences, and the files behind them.
#include "TestEnvironment.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <random>
#include <regex>
#include <string>
#include <vector>

namespace {

using Change = std::function<long(char*)>;

/// The name after a change, with a mark ahead of it when the answer was 0.
std::string Changed(std::string const& name, Change const& change)
{
    char buffer[ZV_SPEC_SIZE];
    std::strcpy(buffer, name.c_str());
    bool const isDone = change(buffer);
    return isDone ? buffer : std::string("0 ") + buffer;
}

void Expect_Changes(Change const& change, std::vector<std::pair<char const*, char const*>> const& cases)
{
    for (auto const& [name, result] : cases)
        EXPECT_EQ(Changed(name, change), result) << name;
}

TEST(SequenceNames, TheLastNumberBecomesAMask)
{
    Expect_Changes(FileNameToSequenceNameZV, {{"shot0012.tif", "shot[####].tif"},
                                              {"a1b2.tif", "a1b[#].tif"},
                                              {"clip.mp4", "clip.mp[#]"},
                                              {"1234567890123.tif", "1234[#########].tif"},
                                              {"7", "[#]"},
                                              {"shot.tif", "0 shot.tif"},
                                              {"", "0 "},
                                              {"Root:\\reel1\\shot.tif", "0 Root:\\reel1\\shot.tif"},
                                              {"Root:\\reel1\\shot12.tif", "Root:\\reel1\\shot[##].tif"}});
    Expect_Changes(EndNumberFileNameToSequenceZV, {{"shot12a.tif", "0 shot12a.tif"},
                                                   {"shot12.tif", "shot[##].tif"},
                                                   {"shot[##].tif", "0 shot[##].tif"},
                                                   {"shot[]12.tif", "shot[][##].tif"},
                                                   {"shot12", "shot[##]"},
                                                   {".tif", "0 .tif"}});
}

TEST(SequenceNames, AMaskIsABracketedRunOfHashes)
{
    struct {
        char const* name;
        long isMask, digits, number;
    } const cases[] = {
        {"shot[####].tif", 1, 4, 0},
        {"a[].tif", 1, 0, 0},
        {"a[x][##].tif", 1, 2, 0},
        {"a[##.tif", 0, 0, 0},
        {"a[##x].tif", 0, 0, 0},
        {"a12b007.tif", 0, 0, 7},
        {"[[#]", 1, 1, 0},
        {"1234567890123", 0, 0, 567890123},
        {"Root:\\a[##]\\b.tif", 0, 0, 0},
    };
    for (auto const& row : cases) {
        EXPECT_EQ(IsSequenceZV(row.name), row.isMask) << row.name;
        EXPECT_EQ(SequenceDigitsZV(row.name), row.digits) << row.name;
        EXPECT_EQ(NameToSequenceNumberZV(row.name), row.number) << row.name;
    }
}

TEST(SequenceNames, MasksOfOneSequenceCompareEqual)
{
    EXPECT_EQ(SequenceCmpZV("shot[##].tif", "SHOT[####].TIF"), 0);
    EXPECT_EQ(SequenceCmpZV("shot[].tif", "shot[####].tif"), 0);
    EXPECT_LT(SequenceCmpZV("a[#].tif", "b[#].tif"), 0);
    EXPECT_GT(SequenceCmpZV("a[#].tiff", "a[#].tif"), 0);
    EXPECT_EQ(SequenceCmpZV("a", "aB"), -'B');
}

TEST(SequenceNames, NumberingGoesAndMovesBehindAnUnderscore)
{
    Expect_Changes(
        RemoveSequenceNumberingZV,
        {{"a_[##].tif", "a.tif"}, {"a[##].tif", "a.tif"}, {"[##].tif", ".tif"}, {"a_.tif", "0 a_.tif"}});
    Expect_Changes(SwitchToUnderScoreFormat,
                   {{"a[##].tif", "a_[##].tif"}, {"a_[##].tif", "a_[##].tif"}, {"a.tif", "0 a.tif"}});
    Expect_Changes([](char* name) { return SetIncNumberOnUnderScoreFormat(name, 3); },
                   {{"a_[##].tif", "a3_[##].tif"},
                    {"a[##].tif", "0 a[##].tif"},
                    {"_[##].tif", "0 _[##].tif"},
                    {"a_[].tif", "0 a_[].tif"}});
    EXPECT_TRUE(IsFileNameEndedBy("shot_.tif", '_'));
    for (char const* other : {"shot_x.tif", "shot_", ".tif"})
        EXPECT_FALSE(IsFileNameEndedBy(other, '_')) << other;
}

TEST(SequenceNames, ANumberIsRenderedIntoTheMask)
{
    struct {
        char const* name;
        long number, shrink;
        char const* result;
    } const cases[] = {
        {"a[##].tif", 5, 0, "a05.tif"},
        {"a[##].tif", 5, 1, "a5.tif"},
        {"a[##].tif", 123, 0, "a123.tif"},
        {"a[].tif", 5, 0, "a5.tif"},
        {"a.tif", 5, 0, "a0005.tif"},
        {"a.tif", 123456, 0, "a123456.tif"},
        {"a", 5, 0, "a0005"},
        {"a[##.tif", 5, 0, "a[##0005.tif"},
        {"a.b[#].c", 12, 0, "a.b12.c"},
        {"Root:\\x.y\\a", 5, 0, "Root:\\x.y\\a0005"},
    };
    for (auto const& row : cases)
        EXPECT_EQ(Changed(row.name,
                          [&](char* name) { return SequenceNumberToNameZV(name, row.number, row.shrink); }),
                  row.result);
}

/// Names of all sorts against regular expressions for the number and the mask.
TEST(SequenceNames, AnyNameIsTakenApartLikeByItsGrammar)
{
    std::regex const number("(.*?)([0-9]{1,9})([^0-9]*)"), mask("\\[(#*)\\]"), numbering("_?\\[#*\\]");
    constexpr std::string_view pieces[] = {"a",  "_",   ".",  "[", "]",    "#",
                                           "##", "[#]", "[]", "7", "0042", "19"};
    std::mt19937 random(11);
    for (int i = 0; i < 5000; ++i) {
        std::string name;
        for (auto n = random() % 8; n > 0; --n)
            name += pieces[random() % std::size(pieces)];
        std::smatch parts;
        bool const hasNumber = std::regex_match(name, parts, number);
        std::string const masked =
            hasNumber ? parts.str(1) + "[" + std::string(parts.str(2).size(), '#') + "]" + parts.str(3)
                      : "0 " + name;
        long const value = hasNumber ? std::stol(parts.str(2)) : 0;
        EXPECT_EQ(Changed(name, FileNameToSequenceNameZV), masked) << name;
        EXPECT_EQ(NameToSequenceNumberZV(name.c_str()), value) << name;

        bool const isMask = std::regex_search(name, parts, mask);
        std::string const digits = isMask ? parts.str(1) : "";
        EXPECT_EQ(IsSequenceZV(name.c_str()), isMask) << name;
        EXPECT_EQ(SequenceDigitsZV(name.c_str()), std::ssize(digits)) << name;
        EXPECT_EQ(Changed(name, RemoveSequenceNumberingZV),
                  isMask ? std::regex_replace(name, numbering, "", std::regex_constants::format_first_only)
                         : "0 " + name)
            << name;
        if (!isMask) continue;
        std::string written = std::to_string(value);
        if (written.size() < digits.size()) written.insert(0, digits.size() - written.size(), '0');
        EXPECT_EQ(Changed(name, [=](char* text) { return SequenceNumberToNameZV(text, value, 0); }),
                  parts.prefix().str() + written + parts.suffix().str())
            << name;
    }
}

TEST(SequenceNames, ANameThatDoesNotFitStaysAsItWas)
{
    TestEnvironment environment;
    std::string const full = std::string(ZV_SPEC_SIZE - 3, 'a') + "1";
    EXPECT_EQ(Changed(full, FileNameToSequenceNameZV), "0 " + full);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
    std::string const plain(ZV_SPEC_SIZE - 2, 'a');
    EXPECT_EQ(Changed(plain, [](char* name) { return SequenceNumberToNameZV(name, 5, 0); }), "0 " + plain);

    // A mask is as wide as it likes; its number fills it.
    std::string const wide = "a[" + std::string(1000, '#') + "]";
    EXPECT_EQ(Changed(wide, [](char* name) { return SequenceNumberToNameZV(name, 5, 0); }),
              "a" + std::string(999, '0') + "5");
}

class SequenceFiles : public EnvironmentTest {
protected:
    /// File name of what a mask resolves to; empty when it does not.
    std::string Resolve(std::string const& mask, long number)
    {
        char path[ZV_SPEC_SIZE];
        std::strcpy(path, environment.Spec(mask).c_str());
        if (!SequenceNumberToNameValidateZV(path, number)) {
            EXPECT_EQ(path, environment.Spec(mask)) << "a failure leaves the path alone";
            return "";
        }
        char name[ZV_SPEC_SIZE];
        return GetFileNameZV(path, name);
    }
    void Write_All(std::vector<std::string> const& names)
    {
        for (std::string const& name : names)
            environment.Write(name, "x");
    }
};

TEST_F(SequenceFiles, ANumberFindsItsFileAtAnyWidth)
{
    Write_All({"s1.tif", "s2.tif", "s10.tif", "s007.tif", "T05.TIF", "plain.tif"});
    struct {
        char const* mask;
        long number;
        char const* file;
    } const cases[] = {
        {"s[##].tif", 1, "s1.tif"},    {"s[##].tif", 10, "s10.tif"},
        {"s[###].tif", 7, "s007.tif"}, {"s[##].tif", 7, ""},         // wider than the mask
        {"s[##].tif", 3, ""},          {"t[##].tif", 5, "T05.TIF"},  // case does not count
        {"plain.tif", 0, ""},          {"s[].tif", 1, ""},
    };
    for (auto const& row : cases)
        EXPECT_EQ(Resolve(row.mask, row.number), row.file) << row.mask << ' ' << row.number;
}

TEST_F(SequenceFiles, AFileWhoseSpecDoesNotFitIsNotFound)
{
    // The mask fits a spec, the name with its seven digits does not.
    std::string directory(1013 - environment.Spec().size(), 'd');
    for (std::size_t i = 200; i < directory.size() - 2; i += 200)
        directory[i] = '/';
    directory.back() = '/';
    environment.Write(directory + "S1234567.TIF", "x");
    EXPECT_EQ(Resolve(directory + "s[#].tif", 1234567), "");
}

TEST_F(SequenceFiles, ASequenceIsValidWhenEachNumberHasAFile)
{
    Write_All(
        {"s1.tif", "S02.TIF", "s10.tif", "s010.tif", "other3.tif", "z0.tif", "z1.tif", "z2.tif", "z4.tif"});
    environment.Make_Directory("z3.tif");
    struct {
        char const* why;
        char const* mask;
        std::vector<long> numbers;
        long isValid;
    } const cases[] = {
        {"all there, of any width and case", "s[##].tif", {2, 1, 10}, 1},
        {"one is missing", "s[##].tif", {1, 2, 3}, 0},
        {"a number twice needs two files", "s[##].tif", {10, 10}, 1},
        {"and here is one", "s[##].tif", {1, 1}, 0},
        {"the mask counts", "other[#].tif", {1}, 0},
    };
    for (auto const& row : cases)
        EXPECT_EQ(IsSequenceValidZV(environment.Spec(row.mask).c_str(), row.numbers.data(),
                                    static_cast<long>(row.numbers.size())),
                  row.isValid)
            << row.why;
    // Counted from 0: number 3 is a directory. A count beyond all files costs nothing.
    std::string const plain = environment.Spec("z[#].tif");
    for (auto const& [count, isValid] : {std::pair{3L, 1L}, {4L, 0L}, {0L, 0L}, {1L << 60, 0L}}) {
        EXPECT_EQ(IsSequenceValidZV(plain.c_str(), nullptr, count), isValid) << count;
        EXPECT_EQ(IsSequenceDataValidZV(plain.c_str(), nullptr, count), count == 0 || isValid) << count;
    }
}

TEST_F(SequenceFiles, AnOutputFrameIsNamedByStartAndStep)
{
    ZVClip* clip = NewClipZV();
    char name[ZV_SPEC_SIZE];
    FrameNumberToNameZV(name, 3, clip);
    EXPECT_STREQ(name, "") << "no name yet";
    clip->FileName = CopyFileSpecZV("Root:\\out\\a[##].tif");
    clip->SequenceStart = 100;
    clip->SequenceStep = 5;
    FrameNumberToNameZV(name, 3, clip);
    EXPECT_STREQ(name, "Root:\\out\\a115.tif");
    FreeClipZV(clip);
}

/// What the writer puts out for each position in the cadence, counted here, must fill the output without a
/// gap.
TEST_F(SequenceFiles, OutputUnderPullDownHasNoGaps)
{
    ZVClip* clip = NewClipZV();
    for (uint8_t pullDown = 1; pullDown <= 5; ++pullDown) {
        clip->PullDown = pullDown;
        long next = -1;
        for (long frame = 0; frame < 40; ++frame) {
            long const isFirst = frame == 0;
            long position, number;
            ASSERT_EQ(FrameNumberToSequenceNumberZV(&position, &number, frame, isFirst, clip), 1);
            ASSERT_TRUE(position >= 0 && position <= 3);
            bool const isSilent = isFirst && (position == 1 || (position == 0 && pullDown != 3));
            if (isSilent) continue;
            if (next >= 0) {
                EXPECT_EQ(number, next) << "phase " << int{pullDown} << ", frame " << frame;
            }
            next = number + (position == 2 && !isFirst ? 2 : 1);
        }
    }
    clip->PullDown = 0;
    long position, number;
    FrameNumberToSequenceNumberZV(&position, &number, 17, 0, clip);
    EXPECT_EQ(position, 3);
    EXPECT_EQ(number, 17);
    FreeClipZV(clip);
}

}  // namespace
