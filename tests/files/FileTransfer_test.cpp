// Reading, writing and seeking through handles, compared with a file held as a plain array.
#include "FileSizeLimit.h"
#include "TestEnvironment.h"
#include "files/FileTestTools.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include <fcntl.h>

namespace {

/// What a file must look like to its user: bytes and one position.
struct ModelFile {
    Bytes bytes;
    bool canRead, canWrite;
    long position = 0;

    bool Read(std::size_t count, Bytes& out)
    {
        out.clear();
        if (!canRead || position >= Size()) return false;
        long const end = std::min(position + static_cast<long>(count), Size());
        out.assign(bytes.begin() + position, bytes.begin() + end);
        position = end;
        return true;
    }

    bool Write(Bytes const& source)
    {
        if (!canWrite) return false;
        long const end = position + static_cast<long>(source.size());
        bytes.resize(static_cast<std::size_t>(std::max(Size(), end)));
        std::copy(source.begin(), source.end(), bytes.begin() + position);
        position = end;
        return true;
    }

    long Seek(long offset, int mode)
    {
        long const old = position;
        long const target = (mode == 0 ? 0 : mode == 1 ? old : Size()) + offset;
        if (target < 0) return old;
        if (canWrite && target > Size()) bytes.resize(static_cast<std::size_t>(target));
        position = mode == 2 && canWrite ? Size() + offset : target;
        return old;
    }

    long Size() const { return static_cast<long>(bytes.size()); }
};

struct PermissionCase {
    ZVFilePermission permission;
    ZVFileFlags flags;
    bool canRead, canWrite;
    uint32_t openedBuffer, createdBuffer;
};
PermissionCase const permissionCases[] = {
    {ZVFilePermRead, ZVFileFlagNone, true, false, 4096, 4096},
    {ZVFilePermRead, ZVFileFlagLargeRead, true, false, 0, 4096},
    {ZVFilePermWrite, ZVFileFlagNone, false, true, 20480, 20480},
    {ZVFilePermWrite, ZVFileFlagLargeRead, false, true, 0, 20480},
    {ZVFilePermReadWrite, ZVFileFlagNone, true, true, 0, 0},
    {ZVFilePermReadLarge, ZVFileFlagNone, true, false, 20480, 20480},
};

class FileModel : public ::testing::TestWithParam<PermissionCase> {
protected:
    TestEnvironment environment;
};

/// Mostly small, sometimes around the sizes of the buffers, sometimes beyond.
std::size_t Random_Count(std::mt19937& random)
{
    std::size_t const edges[] = {4095, 4096, 4097, 20479, 20480, 20481, 40960, 50000};
    switch (random() % 8) {
    case 0: return edges[random() % std::size(edges)];
    case 1: return 1 + random() % 9000;
    default: return 1 + random() % 60;
    }
}

TEST_P(FileModel, BehavesAsAnArrayWithOnePosition)
{
    PermissionCase const& param = GetParam();
    std::mt19937 random(7);
    std::string const path = environment.Path("model.dat"), spec = environment.Spec("model.dat");
    EXPECT_EQ(Create_File(spec, param.permission, param.flags)->bufferSize, param.createdBuffer);
    ModelFile model{Pattern(90000), param.canRead, param.canWrite};
    Write_Native(path, model.bytes);
    OpenFile file = Open_File(spec, param.permission, param.flags);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->bufferSize, param.openedBuffer);

    Bytes expected;
    for (int step = 0; step < 8000; ++step) {
        SCOPED_TRACE(step);
        SetError(0);
        auto const action = random() % 10;
        bool isAllowed = true;
        if (action < 4) {
            Bytes got(Random_Count(random));
            ASSERT_EQ(ReadFileZV(file.get(), got.data(), got.size()), model.Read(got.size(), expected));
            got.resize(expected.size());
            ASSERT_EQ(got, expected);
            isAllowed = param.canRead;
        } else if (action < 8) {
            Bytes const bytes = Random_Bytes(random, model.Size() > 3000000 ? 5 : Random_Count(random));
            ASSERT_EQ(WriteFileZV(file.get(), bytes.data(), bytes.size()), model.Write(bytes));
            isAllowed = param.canWrite;
        } else {
            int const mode = static_cast<int>(random() % 3);
            long const span = mode == 0 ? model.Size() : 6000;
            long offset = static_cast<long>(random() % static_cast<unsigned long>(span + 600));
            if (mode == 1) offset -= 3000;
            if (mode == 2) offset = 300 - offset;
            if (model.Size() > 3000000) offset = std::min(offset, mode == 0 ? model.Size() : 0L);
            ASSERT_EQ(SeekFileZV(file.get(), offset, static_cast<unsigned short>(mode)),
                      model.Seek(offset, mode));
        }
        if (action < 8) {
            ASSERT_EQ(GetErrorZV(), isAllowed ? ZV_ERR_NONE : ZV_ERR_IO) << "the end of a file is no error";
        }
        ASSERT_EQ(Position(file), model.position);
    }
    file.reset();
    EXPECT_EQ(Bytes_In_File(path), model.bytes);
}

INSTANTIATE_TEST_SUITE_P(Permissions, FileModel, ::testing::ValuesIn(permissionCases));

class FileTransfer : public EnvironmentTest {
protected:
    long Size_On_Disk() { return Native_Info(path).st_size; }

    std::string const spec = environment.Spec("file.dat");
    std::string const path = environment.Path("file.dat");
};

TEST_F(FileTransfer, AWriteOfTheFreeRoomGoesToDiskAtOnce)
{
    OpenFile const file = Create_File(spec);
    Bytes const bytes = Pattern(20480);
    ASSERT_TRUE(WriteFileZV(file.get(), bytes.data(), 20479));
    EXPECT_EQ(Size_On_Disk(), 0);
    EXPECT_EQ(GetFileLengthZV(file.get()), 0) << "what waits is not on disk";
    EXPECT_EQ(File_GetLength(file.get()), 20479) << "but counts for the seam";
    ASSERT_TRUE(WriteFileZV(file.get(), &bytes[20479], 1));
    EXPECT_EQ(Size_On_Disk(), 20480);
    EXPECT_EQ(file->cursor, file->buffer);
    EXPECT_EQ(Bytes_In_File(path), bytes);
}

TEST_F(FileTransfer, NullArgumentsAreAnswered)
{
    char byte;
    OpenFile const file = Create_File(spec, ZVFilePermReadWrite);
    EXPECT_FALSE(ReadFileZV(file.get(), nullptr, 1) || WriteFileZV(file.get(), nullptr, 1));
    EXPECT_FALSE(ReadFileZV(nullptr, &byte, 1) || WriteFileZV(nullptr, &byte, 1));
    EXPECT_FALSE(SeekFileZV(nullptr, 1, 0) || GetFileLengthZV(nullptr) || GetFileModificationDateZV(nullptr));
    EXPECT_FALSE(OpenFileZV(nullptr, ZVFilePermRead, ZVFileFlagNone));
    EXPECT_FALSE(CreateFileZV(nullptr, ZVFilePermWrite, 0, 0, ZVFileFlagNone));
    EXPECT_FALSE(OpenFileinMemoryZV(nullptr, 4, ZVFilePermRead) || OpenFolderZV(spec.c_str()));
    CloseFileZV(nullptr);
}

TEST_F(FileTransfer, FilesBeyondFourGigabytesWork)
{
    OpenFile file = Create_File(spec, ZVFilePermReadWrite);
    long const far = 5L << 30;
    SeekFileZV(file.get(), far, 0);
    ASSERT_TRUE(WriteFileZV(file.get(), "end", 3));
    EXPECT_EQ(Position(file), far + 3);
    EXPECT_EQ(GetFileLengthZV(file.get()), far + 3);
    file = Open_File(spec);
    SeekFileZV(file.get(), far - 1, 0);
    char text[5] = {1};
    EXPECT_TRUE(ReadFileZV(file.get(), text, 4));
    EXPECT_EQ(std::memcmp(text, "\0end", 4), 0);
}

TEST_F(FileTransfer, AnAbsurdSeekFailsAtOnceAndMovesNothing)
{
    OpenFile const file = Create_File(spec);
    ASSERT_TRUE(WriteFileZV(file.get(), "abc", 3));
    for (auto const& [offset, mode] : {std::pair{1L << 62, 0}, {std::numeric_limits<long>::max(), 1}}) {
        EXPECT_EQ(SeekFileZV(file.get(), offset, static_cast<unsigned short>(mode)), 3);
        EXPECT_NE(GetErrorZV(), 0U);
        EXPECT_EQ(Position(file), 3);
    }
    EXPECT_EQ(Size_On_Disk(), 3);
}

TEST_F(FileTransfer, AFailedWriteCanBeTriedAgain)
{
    struct {
        char const* why;
        std::size_t first, second;
        rlim_t limit;
        ZVFilePermission permission = ZVFilePermWrite;
    } const rows[] = {
        {"the first flush", 15000, 10000, 10000},
        {"a flush that starts in the middle of the file", 30000, 30000, 30000},
        {"the direct part behind a flush that went well", 100, 70000, 30000},
        {"a write as large as the buffer into an empty one", 0, 20480, 20000},
        {"a part behind several buffers", 0, 90000, 65000},
        {"without a buffer", 10, 8990, 5000, ZVFilePermReadWrite},
    };
    for (auto const& row : rows) {
        Bytes const bytes = Pattern(row.first + row.second);
        OpenFile file = Create_File(spec, row.permission);
        ASSERT_TRUE(WriteFileZV(file.get(), bytes.data(), row.first)) << row.why;
        {
            FileSizeLimit const full(row.limit);
            EXPECT_FALSE(WriteFileZV(file.get(), &bytes[row.first], row.second)) << row.why;
            EXPECT_EQ(GetErrorZV(), ZV_ERR_DISK_FULL) << row.why;
            EXPECT_EQ(Position(file), static_cast<long>(row.first)) << row.why;
        }
        EXPECT_TRUE(WriteFileZV(file.get(), &bytes[row.first], row.second)) << row.why;
        file.reset();
        EXPECT_EQ(Bytes_In_File(path), bytes) << row.why;
    }
}

TEST_F(FileTransfer, BytesLostOnTheWayOutAreReported)
{
    Bytes const bytes = Pattern(1000);
    for (bool byClosing : {false, true}) {
        OpenFile file = Create_File(spec);
        ASSERT_TRUE(WriteFileZV(file.get(), bytes.data(), bytes.size()));
        SetError(0);
        FileSizeLimit const full(0);
        byClosing ? file.reset() : void(SeekFileZV(file.get(), 0, 0));
        EXPECT_EQ(GetErrorZV(), ZV_ERR_DISK_FULL) << (byClosing ? "by closing" : "by a seek");
    }
}

TEST_F(FileTransfer, TimesCountFrom1904AndFrom1970)
{
    Write_Native(path, "abc");
    timespec const times[] = {{1234567890, 0}, {1234567891, 0}};
    utimensat(AT_FDCWD, path.c_str(), times, 0);
    EXPECT_EQ(GetFileModificationDateZV(Open_File(spec).get()), 1234567891);
    EXPECT_EQ(ConvertMacOSTimeToZVLibTime(2082844800), 0);
    EXPECT_EQ(ConvertZVLibTimeToMacOSTime(-1), 2082844799);
}

class MemoryFile : public ::testing::Test {
protected:
    std::string block = "0123456789";
    OpenFile const file{OpenFileinMemoryZV(block.data(), block.size(), ZVFilePermRead)};
};

TEST_F(MemoryFile, TransfersAllOrNothing)
{
    char text[16] = {};
    EXPECT_FALSE(ReadFileZV(file.get(), text, 11));
    EXPECT_EQ(Position(file), 0);
    EXPECT_TRUE(ReadFileZV(file.get(), text, 8));
    EXPECT_STREQ(text, "01234567");
    EXPECT_FALSE(WriteFileZV(file.get(), "abc", 3)) << "two bytes are left";
    EXPECT_TRUE(WriteFileZV(file.get(), "ab", 2)) << "the permission is not enforced";
    EXPECT_FALSE(ReadFileZV(file.get(), text, 1));
    EXPECT_FALSE(ReadFileZV(file.get(), text, ~0UL)) << "a count that would wrap round";
    EXPECT_EQ(block, "01234567ab");
    EXPECT_EQ(GetFileLengthZV(file.get()), 10);
    EXPECT_EQ(GetFileModificationDateZV(file.get()), 0);
}

TEST_F(MemoryFile, SeeksStayInTheBlock)
{
    struct {
        char const* why;
        long offset;
        unsigned short mode;
        long position;
    } const rows[] = {
        {"from the start", 4, 0, 4},
        {"on from there", 3, 1, 7},
        {"and back", -2, 1, 5},
        {"the end is the last byte", 0, 2, 9},
        {"one behind it", 1, 2, 10},
        {"no further than the end", 2, 2, 10},
        {"not by a great step either", std::numeric_limits<long>::max(), 1, 10},
        {"not before the start", -11, 1, 0},
        {"nor far before it", std::numeric_limits<long>::min(), 2, 0},
        {"an unknown mode stays", 5, 3, 0},
    };
    long before = 0;
    for (auto const& row : rows) {
        EXPECT_EQ(SeekFileZV(file.get(), row.offset, row.mode), before) << row.why;
        before = Position(file);
        EXPECT_EQ(before, row.position) << row.why;
    }
    SeekFileZV(file.get(), 0, 2);
    WriteFileZV(file.get(), "x", 1);
    EXPECT_EQ(block, "012345678x");
}

}  // namespace
