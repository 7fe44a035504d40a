// The directories of the application and its user.
#include "Scratch.h"
#include "ZVLibInternal.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace {

std::string const userDataName = "Brinmoor User Data";

class DirectoriesTest : public testing::Test {
protected:
    ~DirectoriesTest() override { CleanUpZV(); }

    void Start()
    {
        CleanUpZV();
        ASSERT_NE(InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 0), nullptr);
    }

    ScratchDir dir;
    ScopedVariable homeVariable{"HOME", dir.Path().c_str()};
    ScopedVariable dataVariable{"KL_APP_DATA_DIR", nullptr};
};

/// Takes a spec that the caller owns.
std::string Taken(char* spec)
{
    std::string const text = spec ? spec : "(null)";
    FreeFileSpecZV(spec);
    return text;
}

/// What a program writes to its output, a closing line feed left out.
std::string Output_Of(std::string const& command)
{
    std::unique_ptr<FILE, int (*)(FILE*)> const output(popen(command.c_str(), "r"), pclose);
    std::array<char, 4096> text{};
    if (!output || !std::fgets(text.data(), text.size(), output.get())) return {};
    return std::string(text.data());
}

}  // namespace

TEST_F(DirectoriesTest, TheDataDirectoryOfTheVariableIsMadeInAnyForm)
{
    dir.Make("data");
    std::string const forms[] = {dir.Path("data"), dir.Path("data/"), dir.Path("data/../data"),
                                 dir.Spec("data"), dir.Spec("data/")};
    std::string const expected = dir.Spec("data/" + userDataName + "/");
    for (std::string const& form : forms) {
        ScopedVariable const variable("KL_APP_DATA_DIR", form.c_str());
        EXPECT_EQ(Taken(FindUserDataDirZV()), expected) << form;
        Start();
        EXPECT_EQ(ZVEnv->userDataDir, expected) << form;
        EXPECT_TRUE(std::filesystem::remove(dir.Path("data/" + userDataName))) << form;
    }
}

TEST_F(DirectoriesTest, ARelativeDataDirectoryStartsAtTheWorkingDirectory)
{
    std::filesystem::path const before = std::filesystem::current_path();
    dir.Make("data");
    std::filesystem::current_path(dir.Path());
    ScopedVariable const variable("KL_APP_DATA_DIR", "data");
    EXPECT_EQ(Taken(FindUserDataDirZV()), dir.Spec("data/" + userDataName + "/"));
    std::filesystem::current_path(before);
}

TEST_F(DirectoriesTest, TheUsersDocumentsHoldTheDataOtherwise)
{
    Start();
    EXPECT_STREQ(ZVEnv->userDataDir, ZVEnv->homeDir) << "there are no documents";
    EXPECT_FALSE(std::filesystem::exists(dir.Path("Documents")));
    EXPECT_EQ(Taken(FindUserDataDirZV()), Taken(FindHomeDirZV()));

    std::string const expected = dir.Spec("Documents/" + userDataName + "/");
    dir.Make("Documents");
    Start();
    EXPECT_EQ(ZVEnv->userDataDir, expected);
    EXPECT_TRUE(std::filesystem::is_directory(dir.Path("Documents/" + userDataName)));
    Start();
    EXPECT_EQ(ZVEnv->userDataDir, expected) << "it is there already";

    std::filesystem::remove(dir.Path("Documents/" + userDataName));
    std::ofstream(dir.Path("Documents/" + userDataName)) << "a file in the way";
    Start();
    EXPECT_STREQ(ZVEnv->userDataDir, ZVEnv->homeDir);
}

TEST_F(DirectoriesTest, AVariableThatLeadsNowhereIsPassedOver)
{
    dir.Make("Documents");
    std::string const tooLong = "/" + std::string(2000, 'x');
    std::string const missing = dir.Path("missing/deeper");
    for (char const* value : {"", missing.c_str(), "NoSuchVolume:\\data\\", tooLong.c_str()}) {
        ScopedVariable const variable("KL_APP_DATA_DIR", value);
        EXPECT_EQ(Taken(FindUserDataDirZV()), dir.Spec("Documents/" + userDataName + "/")) << value;
    }
}

TEST_F(DirectoriesTest, AHomeDirectoryIsTakenAsSpecOrPath)
{
    dir.Make("app");
    std::string const worked = Taken(FindHomeDirZV());
    std::string const tooLong = "/" + std::string(2000, 'x');
    struct {
        std::string given, expected;
    } const rows[] = {
        {dir.Path("app"), dir.Spec("app/")},
        {dir.Path("app/"), dir.Spec("app/")},
        {dir.Spec("app"), dir.Spec("app/")},
        {dir.Spec("app/"), dir.Spec("app/")},
        {dir.Path("later"), dir.Spec("later/")},
        {"/", "Root:\\"},
        {"", worked},
        {tooLong, worked},
    };
    for (auto const& row : rows) {
        CleanUpZV();
        ASSERT_NE(InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 0, ZV_INIT_HOME_DIR,
                         row.given.c_str()),
                  nullptr);
        EXPECT_EQ(ZVEnv->homeDir, row.expected) << row.given;
        EXPECT_STREQ(ZVEnv->userDataDir, ZVEnv->homeDir) << row.given;
    }
    CleanUpZV();
    ASSERT_NE(InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 0, ZV_INIT_HOME_DIR, nullptr),
              nullptr);
    EXPECT_EQ(ZVEnv->homeDir, worked);
}

TEST_F(DirectoriesTest, TheHomeDirectoryIsTheProgramsFolderOrItsBundles)
{
    struct {
        char const *program, *folder;
    } const rows[] = {
        {"plain/bin/probe", "plain/bin/"},
        {"Bundled Thing.app/Contents/Linux/probe", ""},
        {"deep/Thing.app/Contents/MacOS/probe", "deep/"},
        {"Thing.app/probe", "Thing.app/"},
        {"Thing.app/Contents/probe", "Thing.app/Contents/"},
        {"Other/Contents/Linux/probe", "Other/Contents/Linux/"},
    };
    for (auto const& row : rows) {
        std::filesystem::path const program = dir.Path(row.program);
        std::filesystem::create_directories(program.parent_path());
        std::filesystem::copy_file(ZV_HOME_PROBE, program);
        std::string const expected = *row.folder ? dir.Spec(row.folder) : dir.Spec() + "\\";
        EXPECT_EQ(Output_Of("'" + program.string() + "'"), expected) << row.program;
    }
}

TEST_F(DirectoriesTest, TemporaryFilesGoWhereTheVariableSaysIfTheyCan)
{
    dir.Make("temp");
    {
        ScopedVariable const variable("TMPDIR", dir.Path("temp").c_str());
        EXPECT_EQ(Taken(FindTempDirZV()), dir.Spec("temp/"));
    }
    std::string const missing = dir.Path("missing");
    for (char const* unusable : {missing.c_str(), "relative", ""}) {
        ScopedVariable const variable("TMPDIR", unusable);
        EXPECT_EQ(Taken(FindTempDirZV()), "Root:\\tmp\\") << unusable;
    }
}

TEST_F(DirectoriesTest, FilesOfTheLibraryAreSoughtAtHomeFirst)
{
    dir.Make("home/Locale");
    dir.Make("bare");
    std::ofstream(dir.Path("home/Locale/ZVLibStr.txt")) << "own";
    char const name[] = "Locale\\ZVLibStr.txt";

    ASSERT_NE(InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 0, ZV_INIT_HOME_DIR,
                     dir.Path("home").c_str()),
              nullptr);
    EXPECT_EQ(Taken(Find_Library_File(name)), dir.Spec("home/Locale/ZVLibStr.txt"));
    EXPECT_EQ(Taken(Find_Library_File("Locale\\None.txt")), dir.Spec("home/Locale/None.txt")) << "in neither";

    CleanUpZV();
    ASSERT_NE(InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 0, ZV_INIT_HOME_DIR,
                     dir.Path("bare").c_str()),
              nullptr);
    std::string const installed = Taken(Find_Library_File(name));
    EXPECT_TRUE(installed.ends_with("\\zvlib\\Locale\\ZVLibStr.txt")) << installed;
    EXPECT_TRUE(FileExistsZV(installed.c_str())) << installed;
}
