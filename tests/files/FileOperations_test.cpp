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

class FileOperations : public EnvironmentTest {
protected:
    std::string Spec(std::string const& name) const { return environment.Spec(name); }
    std::string Path(std::string const& name) const { return environment.Path(name); }
};

TEST_F(FileOperations, ExistenceIsThatOfTheFile)
{
    environment.Write("dir/file", "");
    fs::create_symlink(Path("missing"), Path("dangling"));
    fs::create_symlink(Path("dir/file"), Path("link"));
    for (char const* name : {"dir\\file", "dir", "dir\\", "link"})
        EXPECT_TRUE(FileExistsZV(Spec(name).c_str())) << name;
    for (char const* name : {"dangling", "missing", "dir\\file\\"})
        EXPECT_FALSE(FileExistsZV(Spec(name).c_str())) << name;
    EXPECT_FALSE(FileExistsZV(Path("dir/file").c_str())) << "a native path is no spec";
    EXPECT_FALSE(FileExistsZV("") || FileExistsZV(nullptr));
}

TEST_F(FileOperations, DeletingTakesFilesAndLinksOnly)
{
    environment.Write("dir/file", "");
    fs::create_symlink(Path("dir/file"), Path("link"));
    struct {
        char const* name;
        unsigned long error;
    } const rows[] = {{"link", 0}, {"dir", ZV_ERR_IO}, {"dir\\file", 0}, {"dir\\file", ZV_ERR_NOT_FOUND}};
    for (auto const& row : rows) {
        EXPECT_EQ(DeleteFileZV(Spec(row.name).c_str()), row.error == 0) << row.name;
        EXPECT_EQ(GetErrorZV(), row.error) << row.name;
        EXPECT_EQ(fs::exists(Path("dir/file")), &row < rows + 2) << row.name;
    }
    EXPECT_FALSE(DeleteFileZV(nullptr));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_IO);
}

TEST_F(FileOperations, RenamingReplacesWhatIsThere)
{
    environment.Write("a", "new");
    environment.Write("dir/b", "old");
    auto const rename = [&](char const* from, char const* to) {
        return RenameFileZV(Spec(from).c_str(), Spec(to).c_str());
    };
    EXPECT_TRUE(rename("a", "dir\\b"));
    EXPECT_FALSE(fs::exists(Path("a")));
    EXPECT_TRUE(rename("dir\\b", "dir\\c"));
    EXPECT_TRUE(rename("dir\\c", "dir\\c")) << "to its own name";
    EXPECT_TRUE(rename("dir", "other\\")) << "a directory";
    for (auto const& [from, to] : {std::pair{"missing", "other\\c"}, {"other\\c", "nowhere\\c"}}) {
        EXPECT_FALSE(rename(from, to)) << from;
        EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND) << from;
    }
    EXPECT_FALSE(RenameFileZV(nullptr, Spec("x").c_str()));
    EXPECT_FALSE(RenameFileZV(Spec("other\\c").c_str(), nullptr));
    EXPECT_EQ(Bytes_In_File(Path("other/c")), To_Bytes("new")) << "nothing was deleted for what failed";
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
    EXPECT_EQ(Bytes_In_File(old), bytes);
    EXPECT_EQ(Native_Info(old).st_mode & 07777, 0640U);
    EXPECT_EQ(Native_Info(old).st_mtime, 1234567890);
    char value[8] = {};
    bool const canHold = setxattr(other.c_str(), "user.zvtest", "1", 1, 0) == 0;
    if (hasAttributes && canHold) {
        EXPECT_EQ(getxattr(old.c_str(), "user.zvtest", value, 8), 5);
        EXPECT_STREQ(value, "value");
    }
    EXPECT_TRUE(RenameFileZV(target, Spec("back").c_str()));
    EXPECT_EQ(Bytes_In_File(Path("back")), bytes);

    environment.Make_Directory("dir");
    EXPECT_FALSE(RenameFileZV(Spec("dir").c_str(), target)) << "directories stay on their file system";
    fs::create_directory(old);
    Write_Native(old + "/x", "");
    EXPECT_FALSE(RenameFileZV(Spec("back").c_str(), target)) << "a full directory is not replaced";
    EXPECT_EQ(Bytes_In_File(Path("back")), bytes);
    EXPECT_EQ(std::distance(fs::directory_iterator(other), {}), 1) << "no half copy is left";
    fs::remove_all(other);
}

TEST_F(FileOperations, DirectoriesAreMadeOneLevelAtATime)
{
    environment.Write("file", "");
    for (char const* name : {"dir\\", "dir"}) {
        EXPECT_TRUE(CreateDirZV(Spec(name).c_str())) << name;
        EXPECT_EQ(GetErrorZV(), 0U);
        EXPECT_TRUE(fs::is_directory(Path("dir")));
    }
    EXPECT_FALSE(CreateDirZV(Spec("missing\\dir").c_str()));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
    EXPECT_FALSE(CreateDirZV(Spec("file").c_str())) << "a file is in the way";
    EXPECT_FALSE(CreateDirZV("dir") || CreateDirZV(nullptr)) << "no place in particular";
}

TEST_F(FileOperations, DeletingADirectoryStaysInsideIt)
{
    environment.Write("dir/a/b/c/file", "");
    environment.Write("dir/file", "");
    environment.Write("kept/file", "");
    fs::create_directory_symlink(Path("kept"), Path("dir/a/link"));
    fs::create_directory_symlink(Path("kept"), Path("link"));
    chmod(Path("dir/file").c_str(), 0400);
    for (char const* none : {"link\\", "link", "kept\\file", "missing"})
        EXPECT_FALSE(DeleteDirZV(Spec(none).c_str())) << none << " is no directory";
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
        EXPECT_EQ(Bytes_In_File("/mnt/out"), To_Bytes("abc"));
        EXPECT_TRUE(DeleteDirZV("CARD:\\dir"));
    });
}

struct Visit {
    std::vector<std::string> seen;
    std::size_t limit = 100;

    static bool Note(char const* name, bool isDirectory, void* data)
    {
        auto& visit = *static_cast<Visit*>(data);
        visit.seen.push_back(std::string(name) + (isDirectory ? "/" : ""));
        return visit.seen.size() < visit.limit;
    }
};

TEST_F(FileOperations, DirectoriesAreWalkedInOrder)
{
    for (char const* name :
         {"walk/b10", "walk/B9", "walk/a", "walk/A", "walk/dir/x", "walk/.hidden", "walk/c:d\\e"})
        environment.Write(name, "");
    fs::create_directory_symlink(Path("walk/dir"), Path("walk/link"));
    fs::create_symlink(Path("walk/nothing"), Path("walk/zdangling"));
    Visit visit, first{.seen = {}, .limit = 2};
    EXPECT_TRUE(OS_Walk_Directory(Spec("walk\\").c_str(), Visit::Note, &visit));
    EXPECT_EQ(visit.seen, (std::vector<std::string>{".hidden", "A", "a", "b10", "B9", "c\uF03Ad\uF05Ce",
                                                    "dir/", "link/", "zdangling"}));
    EXPECT_TRUE(OS_Walk_Directory(Spec("walk").c_str(), Visit::Note, &first));
    EXPECT_EQ(first.seen.size(), 2U);
    EXPECT_FALSE(OS_Walk_Directory(Spec("missing").c_str(), Visit::Note, &first));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
    EXPECT_FALSE(OS_Walk_Directory(Spec("walk\\a").c_str(), Visit::Note, &first));
}

TEST_F(FileOperations, AWalkMayChangeItsDirectory)
{
    for (int i = 0; i < 300; ++i)
        environment.Write("walk/file" + std::to_string(i), "");
    std::string directory = Spec("walk\\");
    auto const remove = [](char const* name, bool, void* data) -> bool {
        return DeleteFileZV((*static_cast<std::string*>(data) + name).c_str());
    };
    EXPECT_TRUE(OS_Walk_Directory(directory.c_str(), remove, &directory));
    EXPECT_TRUE(fs::is_empty(Path("walk")));
}

}  // namespace
