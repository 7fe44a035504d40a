// The directories of the application and its user.
#include "StartTest.h"

#include <array>
#include <cstdio>
#include <memory>

namespace {

std::string const userData = "Brinmoor User Data/";
std::string const tooLong = "/" + std::string(2000, 'x');

using Directories = StartTest;

/// Takes a spec that the caller owns.
std::string Taken(char* spec)
{
    std::string const text = spec ? spec : "(null)";
    FreeFileSpecZV(spec);
    return text;
}

/// What a program writes to its output.
std::string Output_Of(std::string const& command)
{
    std::unique_ptr<FILE, int (*)(FILE*)> const output(popen(command.c_str(), "r"), pclose);
    std::array<char, 4096> text{};
    return output && std::fgets(text.data(), text.size(), output.get()) ? text.data() : "";
}

TEST_F(Directories, TheDataDirectoryIsThatOfTheVariableInAnyForm)
{
    dir.Make_Directory("data");
    std::filesystem::path const before = std::filesystem::current_path();
    std::filesystem::current_path(dir.Path());
    std::string const expected = dir.Spec("data/" + userData);
    for (std::string const& form : {dir.Path("data"), dir.Path("data/"), dir.Path("data/../data"),
                                    dir.Spec("data"), dir.Spec("data/"), std::string("data")}) {
        ScopedVariable const variable("KL_APP_DATA_DIR", form.c_str());
        EXPECT_EQ(Taken(FindUserDataDirZV()), expected) << form;
        Start();
        EXPECT_EQ(ZVEnv->userDataDir, expected) << form;
        EXPECT_TRUE(std::filesystem::remove(dir.Path("data/" + userData))) << form;
    }
    std::filesystem::current_path(before);
}

TEST_F(Directories, TheUsersDocumentsHoldTheDataOtherwise)
{
    Start();
    EXPECT_STREQ(ZVEnv->userDataDir, ZVEnv->homeDir) << "there are no documents";
    EXPECT_FALSE(std::filesystem::exists(dir.Path("Documents")));
    EXPECT_EQ(Taken(FindUserDataDirZV()), Taken(FindHomeDirZV()));

    std::string const expected = dir.Spec("Documents/" + userData);
    dir.Make_Directory("Documents");
    for (char const* when : {"made", "there already"}) {
        Start();
        EXPECT_EQ(ZVEnv->userDataDir, expected) << when;
        EXPECT_TRUE(std::filesystem::is_directory(dir.Path("Documents/" + userData))) << when;
    }
    std::string const missing = dir.Path("missing/deeper");
    for (char const* nowhere : {"", missing.c_str(), "NoSuchVolume:\\data\\", tooLong.c_str()}) {
        ScopedVariable const variable("KL_APP_DATA_DIR", nowhere);
        EXPECT_EQ(Taken(FindUserDataDirZV()), expected) << nowhere;
    }

    std::filesystem::remove(dir.Path("Documents/" + userData));
    dir.Write("Documents/" + userData.substr(0, userData.size() - 1), "a file in the way");
    Start();
    EXPECT_STREQ(ZVEnv->userDataDir, ZVEnv->homeDir);
}

TEST_F(Directories, AHomeDirectoryIsTakenAsSpecOrPath)
{
    dir.Make_Directory("app");
    std::string const worked = Taken(FindHomeDirZV());
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
        Start(ZV_INIT_HOME_DIR, row.given.c_str());
        EXPECT_EQ(ZVEnv->homeDir, row.expected) << row.given;
        EXPECT_STREQ(ZVEnv->userDataDir, ZVEnv->homeDir) << row.given;
    }
    Start(ZV_INIT_HOME_DIR, nullptr);
    EXPECT_EQ(ZVEnv->homeDir, worked);
}

TEST_F(Directories, TheHomeDirectoryIsTheProgramsFolderOrItsBundles)
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
        EXPECT_EQ(Output_Of("'" + program.string() + "'"), dir.Spec(row.folder)) << row.program;
    }
}

TEST_F(Directories, TemporaryFilesGoWhereTheVariableSaysIfTheyCan)
{
    dir.Make_Directory("temp");
    std::pair<std::string, std::string> const rows[] = {{dir.Path("temp"), dir.Spec("temp/")},
                                                        {dir.Path("missing"), "Root:\\tmp\\"},
                                                        {"relative", "Root:\\tmp\\"},
                                                        {"", "Root:\\tmp\\"}};
    for (auto const& [value, expected] : rows) {
        ScopedVariable const variable("TMPDIR", value.c_str());
        EXPECT_EQ(Taken(FindTempDirZV()), expected) << value;
    }
}

TEST_F(Directories, FilesOfTheLibraryAreSoughtAtHomeFirst)
{
    dir.Write("home/Locale/ZVLibStr.txt", "own");
    dir.Make_Directory("bare");
    char const name[] = "Locale\\ZVLibStr.txt";
    Start(ZV_INIT_HOME_DIR, dir.Path("home").c_str());
    EXPECT_EQ(Taken(Find_Library_File(name)), dir.Spec("home/Locale/ZVLibStr.txt"));
    EXPECT_EQ(Taken(Find_Library_File("Locale\\None.txt")), dir.Spec("home/Locale/None.txt")) << "in neither";

    Start(ZV_INIT_HOME_DIR, dir.Path("bare").c_str());
    std::string const installed = Taken(Find_Library_File(name));
    EXPECT_TRUE(installed.ends_with("\\zvlib\\Locale\\ZVLibStr.txt")) << installed;
    EXPECT_TRUE(FileExistsZV(installed.c_str())) << installed;
}

}  // namespace
