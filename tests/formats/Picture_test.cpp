// The picture player: each family of opcodes on pictures made byte by byte, drawn small and shown as text.
#include "PictureBytes.h"
#include "files/ResourceFile.h"

#include <filesystem>

namespace {

class Picture : public FormatTest {
protected:
    /// The picture as text; "failed" when it cannot be drawn.
    static std::string Drawn(Bytes const& picture)
    {
        BitmapPtr const bitmap{Decode_Picture(picture.data(), picture.size())};
        return bitmap ? Art(*bitmap) : "failed";
    }
    static std::string Drawn(Bytes const& picture, long width, long height, ZVRectT<long> const& area)
    {
        BitmapPtr const bitmap = Make_Bitmap(width, height);
        return Draw_Picture(picture.data(), picture.size(), bitmap.get(), area) ? Art(*bitmap) : "failed";
    }
    static Bytes Pixels(Bytes const& picture)
    {
        BitmapPtr const bitmap{Decode_Picture(picture.data(), picture.size())};
        return bitmap ? Pixels_Of(*bitmap) : Bytes{};
    }
};

struct DrawnCase {
    char const* why;
    PictureBytes picture;
    std::string art;
};

PictureBytes Start(long width, long height)
{
    return {width, height};
}

Bytes Points(std::initializer_list<int> values)
{
    ByteWriter out;
    for (int value : values)
        out.Put16(value);
    return out.bytes;
}

/// A region of rows, each its y and its changes, with the marks that end them left out.
Bytes Region(Bytes const& bounds, std::vector<std::vector<int>> const& rows)
{
    ByteWriter data;
    for (auto const& row : rows) {
        for (int value : row)
            data.Put16(value);
        data.Put16(0x7FFF);
    }
    data.Put16(0x7FFF);
    return ByteWriter{}.Put16(static_cast<long>(10 + data.bytes.size())).Put(bounds).Put(data.bytes).bytes;
}

/// An L: four columns of two rows, then two columns of two rows.
Bytes const elbow = Region(Points({1, 1, 5, 5}), {{1, 1, 5}, {3, 3, 5}, {5, 1, 3}});
Bytes const red = Points({-1, 0, 0}), green = Points({0, -1, 0}), blue = Points({0, 0, -1});
Bytes const pen2 = Points({2, 2});

// ---- shapes
// -------------------------------------------------------------------------------------------------

DrawnCase shapeCases[] = {
    {"a frame lies inside its rectangle", Start(6, 5).Rect(0x30, 1, 1, 5, 4),
     "....../.####./.#..#./.####./......"},
    {"a pen of more pixels, higher than wide",
     Start(6, 5).Opcode(0x07, Points({2, 1})).Rect(0x30, 0, 0, 6, 5), "######/######/#....#/######/######"},
    {"a pen wider than the rectangle fills it",
     Start(3, 3).Opcode(0x07, Points({9, 9})).Rect(0x30, 0, 0, 3, 2), "###/###/..."},
    {"paint, erase, invert and fill, the last four where the first was",
     Start(2, 1).Rect(0x31, 0, 0, 2, 1).Opcode(0x3A).Opcode(0x3B).Opcode(0x1A, red).Opcode(0x3C), "rr"},
    {"erased with a colour", Start(2, 1).Opcode(0x1B, green).Rect(0x32, 0, 0, 1, 1), "g."},
    {"inverted red is cyan", Start(1, 1).Opcode(0x1A, red).Rect(0x31, 0, 0, 1, 1).Opcode(0x3B), "c"},
    {"an oval", Start(8, 8).Rect(0x51, 0, 0, 8, 8),
     "..####../.######./########/########/########/########/.######./..####.."},
    {"the frame of an oval", Start(8, 6).Rect(0x50, 0, 0, 8, 6),
     "..####../.#....#./#......#/#......#/.#....#./..####.."},
    {"a rectangle with round corners", Start(8, 5).Opcode(0x0B, Points({4, 4})).Rect(0x41, 0, 0, 8, 5),
     ".######./########/########/########/.######."},
    {"the quarter from the top to the right", Start(6, 6).Opcode(0x61, Points({0, 0, 6, 6, 0, 90})),
     "...##./...###/...###/....../....../......"},
    {"all but that, counterclockwise", Start(6, 6).Opcode(0x61, Points({0, 0, 6, 6, 0, -270})),
     ".##.../###.../###.../######/######/.####."},
    {"the frame of an arc, and one of the other half",
     Start(6, 6).Opcode(0x60, Points({0, 0, 6, 6, 180, 180})).Opcode(0x1A, red).Opcode(0x68, Points({0, 90})),
     ".##rr./##..rr/#....r/#...../##..../.##..."},
    {"a triangle", Start(6, 3).Opcode(0x71, Points({26, 0, 0, 3, 6, 0, 0, 0, 6, 3, 3, 0, 0})),
     "#####./.###../..#..."},
    {"what a polygon goes round twice is outside",
     Start(3, 3).Opcode(0x71,
                        Points({50, 0, 0, 3, 3, 0, 0, 0, 3, 3, 3, 3, 0, 0, 0, 1, 1, 1, 2, 2, 2, 2, 1, 1, 1})),
     "###/#.#/###"},
    {"the frame of a polygon is not closed",
     Start(4, 4).Opcode(0x70, Points({22, 0, 0, 3, 3, 0, 0, 0, 3, 3, 3})), "####/...#/...#/...#"},
    {"a region", Start(6, 6).Opcode(0x81, elbow), "....../.####./.####./.##.../.##.../......"},
    {"the same one framed, in another colour",
     Start(8, 7)
         .Opcode(0x81, Region(Points({0, 0, 7, 8}), {{0, 0, 8}, {7, 0, 8}}))
         .Opcode(0x1A, green)
         .Opcode(0x88),
     "gggggggg/g######g/g######g/g######g/g######g/g######g/gggggggg"},
    {"the edge of the picture frames nothing", Start(3, 3).Opcode(0x80, Points({10, -5, -5, 9, 2})),
     ".#./.#./.#."},
    {"verbs that do not exist",
     Start(1, 1).Rect(0x35, 0, 0, 1, 1).Opcode(0x77, Points({10, 0, 0, 1, 1})).Opcode(0x6D, Points({0, 9})),
     "."},
};

TEST_F(Picture, ShapesCoverThePixelsWhoseMiddlesLieInside)
{
    for (DrawnCase& row : shapeCases)
        EXPECT_EQ(Drawn(row.picture.End()), row.art) << row.why;
}

DrawnCase lineCases[] = {
    {"from left to right, both ends drawn", Start(5, 1).Opcode(0x20, Points({0, 1, 0, 3})), ".###."},
    {"upwards", Start(1, 4).Opcode(0x20, Points({2, 0, 0, 0})), "#/#/#/."},
    {"a diagonal", Start(4, 4).Opcode(0x20, Points({3, 0, 0, 3})), "...#/..#./.#../#..."},
    {"a flat one steps in its middle", Start(6, 2).Opcode(0x20, Points({0, 0, 1, 5})), "###.../...###"},
    {"backwards the steps lie the same way", Start(6, 2).Opcode(0x20, Points({0, 5, 1, 0})), "...###/###..."},
    {"a point", Start(3, 2).Opcode(0x20, Points({1, 1, 1, 1})), ".../.#."},
    {"on from where the last one ended, and by small steps",
     Start(4, 3)
         .Opcode(0x20, Points({0, 0, 0, 3}))
         .Opcode(0x21, Points({2, 3}))
         .Opcode(0x23, {0xFE, 0})
         .Opcode(0x1A, red)
         .Opcode(0x22, {0, 1, 0, 0, 1, 0}),
     "####/rr.#/.###"},
    {"a pen of two by two hangs down to the right",
     Start(5, 5).Opcode(0x07, pen2).Opcode(0x20, Points({0, 0, 3, 3})), "##.../###../.###./..###/...##"},
    {"no pen", Start(2, 1).Opcode(0x07, Points({0, 0})).Opcode(0x20, Points({0, 0, 0, 1})), ".."},
    {"far beyond the picture", Start(3, 3).Opcode(0x20, Points({-32768, -32768, 32767, 32767})),
     "#../.#./..#"},
};

TEST_F(Picture, LinesTakeThePenFromPointToPoint)
{
    for (DrawnCase& row : lineCases)
        EXPECT_EQ(Drawn(row.picture.End()), row.art) << row.why;
}

// ---- ink
// ----------------------------------------------------------------------------------------------------

Bytes const stripes = {0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA};

PictureBytes Striped(int mode)
{
    return Start(4, 1)
        .Opcode(0x1A, red)
        .Rect(0x31, 0, 0, 2, 1)
        .Opcode(0x1B, blue)
        .Opcode(0x1A, green)
        .Opcode(0x09, stripes)
        .Opcode(0x08, Points({mode}))
        .Rect(0x31, 0, 0, 4, 1);
}

DrawnCase inkCases[] = {
    {"copy", Striped(8), "gbgb"},
    {"or", Striped(9), "grg."},
    {"xor", Striped(10), "cr#."},
    {"bic", Striped(11), "brb."},
    {"not copy", Striped(12), "bgbg"},
    {"not or", Striped(13), "rg.g"},
    {"not xor", Striped(14), "rc.#"},
    {"not bic", Striped(15), "rb.b"},
    {"add over", Striped(34), "ym??"},
    {"largest", Striped(37), "ymoo"},
    {"smallest", Striped(39), "##gb"},
    {"transparent", Striped(36), "grg."},
    {"a mode that nobody knows copies", Striped(20), "gbgb"},
    {"patterns for filling and erasing",
     Start(4, 2).Opcode(0x0A, stripes).Rect(0x34, 0, 0, 4, 1).Opcode(0x02, stripes).Rect(0x32, 1, 1, 4, 2),
     "#o#o/.o#o"},
    {"the eight old colours",
     Start(8, 1)
         .Opcode(0x0E, {0, 0, 0, 205})
         .Rect(0x31, 0, 0, 1, 1)
         .Opcode(0x0E, {0, 0, 1, 85})
         .Rect(0x31, 1, 0, 2, 1)
         .Opcode(0x0E, {0, 0, 1, 153})
         .Rect(0x31, 2, 0, 3, 1)
         .Opcode(0x0E, {0, 0, 1, 17})
         .Rect(0x31, 3, 0, 4, 1)
         .Opcode(0x0E, {0, 0, 0, 137})
         .Rect(0x31, 4, 0, 5, 1)
         .Opcode(0x0E, {0, 0, 0, 69})
         .Rect(0x31, 5, 0, 6, 1)
         .Opcode(0x0E, {0, 0, 0, 30})
         .Rect(0x31, 6, 0, 7, 1)
         .Opcode(0x0E, {0, 0, 0, 33})
         .Rect(0x31, 7, 0, 8, 1),
     "rgbcmyo#"},
    {"a pattern of one colour",
     Start(2, 1).Opcode(0x13, ByteWriter{}.Put16(2).Put(stripes).Put(blue).bytes).Rect(0x31, 0, 0, 2, 1),
     "bb"},
};

TEST_F(Picture, InkGoesOnPaperByItsMode)
{
    for (DrawnCase& row : inkCases)
        EXPECT_EQ(Drawn(row.picture.End()), row.art) << row.why;
    // Weights of one half, and limits.
    auto const mixed = [](int mode) {
        PictureBytes picture(1, 1);
        picture.Opcode(0x1F, Points({0x8000, 0x8000, 0x8000})).Opcode(0x1A, Points({0x6400, 0, -1}));
        picture.Rect(0x31, 0, 0, 1, 1).Opcode(0x1A, Points({0x3200, 0x6400, 0})).Opcode(0x08, Points({mode}));
        return Pixels(picture.Rect(0x31, 0, 0, 1, 1).End());
    };
    EXPECT_EQ(mixed(32), (Bytes{74, 50, 127, 255}));
    EXPECT_EQ(mixed(33), (Bytes{128, 100, 128, 255})) << "no more than the limit";
    EXPECT_EQ(mixed(35), (Bytes{128, 128, 255, 255})) << "no less than the limit";
    EXPECT_EQ(mixed(38), (Bytes{50, 156, 255, 255}));
}

// ---- the surroundings
// ---------------------------------------------------------------------------------------

DrawnCase clipCases[] = {
    {"a rectangle", Start(4, 3).Opcode(0x01, Points({10, 1, 1, 9, 3})).Rect(0x31, 0, 0, 4, 3),
     "..../.##./.##."},
    {"a region, and then all again",
     Start(6, 6)
         .Opcode(0x01, elbow)
         .Rect(0x31, 0, 0, 6, 6)
         .Opcode(0x01, Points({10, -9, -9, 99, 99}))
         .Opcode(0x1A, red)
         .Rect(0x31, 5, 0, 6, 1),
     ".....r/.####./.####./.##.../.##.../......"},
    {"nothing", Start(2, 1).Opcode(0x01, Points({10, 0, 0, 0, 0})).Rect(0x31, 0, 0, 2, 1), ".."},
    {"a region whose rows go up is damage",
     Start(2, 1).Opcode(0x01, Region(Points({0, 0, 9, 9}), {{3, 0, 9}, {1, 0, 9}})), "failed"},
    {"so is one whose columns do", Start(2, 1).Opcode(0x01, Region(Points({0, 0, 9, 9}), {{0, 5, 2}})),
     "failed"},
    {"so is one that does not end", Start(2, 1).Opcode(0x01, Points({18, 0, 0, 9, 9, 0, 0, 9, 0x7FFF})),
     "failed"},
    {"a shifted origin", Start(3, 1).Opcode(0x0C, Points({1, 0})).Rect(0x31, 1, 0, 2, 1), "#.."},
};

TEST_F(Picture, OnlyWhatLiesInTheClipIsDrawn)
{
    for (DrawnCase& row : clipCases)
        EXPECT_EQ(Drawn(row.picture.End()), row.art) << row.why;
}

TEST_F(Picture, WhatNobodyPlaysIsSkippedByItsLength)
{
    struct {
        long opcode;
        std::size_t bytes;
        Bytes head = {};
    } const cases[] = {
        {0x0000, 0},
        {0x03, 2},
        {0x04, 1},
        {0x05, 2},
        {0x06, 4},
        {0x0D, 2},
        {0x10, 8},
        {0x15, 2},
        {0x16, 2},
        {0x17, 0},
        {0x1C, 0},
        {0x1D, 6},
        {0x1E, 0},
        {0x24, 5, {0, 5}},
        {0x28, 3, {0, 0, 0, 0, 3}},
        {0x29, 3, {1, 3}},
        {0x2A, 2, {1, 2}},
        {0x2B, 4, {1, 1, 4}},
        {0x2C, 6, {0, 6}},
        {0x2F, 1, {0, 1}},
        {0x3D, 0},
        {0x47, 8},
        {0x67, 12},
        {0x6F, 4},
        {0x7F, 0},
        {0x8E, 0},
        {0x92, 3, {0, 3}},
        {0xA0, 2},
        {0xA1, 4, {0, 9, 0, 4}},
        {0xA5, 2, {0, 2}},
        {0xB0, 0},
        {0xCF, 0},
        {0xD0, 7, {0, 0, 0, 7}},
        {0x0100, 2},
        {0x01FF, 2},
        {0x0200, 4},
        {0x02FF, 4},
        {0x0BFF, 22},
        {0x0C01, 24},
        {0x7FFF, 254},
        {0x8000, 0},
        {0x80FF, 0},
        {0x8100, 5, {0, 0, 0, 5}},
        {0x8201, 3, {0, 0, 0, 3}},
        {0xFFFF, 0, {0, 0, 0, 0}},
    };
    for (auto const& row : cases) {
        // Data that would end the picture if it were taken for opcodes.
        PictureBytes picture = Start(1, 1).Opcode(row.opcode, row.head);
        picture.Put(Bytes(row.bytes, 0xFF));
        EXPECT_EQ(Drawn(picture.Rect(0x31, 0, 0, 1, 1).End()), "#") << std::hex << row.opcode;
    }
}

TEST_F(Picture, VersionOneHasShortOpcodesAtAnyPlace)
{
    ByteWriter picture;
    picture.Put16(0).Put16(10).Put16(20).Put16(12).Put16(24);  // its frame does not begin at 0
    picture.Put16(0x1101).Put({0x04, 0}).Put({0xA0, 0, 1}).Put8(0x11).Put8(1);
    picture.Put8(0x31)
        .Put(Points({10, 21, 11, 23}))
        .Put({0x90})
        .Put(Points({1, 11, 20, 12, 24, 11, 20, 12, 24}));
    picture.Put(Points({11, 20, 12, 24, 1})).Put8(0x90).Put8(0xFF);
    EXPECT_EQ(Drawn(picture.bytes), ".##./#..#");
}

TEST_F(Picture, TheFrameIsTheOneInTheHeader)
{
    // 36 by 18 points at 144 dots an inch.
    PictureBytes picture = Start(4, 2);
    std::copy_n(Points({0, 0, 1, 2}).begin(), 8, picture.bytes.begin() + 2);
    EXPECT_EQ(Drawn(picture.Rect(0x31, 3, 1, 4, 2).End()), "..../...#");
    // Another header than that with a frame of its own.
    std::copy_n(Points({-1}).begin(), 2, picture.bytes.begin() + 16);
    EXPECT_EQ(Drawn(picture.bytes), "..");
}

TEST_F(Picture, ItIsDrawnAtAnySizeAndPlace)
{
    Bytes const picture = Start(4, 2)
                              .Rect(0x31, 1, 0, 3, 1)
                              .Opcode(0x1A, red)
                              .Opcode(0x20, Points({1, 0, 1, 3}))
                              .Opcode(0x01, Points({10, 0, 3, 2, 4}))
                              .Opcode(0x1A, green)
                              .Rect(0x31, 0, 0, 4, 1)
                              .End();
    EXPECT_EQ(Drawn(picture), ".##g/rrrr");
    EXPECT_EQ(Drawn(picture, 8, 4, {0, 0, 8, 4}), "..####gg/..####gg/rrrrrrrr/rrrrrrrr");
    EXPECT_EQ(Drawn(picture, 2, 2, {-1, 0, 4, 2}), "##/rr");
    EXPECT_EQ(Drawn(picture, 3, 3, {1, 1, 4, 2}), ".../..#/.rr");
    EXPECT_EQ(Drawn(picture, 3, 3, {1, 1, 0, 2}), "failed");
}

TEST_F(Picture, OneWithoutItsLastOpcodeIsWholeAndOneCutInAnOpcodeIsNot)
{
    PictureBytes picture = Start(2, 1).Rect(0x31, 0, 0, 1, 1);
    EXPECT_EQ(Drawn(picture.bytes), "#.");
    for (std::size_t cut = 1; cut < 8; ++cut)
        EXPECT_EQ(Drawn(Head(picture.bytes, picture.bytes.size() - cut)), "failed") << cut;
    Bytes const whole = Start(2, 1).bytes;
    for (std::size_t length = 0; length < 14; ++length)
        EXPECT_EQ(Drawn(Head(whole, length)), "failed") << length;
    SetError(0);
    EXPECT_FALSE(Decode_Picture(nullptr, 100));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_CLIP);
    EXPECT_EQ(Drawn(Start(0, 1).End()), "failed");
}

TEST_F(Picture, WhatPaintsFarMoreThanItsSizeAndBytesCallForIsRefused)
{
    constexpr int size = 1000;
    PictureBytes const rect = Start(size, size).Rect(0x31, 0, 0, size, size);
    PictureBytes const polygon =
        Start(size, size).Opcode(0x71, Points({22, 0, 0, size, size, 0, 0, size, size, 0, size}));
    struct {
        char const* why;
        PictureBytes picture;
        int opcode, times;
        bool isDrawn;
    } const rows[] = {{"a rectangle, some times", rect, 0x39, 50, true},
                      {"a rectangle, very often", rect, 0x39, 20000, false},
                      {"a polygon, inverted", polygon, 0x7B, 20000, false}};
    for (auto const& row : rows) {
        PictureBytes picture = row.picture;
        for (int i = 0; i < row.times; ++i)
            picture.Opcode(row.opcode);
        Bytes const& bytes = picture.End();
        SetError(ZV_ERR_NONE);
        EXPECT_EQ(BitmapPtr(Decode_Picture(bytes.data(), bytes.size())) != nullptr, row.isDrawn) << row.why;
        EXPECT_EQ(GetErrorZV(), row.isDrawn ? ZV_ERR_NONE : ZV_ERR_CLIP) << row.why;
    }
}

TEST_F(Picture, OneInTheProgramsResourcesIsAnIconOfItsNumber)
{
    EXPECT_FALSE(GetImageZV(900));
    std::filesystem::path const program = std::filesystem::read_symlink("/proc/self/exe");
    FSSpec place{};
    program.native().copy(place.path, sizeof place.path - 1);
    char spec[ZV_SPEC_SIZE];
    ASSERT_EQ(GetDOSPathZV(spec, &place), 0);
    Bytes const picture = Start(4, 1).Opcode(0x1A, red).Rect(0x31, 1, 0, 3, 1).End();
    {
        auto const file = ZVResourceFile::Create(spec, ResourcePlace::Companion, 0, 0);
        ASSERT_TRUE(file && file->Add(ZV_FourCC("PICT"), 900, {}, picture) && file->Save());
    }
    ZVBitmap const* const icon = FindIconZV(900);
    ZVBitmap const* const again = FindIconZV(900);
    EXPECT_FALSE(GetImageZV(901));
    std::filesystem::remove(program.parent_path() / ("._" + program.filename().string()));
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon, again);
    EXPECT_EQ(Pixels_Of(*icon),
              (Bytes{255, 255, 255, 255, 255, 0, 0, 255, 255, 0, 0, 255, 255, 255, 255, 255}));
}

}  // namespace
