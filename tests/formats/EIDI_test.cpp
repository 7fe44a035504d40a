// EIDI files: all depths from files made byte by byte, the three kinds that are written, and damaged files.
#include "FormatTest.h"

#include <array>
#include <cmath>
#include <limits>

namespace {

using Pixel = std::array<uint8_t, 4>;

struct FrameSpec {
    float time = 0.0f;
    long width = 16, height = 3;
    long bits = 24;  ///< depth and alpha depth
    bool isCompressed = false;
    Bytes palette = {0, 0, 0};
    Bytes data;  ///< pixel data as stored
};

void Put_Frame(ByteWriter& file, FrameSpec const& frame)
{
    long const depth = std::min(frame.bits, 24L);
    file.PutFloat(frame.time).Put16(0).Put16(0).Put16(frame.height).Put16(frame.width);
    file.Put8(depth).Put8(depth <= 8);
    file.Put16(0).Put16(0).Put16(frame.height).Put16(frame.width);
    file.Put8(frame.isCompressed).Put8(frame.bits - depth).Put32(static_cast<long>(frame.data.size()));
    file.Put16(static_cast<long>(frame.palette.size() / 3)).Put16(0).Put(frame.palette).Put(frame.data);
}

Bytes File_Of(std::vector<FrameSpec> const& frames, long count = -1)
{
    ByteWriter file;
    file.Put16(5).Put32(count < 0 ? static_cast<long>(frames.size()) : count);
    for (FrameSpec const& frame : frames)
        Put_Frame(file, frame);
    return file.bytes;
}

/// A frame of 16 by 3 pixels of one value.
FrameSpec Filled_Frame(uint8_t value, float time = 0.0f)
{
    FrameSpec frame;
    frame.time = time;
    frame.data = Bytes(16 * 3 * 3, value);
    return frame;
}

/// Units as packets, which do not end with their rows: runs where units repeat, and literals of three.
Bytes Packets_Of(Bytes const& units, long unitBytes)
{
    ByteWriter packets;
    long const count = static_cast<long>(units.size()) / unitBytes;
    auto const unit = [&](long i) { return units.begin() + i * unitBytes; };
    for (long i = 0; i < count;) {
        long equal = 1;
        while (i + equal < count && equal < 128 && std::equal(unit(i), unit(i + 1), unit(i + equal)))
            ++equal;
        long const literal = std::min(count - i, 3L);
        packets.Put8(equal > 1 ? equal - 1 : literal + 127);
        packets.Put(Bytes(unit(i), unit(i + (equal > 1 ? 1 : literal))));
        i += equal > 1 ? equal : literal;
    }
    return packets.bytes;
}

/// Pixel x of a stored row, worked out bit by bit.
Pixel Expected_Pixel(Bytes const& row, long bits, Bytes const& palette, long x)
{
    auto const byte = [&](long i) { return row[static_cast<std::size_t>(i)]; };
    switch (bits) {
    case 16: {
        int const word = byte(2 * x) << 8 | byte(2 * x + 1);
        auto const field = [&](int shift) { return static_cast<uint8_t>((word >> shift & 31) * 8); };
        return {field(10), field(5), field(0), 255};
    }
    case 24: return {byte(3 * x), byte(3 * x + 1), byte(3 * x + 2), 255};
    case 32: return {byte(4 * x + 1), byte(4 * x + 2), byte(4 * x + 3), byte(4 * x)};
    default: break;
    }
    std::size_t index = 0;
    for (long bit = 0; bit < bits; ++bit) {
        long const at = x * bits + bit;
        index = index << 1 | (byte(at / 8) >> (7 - at % 8) & 1);
    }
    if (3 * index >= palette.size()) return {0, 0, 0, 255};
    return {palette[3 * index], palette[3 * index + 1], palette[3 * index + 2], 255};
}

class EIDI : public FormatTest {
protected:
    ZVFormatDesc* const format = Module(ZV_FourCC("EIDI"));

    /// What the module tells of the rate; -1 when it does not know.
    double Rate_In(std::string const& spec) const
    {
        ClipPtr clip{NewClipZV()};
        clip->Format = format;
        clip->FileName = CopyFileSpecZV(spec.c_str());
        EXPECT_TRUE(format->Open(clip.get(), nullptr));
        EXPECT_EQ(format->Open(clip.get(), nullptr), 1) << "open already";
        double const rate = clip->FileFrameRate;
        format->Close(clip.get());
        return rate;
    }

    ClipPtr Open_Bytes(Bytes const& bytes) const { return Open(Write("read.ei", bytes)); }

    /// Pixels that repeat now and then, for packets of both kinds.
    static Bytes Random_Pixels(long width, long height, unsigned seed)
    {
        Bytes pixels = FormatTest::Random_Pixels(width, height, seed);
        for (std::size_t i = 4; i < pixels.size(); i += 4)
            if (pixels[i] % 3) std::copy_n(&pixels[i - 4], 4, &pixels[i]);
        return pixels;
    }
};

TEST_F(EIDI, EveryDepthReadsPlainAndPacked)
{
    std::mt19937 random(1);
    for (long bits : {1L, 2L, 4L, 8L, 16L, 24L, 32L}) {
        for (bool isPacked : {false, true}) {
            FrameSpec frame;
            frame.bits = bits;
            frame.height = 37;
            // A short palette: the indices beyond it are black.
            frame.palette = Random_Bytes(random, bits == 8 ? 3 * 200 : 3 * 3);
            std::size_t const rowBytes = static_cast<std::size_t>(frame.width * bits / 8);
            Bytes units = Random_Bytes(random, rowBytes * 37);
            std::fill(units.begin(), units.begin() + static_cast<long>(units.size() / 2), uint8_t{0x5A});
            frame.isCompressed = isPacked;
            frame.data = isPacked ? Packets_Of(units, std::max(bits / 8, 1L)) : units;

            ClipPtr const clip = Open_Bytes(File_Of({frame}));
            ASSERT_TRUE(clip) << bits << " bits";
            EXPECT_EQ(clip->AlphaType, bits == 32 ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE);
            Bytes expected;
            for (long y = 0; y < frame.height; ++y) {
                auto const start = units.begin() + y * static_cast<long>(rowBytes);
                Bytes const row(start, start + static_cast<long>(rowBytes));
                for (long x = 0; x < frame.width; ++x) {
                    Pixel const pixel = Expected_Pixel(row, bits, frame.palette, x);
                    expected.insert(expected.end(), pixel.begin(), pixel.end());
                }
            }
            EXPECT_EQ(Clip_Frame(clip.get(), 0), expected) << bits << " bits, packed " << isPacked;
        }
    }
}

TEST_F(EIDI, PixelsBeyondTheLastWholeByteTakeTheFirstColour)
{
    FrameSpec frame;
    frame.bits = 1;
    frame.width = 11;
    frame.height = 2;
    frame.palette = {1, 2, 3, 4, 5, 6};
    frame.data = {0xFF, 0x80};
    ClipPtr const clip = Open_Bytes(File_Of({frame}));
    Bytes const pixels = Module_Frame(clip.get(), 0);
    std::string firstRed;
    for (std::size_t i = 0; i < pixels.size(); i += 4)
        firstRed += static_cast<char>('0' + pixels[i]);
    EXPECT_EQ(firstRed, "44444444111"
                        "41111111111");
}

TEST_F(EIDI, HeadersThatBreakARuleAreRefused)
{
    struct {
        char const* why;
        std::size_t offset;  ///< in the frame header
        Bytes bytes;
    } const cases[] = {
        {"depth 3", 12, {3}},
        {"depth 32", 12, {32}},
        {"depth 0", 12, {0}},
        {"indexed 2", 13, {2}},
        {"compressed 2", 22, {2}},
        {"alpha depth 4", 23, {4}},
        {"alpha depth 8 with depth 16", 12, {16, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8}},
        {"no palette", 28, {0, 0}},
        {"257 colours", 28, {1, 1}},
        {"a negative number of colours", 28, {255, 255}},
        {"a palette field that is no index of the palette", 30, {0, 1}},
        {"no width", 10, {0, 0}},
        {"a negative height", 8, {255, 255}},
        {"a picture that the file cannot hold", 8, {0x7F, 0xFF, 0x7F, 0xFF}},
        {"a palette beyond the end of the file", 28, {1, 0}},
    };
    Bytes const good = File_Of({Filled_Frame(9)});
    ASSERT_TRUE(Open_Bytes(good));
    for (auto const& row : cases) {
        Bytes bad = good;
        std::copy(row.bytes.begin(), row.bytes.end(), bad.begin() + 6 + static_cast<long>(row.offset));
        EXPECT_FALSE(Open_Bytes(bad)) << row.why;
    }
}

TEST_F(EIDI, APictureLiesWhereverItsRectangleDoes)
{
    Bytes bytes = File_Of({Filled_Frame(9)});
    for (std::size_t side : {4u, 6u, 8u, 10u}) {
        int const moved = (bytes[6 + side] << 8 | bytes[6 + side + 1]) - 100;
        bytes[6 + side] = static_cast<uint8_t>(moved >> 8);
        bytes[6 + side + 1] = static_cast<uint8_t>(moved);
    }
    ClipPtr const clip = Open_Bytes(bytes);
    ASSERT_TRUE(clip);
    EXPECT_TRUE(clip->Width == 16 && clip->Height == 3);
}

TEST_F(EIDI, TheRateFollowsFromTheLastTwoTimes)
{
    float const infinite = std::numeric_limits<float>::infinity();
    struct {
        char const* why;
        std::vector<float> times;
        double rate;
    } const cases[] = {
        {"one frame at time 0 tells nothing", {0.0f}, -1.0},
        {"one frame later than 0 does", {0.5f}, 2.0},
        {"25 a second", {0.0f, 0.04f, 0.08f}, 25.0},
        {"only the last two count", {0.0f, 3.0f, 3.5f}, 2.0},
        {"equal times", {1.0f, 1.0f}, -1.0},
        {"times that run backwards", {1.0f, 0.5f}, -1.0},
        {"a time without end", {0.0f, infinite}, -1.0},
        {"two times without end", {infinite, infinite}, -1.0},
        {"no number counts as no end", {0.0f, std::nanf("")}, -1.0},
        {"the smallest of times",
         {0.0f, std::numeric_limits<float>::denorm_min()},
         1.0 / 1.401298464324817e-45},
    };
    for (auto const& row : cases) {
        std::vector<FrameSpec> frames;
        for (float time : row.times)
            frames.push_back(Filled_Frame(1, time));
        double const rate = Rate_In(Write("rate.ei", File_Of(frames)));
        EXPECT_NEAR(rate, row.rate, std::fabs(row.rate) * 1e-5) << row.why;
    }
}

TEST_F(EIDI, FramesBehindABadHeaderFailAndTheOthersStay)
{
    FrameSpec const first = Filled_Frame(1), second = Filled_Frame(2, 0.5f);
    FrameSpec bad = Filled_Frame(1, 9.0f);
    bad.bits = 7;
    for (long count : {1000000L, 0xFFFFFFFFL}) {
        ClipPtr const clip = Open_Bytes(File_Of({first, second, bad, first}, count));
        ASSERT_TRUE(clip) << "an absurd count costs nothing";
        EXPECT_EQ(clip->RawFrames, count);
        EXPECT_DOUBLE_EQ(clip->FileFrameRate, 2.0);
        EXPECT_EQ(Module_Frame(clip.get(), 0)[0], 1);
        EXPECT_EQ(Module_Frame(clip.get(), 1)[0], 2);
        for (long beyond : {-1L, 2L, 3L, count - 1, 1L << 40})
            EXPECT_TRUE(Module_Frame(clip.get(), beyond).empty()) << beyond;
        EXPECT_TRUE(Clip_Frame(clip.get(), 2).empty());
        EXPECT_EQ(GetErrorZV(), ZV_ERR_CLIP);
    }
}

TEST_F(EIDI, AFileCutShortAnywhereFailsOrReadsItsWholeFrames)
{
    std::mt19937 random(3);
    FrameSpec packed;
    packed.bits = 32;
    packed.isCompressed = true;
    packed.data = Packets_Of(Random_Bytes(random, 4 * 16 * 3), 4);
    FrameSpec plain;
    plain.data = Random_Bytes(random, 3 * 16 * 3);
    Bytes const whole = File_Of({packed, plain});
    std::size_t const firstEnd = 6 + 35 + packed.data.size();
    ClipPtr const good = Open_Bytes(whole);
    Bytes const first = Module_Frame(good.get(), 0);
    ASSERT_FALSE(Module_Frame(good.get(), 1).empty());

    for (std::size_t length = 0; length < whole.size(); ++length) {
        ClipPtr const clip = Open_Bytes(Head(whole, length));
        if (length < 6 + 35) {
            EXPECT_FALSE(clip) << length;
            continue;
        }
        ASSERT_TRUE(clip) << length;
        EXPECT_EQ(Module_Frame(clip.get(), 0), length < firstEnd ? Bytes{} : first) << length;
        EXPECT_TRUE(Module_Frame(clip.get(), 1).empty()) << length;
    }
}

TEST_F(EIDI, FramesBeyondFourGigabytesAreFound)
{
    Bytes file = File_Of({Filled_Frame(1)}, 2);
    std::fill_n(&file[6 + 24], 4, uint8_t{0xFF});  // the size of its data
    std::string const spec = Write("large.ei", file);
    ByteWriter tail;
    Put_Frame(tail, Filled_Frame(2));
    {
        std::fstream stream(environment.Path("large.ei"), std::ios::binary | std::ios::in | std::ios::out);
        stream.seekp(6 + 35 + 0xFFFFFFFFL);
        stream << As_Text(tail.bytes);
        if (!stream.flush()) GTEST_SKIP() << "no room for a sparse file of 4 GiB";
    }
    ClipPtr const clip = Open(spec);
    ASSERT_TRUE(clip);
    EXPECT_EQ(Module_Frame(clip.get(), 0)[0], 1);
    EXPECT_EQ(Module_Frame(clip.get(), 1)[0], 2);
}

TEST_F(EIDI, ADataSizeLeftAtZeroReadsToTheEndOfTheFile)
{
    Bytes file = File_Of({Filled_Frame(7)});
    std::fill_n(&file[6 + 24], 4, uint8_t{0});
    ClipPtr const clip = Open_Bytes(file);
    ASSERT_TRUE(clip);
    EXPECT_FALSE(Module_Frame(clip.get(), 0).empty());
}

TEST_F(EIDI, AFrameOfAnotherSizeIsScaledToTheClip)
{
    FrameSpec large;
    large.width = 32;
    large.height = 6;
    for (long i = 0; i < 32 * 6; ++i)
        large.data.insert(large.data.end(), 3, static_cast<uint8_t>(i));
    ClipPtr const clip = Open_Bytes(File_Of({Filled_Frame(1), large}));
    Bytes const pixels = Module_Frame(clip.get(), 1);
    ASSERT_EQ(pixels.size(), 4u * 16 * 3);
    for (std::size_t y = 0; y < 3; ++y)
        for (std::size_t x = 0; x < 16; ++x)
            EXPECT_EQ(pixels[4 * (16 * y + x)], 64 * y + 2 * x);
}

TEST_F(EIDI, WrittenKindsReadBack)
{
    struct {
        char const* why;
        uint8_t alphaType;
        long depth, alphaDepth, paletteSize;
        std::array<std::size_t, 3> colours;  ///< which channels are read back as the colours
    } const cases[] = {
        {"with alpha", ZV_ALPHA_CHANNEL, 24, 8, 1, {0, 1, 2}},
        {"without alpha", ZV_ALPHA_NONE, 24, 0, 1, {0, 1, 2}},
        {"alpha as grey", ZV_ALPHA_LUMINANCE, 8, 0, 256, {3, 3, 3}},
    };
    long const width = 150, height = 20;
    for (auto const& row : cases) {
        for (int32_t compress : {1, 0}) {
            SCOPED_TRACE(row.why);
            {
                ClipPtr const clip = Create(format, "kind.ei", width, height, 25.0, row.alphaType);
                ASSERT_TRUE(clip && clip->VideoParams && clip->VideoParams->Size == 4);
                EXPECT_EQ(clip->BitDepth, 8);
                std::memcpy(clip->VideoParams->Data, &compress, 4);
                for (unsigned i = 0; i < 3; ++i)
                    ASSERT_TRUE(Add_Frame_At(clip.get(), i, Random_Pixels(width, height, i)));
                Close(clip);
                EXPECT_EQ(clip->RawFrames, 3);
            }
            Bytes const file = Read("kind.ei");
            EXPECT_EQ(Type_Of("kind.ei"), ZV_FourCC("EIDI"));
            long const paletteBytes = 3 * row.paletteSize;
            ByteWriter head;
            head.Put16(5).Put32(3).PutFloat(0.0f).Put16(0).Put16(0).Put16(height).Put16(width);
            head.Put8(row.depth).Put8(row.depth == 8).Put16(0).Put16(0).Put16(height).Put16(width);
            head.Put8(compress).Put8(row.alphaDepth);
            EXPECT_EQ(Head(file, 6 + 24), head.bytes);
            EXPECT_EQ(file[6 + 28] << 8 | file[6 + 29], row.paletteSize);
            EXPECT_EQ(*(file.begin() + 6 + 32 + paletteBytes - 1), row.paletteSize - 1) << "palette of greys";

            long const plainSize = width * height * (row.depth + row.alphaDepth) / 8;
            long const dataSize = file[6 + 24] << 24 | file[6 + 25] << 16 | file[6 + 26] << 8 | file[6 + 27];
            EXPECT_TRUE(compress ? dataSize < plainSize : dataSize == plainSize);
            ByteWriter time;
            time.PutFloat(0.04f);
            auto const second = file.begin() + 6 + 32 + paletteBytes + dataSize;
            EXPECT_EQ(Bytes(second, second + 4), time.bytes);

            ClipPtr const clip = Open(environment.Spec("kind.ei"));
            ASSERT_TRUE(clip);
            EXPECT_EQ(clip->RawFrames, 3);
            EXPECT_NEAR(clip->FileFrameRate, 25.0, 1e-4);
            for (unsigned i = 0; i < 3; ++i) {
                Bytes const pixels = Random_Pixels(width, height, i);
                Bytes expected = pixels;
                for (std::size_t at = 0; at < pixels.size(); at += 4) {
                    for (std::size_t c = 0; c < 3; ++c)
                        expected[at + c] = pixels[at + row.colours[c]];
                    if (row.alphaDepth == 0) expected[at + 3] = 255;
                }
                EXPECT_EQ(Clip_Frame(clip.get(), i), expected) << "frame " << i;
            }
        }
    }
}

TEST_F(EIDI, AFileWhoseWriterDiedIsAClipOfItsFirstFrame)
{
    ClipPtr const clip = Create(format, "begun.ei", 16, 3, 25.0);
    for (unsigned i = 0; i < 2; ++i)
        ASSERT_TRUE(Add_Frame_At(clip.get(), i, Random_Pixels(16, 3, i)));
    ClipPtr const left = Open(environment.Spec("begun.ei"));
    ASSERT_TRUE(left);
    EXPECT_EQ(left->RawFrames, 1);
    EXPECT_EQ(Clip_Frame(left.get(), 0), Random_Pixels(16, 3, 0));
}

TEST_F(EIDI, AFrameThatDoesNotFitTheDiskIsNotCountedAndTheNextOneTakesItsPlace)
{
    long const width = 200, height = 100;
    ClipPtr const clip = Create(format, "full.ei", width, height, 25.0);
    Bytes const noise = Random_Bytes(1, 4 * 200 * 100);
    ASSERT_TRUE(Add_Frame_At(clip.get(), 0, noise));
    {
        FileSizeLimit const full(Read("full.ei").size() + 10000);
        EXPECT_FALSE(Add_Frame_At(clip.get(), 1, noise));
        EXPECT_NE(GetErrorZV(), 0u);
        EXPECT_EQ(clip->RawFrames, 1);

        Bytes const file = Read("full.ei");
        std::size_t const frame =
            6 + 35 + static_cast<std::size_t>(file[6 + 25] << 16 | file[6 + 26] << 8 | file[6 + 27]);
        std::size_t const stored =
            static_cast<std::size_t>(file[frame + 25] << 16 | file[frame + 26] << 8 | file[frame + 27]);
        EXPECT_LE(frame + 35 + stored, file.size()) << "the data size tells of no more than was written";
    }
    Bytes const next = Random_Pixels(width, height, 2);
    ASSERT_TRUE(Add_Frame_At(clip.get(), 1, next));
    Close(clip);
    ClipPtr const read = Open(environment.Spec("full.ei"));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->RawFrames, 2);
    EXPECT_EQ(Clip_Frame(read.get(), 0), noise);
    EXPECT_EQ(Clip_Frame(read.get(), 1), next);
}

TEST_F(EIDI, NothingIsWrittenWithoutOptionsOrAnOutput)
{
    BitmapPtr const bitmap = Make_Bitmap(16, 3);
    ClipPtr const clip = Create(format, "bare.ei", 16, 3, 25.0);
    FreeMemZV(std::exchange(clip->VideoParams, nullptr));
    EXPECT_FALSE(format->AddFrame(clip.get(), bitmap.get(), 0, nullptr));
    Close(clip);
    EXPECT_FALSE(format->AddFrame(clip.get(), bitmap.get(), 0, nullptr));
    EXPECT_FALSE(format->GetFrame(clip.get(), bitmap.get(), 0, nullptr, 16, 3, 0, nullptr, 0));

    clip->FileName[0] = 'X';  // no such volume
    EXPECT_FALSE(CreateClipZV(clip.get(), 0));
    EXPECT_FALSE(clip->ModuleData);
}

TEST_F(EIDI, RatesThatGiveNoTimeAreUnknownWhenReadBack)
{
    for (double rate : {0.0, -1.0, std::nan("")}) {
        ClipPtr const clip = Create(format, "norate.ei", 16, 3, 25.0);
        clip->FileFrameRate = rate;
        for (long i = 0; i < 3; ++i)
            ASSERT_TRUE(Add_Frame_At(clip.get(), i, Random_Pixels(16, 3, 1)));
        Close(clip);
        EXPECT_EQ(Rate_In(environment.Spec("norate.ei")), -1.0) << rate;
    }
}

}  // namespace
