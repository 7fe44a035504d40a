// The scan for the other files of a numbered series, and reading the clip that it makes.
#include "clips/ClipFixture.h"

#include <ctime>
#include <random>
#include <set>

namespace {

/// What a scan leaves in the clip.
struct Found {
    std::string name;  ///< file part of FileName
    long frames;
    std::vector<long> numbers;  ///< empty without a table
    bool operator==(Found const&) const = default;
};

void PrintTo(Found const& found, std::ostream* out)
{
    *out << found.name << ", " << found.frames << " frames:" << testing::PrintToString(found.numbers);
}

class Sequence : public ClipTest {
protected:
    void Write_All(std::vector<std::string> const& names)
    {
        for (std::string const& name : names)
            environment.Write(name, name);
    }

    /// The scan over a clip that points at this file.
    Found Scan(std::string const& name, unsigned long tag = ZV_OPEN_NO_SEQUENCE_DIALOG)
    {
        ZVClip* const scanned = NewClipZV();
        scanned->FileName = CopyFileSpecZV(environment.Spec(name).c_str());
        scanned->RawFrames = 1;
        TagItem tags[] = {{tag, 0}, {}};
        EXPECT_EQ(SequenceCheckZV(scanned, tags), 1);
        EXPECT_EQ(scanned->SequenceStart, 0);
        EXPECT_EQ(scanned->SequenceStep, 1);
        char text[ZV_SPEC_SIZE];
        Found found{GetFileNameZV(scanned->FileName, text), scanned->RawFrames, {}};
        EXPECT_EQ(scanned->FileName, environment.Spec(name.substr(0, name.rfind('\\') + 1) + found.name));
        if (scanned->SequenceNumbers)
            found.numbers.assign(scanned->SequenceNumbers, scanned->SequenceNumbers + scanned->RawFrames);
        FreeClipZV(scanned);
        return found;
    }
};

TEST_F(Sequence, AFileBringsTheOthersOfItsSeries)
{
    struct {
        char const* why;
        std::vector<std::string> files;  ///< in a directory of their own; the clip points at the first one
        Found found;
    } const cases[] = {
        {"widths differ: the mask has room for the largest number",
         {"s1.tif", "s2.tif", "s10.tif"},
         {"s[##].tif", 3, {1, 2, 10}}},
        {"the mask is as wide as the file that was picked, or wider",
         {"s010.tif", "s2.tif"},
         {"s[###].tif", 2, {2, 10}}},
        {"counted from 0 without a gap, so frame i is file i",
         {"s2.tif", "s0.tif", "s1.tif"},
         {"s[#].tif", 3, {}}},
        {"a gap", {"s0.tif", "s1.tif", "s3.tif"}, {"s[#].tif", 3, {0, 1, 3}}},
        {"one number in two widths", {"s0.tif", "s00.tif"}, {"s[##].tif", 2, {0, 0}}},
        {"one file alone", {"s5.tif"}, {"s5.tif", 1, {}}},
        {"one file alone among others", {"s5.tif", "t6.tif", "s.tif", "s7.png"}, {"s5.tif", 1, {}}},
        {"no number", {"shot.tif", "shot1.tif", "shot2.tif"}, {"shot.tif", 1, {}}},
        {"case does not count", {"s1.tif", "S2.TIF", "s03.Tif"}, {"s[##].tif", 3, {1, 2, 3}}},
        {"the underscore is part of the name", {"s_1.tif", "s_2.tif", "s3.tif"}, {"s_[#].tif", 2, {1, 2}}},
        {"the number is the last one of the name", {"r1s7.mp4", "r1s7.mp5"}, {"r1s7.mp[#]", 2, {4, 5}}},
        {"another number ahead of it is another series", {"r1s7.tif", "r2s8.tif"}, {"r1s7.tif", 1, {}}},
        {"nine digits at most",
         {"1234567890123.t", "1234567890124.t"},
         {"1234[#########].t", 2, {567890123, 567890124}}},
        {"brackets of the name's own stay as they are",
         {"a[b]1.tif", "a[b]10.tif"},
         {"a[b][##].tif", 2, {1, 10}}},
        {"directories are no frames, and their files are not",
         {"s1.tif", "s2.tif", "s3.tif/s5.tif"},
         {"s[#].tif", 2, {1, 2}}},
        {"a name with a mask of its own cannot be masked", {"a[]1.tif", "a[]2.tif"}, {"a[]1.tif", 1, {}}},
    };
    int directory = 0;
    for (auto const& row : cases) {
        std::string const folder = "case" + std::to_string(directory++);
        for (std::string const& file : row.files)
            environment.Write(folder + "/" + file, "x");
        EXPECT_EQ(Scan(folder + "\\" + row.files.front()), row.found) << row.why;
    }
    EXPECT_EQ(Scan("case0\\s2.tif", ZV_OPEN_SINGLE_FRAME), (Found{"s2.tif", 1, {}})) << "without a scan";
    EXPECT_EQ(Scan("gone5.tif"), (Found{"gone[#].tif", 0, {}})) << "all files are gone";
}

/// Series with gaps and numbers of several widths, beside files of other series that are much alike.
TEST_F(Sequence, ASeriesAmongOthersIsFoundWhole)
{
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        std::string const folder = "round" + std::to_string(round) + "r";
        std::string const stem = random() % 2 ? "shot_" : "Shot";
        std::vector<long> numbers;
        std::set<std::string> names;
        std::size_t widest = 0;
        for (auto i = 2 + random() % 30; i > 0; --i) {
            long const number = static_cast<long>(random() % (random() % 2 ? 20 : 3000));
            std::string digits = std::to_string(number);
            digits.insert(0, random() % 3, '0');
            std::string const name = stem + digits + ".tst";
            if (!names.insert(name).second) continue;
            numbers.push_back(number);
            widest = std::max(widest, digits.size());
        }
        for (std::string const& name : names)
            environment.Write(folder + "/" + name, "x");
        for (char const* other : {"shot.tst", "shot1a.tst", "shot1.tst~", "xshot1.tst", "shot__1.tst"})
            environment.Write(folder + "/" + other, "x");
        if (names.size() < 2) continue;

        std::sort(numbers.begin(), numbers.end());
        bool countsFromZero = true;
        for (std::size_t i = 0; i < numbers.size(); ++i)
            countsFromZero &= numbers[i] == static_cast<long>(i);
        auto const count = static_cast<long>(numbers.size());
        if (countsFromZero) numbers.clear();
        std::string const mask = stem + "[" + std::string(widest, '#') + "].tst";
        EXPECT_EQ(Scan(folder + "\\" + *names.begin()), (Found{mask, count, numbers})) << round;
    }
}

TEST_F(Sequence, AFolderOfTenThousandFilesIsScannedInNoTime)
{
    environment.Make_Directory("long");
    for (int i = 0; i < 10000; ++i)
        std::ofstream(environment.Path("long/s" + std::to_string(i) + ".tst"));
    std::clock_t const start = std::clock();  // of the processor, however busy the machine is
    EXPECT_EQ(Scan("long\\s77.tst"), (Found{"s[####].tst", 10000, {}}));
    EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC / 2);
}

class SequenceClip : public Sequence {
protected:
    SequenceClip()
    {
        format.properties &= ~ZV_FORMAT_MULTIFRAME;
        format.desc->GetFrameDataReference = TestFormat::GetFrameDataReference;
        format.frames = 1;
    }

    void Open_Sequence(std::string const& name)
    {
        FreeClipZV(clip);
        clip = OpenClipZV(environment.Spec(name).c_str(), ZV_OPEN_NO_SEQUENCE_DIALOG, 1, 0);
        ASSERT_TRUE(clip && BeginClipIOZV(clip, nullptr));
        clip->Background = 0xFF204060;
    }

    /// Content of the file that a frame came from, which is its name; "none" for a frame that shows
    /// Background instead.
    std::string File_Of(long frame)
    {
        BitmapBlock const bitmap = Make_Bitmap(format.width, format.height);
        ZVTimeValue const time = Frame_Time(static_cast<double>(frame));
        long const before = format.Count("GetFrame");
        GetFrameZV(clip, bitmap.get(), &time, nullptr, nullptr);
        if (format.Count("GetFrame") == before) {
            EXPECT_EQ(Bytes_Of(bitmap), Filled_Bytes(0xFF204060, format.width, format.height));
            return "none";
        }
        TestCall const& call = format.Last("GetFrame");
        EXPECT_EQ(call.frame, 0) << "a file holds one";
        EXPECT_EQ(Bytes_Of(bitmap), Picture_Bytes(0, format.width, format.height));
        return {call.data.begin(), call.data.end()};
    }
};

TEST_F(SequenceClip, EachFrameIsReadFromItsFile)
{
    Write_All({"s1.tst", "s2.tst", "s10.tst", "S007.TST"});
    Open_Sequence("s2.tst");
    EXPECT_EQ(clip->Frames, 4);
    EXPECT_EQ(format.Last("Open").fileName, environment.Spec("s2.tst"));
    char const* const files[] = {"s1.tst", "s2.tst", "S007.TST", "s10.tst"};
    for (long frame : {3L, 0L, 2L, 1L})
        EXPECT_EQ(File_Of(frame), files[frame]);
    EXPECT_EQ(File_Of(4), "none");
    EXPECT_EQ(clip->FileName, environment.Spec("s[###].tst"));
}

TEST_F(SequenceClip, AClosedSequenceOpensAgainByItsFirstFile)
{
    Write_All({"s5.tst", "s6.tst"});
    Open_Sequence("s6.tst");
    EndClipIOZV(clip, nullptr);
    CloseClipZV(clip);
    ASSERT_TRUE(OpenClipZV(clip, nullptr));
    EXPECT_EQ(format.Last("Open").fileName, environment.Spec("s5.tst"));
    EXPECT_EQ(clip->RawFrames, 2);
    ASSERT_TRUE(BeginClipIOZV(clip, nullptr));
    EXPECT_EQ(File_Of(1), "s6.tst");
}

TEST_F(SequenceClip, ASingleFrameOfASeriesIsOneFrame)
{
    Write_All({"s5.tst", "s6.tst"});
    clip = OpenClipZV(environment.Spec("s6.tst").c_str(), ZV_OPEN_SINGLE_FRAME, 1, 0);
    ASSERT_TRUE(clip && BeginClipIOZV(clip, nullptr));
    EXPECT_EQ(clip->Frames, 1);
    EXPECT_EQ(File_Of(0), "s6.tst");
}

}  // namespace
