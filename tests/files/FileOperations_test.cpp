// Operations on files and directories by their specs.
#include "TestEnvironment.h"
#include "files/FileTestTools.h"
#include "files/PrivateMounts.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

class FileOperations : public ::testing::Test {
protected:
    std::string Spec(std::string const& name) const { return environment.Spec(name); }
    std::string Path(std::string const& name) const { return environment.Path(name); }

    TestEnvironment environment;
};

TEST_F(FileOperations, ExistenceIsThatOfTheFile)
{
    environment.Write("dir/file", "");
    fs::create_symlink(Path("missing"), Path("dangling"));
    fs::create_symlink(Path("dir/file"), Path("link"));
    EXPECT_TRUE(FileExistsZV(Spec("dir\\file").c_str()));
    EXPECT_TRUE(FileExistsZV(Spec("dir").c_str()));
    EXPECT_TRUE(FileExistsZV(Spec("dir\\").c_str()));
    EXPECT_TRUE(FileExistsZV(Spec("link").c_str()));
    EXPECT_FALSE(FileExistsZV(Spec("dangling").c_str()));
    EXPECT_FALSE(FileExistsZV(Spec("missing").c_str()));
    EXPECT_FALSE(FileExistsZV(Spec("dir\\file\\").c_str()));
    EXPECT_FALSE(FileExistsZV(Path("dir/file").c_str())) << "a native path is no spec";
    EXPECT_FALSE(FileExistsZV(""));
    EXPECT_FALSE(FileExistsZV(nullptr));
}

TEST_F(FileOperations, DeletingTakesFilesAndLinksOnly)
{
    environment.Write("dir/file", "");
    fs::create_symlink(Path("dir/file"), Path("link"));
    EXPECT_TRUE(DeleteFileZV(Spec("link").c_str()));
    EXPECT_EQ(GetErrorZV(), 0U);
    EXPECT_TRUE(fs::exists(Path("dir/file")));
    EXPECT_FALSE(DeleteFileZV(Spec("dir").c_str()));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_IO);
    EXPECT_TRUE(DeleteFileZV(Spec("dir\\file").c_str()));
    EXPECT_FALSE(DeleteFileZV(Spec("dir\\file").c_str()));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
    EXPECT_FALSE(DeleteFileZV(nullptr));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_IO);
}

TEST_F(FileOperations, RenamingReplacesWhatIsThere)
{
    fs::create_directory(Path("dir"));
    environment.Write("a", "new");
    environment.Write("dir/b", "old");
    EXPECT_TRUE(RenameFileZV(Spec("a").c_str(), Spec("dir\\b").c_str()));
    EXPECT_FALSE(fs::exists(Path("a")));
    EXPECT_EQ(Native_Bytes(Path("dir/b")), To_Bytes("new"));
    EXPECT_TRUE(RenameFileZV(Spec("dir\\b").c_str(), Spec("dir\\c").c_str()));
    EXPECT_TRUE(RenameFileZV(Spec("dir\\c").c_str(), Spec("dir\\c").c_str())) << "to its own name";
    EXPECT_EQ(Native_Bytes(Path("dir/c")), To_Bytes("new"));
    EXPECT_TRUE(RenameFileZV(Spec("dir").c_str(), Spec("other\\").c_str())) << "a directory";

    EXPECT_FALSE(RenameFileZV(Spec("missing").c_str(), Spec("other\\c").c_str()));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
    EXPECT_EQ(Native_Bytes(Path("other/c")), To_Bytes("new")) << "nothing was deleted for it";
    EXPECT_FALSE(RenameFileZV(Spec("other\\c").c_str(), Spec("nowhere\\c").c_str()));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
    EXPECT_FALSE(RenameFileZV(nullptr, Spec("x").c_str()));
    EXPECT_FALSE(RenameFileZV(Spec("other\\c").c_str(), nullptr));
    EXPECT_TRUE(fs::exists(Path("other/c")));
}

/// A directory on another file system than the temporary one, or empty.
std::string Other_File_System(std::string const& here)
{
    std::string name = "/dev/shm/zvtest.XXXXXX";
    if (!mkdtemp(name.data())) return {};
    if (Native_Info(name).st_dev != Native_Info(here).st_dev) return name;
    rmdir(name.c_str());
    return {};
}

TEST_F(FileOperations, MovingToAnotherFileSystemKeepsContentsAndAttributes)
{
    std::string const other = Other_File_System(Path(""));
    if (other.empty()) GTEST_SKIP() << "there is only one file system";
    FSSpec place{};
    std::snprintf(place.path, sizeof place.path, "%s/moved", other.c_str());
    char target[ZV_SPEC_SIZE];
    ASSERT_EQ(GetDOSPathZV(target, &place), 0);

    Bytes const bytes = Pattern(1000000);
    Write_Native(Path("file"), bytes);
    chmod(Path("file").c_str(), 0640);
    timespec const times[] = {{1000, 0}, {1234567890, 0}};
    utimensat(AT_FDCWD, Path("file").c_str(), times, 0);
    bool const hasAttributes = setxattr(Path("file").c_str(), "user.zvtest", "value", 5, 0) == 0;
    std::string const old = other + "/moved";
    Write_Native(old, "old");

    EXPECT_TRUE(RenameFileZV(Spec("file").c_str(), target));
    EXPECT_FALSE(fs::exists(Path("file")));
    EXPECT_EQ(Native_Bytes(old), bytes);
    EXPECT_EQ(Native_Info(old).st_mode & 07777, 0640U);
    EXPECT_EQ(Native_Info(old).st_mtime, 1234567890);
    char value[8] = {};
    bool const canHold = setxattr(other.c_str(), "user.zvtest", "1", 1, 0) == 0;
    if (hasAttributes && canHold) {
        EXPECT_EQ(getxattr(old.c_str(), "user.zvtest", value, 8), 5);
        EXPECT_STREQ(value, "value");
    }
    EXPECT_TRUE(RenameFileZV(target, Spec("back").c_str()));
    EXPECT_EQ(Native_Bytes(Path("back")), bytes);

    fs::create_directory(Path("dir"));
    EXPECT_FALSE(RenameFileZV(Spec("dir").c_str(), target)) << "directories stay on their file system";
    fs::create_directory(old);
    Write_Native(old + "/x", "");
    EXPECT_FALSE(RenameFileZV(Spec("back").c_str(), target)) << "a full directory is not replaced";
    EXPECT_EQ(Native_Bytes(Path("back")), bytes);
    EXPECT_EQ(std::distance(fs::directory_iterator(other), {}), 1) << "no half copy is left";
    fs::remove_all(other);
}

TEST_F(FileOperations, DirectoriesAreMadeOneLevelAtATime)
{
    environment.Write("file", "");
    EXPECT_TRUE(CreateDirZV(Spec("dir\\").c_str()));
    EXPECT_TRUE(fs::is_directory(Path("dir")));
    EXPECT_TRUE(CreateDirZV(Spec("dir").c_str())) << "once more";
    EXPECT_EQ(GetErrorZV(), 0U);
    EXPECT_FALSE(CreateDirZV(Spec("missing\\dir").c_str()));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
    EXPECT_FALSE(CreateDirZV(Spec("file").c_str())) << "a file is in the way";
    EXPECT_FALSE(CreateDirZV("dir")) << "no place in particular";
    EXPECT_FALSE(CreateDirZV(nullptr));
}

TEST_F(FileOperations, DeletingADirectoryStaysInsideIt)
{
    environment.Write("dir/a/b/c/file", "");
    environment.Write("dir/file", "");
    environment.Write("kept/file", "");
    fs::create_directory_symlink(Path("kept"), Path("dir/a/link"));
    fs::create_directory_symlink(Path("kept"), Path("link"));
    chmod(Path("dir/file").c_str(), 0400);

    EXPECT_FALSE(DeleteDirZV(Spec("link\\").c_str())) << "a link is no directory";
    EXPECT_FALSE(DeleteDirZV(Spec("link").c_str()));
    EXPECT_FALSE(DeleteDirZV(Spec("kept\\file").c_str())) << "nor is a file";
    EXPECT_FALSE(DeleteDirZV(Spec("missing").c_str()));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
    EXPECT_FALSE(DeleteDirZV(nullptr));
    EXPECT_TRUE(DeleteDirZV(Spec("dir\\").c_str()));
    EXPECT_EQ(GetErrorZV(), 0U);
    EXPECT_FALSE(fs::exists(Path("dir")));
    EXPECT_TRUE(fs::exists(Path("kept/file")));
    EXPECT_TRUE(fs::is_symlink(Path("link")));
}

TEST(FileOperationsOnVolumes, ARootIsRefusedUntouched)
{
    With_Mounts({"/mnt/CARD", "/mnt/tree/inner"}, [] {
        Write_Native("/mnt/CARD/file", "abc");
        fs::create_symlink("/mnt/CARD/..", "/mnt/CARD/link");
        EXPECT_FALSE(DeleteDirZV("CARD:\\"));
        EXPECT_FALSE(DeleteDirZV("Root:\\mnt\\CARD"));
        EXPECT_TRUE(fs::exists("/mnt/CARD/file"));
        Write_Native("/mnt/tree/inner/file", "abc");
        EXPECT_FALSE(DeleteDirZV("Root:\\mnt\\tree")) << "another file system is in it";
        EXPECT_TRUE(fs::exists("/mnt/tree/inner/file"));
        EXPECT_TRUE(CreateDirZV("CARD:\\dir"));
        EXPECT_TRUE(RenameFileZV("CARD:\\file", "CARD:\\dir\\file"));
        EXPECT_TRUE(RenameFileZV("CARD:\\dir\\file", "Root:\\mnt\\out")) << "to another file system";
        EXPECT_EQ(Native_Bytes("/mnt/out"), To_Bytes("abc"));
        EXPECT_TRUE(DeleteDirZV("CARD:\\dir"));
    });
}

struct Visit {
    std::vector<std::string> seen;
    std::size_t limit = 100;
};

bool Note_Entry(char const* name, bool isDirectory, void* data)
{
    auto& visit = *static_cast<Visit*>(data);
    visit.seen.push_back(std::string(name) + (isDirectory ? "/" : ""));
    return visit.seen.size() < visit.limit;
}

TEST_F(FileOperations, DirectoriesAreWalkedInOrder)
{
    for (char const* name :
         {"walk/b10", "walk/B9", "walk/a", "walk/A", "walk/dir/x", "walk/.hidden", "walk/c:d\\e"})
        environment.Write(name, "");
    fs::create_directory_symlink(Path("walk/dir"), Path("walk/link"));
    fs::create_symlink(Path("walk/nothing"), Path("walk/zdangling"));
    Visit visit;
    EXPECT_TRUE(OS_Walk_Directory(Spec("walk\\").c_str(), Note_Entry, &visit));
    std::vector<std::string> const expected = {".hidden",
                                               "A",
                                               "a",
                                               "b10",
                                               "B9",
                                               "c\xEF\x80\xBA"
                                               "d\xEF\x81\x9C"
                                               "e",
                                               "dir/",
                                               "link/",
                                               "zdangling"};
    EXPECT_EQ(visit.seen, expected);

    Visit first{.seen = {}, .limit = 2};
    EXPECT_TRUE(OS_Walk_Directory(Spec("walk").c_str(), Note_Entry, &first));
    EXPECT_EQ(first.seen.size(), 2U);
    EXPECT_FALSE(OS_Walk_Directory(Spec("missing").c_str(), Note_Entry, &first));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
    EXPECT_FALSE(OS_Walk_Directory(Spec("walk\\a").c_str(), Note_Entry, &first));
}

bool Delete_Entry(char const* name, bool, void* data)
{
    return DeleteFileZV((*static_cast<std::string*>(data) + name).c_str());
}

TEST_F(FileOperations, AWalkMayChangeItsDirectory)
{
    for (int i = 0; i < 300; ++i)
        environment.Write("walk/file" + std::to_string(i), "");
    std::string directory = Spec("walk\\");
    EXPECT_TRUE(OS_Walk_Directory(directory.c_str(), Delete_Entry, &directory));
    EXPECT_TRUE(fs::is_empty(Path("walk")));
}

}  // namespace
