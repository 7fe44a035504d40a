// Rows of DPX files.
#include "DPXPadding.h"

#include "formats/FormatTest.h"

TEST(DPXPadding, IsFoundByTheLengthOfTheFile)
{
    struct {
        char const* why;
        long width, bits, packing, descriptor, told, missing;
        bool isPadded;
    } const rows[] = {
        {"three bytes a pixel", 5, 8, 0, 50, 0, 1, true},
        {"the same packed", 5, 8, 0, 50, 0, 0, false},
        {"whole words", 4, 8, 0, 50, 0, 0, true},
        {"undefined counts as nothing", 3, 16, 0, 50, -1, 2, true},
        {"twelve bits in words of 16", 3, 12, 1, 50, 0, 2, true},
        {"ten bits fill words", 3, 10, 1, 50, 0, 0, true},
        {"the header tells", 5, 8, 0, 50, 1, 0, true},
        {"one channel", 6, 8, 0, 6, 0, 2, true},
    };
    for (auto const& row : rows) {
        ByteWriter head;
        head.Put("SDPX")
            .PutZeros(768)
            .Put32(row.width)
            .Put32(10)
            .PutZeros(20)
            .Put8(row.descriptor)
            .PutZeros(2);
        head.Put8(row.bits).Put16(row.packing).Put16(0).Put32(2048).Put32(row.told).PutZeros(1024 - 816);
        long const rowBytes = row.width * (row.descriptor == 50 ? 3 : 1) * (row.bits > 8 ? 2 : 1);
        long const length = 2048 + 10 * (row.isPadded ? (rowBytes + 3) / 4 * 4 : rowBytes);
        EXPECT_EQ(DPX_Row_Padding(head.bytes, length), row.missing) << row.why;
        head.bytes.resize(1023);
        EXPECT_EQ(DPX_Row_Padding(head.bytes, length), 0U);
    }
}
