// Walks through directories: enumeration, search, the tree of objects, and help pages.
#include "FileTestTools.h"
#include "TestEnvironment.h"

#include <ctime>
#include <thread>

namespace fs = std::filesystem;

namespace {

class FileSearch : public EnvironmentTest {
protected:
    std::string Path(std::string const& name = "") const { return environment.Path(name); }
    std::string Spec(std::string const& name = "") const { return environment.Spec(name); }
    void Write(std::initializer_list<char const*> names) const
    {
        for (char const* name : names)
            environment.Write(name, "");
    }
};

struct Seen {
    std::string root;
    std::vector<std::string> files;
    std::size_t limit = 1000000;
    unsigned long type = 0;
};

/// Notes specs from the test's directory on, with slashes.
long Note(char const* spec, unsigned long type, long data, long* stop)
{
    auto& seen = *reinterpret_cast<Seen*>(data);
    std::string name = std::string(spec).substr(seen.root.size());
    std::replace(name.begin(), name.end(), '\\', '/');
    seen.files.push_back(name);
    seen.type = type;
    if (seen.files.size() == seen.limit) *stop = 1;
    return 0;
}

TEST_F(FileSearch, FilesAreEnumeratedByNameAndType)
{
    Write({"top/b.mov", "top/A.ifm", "top/sub/c.mov", "top/.dot/d.mov", "top/.e.mov", "top/\xC2\xA0/f.mov",
           "other/g.mov"});
    fs::create_directory_symlink(Path("other"), Path("top/link"));
    fs::create_directory_symlink(Path("top"), Path("top/sub/ring"));
    fs::create_symlink(Path("gone"), Path("top/dangling"));
    fs::create_symlink(Path("other/g.mov"), Path("top/zlink.mov"));
    std::string const top = Spec("top"), other = Spec("other\\"), missing = Spec("missing"),
                      dot = Spec("top\\.dot");
    char const* const directories[] = {missing.c_str(), dot.c_str(), top.c_str(), other.c_str(), nullptr};
    char const* const movies[] = {"none", "MooV", nullptr};
    struct {
        char const* why;
        char const* const* types;
        long recurse, limit;
        std::vector<std::string> files;
    } const rows[] = {
        {"flat", nullptr, 0, 0, {"top/A.ifm", "top/b.mov", "top/zlink.mov", "other/g.mov"}},
        {"by type", movies, 0, -1, {"top/b.mov", "top/zlink.mov", "other/g.mov"}},
        {"deep, with links and without rings",
         movies,
         1,
         0,
         {"top/b.mov", "top/link/g.mov", "top/sub/c.mov", "top/zlink.mov", "other/g.mov"}},
        {"two directories", movies, 1, 2, {"top/b.mov", "top/link/g.mov"}},
    };
    for (auto const& row : rows) {
        Seen seen{Spec(), {}};
        EXPECT_EQ(
            EnumFilesZV(directories, row.types, Note, reinterpret_cast<long>(&seen), row.recurse, row.limit),
            1);
        EXPECT_EQ(seen.files, row.files) << row.why;
    }
    Seen first{Spec(), {}, 1};
    EnumFilesZV(directories, nullptr, Note, reinterpret_cast<long>(&first), 1, 0);
    EXPECT_EQ(first.files.size(), 1U);
    EXPECT_EQ(first.type, 0x204D4649U) << "IFM and a blank, the I in the lowest byte";
    EXPECT_EQ(EnumFilesZV(nullptr, nullptr, Note, 0, 1, 0), 1);
}

TEST_F(FileSearch, AnEnumerationGoesNineteenLevelsDeep)
{
    std::string deep = "top";
    for (int level = 1; level <= 25; ++level) {
        environment.Write(deep + "/file", "");
        deep += "/d";
    }
    environment.Write("top/e/last", "");
    std::string const top = Spec("top");
    char const* const directories[] = {top.c_str(), nullptr};
    Seen seen{Spec(), {}};
    EnumFilesZV(directories, nullptr, Note, reinterpret_cast<long>(&seen), 1, 0);
    EXPECT_EQ(seen.files.size(), 20U) << "files of nineteen levels, and the rest";
    EXPECT_EQ(seen.files[18], "top/e/last");
}

TEST_F(FileSearch, FilesAreFoundByNameDateAndSize)
{
    environment.Write("top/Concatenate.txt", "");
    environment.Write("top/sub/CAT.mov", std::string(3000, ' '));
    environment.Write("top/dog", "");
    environment.Write("top/old cat", std::string(1024, ' '));
    fs::create_directory_symlink(Path("top"), Path("top/sub/cat ring"));
    fs::last_write_time(Path("top/old cat"), fs::file_time_type::clock::now() - std::chrono::hours(49));
    struct {
        char const* why;
        char const* pattern;
        ZVSearchCriteria criteria;
        std::vector<std::string> found;
    } const rows[] = {
        {"name", "cat", {.Recursive = 0}, {"top/Concatenate.txt", "top/old cat"}},
        {"deep", "cat", {.Recursive = 1}, {"top/Concatenate.txt", "top/old cat", "top/sub/CAT.mov"}},
        {"everything", "", {}, {"top/Concatenate.txt", "top/dog", "top/old cat"}},
        {"older",
         "",
         {.Recursive = 1, .UseDate = 1, .Before = 1, .DateAmount = 2, .DateUnit = ZV_DATE_DAYS},
         {"top/old cat"}},
        {"older than hours", "", {.UseDate = 1, .Before = 1, .DateAmount = 50}, {}},
        {"newer",
         "cat",
         {.UseDate = 1, .DateAmount = 1, .DateUnit = ZV_DATE_MONTHS},
         {"top/Concatenate.txt", "top/old cat"}},
        {"newer than ever",
         "dog",
         {.UseDate = 1, .DateAmount = std::numeric_limits<long>::max(), .DateUnit = ZV_DATE_YEARS},
         {"top/dog"}},
        {"large",
         "",
         {.Recursive = 1, .UseSize = 1, .SizeAmount = 1, .SizeUnit = ZV_SIZE_KILOBYTES},
         {"top/old cat", "top/sub/CAT.mov"}},
        {"small",
         "",
         {.Recursive = 1, .UseSize = 1, .AtMost = 1, .SizeAmount = 1024, .SizeUnit = ZV_SIZE_BYTES},
         {"top/Concatenate.txt", "top/dog", "top/old cat"}},
    };
    for (auto const& row : rows) {
        ZVSearchCriteria criteria = row.criteria;
        std::snprintf(criteria.Directory, sizeof criteria.Directory, "%s", Spec("top").c_str());
        std::snprintf(criteria.Pattern, sizeof criteria.Pattern, "%s", row.pattern);
        ZVFileFind* const find = InitFileFindZV(&criteria);
        ASSERT_TRUE(find);
        Seen seen{Spec(), {}};
        long time = 0, stop = 0;
        long long size = 0;
        while (char* spec = FindNextFileZV(&criteria, find, &time, &size)) {
            Note(spec, 0, reinterpret_cast<long>(&seen), &stop);
            EXPECT_EQ(size, static_cast<long long>(fs::file_size(Path(seen.files.back()))));
            EXPECT_LT(std::abs(std::time(nullptr) - time), 180000);
            FreeFileSpecZV(spec);
        }
        EndFileFindZV(find);
        EXPECT_EQ(seen.files, row.found) << row.why;
    }
    ZVSearchCriteria const missing{.Directory = "Root:\\none such"};
    EXPECT_FALSE(InitFileFindZV(&missing));
    EXPECT_FALSE(InitFileFindZV(nullptr));
}

struct FreeObject {
    void operator()(ZVEnumObjectS* object) const { FreeEnumObjectZV(object); }
    void operator()(ZVShellFolderS* folder) const { FreeShellFolderZV(folder); }
};
using Object = std::unique_ptr<ZVEnumObjectS, FreeObject>;
using Folder = std::unique_ptr<ZVShellFolderS, FreeObject>;

/// Display names, with a slash behind what can be entered.
std::vector<std::string> Names(ZVShellFolderS* folder)
{
    std::vector<std::string> names;
    unsigned long flags = 0;
    while (Object const object{GetNextFileObjectZV(folder, &flags)}) {
        char name[ZV_SPEC_SIZE];
        EXPECT_TRUE(GetDisplayNameZV(object.get(), name));
        names.push_back(name + std::string(flags ? "/" : "") + (IsShortcutZV(object.get()) ? "@" : ""));
    }
    return names;
}

TEST_F(FileSearch, ObjectsAreListedAsPeopleSeeThem)
{
    environment.Write("top/b.txt", "12345");
    Write({"top/.hidden", "top/Tool.app/x", "top/dir/inside"});
    fs::create_directory_symlink(Path("top/dir"), Path("top/link"));
    fs::create_symlink(Path("top/b.txt"), Path("top/short"));
    Folder const folder{EnumFileObjectsZV(Spec("top").c_str())};
    EXPECT_EQ(Names(folder.get()), (std::vector<std::string>{"b.txt", "dir/", "link/@", "short@", "Tool"}));
    EXPECT_TRUE(CompareShellFoldersZV(folder.get(), Folder(EnumFileObjectsZV(Spec("top\\").c_str())).get()));
    EXPECT_FALSE(CompareShellFoldersZV(folder.get(), Folder(EnumSpecialFileObjectsZV(ZV_FOLDER_ROOT)).get()));

    Folder const again{EnumFileObjectsZV(Spec("top").c_str())};
    Object const file{GetNextFileObjectZV(again.get(), nullptr)},
        dir{GetNextFileObjectZV(again.get(), nullptr)}, link{GetNextFileObjectZV(again.get(), nullptr)};
    long time = 0;
    long long size = 0;
    unsigned long type = 0, creator = 0;
    char extension[ZV_SPEC_SIZE], name[ZV_SPEC_SIZE];
    EXPECT_EQ(GetEnumObjectInfoZV(file.get(), &time, &size, &type, &creator, extension), 1);
    EXPECT_EQ(size, 5);
    EXPECT_EQ(type, ZV_FourCC("TEXT"));
    EXPECT_STREQ(extension, "txt");
    EXPECT_NEAR(static_cast<double>(time), static_cast<double>(std::time(nullptr)), 60.0);
    EXPECT_EQ(GetEnumObjectInfoZV(file.get(), nullptr, nullptr, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(Text(GetFileSpecZV(link.get())), Spec("top\\dir\\")) << "a link is where it leads to";
    EXPECT_STREQ(link->AliasName, "dir");
    FSSpec place;
    EXPECT_EQ(GetFileSpecZV(file.get(), &place), 1);
    EXPECT_EQ(place.path, Path("top/b.txt"));
    EXPECT_TRUE(GetFullDisplayNameZV(file.get(), name));
    EXPECT_EQ(name, Spec("top\\b.txt"));
    Folder const entered{EnumFileObjectsZV(link.get())};
    EXPECT_EQ(Names(entered.get()), std::vector<std::string>{"inside"});
}

TEST_F(FileSearch, TheRootListsVolumesThenTheDesktop)
{
    Write({"home/Desktop/note"});
    std::string const home = std::getenv("HOME") ? std::getenv("HOME") : "";
    setenv("HOME", Path("home").c_str(), 1);
    Folder const root{EnumSpecialFileObjectsZV(ZV_FOLDER_ROOT)};
    EXPECT_FALSE(EnumSpecialFileObjectsZV(static_cast<ZVSpecialFolder>(1)));
    EXPECT_TRUE(CompareShellFoldersZV(root.get(), Folder(EnumFileObjectsZV("Nowhere:\\x")).get()));
    std::vector<std::string> const names = Names(root.get());
    EXPECT_EQ(names.front(), "Root/");
    EXPECT_EQ(names.back(), "note");
    EXPECT_EQ(Text(GetFileSpecZV(nullptr)), Spec("home\\Desktop\\"));
    char name[ZV_SPEC_SIZE];
    EXPECT_TRUE(GetDisplayNameZV(nullptr, name));
    EXPECT_STREQ(name, "Desktop");
    Folder const again{EnumSpecialFileObjectsZV(ZV_FOLDER_ROOT)};
    Object const volume{GetNextFileObjectZV(again.get(), nullptr)};
    EXPECT_TRUE(volume->IsVolume);
    EXPECT_EQ(Text(GetFileSpecZV(volume.get())), "Root:\\");
    setenv("HOME", home.c_str(), 1);
}

TEST(Help, OpensAPageOfTheHomeDirectoryInTheBrowser)
{
    TestEnvironment const environment{TestEnvironment::Home::Directory};
    std::string const search = std::getenv("PATH");
    environment.Write("Help/a page.html", "");
    testing::internal::CaptureStderr();
    EXPECT_EQ(HelpZV("missing.html", nullptr), 0);
    setenv("PATH", environment.Path().c_str(), 1);
    EXPECT_EQ(HelpZV("a page.html", 0), 0);
    std::string const shown = testing::internal::GetCapturedStderr();
    EXPECT_NE(shown.find(GetStringZV(127)), shown.npos);
    EXPECT_NE(shown.find(GetStringZV(129)), shown.npos);

    environment.Write(
        "xdg-open",
        "#!/bin/sh\necho \"$1\" > \"${0%/*}/part\" && /bin/mv \"${0%/*}/part\" \"${0%/*}/address\"\n");
    fs::permissions(environment.Path("xdg-open"), fs::perms::owner_all);
    EXPECT_EQ(HelpZV("a page.html", nullptr), 1);
    for (int i = 0; i < 500 && !fs::exists(environment.Path("address")); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(Bytes_In_File(environment.Path("address")),
              To_Bytes("file://" + environment.Path("Help/a%20page.html\n")));
    setenv("PATH", search.c_str(), 1);
}

}  // namespace
