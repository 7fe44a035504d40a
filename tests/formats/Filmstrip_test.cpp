// Filmstrip files: layout and trailer, the drawn leader, damaged files, and exchange with ffmpeg both ways.
#include "FormatTest.h"

#include <array>

namespace {

/// The leader's characters as they look. Rows 4 to 11 of the leader.
struct Glyph {
    char character;
    std::array<char const*, 8> rows;
};
constexpr Glyph glyphs[] = {
    {'0', {"  ###  ", " #   # ", " #   # ", " #   # ", " #   # ", " #   # ", " #   # ", "  ###  "}},
    {'1', {"   #   ", "  ##   ", " # #   ", "   #   ", "   #   ", "   #   ", "   #   ", " ##### "}},
    {'2', {"  ###  ", " #   # ", "     # ", "    #  ", "   #   ", "  #    ", " #     ", " ##### "}},
    {'3', {"  ###  ", " #   # ", "     # ", "   ##  ", "     # ", "     # ", " #   # ", "  ###  "}},
    {'4', {"    #  ", "   ##  ", "  # #  ", " #  #  ", " ##### ", "    #  ", "    #  ", "   ### "}},
    {'5', {" ##### ", " #     ", " #     ", " ####  ", "     # ", "     # ", " #   # ", "  ###  "}},
    {'6', {"   ##  ", "  #    ", " #     ", " ####  ", " #   # ", " #   # ", " #   # ", "  ###  "}},
    {'7', {" ##### ", " #   # ", "     # ", "    #  ", "    #  ", "   #   ", "   #   ", "   #   "}},
    {'8', {"  ###  ", " #   # ", " #   # ", "  ###  ", " #   # ", " #   # ", " #   # ", "  ###  "}},
    {'9', {"  ###  ", " #   # ", " #   # ", " #   # ", "  #### ", "     # ", "    #  ", "  ##   "}},
    {':', {"   ", " # ", "   ", "   ", "   ", "   ", " # ", "   "}},
    {'-', {"       ", "       ", "       ", "       ", " ##### ", "       ", "       ", "       "}},
};

/// A leader as pixels, black on grey, cut off at the edges.
Bytes Drawn_Leader(long width, std::string const& timecode, std::string const& number)
{
    Bytes pixels;
    for (long i = 0; i < width * 16; ++i)
        pixels.insert(pixels.end(), {0x80, 0x80, 0x80, 0xFF});
    auto const draw = [&](long left, std::string const& text) {
        for (char character : text) {
            Glyph const& glyph = *std::find_if(std::begin(glyphs), std::end(glyphs), [&](Glyph const& each) {
                return each.character == character;
            });
            long const columns = static_cast<long>(std::strlen(glyph.rows[0]));
            for (long row = 0; row < 8; ++row) {
                for (long column = 0; column < columns; ++column) {
                    long const x = left + column;
                    if (glyph.rows[static_cast<std::size_t>(row)][column] != '#' || x < 0 || x >= width)
                        continue;
                    std::fill_n(pixels.begin() + 4 * ((4 + row) * width + x), 4, uint8_t{0});
                }
            }
            left += columns;
        }
    };
    draw(10, timecode);
    draw(width - 45, number);
    return pixels;
}

Bytes Trailer(long frames, long packing, long width, long height, long leading, long rate)
{
    ByteWriter trailer;
    trailer.Put("Rand").Put32(frames).Put16(packing).Put16(0).Put16(width).Put16(height).Put16(leading).Put16(
        rate);
    return trailer.PutZeros(16).bytes;
}

class Filmstrip : public FormatTest {
protected:
    ZVFormatDesc* const format = Module(ZV_FourCC("Film"));

    /// The 16 leader lines of each of these frames.
    std::vector<Bytes> Written_Leaders(long width, double rate, std::vector<long> const& frames) const
    {
        ClipPtr const clip = Create(format, "leader.flm", width, 1, rate);
        BitmapPtr const bitmap = Make_Bitmap(width, 1);
        for (long frame : frames)
            EXPECT_TRUE(format->AddFrame(clip.get(), bitmap.get(), frame, nullptr));
        Close(clip);
        Bytes const file = Read("leader.flm");
        std::vector<Bytes> leaders;
        for (auto at = file.begin() + 4 * width; leaders.size() < frames.size(); at += 4 * width * 17)
            leaders.emplace_back(at, at + 4 * width * 16);
        return leaders;
    }

    /// Runs a command line; its output goes to a log in the test's directory.
    bool Run(std::string const& command) const
    {
        return std::system((command + " >" + environment.Path("log") + " 2>&1").c_str()) == 0;
    }
};

TEST_F(Filmstrip, AStripIsFramesLeadersABlankAndATrailer)
{
    ByteWriter expected;
    {
        ClipPtr const clip = Create(format, "two.flm", 4, 4, 29.97);
        ASSERT_TRUE(clip);
        EXPECT_EQ(clip->BitDepth, 8);
        for (unsigned i = 0; i < 2; ++i) {
            Bytes const pixels = Random_Pixels(4, 4, i);
            ASSERT_TRUE(Add_Frame_At(clip.get(), i, pixels));
            expected.Put(pixels).Put(
                Drawn_Leader(4, "00:00:00:0" + std::to_string(i), "0000" + std::to_string(i)));
        }
        EXPECT_EQ(clip->RawFrames, 2);
        Close(clip);
    }
    expected.PutZeros(4 * 64).Put(Trailer(2, 0, 4, 4, 16, 30));
    EXPECT_EQ(Read("two.flm"), expected.bytes);
    EXPECT_EQ(Type_Of("two.flm"), ZV_FourCC("Film"));
}

TEST_F(Filmstrip, TheLeadingOfTheTrailerIsHonoured)
{
    for (long leading : {0L, 7L, 16L, 200L}) {
        ByteWriter file;
        for (unsigned i = 0; i < 3; ++i)
            file.Put(Random_Pixels(5, 3, i)).PutZeros(static_cast<std::size_t>(4 * 5 * leading));
        file.Put(Trailer(3, 0, 5, 3, leading, 12));
        ClipPtr const clip = Open(Write("leading.flm", file.bytes));
        ASSERT_TRUE(clip) << leading;
        for (unsigned i = 0; i < 3; ++i)
            EXPECT_EQ(Clip_Frame(clip.get(), i), Random_Pixels(5, 3, i)) << leading;
    }
}

TEST_F(Filmstrip, RatesAreStoredAsWholeNumbers)
{
    std::pair<double, int> const cases[] = {{23.976, 24}, {29.97, 30},   {25.0, 25},
                                            {59.94, 60},  {12.5, 12},    {0.0, 0},
                                            {-1.0, 0},    {1e9, 0x7FFF}, {-1e9, 0x8000}};
    for (auto const& [rate, stored] : cases) {
        ClipPtr const clip = Create(format, "rate.flm", 4, 4, 25.0);
        clip->FileFrameRate = rate;
        Close(clip);
        Bytes const file = Read("rate.flm");
        EXPECT_EQ(file[file.size() - 18] << 8 | file[file.size() - 17], stored) << rate;
    }
}

TEST_F(Filmstrip, LeadersShowTimecodeAndNumber)
{
    double const ntsc = 30000.0 / 1001.0;
    struct {
        double rate;
        long frame;
        char const *timecode, *number;
    } const cases[] = {
        {30.0, 0, "00:00:00:00", "00000"},
        {30.0, 1800, "00:01:00:00", "01800"},
        {30.0, 107999, "00:59:59:29", "07999"},
        {25.0, 90061, "01:00:02:11", "90061"},
        {24.0, 123456, "01:25:44:00", "23456"},
        {24.0, 24L * 3600 * 60, "00:00:00:00", "84000"},  // hours start again at 60
        {29.97, 1799, "00:00:59:29", "01799"},
        {29.97, 1800, "00:01:00:02", "01800"},
        {ntsc, 3597, "00:01:59:29", "03597"},
        {ntsc, 3598, "00:02:00:02", "03598"},
        {29.97, 17981, "00:09:59:29", "17981"},
        {29.97, 17982, "00:10:00:00", "17982"},
        {29.97, 19781, "00:10:59:29", "19781"},
        {29.97, 19782, "00:11:00:02", "19782"},
        {29.97, 107892, "01:00:00:00", "07892"},
        {29.9702, 1800, "00:01:00:00", "01800"},  // too far from 29.97 for drop frame
        {120.0, 119, "00:00:00:19", "00119"},     // two digits of each
        {0.0, 42, "--:--:--:--", "00042"},
        {0.5, 42, "--:--:--:--", "00042"},
        {-30.0, 42, "--:--:--:--", "00042"},
        {25.0, -7, "00:00:00:00", "00000"},
        {29.97, 0x7FFFFFFFFFFFFFFF, "34:22:15:29", "75807"},
    };
    for (auto const& row : cases)
        EXPECT_EQ(Written_Leaders(160, row.rate, {row.frame})[0], Drawn_Leader(160, row.timecode, row.number))
            << row.rate << ", frame " << row.frame;
}

TEST_F(Filmstrip, LeadersOfNarrowFramesAreCutOffAtTheEdges)
{
    for (long width : {1L, 3L, 4L, 11L, 20L, 44L, 45L, 46L, 75L, 99L, 100L, 119L, 120L})
        EXPECT_EQ(Written_Leaders(width, 25.0, {6789})[0], Drawn_Leader(width, "00:04:31:14", "06789"))
            << width;
}

TEST_F(Filmstrip, DropFrameTimecodeLeavesOutTwoNumbersAMinuteButTheTenth)
{
    // Counts through all numbers that exist for a little more than twenty minutes, and looks at some.
    std::vector<long> frames;
    std::vector<std::string> timecodes;
    long minute = 0, second = 0, number = 0;
    for (long frame = 0; frame < 37000; ++frame) {
        if (frame % 211 == 0 || (second == 0 && number < 4) || (second == 59 && number == 29)) {
            char text[64];
            std::snprintf(text, sizeof(text), "00:%02ld:%02ld:%02ld", minute, second, number);
            frames.push_back(frame);
            timecodes.push_back(text);
        }
        if (++number < 30) continue;
        number = 0;
        if (++second < 60) continue;
        second = 0;
        number = ++minute % 10 ? 2 : 0;
    }
    std::vector<Bytes> const leaders = Written_Leaders(150, 29.97, frames);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        char text[32];
        std::snprintf(text, sizeof(text), "%05ld", frames[i]);
        ASSERT_EQ(leaders[i], Drawn_Leader(150, timecodes[i], text)) << frames[i];
    }
}

TEST_F(Filmstrip, OnlyFramesThatLieWholeInTheFileCount)
{
    // Three frames of 4 by 4 pixels with a leading of 2, the last one without its leader.
    Bytes const pictures = Random_Pixels(4, 2 * 6 + 4, 1);
    Bytes wrongSignature = Trailer(3, 0, 4, 4, 2, 25);
    wrongSignature[3] = 'D';
    struct {
        char const* why;
        Bytes trailer;
        long frames;  ///< 0: refused
    } const cases[] = {
        {"all there", Trailer(3, 0, 4, 4, 2, 25), 3},
        {"fewer told of", Trailer(2, 0, 4, 4, 2, 25), 2},
        {"more told of", Trailer(4, 0, 4, 4, 2, 25), 3},
        {"absurdly many", Trailer(0xFFFFFFFF, 0, 4, 4, 2, 25), 3},
        {"none told of", Trailer(0, 0, 4, 4, 2, 25), 0},
        {"packed", Trailer(3, 1, 4, 4, 2, 25), 0},
        {"no width", Trailer(3, 0, 0, 4, 2, 25), 0},
        {"no height", Trailer(3, 0, 4, 0, 2, 25), 0},
        {"the largest size", Trailer(3, 0, 0xFFFF, 0xFFFF, 0xFFFF, 25), 0},
        {"one row too high", Trailer(3, 0, 4, 17, 2, 25), 0},
        {"one frame of all rows", Trailer(3, 0, 4, 16, 2, 25), 1},
        {"a large leading", Trailer(3, 0, 4, 4, 0xFFFF, 25), 1},
        {"another signature", wrongSignature, 0},
    };
    for (auto const& row : cases) {
        ByteWriter file;
        ClipPtr const clip = Open(Write("whole.flm", file.Put(pictures).Put(row.trailer).bytes));
        EXPECT_EQ(clip ? clip->RawFrames : 0, row.frames) << row.why;
        if (!clip) continue;
        EXPECT_FALSE(Module_Frame(clip.get(), row.frames - 1).empty()) << row.why;
        for (long beyond : {row.frames, row.frames + 1, -1L, 1L << 60})
            EXPECT_TRUE(Module_Frame(clip.get(), beyond).empty()) << row.why;
    }
}

TEST_F(Filmstrip, AFileCutShortAnywhereIsRefused)
{
    ByteWriter file;
    file.Put(Random_Pixels(3, 3, 1)).Put(Trailer(1, 0, 3, 3, 0, 25));
    for (std::size_t length = 0; length < file.bytes.size(); ++length)
        EXPECT_FALSE(Open(Write("cut.flm", Head(file.bytes, length)))) << length;
}

TEST_F(Filmstrip, AFileThatShrinksWhileItIsOpenGivesNoStrayMemory)
{
    ByteWriter file;
    file.Put(Random_Pixels(64, 64, 1)).Put(Random_Pixels(64, 64, 2)).Put(Trailer(2, 0, 64, 64, 0, 25));
    ClipPtr const clip = Open(Write("shrinks.flm", file.bytes));
    std::filesystem::resize_file(environment.Path("shrinks.flm"), 64 * 64 * 4 + 5000);
    EXPECT_EQ(Clip_Frame(clip.get(), 0), Random_Pixels(64, 64, 1));
    EXPECT_TRUE(Clip_Frame(clip.get(), 1).empty());
    EXPECT_EQ(GetErrorZV(), ZV_ERR_CLIP);
}

TEST_F(Filmstrip, FramesBeyondFourGigabytesAreFound)
{
    long const width = 1024, height = 1024, frame = 1100;
    std::string const spec = Write("large.flm", {});
    {
        std::ofstream stream(environment.Path("large.flm"), std::ios::binary);
        stream.seekp(frame * width * 4 * (height + 16));
        stream << As_Text(Random_Pixels(width, height, 1));
        stream << As_Text(Trailer(frame + 1, 0, width, height, 16, 25));
        if (!stream.flush()) GTEST_SKIP() << "no room for a sparse file of 5 GB";
    }
    ClipPtr const clip = Open(spec);
    ASSERT_TRUE(clip);
    EXPECT_EQ(clip->RawFrames, frame + 1);
    EXPECT_EQ(Clip_Frame(clip.get(), frame), Random_Pixels(width, height, 1));
    EXPECT_EQ(Clip_Frame(clip.get(), 0), Bytes(static_cast<std::size_t>(4 * width * height)));
}

TEST_F(Filmstrip, AFrameThatDoesNotFitTheDiskKeepsItsPlace)
{
    ClipPtr const clip = Create(format, "full.flm", 64, 48, 25.0);
    ASSERT_TRUE(Add_Frame_At(clip.get(), 0, Random_Pixels(64, 48, 0)));
    {
        FileSizeLimit const full(Read("full.flm").size() + 5000);
        EXPECT_FALSE(Add_Frame_At(clip.get(), 1, Random_Pixels(64, 48, 1)));
        EXPECT_NE(GetErrorZV(), 0u);
        EXPECT_EQ(clip->RawFrames, 2);
    }
    ASSERT_TRUE(Add_Frame_At(clip.get(), 2, Random_Pixels(64, 48, 2)));
    Close(clip);
    ClipPtr const read = Open(environment.Spec("full.flm"));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->RawFrames, 3);
    EXPECT_EQ(Clip_Frame(read.get(), 0), Random_Pixels(64, 48, 0));
    EXPECT_EQ(Clip_Frame(read.get(), 2), Random_Pixels(64, 48, 2));
}

TEST_F(Filmstrip, StripsOfAnotherProgramReadPixelForPixelAndOursThere)
{
    if (!Run("ffmpeg -version")) GTEST_SKIP() << "ffmpeg is not installed (scripts/packages.txt names it)";
    std::string const ffmpeg = "ffmpeg -y -loglevel error ";
    std::string const theirs = environment.Path("theirs.flm");
    std::string const raw = environment.Path("theirs.raw");
    std::size_t const frameBytes = 4 * 1920 * 1080;
    // The alpha varies too: testsrc2 alone is opaque.
    ASSERT_TRUE(Run(
        ffmpeg + "-f lavfi -i \"testsrc2=size=1920x1080:rate=25,format=rgba," +
        "geq=r='r(X,Y)':g='g(X,Y)':b='b(X,Y)':a='mod(X+Y,256)'\" -frames:v 3 -pix_fmt rgba -f filmstrip " +
        theirs));
    ASSERT_TRUE(Run(ffmpeg + "-i " + theirs + " -f rawvideo -pix_fmt rgba " + raw));
    Bytes const decoded = Read("theirs.raw");
    ASSERT_EQ(decoded.size(), 3 * frameBytes);

    ClipPtr const clip = Open(environment.Spec("theirs.flm"));
    ASSERT_TRUE(clip);
    EXPECT_EQ(clip->RawFrames, 3);
    EXPECT_EQ(clip->FileFrameRate, 25.0);
    ClipPtr const ours = Create(format, "ours.flm", 1920, 1080, 25.0);
    for (long i = 0; i < 3; ++i) {
        Bytes const pixels = Clip_Frame(clip.get(), i);
        auto const start = decoded.begin() + i * static_cast<long>(frameBytes);
        EXPECT_TRUE(std::equal(pixels.begin(), pixels.end(), start, start + static_cast<long>(frameBytes)))
            << i;
        ASSERT_TRUE(Add_Frame_At(ours.get(), i, pixels));
    }
    Close(ours);
    ASSERT_TRUE(Run(ffmpeg + "-i " + environment.Path("ours.flm") + " -f rawvideo -pix_fmt rgba " +
                    environment.Path("ours.raw")));
    EXPECT_TRUE(Read("ours.raw") == decoded);
}

}  // namespace
