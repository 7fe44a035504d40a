// Reading, writing and seeking through handles, compared with a file held as a plain array.
#include "TestEnvironment.h"
#include "files/FileTestTools.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <random>
#include <sys/resource.h>
#include <unistd.h>

namespace {

/// What a file must look like to its user: bytes and one position.
class ModelFile {
public:
    ModelFile(Bytes bytes, bool canRead, bool canWrite)
        : bytes_(std::move(bytes)), canRead_(canRead), canWrite_(canWrite)
    {
    }

    bool Read(std::size_t count, Bytes& out)
    {
        out.clear();
        if (!canRead_ || position_ >= bytes_.size()) return false;
        std::size_t const got = std::min(count, bytes_.size() - position_);
        out.assign(bytes_.begin() + static_cast<long>(position_),
                   bytes_.begin() + static_cast<long>(position_ + got));
        position_ += got;
        return true;
    }

    bool Write(Bytes const& source)
    {
        if (!canWrite_) return false;
        bytes_.resize(std::max(bytes_.size(), position_ + source.size()));
        std::copy(source.begin(), source.end(), bytes_.begin() + static_cast<long>(position_));
        position_ += source.size();
        return true;
    }

    long Seek(long offset, int mode)
    {
        long const old = static_cast<long>(position_);
        long const origin = mode == 0 ? 0 : mode == 1 ? old : Size();
        long const target = origin + offset;
        if (target < 0) return old;
        if (canWrite_ && target > Size()) bytes_.resize(static_cast<std::size_t>(target));
        position_ = static_cast<std::size_t>(mode == 2 && canWrite_ ? Size() + offset : target);
        return old;
    }

    long Size() const { return static_cast<long>(bytes_.size()); }
    long Position() const { return static_cast<long>(position_); }
    Bytes const& Content() const { return bytes_; }

private:
    Bytes bytes_;
    std::size_t position_ = 0;
    bool canRead_;
    bool canWrite_;
};

struct PermissionCase {
    ZVFilePermission permission;
    ZVFileFlags flags;
    bool canRead;
    bool canWrite;
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
    Bytes const start = Pattern(90000);
    std::string const path = environment.Path("model.dat");
    Write_Native(path, start);
    ModelFile model(start, param.canRead, param.canWrite);
    OpenFile file(OpenFileZV(environment.Spec("model.dat").c_str(), param.permission, param.flags));
    ASSERT_TRUE(file);

    Bytes expected;
    for (int step = 0; step < 8000; ++step) {
        auto const action = random() % 10;
        if (action < 4) {
            Bytes got(Random_Count(random));
            bool const read = model.Read(got.size(), expected);
            ASSERT_EQ(ReadFileZV(file.get(), got.data(), got.size()), read) << "step " << step;
            got.resize(expected.size());
            ASSERT_EQ(got, expected) << "step " << step;
        } else if (action < 8) {
            Bytes bytes(model.Size() > 3000000 ? 5 : Random_Count(random));
            for (uint8_t& byte : bytes)
                byte = static_cast<uint8_t>(random());
            ASSERT_EQ(WriteFileZV(file.get(), bytes.data(), bytes.size()), model.Write(bytes))
                << "step " << step;
        } else {
            int const mode = static_cast<int>(random() % 3);
            long const span = mode == 0 ? model.Size() : 6000;
            long offset = static_cast<long>(random() % static_cast<unsigned long>(span + 600));
            if (mode == 1) offset -= 3000;
            if (mode == 2) offset = 300 - offset;
            if (model.Size() > 3000000) offset = std::min(offset, mode == 0 ? model.Size() : 0L);
            ASSERT_EQ(SeekFileZV(file.get(), offset, static_cast<unsigned short>(mode)),
                      model.Seek(offset, mode))
                << "step " << step;
        }
        ASSERT_EQ(SeekFileZV(file.get(), 0, 1), model.Position()) << "step " << step;
    }
    file.reset();
    EXPECT_EQ(Native_Bytes(path), model.Content());
}

INSTANTIATE_TEST_SUITE_P(Permissions, FileModel,
                         ::testing::Values(PermissionCase{ZVFilePermRead, ZVFileFlagNone, true, false},
                                           PermissionCase{ZVFilePermRead, ZVFileFlagLargeRead, true, false},
                                           PermissionCase{ZVFilePermWrite, ZVFileFlagNone, false, true},
                                           PermissionCase{ZVFilePermReadWrite, ZVFileFlagNone, true, true},
                                           PermissionCase{ZVFilePermReadLarge, ZVFileFlagNone, true, false}));

class FileTransfer : public ::testing::Test {
protected:
    OpenFile Create(ZVFilePermission permission, ZVFileFlags flags = ZVFileFlagNone)
    {
        return OpenFile(CreateFileZV(spec.c_str(), permission, ZV_BLANK_CODE, ZV_BLANK_CODE, flags));
    }
    OpenFile Open(ZVFilePermission permission, ZVFileFlags flags = ZVFileFlagNone)
    {
        return OpenFile(OpenFileZV(spec.c_str(), permission, flags));
    }
    long Size_On_Disk() { return Native_Info(path).st_size; }

    TestEnvironment environment;
    std::string const spec = environment.Spec("file.dat");
    std::string const path = environment.Path("file.dat");
};

TEST_F(FileTransfer, BuffersHaveTheSizesOfTheirPermissions)
{
    struct {
        ZVFilePermission permission;
        ZVFileFlags flags;
        uint32_t opened, created;
    } const rows[] = {
        {ZVFilePermRead, ZVFileFlagNone, 4096, 4096},     {ZVFilePermWrite, ZVFileFlagNone, 20480, 20480},
        {ZVFilePermReadWrite, ZVFileFlagNone, 0, 0},      {ZVFilePermReadLarge, ZVFileFlagNone, 20480, 20480},
        {ZVFilePermRead, ZVFileFlagLargeRead, 0, 4096},   {ZVFilePermWrite, ZVFileFlagLargeRead, 0, 20480},
        {ZVFilePermReadWrite, ZVFileFlagLargeRead, 0, 0},
    };
    for (auto const& row : rows) {
        OpenFile const created = Create(row.permission, row.flags);
        OpenFile const opened = Open(row.permission, row.flags);
        ASSERT_TRUE(created && opened);
        EXPECT_EQ(created->bufferSize, row.created);
        EXPECT_EQ(opened->bufferSize, row.opened);
        EXPECT_EQ(opened->buffer != nullptr, row.opened != 0);
        EXPECT_EQ(opened->flags, row.flags);
        EXPECT_EQ(opened->permission, row.permission);
    }
}

TEST_F(FileTransfer, AWriteOfTheFreeRoomGoesToDiskAtOnce)
{
    OpenFile const file = Create(ZVFilePermWrite);
    Bytes const bytes = Pattern(20480);
    ASSERT_TRUE(WriteFileZV(file.get(), bytes.data(), 20479));
    EXPECT_EQ(Size_On_Disk(), 0);
    EXPECT_EQ(GetFileLengthZV(file.get()), 0) << "what waits is not on disk";
    EXPECT_EQ(File_GetLength(file.get()), 20479) << "but counts for the seam";
    ASSERT_TRUE(WriteFileZV(file.get(), &bytes[20479], 1));
    EXPECT_EQ(Size_On_Disk(), 20480);
    EXPECT_EQ(file->cursor, file->buffer);
    EXPECT_EQ(Native_Bytes(path), bytes);
}

TEST_F(FileTransfer, ReadsDeliverWhatThereIsAcrossTheEnd)
{
    Write_Native(path, "abc");
    for (ZVFilePermission permission : {ZVFilePermRead, ZVFilePermReadWrite, ZVFilePermReadLarge}) {
        OpenFile const file = Open(permission);
        char text[8] = {};
        SetError(7);
        EXPECT_TRUE(ReadFileZV(file.get(), text, 8));
        EXPECT_STREQ(text, "abc");
        EXPECT_EQ(GetErrorZV(), 0U) << "the end of the file is no error";
        EXPECT_FALSE(ReadFileZV(file.get(), text, 1)) << "not one byte";
        EXPECT_EQ(GetErrorZV(), 0U);
    }
}

TEST_F(FileTransfer, TransfersAgainstThePermissionFail)
{
    Write_Native(path, "abc");
    char text[4] = "xyz";
    OpenFile writer = Open(ZVFilePermWrite);
    ASSERT_TRUE(WriteFileZV(writer.get(), "def", 3));
    EXPECT_FALSE(ReadFileZV(writer.get(), text, 1));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_IO);
    for (ZVFileFlags flags : {ZVFileFlagNone, ZVFileFlagLargeRead}) {
        OpenFile const reader = Open(ZVFilePermRead, flags);
        EXPECT_FALSE(WriteFileZV(reader.get(), text, 3));
        EXPECT_EQ(GetErrorZV(), ZV_ERR_IO);
    }
    writer.reset();
    EXPECT_EQ(Native_Bytes(path), To_Bytes("def"));
}

TEST_F(FileTransfer, NullArgumentsAreAnswered)
{
    Write_Native(path, "abc");
    char byte;
    OpenFile const file = Open(ZVFilePermReadWrite);
    EXPECT_FALSE(ReadFileZV(file.get(), nullptr, 1));
    EXPECT_FALSE(WriteFileZV(file.get(), nullptr, 1));
    EXPECT_FALSE(ReadFileZV(nullptr, &byte, 1));
    EXPECT_FALSE(WriteFileZV(nullptr, &byte, 1));
    EXPECT_EQ(SeekFileZV(nullptr, 1, 0), 0);
    EXPECT_EQ(GetFileLengthZV(nullptr), 0);
    EXPECT_EQ(GetFileModificationDateZV(nullptr), 0);
    EXPECT_EQ(OpenFileZV(nullptr, ZVFilePermRead, ZVFileFlagNone), nullptr);
    EXPECT_EQ(CreateFileZV(nullptr, ZVFilePermWrite, 0, 0, ZVFileFlagNone), nullptr);
    EXPECT_EQ(OpenFileinMemoryZV(nullptr, 4, ZVFilePermRead), nullptr);
    EXPECT_EQ(OpenFolderZV(spec.c_str()), nullptr);
    CloseFileZV(nullptr);
}

TEST_F(FileTransfer, SeekingBeyondTheEndExtendsOnlyWhatCanBeWritten)
{
    Write_Native(path, "abc");
    SeekFileZV(Open(ZVFilePermRead).get(), 1000, 0);
    EXPECT_EQ(Size_On_Disk(), 3);

    struct {
        char const* why;
        long offset;
        unsigned short mode;
        long size, position;
    } const rows[] = {
        {"from the start", 1000, 0, 1000, 1000},
        {"from the position", 1000, 1, 1001, 1001},
        {"from the end, which then is the new one", 500, 2, 503, 1003},
    };
    for (auto const& row : rows) {
        Write_Native(path, "abc");
        OpenFile file = Open(ZVFilePermWrite);
        SeekFileZV(file.get(), 1, 0);
        EXPECT_EQ(SeekFileZV(file.get(), row.offset, row.mode), 1) << row.why;
        EXPECT_EQ(SeekFileZV(file.get(), 0, 1), row.position) << row.why;
        file.reset();
        Bytes zeros = To_Bytes("abc");
        zeros.resize(static_cast<std::size_t>(row.size));
        EXPECT_EQ(Native_Bytes(path), zeros) << row.why;
    }
}

TEST_F(FileTransfer, TheLengthIdiomReturnsToTheStart)
{
    Write_Native(path, Pattern(5000));
    OpenFile const file = Open(ZVFilePermRead);
    SeekFileZV(file.get(), 0, 2);
    EXPECT_EQ(SeekFileZV(file.get(), 0, 0), 5000);
    EXPECT_EQ(SeekFileZV(file.get(), 0, 1), 0);
}

TEST_F(FileTransfer, FilesBeyondFourGigabytesWork)
{
    OpenFile file = Create(ZVFilePermReadWrite);
    long const far = 5L << 30;
    SeekFileZV(file.get(), far, 0);
    ASSERT_TRUE(WriteFileZV(file.get(), "end", 3));
    EXPECT_EQ(SeekFileZV(file.get(), 0, 1), far + 3);
    EXPECT_EQ(GetFileLengthZV(file.get()), far + 3);
    file = Open(ZVFilePermRead);
    SeekFileZV(file.get(), far - 1, 0);
    char text[5] = {1};
    EXPECT_TRUE(ReadFileZV(file.get(), text, 4));
    EXPECT_EQ(std::memcmp(text, "\0end", 4), 0);
}

TEST_F(FileTransfer, AnAbsurdSeekFailsAtOnceAndMovesNothing)
{
    OpenFile const file = Create(ZVFilePermWrite);
    ASSERT_TRUE(WriteFileZV(file.get(), "abc", 3));
    EXPECT_EQ(SeekFileZV(file.get(), (1L << 62), 0), 3);
    EXPECT_NE(GetErrorZV(), 0U);
    EXPECT_EQ(SeekFileZV(file.get(), 0, 1), 3);
    EXPECT_EQ(SeekFileZV(file.get(), std::numeric_limits<long>::max(), 1), 3);
    EXPECT_EQ(SeekFileZV(file.get(), 0, 1), 3);
    EXPECT_EQ(Size_On_Disk(), 3);
}

/// Lets files grow to a limit only, as a full disk does, for as long as it lives.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes)
    {
        signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &old_);
        rlimit limit = old_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &old_); }

private:
    rlimit old_;
};

TEST_F(FileTransfer, AFailedWriteCanBeTriedAgain)
{
    struct {
        char const* why;
        std::size_t first, second;
        rlim_t limit;
    } const rows[] = {
        {"the first flush", 15000, 10000, 10000},
        {"a flush that starts in the middle of the file", 30000, 30000, 30000},
        {"the direct part behind a flush that went well", 100, 70000, 30000},
        {"a write as large as the buffer into an empty one", 0, 20480, 20000},
        {"a part behind several buffers", 0, 90000, 65000},
    };
    for (auto const& row : rows) {
        Bytes const bytes = Pattern(row.first + row.second);
        OpenFile file = Create(ZVFilePermWrite);
        ASSERT_TRUE(WriteFileZV(file.get(), bytes.data(), row.first)) << row.why;
        {
            FullDisk full(row.limit);
            EXPECT_FALSE(WriteFileZV(file.get(), &bytes[row.first], row.second)) << row.why;
            EXPECT_EQ(GetErrorZV(), ZV_ERR_DISK_FULL) << row.why;
            EXPECT_EQ(SeekFileZV(file.get(), 0, 1), static_cast<long>(row.first)) << row.why;
        }
        EXPECT_TRUE(WriteFileZV(file.get(), &bytes[row.first], row.second)) << row.why;
        file.reset();
        EXPECT_EQ(Native_Bytes(path), bytes) << row.why;
    }
}

TEST_F(FileTransfer, AnUnbufferedWriteThatFailsKeepsThePosition)
{
    Bytes const bytes = Pattern(9000);
    OpenFile const file = Create(ZVFilePermReadWrite);
    ASSERT_TRUE(WriteFileZV(file.get(), bytes.data(), 10));
    {
        FullDisk full(5000);
        EXPECT_FALSE(WriteFileZV(file.get(), &bytes[10], 8990));
    }
    EXPECT_EQ(SeekFileZV(file.get(), 0, 1), 10);
    EXPECT_TRUE(WriteFileZV(file.get(), &bytes[10], 8990));
    EXPECT_EQ(Native_Bytes(path), bytes);
}

TEST_F(FileTransfer, BytesLostOnTheWayOutAreReported)
{
    Bytes const bytes = Pattern(1000);
    {
        OpenFile file = Create(ZVFilePermWrite);
        ASSERT_TRUE(WriteFileZV(file.get(), bytes.data(), bytes.size()));
        FullDisk full(0);
        SeekFileZV(file.get(), 0, 0);
        EXPECT_EQ(GetErrorZV(), ZV_ERR_DISK_FULL) << "by a seek";
    }
    {
        OpenFile file = Create(ZVFilePermWrite);
        ASSERT_TRUE(WriteFileZV(file.get(), bytes.data(), bytes.size()));
        SetError(0);
        FullDisk full(0);
        file.reset();
        EXPECT_EQ(GetErrorZV(), ZV_ERR_DISK_FULL) << "by closing";
    }
}

TEST_F(FileTransfer, ModificationDateIsThatOfTheFile)
{
    Write_Native(path, "abc");
    timespec const times[] = {{1234567890, 0}, {1234567891, 0}};
    utimensat(AT_FDCWD, path.c_str(), times, 0);
    EXPECT_EQ(GetFileModificationDateZV(Open(ZVFilePermRead).get()), 1234567891);
}

TEST(FileTimes, CountFrom1904AndFrom1970)
{
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
    EXPECT_EQ(SeekFileZV(file.get(), 0, 1), 0);
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
        before = SeekFileZV(file.get(), 0, 1);
        EXPECT_EQ(before, row.position) << row.why;
    }
    SeekFileZV(file.get(), 0, 2);
    WriteFileZV(file.get(), "x", 1);
    EXPECT_EQ(block, "012345678x");
}

}  // namespace
