// Specs stored in other files.
#include "TestEnvironment.h"
#include "files/FileTestTools.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace std::string_literals;

class FileSpecStored : public EnvironmentTest {
protected:
    /// The spec read from those bytes, and where the reading ended.
    std::pair<std::string, long> Read(std::string bytes, unsigned long tag = ZV_TAG_IGNORE)
    {
        OpenFile const memory = Open_Block(bytes);
        std::string const spec = Text(ReadFileSpecZV(memory.get(), tag, 1, ZVFSV_StoredPath, stored));
        long const end = Position(memory);
        for (ZVFilePermission permission : {ZVFilePermRead, ZVFilePermReadWrite}) {
            OpenFile const disk = Open_File(environment.Write("record", bytes), permission);
            EXPECT_EQ(Text(ReadFileSpecZV(disk.get(), tag, 1)), spec) << "from disk as from memory";
            EXPECT_TRUE(bytes.size() < 4 || Position(disk) == end);
        }
        return {spec, end};
    }

    std::string const file = environment.Write("file", "");
    char stored[512] = "#";
};

std::string Record(std::string const& rest)
{
    std::string record = "\0\0"s;
    record += static_cast<char>(rest.size() >> 8);
    record += static_cast<char>(rest.size());
    return record + rest;
}

TEST_F(FileSpecStored, IsLengthPathAndAnEvenEnd)
{
    struct {
        std::string given, stored;
    } const rows[] = {{environment.Write("even", ""), environment.Spec("even")},
                      {environment.Write("odd", ""), environment.Spec("odd")},
                      {environment.Spec(".\\\\file"), file},  // the place rather than the spelling
                      {environment.Spec(), environment.Spec()}};
    std::string block(1000, '#'), expected;
    OpenFile const memory = Open_Block(block);
    for (auto const& row : rows) {
        EXPECT_TRUE(WriteFileSpecZV(memory.get(), row.given.c_str())) << row.given;
        std::string const path = row.stored + '\0';
        expected += Record(path.size() % 2 ? path + '\0' : path);
    }
    EXPECT_EQ(block.substr(0, static_cast<std::size_t>(Position(memory))), expected);
    SeekFileZV(memory.get(), 0, 0);
    for (auto const& row : rows)
        EXPECT_EQ(Text(ReadFileSpecZV(memory.get(), nullptr)), row.stored);
}

TEST_F(FileSpecStored, WritesNothingWhenItFails)
{
    std::string block(file.size() + 4, '#');
    OpenFile const memory = Open_Block(block);
    EXPECT_FALSE(WriteFileSpecZV(memory.get(), environment.Spec("missing").c_str()));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
    EXPECT_FALSE(WriteFileSpecZV(memory.get(), nullptr));
    EXPECT_FALSE(WriteFileSpecZV(memory.get(), file.c_str())) << "one byte short";
    EXPECT_FALSE(WriteFileSpecZV(nullptr, file.c_str()));
    EXPECT_EQ(Position(memory), 0);
    EXPECT_EQ(block, std::string(block.size(), '#'));
}

TEST_F(FileSpecStored, TakesPathsUpToTheLengthThatCanBeRead)
{
    std::string const stem = environment.Spec() + std::string(200, 'a') + "\\" + std::string(200, 'b') + "\\";
    for (std::size_t length : {508U, 509U, 510U}) {
        std::string const spec = stem + std::string(length - stem.size(), 'c');
        environment.Write(std::string(200, 'a') + "/" + std::string(200, 'b') + "/" +
                              std::string(length - stem.size(), 'c'),
                          "");
        ASSERT_TRUE(FileExistsZV(spec.c_str()));
        std::string block(600, '#');
        OpenFile const memory = Open_Block(block);
        EXPECT_EQ(WriteFileSpecZV(memory.get(), spec.c_str()), length <= 509) << length;
        if (length > 509) continue;
        long const end = SeekFileZV(memory.get(), 0, 0);
        EXPECT_EQ(Text(ReadFileSpecZV(memory.get(), ZVFSV_StoredPath, stored)), spec) << length;
        EXPECT_EQ(stored, spec) << length;
        EXPECT_EQ(Position(memory), end) << length;
    }
}

TEST_F(FileSpecStored, ReadsWhatOthersWrote)
{
    std::string const path = file + '\0';
    std::string const missing = environment.Spec("missing");
    std::string classic = "Root:" + file.substr(6);
    std::replace(classic.begin(), classic.end(), '\\', ':');
    struct {
        char const* why;
        std::string rest;
        std::string spec, uncheckedSpec, stored;
    } const rows[] = {
        {"path and even end", path + "\0"s, file, file, file},
        {"an odd length", path, file, file, file},
        {"a path without its NUL", file, file, file, file},
        {"ended by a line feed", file + "\n", file, file, file},
        {"a classic path", classic + "\0"s, file, file, classic},
        {"with an alias", path + "alias bytes", "(null)", "(null)", file},
        {"with an alias of two bytes", path + "ab", "(null)", "(null)", file},
        {"a file that is gone", missing + "\0"s, "(null)", missing, missing},
        {"no path", "\0\0"s, "(null)", "(null)", ""},
        {"nothing", "", "(null)", "(null)", ""},
        {"only line ends", std::string(2000, '\n'), "(null)", "(null)", ""},
        {"a long alias", path + std::string(20000, 'x'), "(null)", "(null)", file},
    };
    for (auto const& row : rows) {
        std::string const record = Record(row.rest);
        auto const end = static_cast<long>(record.size());
        EXPECT_EQ(Read(record + "next"), std::pair(row.spec, end)) << row.why;
        EXPECT_EQ(stored, row.stored) << row.why;
        EXPECT_EQ(Read(record, ZVFSV_NoCheck), std::pair(row.uncheckedSpec, end)) << row.why;
    }
}

TEST_F(FileSpecStored, DamagedRecordsEndAtTheEndOfTheFile)
{
    std::string const record = Record(file + "\0"s);
    for (std::size_t length = 0; length < record.size(); ++length) {
        auto const [spec, end] = Read(record.substr(0, length));
        EXPECT_EQ(spec, "(null)") << length;
        EXPECT_EQ(stored, ""s) << length;
        if (length < 4) continue;
        EXPECT_EQ(end, static_cast<long>(length)) << length;
        EXPECT_EQ(GetErrorZV(), ZV_ERR_IO) << length;
    }
    EXPECT_EQ(Read("\x7F\xFF\xFF\xFFxyz"), std::pair("(null)"s, 7L)) << "a length beyond the file";
    EXPECT_EQ(Read("\xFF\xFF\xFF\xFFxyzxyz"
                   "abcdef"),
              std::pair("(null)"s, 4L))
        << "a negative length";
    EXPECT_EQ(Read("\x80\0\0\0abc"s), std::pair("(null)"s, 4L));
    EXPECT_EQ(ReadFileSpecZV(nullptr, nullptr), nullptr);
}

TEST_F(FileSpecStored, AListStaysInStepWhateverItHolds)
{
    std::string list = Record(file + "\0"s) + Record(file + "\0alias"s) + Record("Nowhere:\\x\0"s) +
                       Record(""s) + Record(file + "\n"s);
    OpenFile const memory = Open_Block(list);
    std::vector<std::string> read;
    for (int i = 0; i < 5; ++i)
        read.push_back(Text(ReadFileSpecZV(memory.get(), nullptr)));
    std::vector<std::string> const expected = {file, "(null)", "(null)", "(null)", file};
    EXPECT_EQ(read, expected);
}

}  // namespace
