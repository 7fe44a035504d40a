// Readers and writers against simple models.
#include "TestEnvironment.h"
#include "files/FileTestTools.h"

#include <climits>

namespace {

using ReaderWriter = EnvironmentTest;

/// One step of a walk over known bytes, compared with the bytes themselves.
void Check_Step(ZVReader& reader, Bytes const& bytes, long& position, std::mt19937& random)
{
    auto const length = static_cast<long>(bytes.size());
    auto const at = [&](long i) {
        return static_cast<uint32_t>(bytes[static_cast<std::size_t>(position + i)]);
    };
    long const left = length - position;
    switch (random() % 7) {
    case 0: {
        long const target = static_cast<long>(random() % static_cast<unsigned>(length + 1));
        ASSERT_EQ(reader.Seek(target, 0), position);
        position = target;
        break;
    }
    case 1: {
        long const offset = static_cast<long>(random() % 200) - 100;
        if (position + offset < 0 || position + offset > length) return;
        ASSERT_EQ(reader.Seek(offset, 1), position);
        position += offset;
        break;
    }
    case 2: {
        Bytes out(random() % 20000);
        long const got = reader.Read(out.data(), static_cast<long>(out.size()));
        ASSERT_EQ(got, std::min(left, static_cast<long>(out.size())));
        ASSERT_TRUE(std::equal(out.begin(), out.begin() + got, bytes.begin() + position));
        position += got;
        break;
    }
    case 3:
        if (left < 1) return;
        ASSERT_EQ(reader.ReadByte(), at(0));
        position += 1;
        break;
    case 4:
        if (left < 4) return;
        ASSERT_EQ(reader.ReadShortBE(), at(0) << 8 | at(1));
        position += 2;
        ASSERT_EQ(reader.ReadShortLE(), at(1) << 8 | at(0));
        position += 2;
        break;
    case 5:
        if (left < 4) return;
        ASSERT_EQ(reader.ReadLongBE(), at(0) << 24 | at(1) << 16 | at(2) << 8 | at(3));
        position += 4;
        break;
    default:
        if (left < 4) return;
        ASSERT_EQ(reader.ReadLongLE(), at(3) << 24 | at(2) << 16 | at(1) << 8 | at(0));
        position += 4;
        break;
    }
    ASSERT_EQ(reader.End() != 0, position == length);
}

TEST_F(ReaderWriter, WalksOverAFileAndABlockDeliverItsBytes)
{
    std::mt19937 random(1);
    for (std::size_t size : {1, 100, 8191, 8192, 8193, 40000}) {
        Bytes const bytes = Random_Bytes(random, size);
        OpenFile const file = Open_File(environment.Write("bytes", As_Text(bytes)));
        ZVFileReader fileReader(file.get());
        ZVBufferReader blockReader(bytes.data(), static_cast<long>(size));
        long inFile = 0, inBlock = 0;
        for (int i = 0; i < 2000 && !HasFatalFailure(); ++i) {
            Check_Step(fileReader, bytes, inFile, random);
            Check_Step(blockReader, bytes, inBlock, random);
        }
        EXPECT_FALSE(fileReader.HasError());
    }
}

TEST_F(ReaderWriter, AReaderPastTheEndKeepsItsErrorAndGivesZero)
{
    OpenFile const file = Open_File(environment.Write("empty", ""));
    ZVFileReader reader(file.get());
    EXPECT_TRUE(reader.End());
    EXPECT_FALSE(reader.HasError());
    EXPECT_EQ(reader.ReadByte(), 0);
    EXPECT_TRUE(reader.HasError());
    EXPECT_EQ(reader.ReadLongBE(), 0u);
}

TEST(BufferReader, SeeksFromTheEndSubtractAndStayInside)
{
    uint8_t const block[10] = {};
    ZVBufferReader reader(block, 10);
    reader.Seek(2, 2);
    EXPECT_EQ(reader.GetBufferPtr(), block + 8);
    reader.Seek(100, 1);
    EXPECT_EQ(reader.GetBufferPtr(), block + 10);
    reader.Seek(LONG_MAX, 1);
    reader.Seek(LONG_MIN, 1);
    EXPECT_EQ(reader.GetBufferPtr(), block);
    EXPECT_EQ(reader.Read(4), block);
    EXPECT_EQ(reader.GetBufferPtr(), block + 4);
}

TEST(BufferReader, TakesWordsLinesAndNumbers)
{
    auto const take = [](char* text) {
        std::string const copy = text ? text : "(null)";
        FreeMemZV(text);
        return copy;
    };
    std::string const text = "  -42\tword\r\n12AZrest";
    ZVBufferReader reader(text.data(), static_cast<long>(text.size()));
    EXPECT_EQ(reader.ReadLongASCII(), -42);
    EXPECT_EQ(take(reader.ReadString()), "word");
    EXPECT_EQ(take(reader.ReadLine()), "(null)");
    EXPECT_EQ(take(reader.ReadLine()), "(null)");
    EXPECT_EQ(reader.ReadShortHex(), 0x12A) << "characters that are none end the number";
    EXPECT_EQ(take(reader.ReadLine()), "rest");
    EXPECT_TRUE(reader.End());

    std::string const lines = "ab\r\ncd";
    ZVBufferReader lineReader(lines.data(), static_cast<long>(lines.size()));
    for (char const* expected : {"ab", "(null)", "cd", "(null)"})
        EXPECT_EQ(take(lineReader.ReadLine()), expected);
    ZVBufferReader blanks("   ", 3);
    EXPECT_EQ(take(blanks.ReadString()), "(null)");
    EXPECT_TRUE(blanks.End());
    ZVBufferReader shortBlock("\x01\x02\x03", 3);
    EXPECT_EQ(shortBlock.ReadLongBE(), 0x01020300u) << "missing bytes are 0";
}

TEST_F(ReaderWriter, ARandomRunOfWritesLeavesTheBytesOfTheModel)
{
    std::mt19937 random(2);
    std::string const spec = environment.Spec("out");
    for (long bufferSize : {0L, 1L, 4L, 100L}) {
        OpenFile file = Create_File(spec, ZVFilePermReadWrite);
        Bytes model;
        std::size_t position = 0;
        auto const put = [&](std::initializer_list<unsigned> values) {
            for (unsigned value : values) {
                if (position == model.size()) model.push_back(0);
                model[position++] = static_cast<uint8_t>(value);
            }
        };
        {
            ZVFileWriter writer(file.get(), bufferSize);
            for (int i = 0; i < 500; ++i) {
                auto const v = static_cast<uint32_t>(random());
                switch (v % 6) {
                case 0:
                    ASSERT_TRUE(writer.WriteByte(static_cast<uint8_t>(v >> 8)));
                    put({v >> 8 & 255});
                    break;
                case 1:
                    ASSERT_TRUE(writer.WriteShortBE(static_cast<uint16_t>(v)));
                    put({v >> 8 & 255, v & 255});
                    break;
                case 2:
                    ASSERT_TRUE(writer.WriteLongLE(v));
                    put({v & 255, v >> 8 & 255, v >> 16 & 255, v >> 24});
                    break;
                case 3:
                    ASSERT_TRUE(writer.WriteFloatBE(1.0F));
                    put({0x3F, 0x80, 0, 0});
                    break;
                case 4: {
                    Bytes const block = Random_Bytes(random, v >> 8 & 255);
                    ASSERT_TRUE(writer.Write(block.data(), static_cast<long>(block.size())));
                    for (uint8_t byte : block)
                        put({byte});
                    break;
                }
                default: {
                    std::size_t const target = model.empty() ? 0 : (v >> 8) % (model.size() + 1);
                    ASSERT_EQ(writer.Seek(static_cast<long>(target), 0), static_cast<long>(position));
                    position = target;
                }
                }
                ASSERT_EQ(writer.GetPosition(), static_cast<long>(position));
            }
            ASSERT_TRUE(writer.Flush());
        }
        file.reset();
        EXPECT_EQ(Bytes_In_File(environment.Path("out")), model) << "buffer of " << bufferSize;
    }
}

}  // namespace
