// Creating, opening and reading files through the seam: what it keeps and replaces, refuses, and how large
// reads run.
#include "TestEnvironment.h"
#include "files/FileTestTools.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

constexpr uint32_t TypeA = ZV_FourCC("AAAA");
constexpr uint32_t CreatorA = ZV_FourCC("aaaa");
constexpr uint32_t TypeB = ZV_FourCC("BBBB");
constexpr uint32_t Pict = ZV_FourCC("PICT");

class FileSeam : public EnvironmentTest {
protected:
    OpenFile Create(std::string const& name, uint32_t type, uint32_t creator)
    {
        return OpenFile(
            CreateFileZV(environment.Spec(name).c_str(), ZVFilePermWrite, type, creator, ZVFileFlagNone));
    }
    unsigned long Open_Error(std::string const& spec, ZVFilePermission permission = ZVFilePermRead)
    {
        SetError(0);
        return Open_File(spec, permission) ? 0 : GetErrorZV();
    }
    ZVCreatorPair Codes_Of(std::string const& name)
    {
        ZVCreatorPair codes;
        Get_FileInfo(environment.Spec(name).c_str(), &codes.creator, &codes.type);
        return codes;
    }
    bool Has_Attributes()
    {
        std::string const path = environment.Path("probe");
        Write_Native(path, "");
        return setxattr(path.c_str(), "user.zvtest", "1", 1, 0) == 0;
    }
};

constexpr ZVCreatorPair Blank = {ZV_BLANK_CODE, ZV_BLANK_CODE};

TEST_F(FileSeam, CreatingKeepsAFileOfTheSameCodesAndReplacesOthers)
{
    if (!Has_Attributes()) GTEST_SKIP() << "no extended attributes here";
    struct {
        char const* why;
        char const* name;
        ZVCreatorPair first, second;
        bool isKept;
        uint32_t typeAfter;
    } const rows[] = {
        {"same codes", "a", {TypeA, CreatorA}, {TypeA, CreatorA}, true, TypeA},
        {"another type", "a", {TypeA, CreatorA}, {TypeB, CreatorA}, false, TypeB},
        {"another creator", "a", {TypeA, CreatorA}, {TypeA, TypeB}, false, TypeA},
        {"blank ones instead", "a", {TypeA, CreatorA}, Blank, false, ZV_BLANK_CODE},
        {"no codes at all", "a", Blank, Blank, true, ZV_BLANK_CODE},
        {"the type of the extension", "a.PCT", Blank, {Pict, ZV_BLANK_CODE}, true, Pict},
        {"blank in spite of the extension", "a.pct", Blank, Blank, true, Pict},
    };
    std::string const second = environment.Path("second");
    for (auto const& row : rows) {
        std::string const path = environment.Path(row.name);
        unlink(path.c_str());
        WriteFileZV(Create(row.name, row.first.type, row.first.creator).get(), "old", 3);
        // A second name keeps the old file's number from being used again.
        unlink(second.c_str());
        ASSERT_EQ(link(path.c_str(), second.c_str()), 0);

        ASSERT_TRUE(Create(row.name, row.second.type, row.second.creator)) << row.why;
        EXPECT_EQ(Native_Info(path).st_size, 0) << row.why;
        EXPECT_EQ(Native_Info(path).st_ino == Native_Info(second).st_ino, row.isKept) << row.why;
        EXPECT_EQ(Codes_Of(row.name).type, row.typeAfter) << row.why;
        EXPECT_EQ(Codes_Of(row.name).creator, row.second.creator) << row.why;
    }
}

TEST_F(FileSeam, CodesLieInTheFinderAttribute)
{
    if (!Has_Attributes()) GTEST_SKIP() << "no extended attributes here";
    char const* name = "user.com.apple.FinderInfo";
    Create("coded", TypeA, CreatorA);
    char info[32] = {};
    ASSERT_EQ(getxattr(environment.Path("coded").c_str(), name, info, 32), 32);
    EXPECT_EQ(std::string(info, 8), "AAAAaaaa");

    Create("plain", ZV_BLANK_CODE, ZV_BLANK_CODE);
    EXPECT_LT(getxattr(environment.Path("plain").c_str(), name, info, 32), 0) << "blank codes leave no trace";

    struct {
        char const* why;
        char const* file;
        std::string attribute;
        uint32_t type, creator;
    } const rows[] = {
        {"other writers' codes", "x", "MooVTVOD" + std::string(24, '\1'), ZV_FourCC("MooV"),
         ZV_FourCC("TVOD")},
        {"flags alone are no codes", "x.mov", std::string(32, '\0'), ZV_FourCC("MooV"), ZV_BLANK_CODE},
        {"a cut attribute counts for nothing", "y.flm", "MooV", ZV_FourCC("Film"), ZV_BLANK_CODE},
        {"a strange one cannot be had", "z.flm", std::string(40, 'x'), ZV_BLANK_CODE, ZV_BLANK_CODE},
    };
    for (auto const& row : rows) {
        std::string const path = environment.Path(row.file);
        Write_Native(path, "");
        ASSERT_EQ(setxattr(path.c_str(), name, row.attribute.data(), row.attribute.size(), 0), 0);
        EXPECT_EQ(Codes_Of(row.file).type, row.type) << row.why;
        EXPECT_EQ(Codes_Of(row.file).creator, row.creator) << row.why;
    }
}

TEST_F(FileSeam, CodesThatCannotBeHadAreBlank)
{
    environment.Make_Directory("folder.pct");
    for (char const* name : {"missing.pct", "folder.pct"}) {
        EXPECT_EQ(Codes_Of(name).type, ZV_BLANK_CODE) << name;
        EXPECT_EQ(Codes_Of(name).creator, ZV_BLANK_CODE) << name;
    }
    uint32_t creator = 0;
    Get_FileInfo(nullptr, &creator, nullptr);
    EXPECT_EQ(creator, ZV_BLANK_CODE);
}

TEST_F(FileSeam, RefusalsTellWhy)
{
    environment.Make_Directory("folder");
    mkfifo(environment.Path("pipe").c_str(), 0666);
    Write_Native(environment.Path("file"), "abc");
    struct {
        char const* why;
        std::string spec;
        unsigned long error;
    } const rows[] = {
        {"no such file", environment.Spec("missing"), ZV_ERR_NOT_FOUND},
        {"no such directory", environment.Spec("missing\\file"), ZV_ERR_NOT_FOUND},
        {"a file as directory", environment.Spec("file\\file"), ZV_ERR_NOT_FOUND},
        {"no such volume", "Nowhere:\\file", ZV_ERR_NOT_FOUND},
        {"a name too long for a directory", environment.Spec(std::string(300, 'x')), ZV_ERR_NOT_FOUND},
        {"a spec too long for the buffers", "Root:\\" + std::string(1018, '\\'), ZV_ERR_NOT_FOUND},
        {"no volume part", "file", ZV_ERR_IO},
        {"a bar ahead of it", "|Root:\\file", ZV_ERR_IO},
        {"a directory", environment.Spec("folder"), ZV_ERR_IO},
        {"a pipe, which also must not block", environment.Spec("pipe"), ZV_ERR_IO},
    };
    for (auto const& row : rows)
        EXPECT_EQ(Open_Error(row.spec), row.error) << row.why;
    EXPECT_EQ(Open_Error(environment.Spec("folder"), ZVFilePermWrite), ZV_ERR_IO);

    ZVFileInfo file{};
    EXPECT_FALSE(File_Open(&file, nullptr, ZVFilePermRead, ZVFileFlagNone));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_IO);
    EXPECT_FALSE(Create("folder", TypeA, CreatorA)) << "a directory is not replaced";
    EXPECT_TRUE(std::filesystem::is_directory(environment.Path("folder")));
    EXPECT_FALSE(Create("missing/file", TypeA, CreatorA));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
}

TEST_F(FileSeam, AFileThatMayNotBeWrittenIsLockedAndKept)
{
    chmod(environment.Path().c_str(), 0777);
    struct {
        char const* why;
        mode_t mode;
        uint32_t type;
        unsigned long readError;
    } const rows[] = {
        {"may be read", 0444, ZV_BLANK_CODE, ZV_ERR_NONE},
        {"of another type", 0444, TypeA, ZV_ERR_NONE},
        {"may not even be read", 0, ZV_BLANK_CODE, ZV_ERR_LOCKED},
    };
    for (auto const& row : rows) {
        std::string const spec = environment.Write("locked", "abc");
        chmod(environment.Path("locked").c_str(), row.mode);
        bool const isRoot = geteuid() == 0;
        ASSERT_TRUE(!isRoot || seteuid(65534) == 0);
        unsigned long const readError = Open_Error(spec);
        unsigned long const writeError = Open_Error(spec, ZVFilePermWrite);
        bool const created = Create("locked", row.type, row.type) != nullptr;
        unsigned long const createError = GetErrorZV();
        ASSERT_TRUE(!isRoot || seteuid(0) == 0);
        EXPECT_EQ(readError, row.readError) << row.why;
        EXPECT_EQ(writeError, ZV_ERR_LOCKED) << row.why;
        EXPECT_FALSE(created) << row.why;
        EXPECT_EQ(createError, ZV_ERR_LOCKED) << row.why;
        EXPECT_EQ(Native_Info(environment.Path("locked")).st_size, 3) << row.why;
        EXPECT_TRUE(DeleteFileZV(spec.c_str())) << "deleting is a matter of the directory";
    }
}

TEST_F(FileSeam, ADanglingLinkIsReplaced)
{
    std::filesystem::create_symlink(environment.Path("target"), environment.Path("link"));
    ASSERT_TRUE(Create("link", TypeA, CreatorA));
    EXPECT_FALSE(std::filesystem::is_symlink(environment.Path("link")));
    EXPECT_FALSE(std::filesystem::exists(environment.Path("target")));
}

TEST_F(FileSeam, DescriptorsStayClearOfTheStandardOnesAndOfChildren)
{
    Write_Native(environment.Path("file"), "abc");
    int const saved = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    OpenFile const file = Open_File(environment.Spec("file"));
    dup2(saved, STDIN_FILENO);
    close(saved);
    ASSERT_TRUE(file);
    EXPECT_GT(file->forkRef, 2);
    EXPECT_EQ(fcntl(file->forkRef, F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(fcntl(Open_File(environment.Spec("file"))->forkRef, F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(file->volumeRef, static_cast<int32_t>(Native_Info(environment.Path("file")).st_dev));
}

TEST_F(FileSeam, ADeviceWithoutRoomIsFull)
{
    ZVFileInfo file{};
    file.permission = ZVFilePermReadWrite;
    file.forkRef = open("/dev/full", O_RDWR | O_CLOEXEC);
    ASSERT_GT(file.forkRef, 0);
    EXPECT_FALSE(WriteFileZV(&file, "abc", 3));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_DISK_FULL);
    File_Close(&file);
    EXPECT_EQ(file.forkRef, 0);
    file.forkRef = 1 << 20;
    char byte;
    EXPECT_FALSE(ReadFileZV(&file, &byte, 1));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_OPEN);
}

}  // namespace
