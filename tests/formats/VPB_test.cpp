// VPB pictures: the header byte by byte, the walk over its records, the colours, series, and damaged files.
#include "FormatTest.h"
#include "formats/VPBPixels.h"

#include <array>
#include <cstdlib>
#include <ctime>

namespace {

constexpr std::size_t headerSize = 1024;

class VPB : public FormatTest {
protected:
    ZVFormatDesc* const format = Module(ZV_FourCC("VPB "));

    ClipPtr New_Output(std::string const& name, long width, long height) const
    {
        return FormatTest::New_Output(format, name, width, height, 25.0, ZV_ALPHA_NONE);
    }
    ClipPtr Create_VPB(std::string const& name, long width, long height) const
    {
        return Create(format, name, width, height, 25.0, ZV_ALPHA_NONE);
    }

    ClipPtr Open_Bytes(Bytes const& bytes) const { return Open(Write("given.vpb", bytes)); }

    /// What the module makes of the bytes of a file, empty when it answers 0.
    Bytes Decode(Bytes bytes, long width, long height) const
    {
        ClipPtr const clip{NewClipZV()};
        BitmapPtr const bitmap = Make_Bitmap(width, height);
        Bytes const untouched = Pixels_Of(*bitmap);
        ZVRectT<long> rect;
        long const answer =
            format->GetFrame(clip.get(), bitmap.get(), 0, &rect, width, height, 0,
                             bytes.empty() ? nullptr : bytes.data(), static_cast<long>(bytes.size()));
        if (answer) return Pixels_Of(*bitmap);
        EXPECT_EQ(Pixels_Of(*bitmap), untouched);
        return {};
    }
};

/// A record that holds the size of a picture.
ByteWriter& Put_Image(ByteWriter& out, long width, long height, long pixelOffset = 0)
{
    out.Put8(16).Put8(1).Put8(20).Put16(16).Put16(0).Put16(width).Put16(height);
    return out.Put16(0).Put16(0).Put32(pixelOffset).Put32(0);
}

/// Records of no interest of that size.
ByteWriter Filled_Up_To(std::size_t size)
{
    ByteWriter records;
    while (records.bytes.size() < size) {
        std::size_t const data = std::min<std::size_t>(255, size - records.bytes.size() - 3);
        records.Put({1, 0, static_cast<uint8_t>(data)}).PutZeros(data);
    }
    return records;
}

/// A file with these records, filled up to the header's size, and pixels behind it.
Bytes File_Of(ByteWriter records, Bytes const& pixels)
{
    records.bytes.resize(headerSize, 0xFF);
    return records.Put(pixels).bytes;
}

/// The greatest whole number at or below the quotient.
long Floor_Divide(long value, long divisor)
{
    return value / divisor - (value % divisor < 0);
}

uint8_t Byte_Of(long sixteenths)
{
    return static_cast<uint8_t>(std::clamp(Floor_Divide(sixteenths + 32767, 65536), 0L, 255L));
}

/// Colour of a pixel by the chrominance that its row has had so far.
std::array<uint8_t, 4> Colour_Of(long cb, long cr, long y)
{
    return {Byte_Of(cr * 91881 + y * 65536), Byte_Of(y * 65536 - cb * 22554 - cr * 46802),
            Byte_Of(y * 65536 + cb * 116130), 255};
}

Bytes Decoded_Row(Bytes const& row)
{
    long chroma[2] = {0, 0};
    Bytes pixels(2 * row.size());
    for (std::size_t x = 0; 2 * x < row.size(); ++x) {
        chroma[x % 2] = row[2 * x] - 128;
        auto const colour = Colour_Of(chroma[0], chroma[1], row[2 * x + 1]);
        std::ranges::copy(colour, &pixels[4 * x]);
    }
    return pixels;
}

TEST(VPBPixels, KnownColours)
{
    struct {
        char const* why;
        std::array<uint8_t, 3> colour;
        Bytes stored;                   // of two pixels of the colour: Cb, Y, Cr, Y
        std::array<uint8_t, 3> second;  // what the second pixel reads back as
    } const cases[] = {
        {"white", {255, 255, 255}, {128, 255, 128, 255}, {255, 255, 255}},
        {"black", {0, 0, 0}, {128, 0, 128, 0}, {0, 0, 0}},
        {"grey", {100, 100, 100}, {128, 100, 128, 100}, {100, 100, 100}},
        {"blue has all Cb", {0, 0, 255}, {255, 29, 107, 29}, {0, 0, 254}},
        {"red has all Cr", {255, 0, 0}, {85, 76, 255, 76}, {254, 0, 0}},
    };
    for (auto const& row : cases) {
        Bytes pixels, stored(4), read(8);
        for (int i = 0; i < 2; ++i)
            pixels.insert(pixels.end(), {row.colour[0], row.colour[1], row.colour[2], 77});
        VPB_Pixels_To_Row(pixels.data(), stored.data(), 2);
        EXPECT_EQ(stored, row.stored) << row.why;
        VPB_Row_To_Pixels(stored.data(), read.data(), 2);
        EXPECT_EQ(Bytes(read.begin() + 4, read.end()),
                  Bytes({row.second[0], row.second[1], row.second[2], 255}))
            << row.why;
    }
}

TEST(VPBPixels, EveryStoredColourIsReadToTheBit)
{
    // Each pair of bytes of chrominance with all luminances; the row's first pixel has the chrominance of
    // one.
    Bytes row(4 * 256), pixels(8 * 256);
    for (unsigned chroma = 0; chroma < 65536; ++chroma) {
        for (std::size_t y = 0; y < 256; ++y) {
            row[4 * y] = static_cast<uint8_t>(chroma);
            row[4 * y + 2] = static_cast<uint8_t>(chroma >> 8);
            row[4 * y + 1] = row[4 * y + 3] = static_cast<uint8_t>(y);
        }
        VPB_Row_To_Pixels(row.data(), pixels.data(), 512);
        ASSERT_EQ(pixels, Decoded_Row(row)) << chroma;
    }
}

TEST(VPBPixels, EveryColourIsStoredToTheBit)
{
    Bytes pixels(4 * 512), row(2 * 512);
    for (unsigned rg = 0; rg < 65536; ++rg) {
        long const r = rg >> 8, g = rg & 255;
        for (std::size_t i = 0; i < 512; ++i) {
            pixels[4 * i] = static_cast<uint8_t>(r);
            pixels[4 * i + 1] = static_cast<uint8_t>(g);
            pixels[4 * i + 2] = static_cast<uint8_t>(i / 2);
        }
        VPB_Pixels_To_Row(pixels.data(), row.data(), 512);
        for (std::size_t i = 0; i < 512; ++i) {
            long const b = static_cast<long>(i / 2);
            long const chroma = i % 2 ? 32768 * r - 27439 * g - 5329 * b : -11059 * r - 21709 * g + 32768 * b;
            long const luma = 19595 * r + 38470 * g + 7471 * b;
            ASSERT_EQ(row[2 * i], Floor_Divide(chroma + 0x807FFF, 65536)) << rg << ' ' << i;
            ASSERT_EQ(row[2 * i + 1], Floor_Divide(luma + 32767, 65536)) << rg << ' ' << i;
        }
    }
}

long Little16(Bytes const& bytes, std::size_t at)
{
    return bytes[at] | bytes[at + 1] << 8;
}

/// The moment in a time record; its weekday must be that of its date.
std::time_t Time_In(Bytes const& bytes, std::size_t at)
{
    auto const field = [&](std::size_t i) { return static_cast<int>(Little16(bytes, at + 2 * i)); };
    std::tm local{};
    local.tm_mday = field(1), local.tm_mon = field(2) - 1, local.tm_year = field(3) + 80;
    local.tm_hour = field(4), local.tm_min = field(5), local.tm_sec = field(6);
    local.tm_isdst = -1;
    std::time_t const time = std::mktime(&local);
    EXPECT_EQ(Little16(bytes, at), local.tm_wday);
    EXPECT_EQ(Little16(bytes, at + 14), 0);
    return time;
}

TEST_F(VPB, AWrittenFileByteByByte)
{
    std::time_t const before = std::time(nullptr);
    {
        ClipPtr const clip = Create_VPB("written.vpb", 10, 10);
        ASSERT_TRUE(clip);
        EXPECT_EQ(clip->BitDepth, 8);
        ASSERT_TRUE(Add_Frame_At(clip.get(), 0, Bytes(400, 255)));
        EXPECT_EQ(clip->RawFrames, 1);
    }
    Bytes const file = Read("written.vpb");
    ASSERT_EQ(file.size(), 2048u);
    ByteWriter head;
    head.Put8(3).Put8(0).Put8(7).Put("Picture");
    head.Put8(4).Put8(1).Put8(4).Put({0x00, 0x04, 0x00, 0x00});
    head.Put8(2).Put8(0).Put8(11).Put("written.vpb");
    head.Put8(16).Put8(1).Put8(20).Put16(16).Put16(0).Put16(10).Put16(10);
    head.Put({30, 0, 40, 0}).Put32(0).Put32(1024);
    head.Put8(151).Put8(0).Put8(38);
    std::size_t const line = head.bytes.size();
    EXPECT_EQ(Bytes(file.begin(), file.begin() + static_cast<long>(line)), head.bytes);
    for (std::size_t i = line; i < line + 38; ++i)
        EXPECT_TRUE(file[i] >= ' ' && file[i] <= '~');
    Bytes const rate = {153, 1, 2, 0, 100, 152, 1, 16};
    std::size_t const time = line + 38 + rate.size();
    EXPECT_EQ(Bytes(file.begin() + static_cast<long>(line) + 38, file.begin() + static_cast<long>(time)),
              rate);
    EXPECT_GE(Time_In(file, time), before);
    EXPECT_LE(Time_In(file, time), std::time(nullptr));
    for (std::size_t i = time + 16; i < headerSize; ++i)
        EXPECT_EQ(file[i], 0xFF) << i;
    for (std::size_t i = headerSize; i < file.size(); ++i)
        EXPECT_EQ(file[i], i >= headerSize + 200 ? 0 : i % 2 ? 255 : 128) << i;
    EXPECT_EQ(Type_Of("written.vpb"), ZV_FourCC("VPB "));
}

TEST_F(VPB, PixelsArePaddedToWholeBlocks)
{
    struct {
        long width, height, imageSize;
    } const cases[] = {{720, 486, 700416}, {10, 10, 1024}, {32, 16, 1024}, {1, 1, 1024}, {512, 130, 133120}};
    for (auto const& row : cases) {
        auto const pixels = static_cast<std::size_t>(row.width * row.height);
        Bytes const picture = Random_Bytes(1, 4 * pixels);
        {
            ClipPtr const clip = Create_VPB("padded.vpb", row.width, row.height);
            ASSERT_TRUE(clip && Add_Frame_At(clip.get(), 0, picture));
        }
        Bytes const file = Read("padded.vpb");
        ASSERT_EQ(file.size(), headerSize + static_cast<std::size_t>(row.imageSize)) << row.width;
        EXPECT_EQ(Little16(file, 13) | Little16(file, 15) << 16, row.imageSize);
        for (std::size_t i = headerSize + 2 * pixels; i < file.size(); ++i)
            ASSERT_EQ(file[i], 0);
        // Rows lie without a gap, and each begins with Cb.
        Bytes stored(2 * pixels);
        for (long y = 0; y < row.height; ++y)
            VPB_Pixels_To_Row(&picture[static_cast<std::size_t>(4 * y * row.width)],
                              &stored[static_cast<std::size_t>(2 * y * row.width)], row.width);
        EXPECT_EQ(Bytes(file.begin() + headerSize, file.begin() + static_cast<long>(headerSize + 2 * pixels)),
                  stored);
    }
}

TEST_F(VPB, FramesBecomeASeriesOfFiles)
{
    long const width = 33, height = 7;
    std::vector<Bytes> frames;
    {
        ClipPtr const clip = New_Output("shot[##].vpb", width, height);
        clip->Frames = 3;
        ASSERT_TRUE(CreateClipZV(clip.get(), 0) && BeginClipIOZV(clip.get(), nullptr));
        for (unsigned i = 0; i < 3; ++i) {
            frames.push_back(Random_Pixels(width, height, i));
            ASSERT_TRUE(Add_Frame_At(clip.get(), i, frames.back()));
        }
        Close(clip);
        EXPECT_EQ(clip->RawFrames, 3);
    }
    ClipPtr const clip = Open(environment.Spec("shot00.vpb"));
    ASSERT_TRUE(clip);
    EXPECT_EQ(clip->FileName, environment.Spec("shot[##].vpb"));
    EXPECT_EQ(clip->Format, format);
    EXPECT_EQ(clip->Frames, 3);
    EXPECT_TRUE(clip->Width == width && clip->Height == height);
    EXPECT_TRUE(clip->AlphaType == ZV_ALPHA_NONE && clip->BitDepth == 8);
    for (long i : {2L, 0L, 1L}) {
        ByteWriter expected;
        Bytes row(2 * width);
        for (std::size_t y = 0; y < height; ++y) {
            VPB_Pixels_To_Row(&frames[static_cast<std::size_t>(i)][4 * width * y], row.data(), width);
            expected.Put(Decoded_Row(row));
        }
        EXPECT_EQ(Clip_Frame(clip.get(), i), expected.bytes) << i;
    }
}

TEST_F(VPB, AFrameReplacesTheFileOfItsName)
{
    environment.Write("again.vpb", std::string(100000, 'x'));
    ClipPtr const clip = Create_VPB("again.vpb", 8, 2);
    for (uint8_t grey : {uint8_t{10}, uint8_t{200}}) {
        ASSERT_TRUE(Add_Frame_At(clip.get(), 0, Bytes(64, grey)));
        Bytes const file = Read("again.vpb");
        EXPECT_EQ(file.size(), 2048u);
        EXPECT_EQ(file[headerSize + 1], grey);
    }
    EXPECT_EQ(clip->RawFrames, 2);
}

TEST_F(VPB, WritingThatCannotBeDoneAnswers0)
{
    BitmapPtr const bitmap = Make_Bitmap(40, 40);
    {
        ClipPtr const clip = Create_VPB("full.vpb", 40, 40);
        for (rlim_t size : {0u, 1000u, 1024u, 4000u, 5000u}) {
            FileSizeLimit const full(size);
            SetError(0);
            EXPECT_FALSE(Add_Frame_At(clip.get(), 0, bitmap.get())) << size;
            EXPECT_NE(GetErrorZV(), 0u) << size;
        }
        EXPECT_EQ(clip->RawFrames, 0);
        EXPECT_TRUE(Add_Frame_At(clip.get(), 0, bitmap.get())) << "the disk has room again";
        clip->Format = nullptr;
        EXPECT_FALSE(format->AddFrame(clip.get(), bitmap.get(), 0, nullptr));
    }
    ClipPtr const clip = Create_VPB("wide.vpb", 70000, 1);
    EXPECT_FALSE(Add_Frame_At(clip.get(), 0, Make_Bitmap(70000, 1).get())) << "no field of 16 bits holds it";
    BitmapPtr const deep = Make_Bitmap(8, 2, {}, ZV_BITMAP_RGBA16);
    EXPECT_FALSE(format->AddFrame(clip.get(), deep.get(), 0, nullptr)) << "the module takes 8 bits";
}

TEST_F(VPB, TheWalkFindsTheImageRecord)
{
    Bytes const pixels = {10, 100, 200, 50};  // two pixels
    Bytes const picture = Decoded_Row(pixels);
    struct {
        char const* why;
        ByteWriter records;
        bool isFound;
    } cases[] = {
        {"at the start", {}, true},
        {"behind others", ByteWriter{}.Put({3, 0, 2, 16, 16}).Put({4, 1, 0xFF}).PutZeros(255), true},
        {"a record without data counts as one byte long", ByteWriter{}.Put({7, 0, 0, 99}), true},
        {"so without that byte the walk is out of step", ByteWriter{}.Put({7, 0, 0}), false},
        {"tag 16 with another depth is none", ByteWriter{}.Put({16, 1, 2, 0, 24}), true},
        {"depth is read big-endian", ByteWriter{}.Put({16, 1, 2, 16, 0}), true},
        {"the last place it fits in", Filled_Up_To(1001), true},
        {"one that the header cuts short", Filled_Up_To(1002), false},
    };
    for (auto& row : cases) {
        ByteWriter records = row.records;
        Bytes const file = File_Of(Put_Image(records, 2, 1), pixels);
        ASSERT_EQ(file.size(), headerSize + 4) << row.why;
        EXPECT_EQ(Decode(file, 2, 1), row.isFound ? picture : Bytes{}) << row.why;
        EXPECT_EQ(Open_Bytes(file) != nullptr, row.isFound) << row.why;
    }
    EXPECT_EQ(Decode(File_Of({}, pixels), 2, 1), Bytes{}) << "none";
}

TEST_F(VPB, PixelsMayLieBehindAnOffset)
{
    ByteWriter records;
    Bytes const row = {10, 100, 200, 50, 77, 88};
    Bytes pixels(1024, 0xEE);
    pixels.insert(pixels.end(), row.begin(), row.end());
    Bytes file = File_Of(Put_Image(records, 3, 1, 1024), pixels);
    EXPECT_EQ(Decode(file, 3, 1), Decoded_Row(row));
    file.pop_back();
    EXPECT_EQ(Decode(file, 3, 1), Bytes{});
    ByteWriter far;
    EXPECT_EQ(Decode(File_Of(Put_Image(far, 3, 1, 0xFFFFFFFF), row), 3, 1), Bytes{});
}

TEST_F(VPB, AFileCutShortGivesBackgroundOrNoClip)
{
    ByteWriter records;
    Bytes const pixels = Random_Bytes(3, 2 * 5 * 4);
    Bytes const file = File_Of(Put_Image(records, 5, 4), pixels);
    Bytes const whole = Decode(file, 5, 4);
    ASSERT_FALSE(whole.empty());
    for (std::size_t length = 0; length < file.size(); ++length) {
        Bytes const cut = Head(file, length);
        EXPECT_EQ(Decode(cut, 5, 4), Bytes{}) << length;
        // Files on disk at every length near a border, and at some in between.
        if (length % 100 && (length + 2 < headerSize || length > headerSize + 2) && length + 2 < file.size())
            continue;
        ClipPtr const clip = Open_Bytes(cut);
        EXPECT_EQ(clip != nullptr, length >= headerSize) << length;
        if (clip) {
            EXPECT_EQ(Clip_Frame(clip.get(), 0), Bytes{}) << length;
        }
    }
}

TEST_F(VPB, APictureWithoutSizeIsRefused)
{
    for (auto const& [width, height] : {std::pair{0L, 4L}, {4L, 0L}, {0L, 0L}}) {
        ByteWriter records;
        EXPECT_FALSE(Open_Bytes(File_Of(Put_Image(records, width, height), Bytes(64))));
    }
    // Far more pixels than the file has: nothing is taken from beyond it.
    ByteWriter records;
    EXPECT_EQ(Decode(File_Of(Put_Image(records, 65535, 65535), Bytes(64)), 4, 4), Bytes{});
}

TEST_F(VPB, AClipOfAnotherSizeGetsThePictureScaled)
{
    ByteWriter records;
    Bytes pixels;
    for (int i = 0; i < 4 * 4; ++i)
        pixels.insert(pixels.end(), {128, static_cast<uint8_t>(16 * i)});
    Bytes const file = File_Of(Put_Image(records, 4, 4), pixels);
    Bytes const half = Decode(file, 2, 2);
    ASSERT_EQ(half.size(), 16u);
    EXPECT_EQ(half[4 * 1 + 1], 16 * 2);
    EXPECT_EQ(half[4 * 3 + 1], 16 * 10);
}

}  // namespace
