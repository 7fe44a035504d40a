// See PictOpcodes.h.
#include "PictOpcodes.h"

#include <algorithm>
#include <iterator>

namespace {

/// How an opcode tells the length of its data.
enum class Length : uint8_t {
    Fixed,    ///< always `bytes`
    Word,     ///< `bytes`, then a length of 2 bytes, then so many
    Long,     ///< a length of 4 bytes, then so many
    Text,     ///< `bytes`, then a length of 1 byte, then so many
    Region,   ///< a length of 2 bytes that counts itself
    ByNumber  ///< twice the high byte of the opcode
};

struct OpcodeLength {
    unsigned last;  ///< of some in a row
    Length length;
    unsigned bytes;
};

// Among them are some that are played; their lengths are here for the verbs that do not exist.
constexpr OpcodeLength lengths[] = {
    {0x0000, Length::Fixed, 0},  {0x0001, Length::Region, 0}, {0x0002, Length::Fixed, 8},
    {0x0003, Length::Fixed, 2},  {0x0004, Length::Fixed, 1},  {0x0005, Length::Fixed, 2},
    {0x0007, Length::Fixed, 4},  {0x0008, Length::Fixed, 2},  {0x000A, Length::Fixed, 8},
    {0x000C, Length::Fixed, 4},  {0x000D, Length::Fixed, 2},  {0x000F, Length::Fixed, 4},
    {0x0010, Length::Fixed, 8},  {0x0011, Length::Fixed, 2},  {0x0014, Length::Fixed, 8},
    {0x0016, Length::Fixed, 2},  {0x0019, Length::Fixed, 0},  {0x001B, Length::Fixed, 6},
    {0x001C, Length::Fixed, 0},  {0x001D, Length::Fixed, 6},  {0x001E, Length::Fixed, 0},
    {0x001F, Length::Fixed, 6},  {0x0020, Length::Fixed, 8},  {0x0021, Length::Fixed, 4},
    {0x0022, Length::Fixed, 6},  {0x0023, Length::Fixed, 2},  {0x0027, Length::Word, 0},
    {0x0028, Length::Text, 4},   {0x002A, Length::Text, 1},   {0x002B, Length::Text, 2},
    {0x002F, Length::Word, 0},   {0x0037, Length::Fixed, 8},  {0x003F, Length::Fixed, 0},
    {0x0047, Length::Fixed, 8},  {0x004F, Length::Fixed, 0},  {0x0057, Length::Fixed, 8},
    {0x005F, Length::Fixed, 0},  {0x0067, Length::Fixed, 12}, {0x006F, Length::Fixed, 4},
    {0x0077, Length::Region, 0}, {0x007F, Length::Fixed, 0},  {0x0087, Length::Region, 0},
    {0x008F, Length::Fixed, 0},  {0x009F, Length::Word, 0},   {0x00A0, Length::Fixed, 2},
    {0x00A1, Length::Word, 2},   {0x00AF, Length::Word, 0},   {0x00CF, Length::Fixed, 0},
    {0x00FE, Length::Long, 0},   {0x00FF, Length::Fixed, 0},  {0x7FFF, Length::ByNumber, 0},
    {0x80FF, Length::Fixed, 0},  {0xFFFF, Length::Long, 0},
};
static_assert(std::ranges::is_sorted(lengths, {}, &OpcodeLength::last));

}  // namespace

void Skip_Opcode(unsigned opcode, bool isVersion2, PictBytes& bytes)
{
    OpcodeLength const& entry = *std::ranges::lower_bound(lengths, opcode, {}, &OpcodeLength::last);
    switch (entry.length) {
    case Length::Fixed: bytes.Skip(opcode == PICT_OP_VERSION && !isVersion2 ? 1 : entry.bytes); break;
    case Length::Word:
        bytes.Skip(entry.bytes);
        bytes.Skip(bytes.U16());
        break;
    case Length::Long: bytes.Skip(bytes.U32()); break;
    case Length::Text:
        bytes.Skip(entry.bytes);
        bytes.Skip(bytes.U8());
        break;
    case Length::Region: {
        unsigned const size = bytes.U16();
        if (size < 2)
            bytes.Fail();
        else
            bytes.Skip(size - 2);
        break;
    }
    case Length::ByNumber: bytes.Skip(2 * (opcode >> 8)); break;
    }
}
