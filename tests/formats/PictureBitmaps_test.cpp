// The bitmaps of pictures: every depth and packing, made byte by byte, and compressed ones.
#include "PictureBytes.h"
#include "formats/pict/PackBits.h"

#include <cstdlib>

namespace {

Bytes Decoded(Bytes const& picture)
{
    BitmapPtr const bitmap{Decode_Picture(picture.data(), picture.size())};
    return bitmap ? Bytes{bitmap->Pixels, bitmap->Pixels + bitmap->Size} : Bytes{};
}

std::string Decoded_Art(Bytes const& picture)
{
    BitmapPtr const bitmap{Decode_Picture(picture.data(), picture.size())};
    return bitmap ? Art(*bitmap) : "failed";
}

ByteWriter& Put_Rect(ByteWriter& out, long width, long height)
{
    return out.Put16(0).Put16(0).Put16(height).Put16(width);
}

/// A pixel map without its colours.
ByteWriter Pixel_Map(long rowBytes, long width, long height, long packing, long depth, long components)
{
    ByteWriter out;
    Put_Rect(out.Put16(0x8000 | rowBytes), width, height).Put16(0).Put16(packing).PutZeros(12);
    return out.Put16(depth < 16 ? 0 : 16)
        .Put16(depth)
        .Put16(components)
        .Put16(depth / components)
        .PutZeros(12);
}

ByteWriter Colours(Bytes const& grey, bool inOrder)
{
    ByteWriter out;
    out.Put32(0).Put16(inOrder ? 0x8000 : 0).Put16(static_cast<long>(grey.size()) - 1);
    for (std::size_t i = 0; i < grey.size(); ++i)
        out.Put16(static_cast<long>(inOrder ? 77 : i))
            .Put16(grey[i] << 8)
            .Put16(grey[i] << 8)
            .Put16(grey[i] << 8);
    return out;
}

/// The rectangles and the mode behind the description.
ByteWriter Places(long width, long height, long mode = 0)
{
    ByteWriter out;
    Put_Rect(Put_Rect(out, width, height), width, height).Put16(mode);
    return out;
}

/// A row as packets, by another way than the library: literals of three, and runs where there are two alike.
Bytes Packed(Bytes const& row, std::size_t unit)
{
    ByteWriter out;
    for (std::size_t at = 0; at < row.size();) {
        auto const units = [&](std::size_t index) {
            return Bytes(row.begin() + static_cast<long>(at + index * unit),
                         row.begin() + static_cast<long>(at + (index + 1) * unit));
        };
        std::size_t const rest = (row.size() - at) / unit;
        if (rest >= 2 && units(0) == units(1)) {
            out.Put8(-1).Put(units(0)).Put8(-128);
            at += 2 * unit;
            continue;
        }
        std::size_t const count = std::min<std::size_t>(rest, 3);
        out.Put8(static_cast<long>(count) - 1);
        for (std::size_t i = 0; i < count; ++i)
            out.Put(units(i));
        at += count * unit;
    }
    return out.bytes;
}

/// Rows packed one by one behind their sizes.
Bytes Packed_Rows(Bytes const& data, std::size_t rowSize, long rowBytes, std::size_t unit)
{
    ByteWriter out;
    for (std::size_t at = 0; at < data.size(); at += rowSize) {
        auto const row = data.begin() + static_cast<long>(at);
        Bytes const packed = Packed(Bytes(row, row + static_cast<long>(rowSize)), unit);
        auto const size = static_cast<long>(packed.size());
        (rowBytes > 250 ? out.Put16(size) : out.Put8(size)).Put(packed);
    }
    return out.bytes;
}

class PictureBitmaps : public FormatTest {};

TEST_F(PictureBitmaps, IndexedOnesShowTheirColours)
{
    struct {
        long depth, width;
        bool isPacked, inOrder;
    } const cases[] = {
        {1, 5, false, false},  {1, 70, true, true},   {2, 9, false, true}, {2, 300, true, false},
        {4, 3, true, false},   {4, 501, true, true},  {8, 1, true, false}, {8, 251, true, true},
        {8, 700, false, true}, {8, 120, true, false},
    };
    unsigned seed = 0;
    for (auto const& row : cases) {
        long const height = 3, rowBytes = (row.width * row.depth + 15) / 16 * 2;
        Bytes const grey = Random_Bytes(++seed, std::size_t{1} << row.depth);
        Bytes const data = Random_Bytes(100 + seed, static_cast<std::size_t>(rowBytes * height));
        PictureBytes picture(row.width, height);
        picture.Opcode(row.isPacked ? 0x98 : 0x90,
                       Pixel_Map(rowBytes, row.width, height, 0, row.depth, 1).bytes);
        picture.Put(Colours(grey, row.inOrder).bytes).Put(Places(row.width, height).bytes);
        bool const isPlain = !row.isPacked || rowBytes < 8;
        picture.Put(isPlain ? data : Packed_Rows(data, static_cast<std::size_t>(rowBytes), rowBytes, 1));
        Bytes expected;
        for (long y = 0; y < height; ++y)
            for (long x = 0; x < row.width; ++x) {
                unsigned const bits = data[static_cast<std::size_t>(y * rowBytes + x * row.depth / 8)];
                unsigned const shift = static_cast<unsigned>(8 - row.depth - x * row.depth % 8);
                uint8_t const value = grey[bits >> shift & ((1u << row.depth) - 1)];
                expected.insert(expected.end(), {value, value, value, 255});
            }
        EXPECT_EQ(Decoded(picture.End()), expected) << row.depth << " bits, " << row.width << " wide";
    }
}

TEST_F(PictureBitmaps, DirectOnesComeInEveryPacking)
{
    struct {
        long depth, packing, components, width;
    } const cases[] = {
        {16, 1, 3, 7},  {16, 0, 3, 3},  {16, 0, 3, 4},   {16, 3, 3, 200}, {32, 1, 3, 5},
        {32, 1, 4, 90}, {32, 2, 3, 11}, {32, 2, 3, 100}, {32, 0, 3, 1},   {32, 4, 4, 1},
        {32, 0, 4, 2},  {32, 4, 3, 62}, {32, 4, 4, 63},  {32, 4, 3, 500},
    };
    unsigned seed = 0;
    for (auto const& row : cases) {
        std::size_t const height = 4, pixelBytes = static_cast<std::size_t>(row.depth / 8);
        auto const width = static_cast<std::size_t>(row.width);
        long const rowBytes = row.width * row.depth / 8;
        Bytes const data = Random_Bytes(++seed, width * height * pixelBytes);
        Bytes expected, planes, triples;
        for (std::size_t i = 0; i < width * height; ++i) {
            uint8_t const* pixel = &data[i * pixelBytes];
            if (row.depth == 16) {
                unsigned const word = static_cast<unsigned>(pixel[0] << 8 | pixel[1]);
                for (unsigned shift : {10u, 5u, 0u})
                    expected.push_back(static_cast<uint8_t>((word >> shift & 31) * 33 / 4));
                expected.push_back(255);
                continue;
            }
            expected.insert(expected.end(), {pixel[1], pixel[2], pixel[3]});
            expected.push_back(row.components == 4 ? pixel[0] : 255);
            triples.insert(triples.end(), pixel + 1, pixel + 4);
        }
        for (std::size_t y = 0; y < height && row.depth == 32; ++y)
            for (std::size_t plane = static_cast<std::size_t>(4 - row.components); plane < 4; ++plane)
                for (std::size_t x = 0; x < width; ++x)
                    planes.push_back(data[4 * (y * width + x) + plane]);
        PictureBytes picture(row.width, static_cast<long>(height));
        picture.Opcode(0x9A, {0, 0, 0, 255})
            .Put(Pixel_Map(rowBytes, row.width, static_cast<long>(height), row.packing, row.depth,
                           row.components)
                     .bytes)
            .Put(Places(row.width, static_cast<long>(height)).bytes);
        if (rowBytes < 8 || row.packing == 1)
            picture.Put(data);
        else if (row.packing == 2)
            picture.Put(triples);
        else if (row.depth == 16)
            picture.Put(Packed_Rows(data, 2 * width, rowBytes, 2));
        else
            picture.Put(Packed_Rows(planes, planes.size() / height, rowBytes, 1));
        EXPECT_EQ(Decoded(picture.End()), expected) << row.depth << " bits, packing " << row.packing;
    }
}

/// Eight by one pixels of ink and paper, by that mode.
PictureBytes Ink(long mode)
{
    PictureBytes picture(8, 1);
    picture.Opcode(0x1A, {255, 255, 0, 0, 0, 0}).Rect(0x31, 0, 0, 4, 1);
    picture.Opcode(0x1A, {0, 0, 255, 255, 0, 0}).Opcode(0x1B, {0, 0, 0, 0, 255, 255});
    Put_Rect(picture.Opcode(0x90).Put16(1), 8, 1).Put(Places(8, 1, mode).bytes).Put8(0xAA);
    return picture;
}

TEST_F(PictureBitmaps, InkAndPaperTakeTheColoursAndTheMode)
{
    char const* const arts[] = {"gbgbgbgb", "grgrg.g.", "crcr#.#.", "brbrb.b.",
                                "bgbgbgbg", "rgrg.g.g", "rcrc.#.#", "rbrb.b.b"};
    for (long mode = 0; mode < 8; ++mode)
        EXPECT_EQ(Decoded_Art(Ink(mode).End()), arts[mode]) << mode;
    EXPECT_EQ(Decoded_Art(Ink(64).End()), arts[0]) << "dithering is of no use here";
}

TEST_F(PictureBitmaps, PartsAreStretchedClippedAndMasked)
{
    struct {
        char const* why;
        Bytes source, target, clip, mask;
        std::string art;
    } const cases[] = {
        {"doubled", {0, 0, 1, 2}, {0, 0, 2, 4}, {}, {}, "rrgg..../rrgg...."},
        {"a part, shifted", {0, 2, 1, 4}, {1, 5, 2, 7}, {}, {}, "......../.....b#."},
        {"halved takes every second column", {0, 0, 1, 4}, {0, 0, 1, 2}, {}, {}, "rb....../........"},
        {"beyond the bitmap there is nothing", {0, 2, 1, 6}, {0, 0, 1, 8}, {}, {}, "bb##..../........"},
        {"clipped", {0, 0, 1, 4}, {0, 0, 2, 8}, {0, 3, 1, 6}, {}, "...gbb../........"},
        {"masked", {0, 0, 1, 4}, {0, 0, 2, 8}, {}, {1, 1, 2, 7}, "......../.rggbb#."},
        {"both", {0, 0, 1, 4}, {0, 0, 2, 8}, {0, 0, 2, 4}, {1, 1, 2, 7}, "......../.rgg...."},
        {"no target", {0, 0, 1, 4}, {0, 4, 1, 4}, {}, {}, "......../........"},
    };
    auto const rect = [](Bytes const& sides) {
        ByteWriter out;
        for (uint8_t side : sides)
            out.Put16(side);
        return out.bytes;
    };
    for (auto const& row : cases) {
        PictureBytes picture(8, 2);
        if (!row.clip.empty()) picture.Opcode(0x01, {0, 10}).Put(rect(row.clip));
        picture.Opcode(row.mask.empty() ? 0x9A : 0x9B, {0, 0, 0, 255})
            .Put(Pixel_Map(16, 4, 1, 1, 32, 3).bytes);
        picture.Put(rect(row.source)).Put(rect(row.target)).Put16(0);
        if (!row.mask.empty()) picture.Put({0, 10}).Put(rect(row.mask));
        picture.Put({0, 255, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 0, 0, 0, 0});
        EXPECT_EQ(Decoded_Art(picture.End()), row.art) << row.why;
    }
}

TEST_F(PictureBitmaps, PatternsOfPixelsRepeat)
{
    PictureBytes picture(5, 3);
    picture.Opcode(0x13, {0, 1}).PutZeros(8).Put(Pixel_Map(2, 2, 2, 0, 8, 1).bytes);
    picture.Put(Colours({0, 255}, false).bytes).Put({0, 1, 1, 0});
    EXPECT_EQ(Decoded_Art(picture.Rect(0x31, 0, 0, 5, 3).End()), "#o#o#/o#o#o/#o#o#");
}

TEST_F(PictureBitmaps, DamageIsToldAndWhatCameBeforeIsDrawn)
{
    PictureBytes whole(40, 3);
    whole.Opcode(0x9A, {0, 0, 0, 255}).Put(Pixel_Map(160, 40, 3, 0, 32, 4).bytes).Put(Places(40, 3).bytes);
    std::size_t const start = whole.bytes.size();
    whole.Put(Packed_Rows(Random_Bytes(1, 480), 160, 160, 1));
    for (std::size_t length = 60; length < whole.bytes.size(); ++length)
        EXPECT_EQ(Decoded(Head(whole.bytes, length)), Bytes{}) << length;
    Bytes const cut = Head(whole.bytes, whole.bytes.size() - 1);
    BitmapPtr const bitmap = Make_Bitmap(40, 3);
    EXPECT_FALSE(Draw_Picture(cut.data(), cut.size(), bitmap.get(), {0, 0, 40, 3}));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_CLIP);
    Bytes const good = Decoded(whole.End()), drawn = Pixels_Of(*bitmap);
    EXPECT_TRUE(std::equal(good.begin(), good.begin() + 320, drawn.begin()));

    // A row whose packets end early goes on with zeros; one with too many is cut.
    Bytes early = Head(whole.bytes, start);
    early.insert(early.end(), {2, 0x81, 9, 4, 0x81, 9, 0x81, 8});
    EXPECT_EQ(Decoded(early), Bytes{}) << "the third row is missing";
    early.push_back(0);
    Bytes const pixels = Decoded(early);
    ASSERT_EQ(pixels.size(), 480u);
    EXPECT_EQ(Bytes(pixels.begin(), pixels.begin() + 4), (Bytes{9, 9, 9, 9}));
    EXPECT_EQ(Bytes(pixels.begin() + 36, pixels.begin() + 40), (Bytes{9, 9, 0, 9}));

    struct {
        char const* why;
        ByteWriter map;
    } const cases[] = {
        {"rows shorter than the bitmap", Pixel_Map(158, 40, 3, 1, 32, 3)},
        {"narrow rows of a wide bitmap", Pixel_Map(6, 40, 3, 4, 32, 3)},
        {"no such depth", Pixel_Map(160, 40, 3, 0, 24, 3)},
        {"no such packing", Pixel_Map(160, 40, 3, 5, 32, 3)},
        {"words of 32 bits", Pixel_Map(160, 40, 3, 3, 32, 3)},
        {"five components", Pixel_Map(160, 40, 3, 4, 32, 5)},
        {"an empty bitmap", Pixel_Map(160, 0, 3, 4, 32, 3)},
    };
    for (auto const& row : cases) {
        PictureBytes picture(40, 3);
        picture.Opcode(0x9A, {0, 0, 0, 255}).Put(row.map.bytes).Put(Places(40, 3).bytes).PutZeros(600);
        EXPECT_EQ(Decoded(picture.End()), Bytes{}) << row.why;
    }
}

TEST_F(PictureBitmaps, CompressedOnesAreDecodedMovedAndMasked)
{
    Bytes pixels;
    for (int i = 0; i < 32 * 16; ++i)
        pixels.insert(pixels.end(),
                      {static_cast<uint8_t>(i % 32 * 8), static_cast<uint8_t>(i / 32 * 16), 90});
    environment.Write("a.rgb", As_Text(pixels));
    std::string const at = "cd " + environment.Path() + "; gm convert ";
    ASSERT_EQ(std::system((at + "-size 32x16 -depth 8 a.rgb -quality 95 a.jpg").c_str()), 0);
    ASSERT_EQ(std::system((at + "a.jpg -depth 8 b.rgb").c_str()), 0);
    Bytes const jpeg = Read("a.jpg"), expected = Read("b.rgb");
    ASSERT_EQ(expected.size(), pixels.size());
    auto const compressed = [&](Bytes const& mask, std::size_t cut) {
        ByteWriter data;
        data.Put16(0).Put32(1 << 16).PutZeros(12).Put32(1 << 16).PutZeros(4).Put32(4 << 16).Put32(2 << 16);
        data.Put32(1 << 30).Put32(0).PutZeros(8).Put16(64);
        Put_Rect(data, 32, 16).Put32(0).Put32(static_cast<long>(mask.size())).Put(mask);
        data.Put32(86).Put("jpeg").PutZeros(24).Put16(32).Put16(16).PutZeros(8);
        data.Put32(static_cast<long>(jpeg.size())).PutZeros(34).Put16(24).Put16(-1).Put(Head(jpeg, cut));
        PictureBytes picture(40, 20);
        return picture.Opcode(0x8200).Put32(static_cast<long>(data.bytes.size())).Put(data.bytes).bytes;
    };
    Bytes const drawn = Decoded(compressed({}, jpeg.size()));
    ASSERT_EQ(drawn.size(), 4u * 40 * 20);
    int largest = 0;
    for (std::size_t y = 0; y < 16; ++y)
        for (std::size_t i = 0; i < 32 * 3; ++i)
            largest = std::max(
                largest, std::abs(drawn[4 * (40 * (y + 2) + 4 + i / 3) + i % 3] - expected[96 * y + i]));
    EXPECT_LE(largest, 12) << "two decoders, which spread colours in ways of their own";
    EXPECT_EQ(drawn[3], 0) << "beside it nothing is drawn";
    Bytes const masked = Decoded(compressed({0, 10, 0, 5, 0, 5, 0, 6, 0, 6}, jpeg.size()));
    ASSERT_EQ(masked.size(), drawn.size());
    for (std::size_t i = 0; i < 800; ++i)
        EXPECT_EQ(masked[4 * i + 3], i == 5 * 40 + 5 ? 255 : 0) << i;
    EXPECT_EQ(Decoded(compressed({}, 30)), Bytes{});
    EXPECT_NE(GetErrorZV(), ZV_ERR_NONE);
}

TEST(PackBits, EveryRowComesBackWithinItsBound)
{
    std::mt19937 random(7);
    for (int kind = 0; kind < 300; ++kind) {
        std::size_t const size = random() % 600;
        Bytes row(size + PackBitsSlack);
        // Runs of all lengths, with few values so that they meet.
        for (std::size_t i = 0; i < size;) {
            std::size_t const end = std::min<std::size_t>(size, i + 1 + random() % (kind % 9 ? 5 : 300));
            std::fill(row.begin() + static_cast<long>(i), row.begin() + static_cast<long>(end),
                      static_cast<uint8_t>(random() % 3));
            i = end;
        }
        Bytes packed(Packed_Bits_Bound(size)), back(size + PackBitsSlack);
        auto const length =
            static_cast<std::size_t>(Pack_Bits(row.data(), size, packed.data()) - packed.data());
        ASSERT_LE(length + PackBitsSlack, packed.size());
        packed.resize(length);
        packed.shrink_to_fit();
        Unpack_Bits(packed, 0, 1, back.data(), size);
        EXPECT_TRUE(std::equal(back.begin(), back.begin() + static_cast<long>(size), row.begin())) << kind;
    }
}

}  // namespace
