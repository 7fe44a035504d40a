// The run-length packets: which packets a row becomes, and that any stream of packets comes apart into its
// units, however it is cut.
#include "formats/EIDIPackets.h"

#include "TestBytes.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>

namespace {

/// Bytes with the slack that the packer and the unpacker ask for. Under the address sanitizer, one byte more
/// is an error.
Bytes With_Slack(Bytes bytes)
{
    bytes.resize(bytes.size() + EIDISlack, 0xCC);
    return bytes;
}

/// A row of units from a text: equal letters are equal units, and all bytes of a unit differ.
Bytes Units(std::string const& letters, long unitBytes)
{
    Bytes bytes;
    for (char letter : letters)
        for (long i = 0; i < unitBytes; ++i)
            bytes.push_back(static_cast<uint8_t>(letter + 40 * i));
    return bytes;
}

Bytes Pack(Bytes const& units, long unitBytes)
{
    long const width = static_cast<long>(units.size()) / unitBytes;
    Bytes out(static_cast<std::size_t>(EIDI_Packed_Bound(width, unitBytes)) + EIDISlack);
    uint8_t const* end = Pack_EIDI_Row(With_Slack(units).data(), width, unitBytes, out.data());
    out.resize(static_cast<std::size_t>(end - out.data()));
    return out;
}

/// The format as it is told, one unit after the other.
Bytes Simple_Unpack(Bytes const& packets, long unitBytes)
{
    Bytes units;
    for (std::size_t at = 0; at < packets.size();) {
        int const control = packets[at++];
        bool const isRun = control < 128;
        long const count = isRun ? control + 1 : control - 127;
        for (long i = 0; i < count; ++i) {
            std::size_t const from = at + static_cast<std::size_t>(isRun ? 0 : i * unitBytes);
            units.insert(units.end(), &packets[from], &packets[from] + unitBytes);
        }
        at += static_cast<std::size_t>(isRun ? unitBytes : count * unitBytes);
    }
    return units;
}

std::string Many(std::size_t count, char letter)
{
    return std::string(count, letter);
}

std::string Alternating(std::size_t count)
{
    std::string row;
    while (row.size() < count)
        row += "ab"[row.size() % 2];
    return row;
}

TEST(EIDIPackets, RowsBecomeTheseVeryPackets)
{
    struct {
        char const* why;
        long unitBytes;
        std::string row;
        std::vector<std::pair<int, std::string>> packets;  ///< control byte and units
    } const cases[] = {
        {"128 equal pixels are one run", 3, Many(128, 'a'), {{0x7F, "a"}}},
        {"of 129 the last is left to a literal", 3, Many(129, 'a'), {{0x7F, "a"}, {0x80, "a"}}},
        {"of 130 the last two are a run again", 4, Many(130, 'a'), {{0x7F, "a"}, {0x01, "a"}}},
        {"two equal pixels at the end are a run", 3, "abcc", {{0x81, "ab"}, {0x01, "c"}}},
        {"two equal pixels at the start are a run", 4, "aab", {{0x01, "a"}, {0x80, "b"}}},
        {"a lone pixel is a literal", 4, "a", {{0x80, "a"}}},
        {"runs follow one another", 3, "aabbb", {{0x01, "a"}, {0x02, "b"}}},
        {"a literal ends at 128 pixels", 3, Alternating(129), {{0xFF, Alternating(128)}, {0x80, "a"}}},
        {"a run behind a full literal is a run",
         4,
         Alternating(128) + "cc",
         {{0xFF, Alternating(128)}, {0x01, "c"}}},
        {"three equal bytes are literals", 1, "aaabcdef", {{0x87, "aaabcdef"}}},
        {"four equal bytes are a run", 1, "aaaabcdef", {{0x03, "a"}, {0x84, "bcdef"}}},
        {"no run starts in the last four bytes", 1, "abbbb", {{0x84, "abbbb"}}},
        {"a run that started before them goes on to the end", 1, "abbbbb", {{0x80, "a"}, {0x04, "b"}}},
        {"four equal bytes alone are literals", 1, "aaaa", {{0x83, "aaaa"}}},
        {"a run of bytes ends at 128 too", 1, Many(132, 'a'), {{0x7F, "a"}, {0x83, "aaaa"}}},
    };
    for (auto const& row : cases) {
        Bytes expected;
        for (auto const& [control, letters] : row.packets) {
            expected.push_back(static_cast<uint8_t>(control));
            Bytes const units = Units(letters, row.unitBytes);
            expected.insert(expected.end(), units.begin(), units.end());
        }
        EXPECT_EQ(Pack(Units(row.row, row.unitBytes), row.unitBytes), expected) << row.why;
    }
    // Pixels that differ in one byte alone are no run.
    for (long unitBytes : {3L, 4L})
        for (long byte = 0; byte < unitBytes; ++byte) {
            Bytes units = Units("aa", unitBytes);
            units[static_cast<std::size_t>(byte)] ^= 1;
            EXPECT_EQ(Pack(units, unitBytes)[0], 0x81) << unitBytes << " bytes, byte " << byte;
        }
}

/// A row with runs and noise mixed; `colours` small makes neighbours equal by chance.
Bytes Random_Row(std::mt19937& random, long width, long unitBytes)
{
    unsigned long const colours = 1 + random() % 5;
    Bytes row;
    while (static_cast<long>(row.size()) < width * unitBytes) {
        Bytes unit(static_cast<std::size_t>(unitBytes));
        for (uint8_t& byte : unit)
            byte = static_cast<uint8_t>(random() % colours);
        for (unsigned long repeat = random() % 3 ? 1 : 1 + random() % 300; repeat > 0; --repeat)
            row.insert(row.end(), unit.begin(), unit.end());
    }
    row.resize(static_cast<std::size_t>(width * unitBytes));
    return row;
}

TEST(EIDIPackets, PackedRowsUnpackToThemselvesWithinTheirBound)
{
    std::mt19937 random(1);
    for (int turn = 0; turn < 3000; ++turn) {
        long const unitBytes = std::array{1L, 3L, 4L}[random() % 3];
        long const width = 1 + static_cast<long>(random() % (turn % 10 ? 40 : 700));
        Bytes const row = Random_Row(random, width, unitBytes);
        Bytes const packed = Pack(row, unitBytes);
        ASSERT_EQ(Simple_Unpack(packed, unitBytes), row) << "turn " << turn;
        ASSERT_LE(static_cast<int64_t>(packed.size()), EIDI_Packed_Bound(width, unitBytes))
            << "turn " << turn;
    }
}

/// Unpacks through pieces of input and rows of output of the given sizes.
Bytes Unpack_In_Pieces(Bytes const& packets, long unitBytes, std::mt19937& random, long longestPiece)
{
    EIDIUnpacker unpacker{unitBytes};
    Bytes units;
    Bytes window;
    std::size_t taken = 0;
    auto const some = [&] { return 1 + random() % static_cast<unsigned>(longestPiece); };
    for (;;) {
        long const wanted = static_cast<long>(some());
        Bytes out(static_cast<std::size_t>(wanted * unitBytes) + EIDISlack);
        Bytes const input = With_Slack(window);
        uint8_t const* in = input.data();
        long const got = unpacker.Unpack(in, input.data() + window.size(), out.data(), wanted);
        units.insert(units.end(), out.data(), out.data() + got * unitBytes);
        window.erase(window.begin(), window.begin() + (in - input.data()));
        if (got == wanted) continue;
        if (taken == packets.size()) return units;
        std::size_t const more = std::min<std::size_t>(some(), packets.size() - taken);
        window.insert(window.end(), packets.begin() + static_cast<long>(taken),
                      packets.begin() + static_cast<long>(taken + more));
        taken += more;
    }
}

TEST(EIDIPackets, AnyStreamUnpacksWhereverItIsCut)
{
    std::mt19937 random(2);
    for (int turn = 0; turn < 2000; ++turn) {
        long const unitBytes = 1 + static_cast<long>(random() % 4);
        unsigned const longest = turn % 4 ? 128 : 1;  // every fourth stream has single-unit packets only
        Bytes packets;
        for (unsigned long count = 1 + random() % 12; count > 0; --count) {
            unsigned long const length = 1 + random() % longest;
            bool const isRun = random() % 2;
            packets.push_back(static_cast<uint8_t>(isRun ? length - 1 : length + 127));
            Bytes const units =
                Random_Bytes(random, static_cast<std::size_t>(unitBytes) * (isRun ? 1 : length));
            packets.insert(packets.end(), units.begin(), units.end());
        }
        long const longestPiece = turn % 2 ? 5 : 200;
        ASSERT_EQ(Unpack_In_Pieces(packets, unitBytes, random, longestPiece),
                  Simple_Unpack(packets, unitBytes))
            << "turn " << turn;
    }
}

}  // namespace
