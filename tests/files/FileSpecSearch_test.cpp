// Looking for files and sequences that are not where their name says.
#include "TestEnvironment.h"
#include "files/FileTestTools.h"

#include <gtest/gtest.h>

namespace {

class FileSpecSearch : public EnvironmentTest {
protected:
    void Make_Frames(std::string const& directory, std::initializer_list<char const*> names)
    {
        for (char const* name : names)
            environment.Write(directory + "/" + name, "");
    }
    std::string Spec(std::string const& name) const { return environment.Spec(name); }

    template <typename... Tags> std::string Find(std::string const& spec, Tags... tags)
    {
        isSequence = dataValid = userLocated = -1;
        return Text(MakeFileSpecValidateZV(spec.c_str(), ZVFSV_IsSequence, &isSequence, ZVFSV_DataValid,
                                           &dataValid, ZVFSV_UserLocated, &userLocated, tags...));
    }

    long isSequence = -1, dataValid = -1, userLocated = -1;
};

TEST_F(FileSpecSearch, AFileIsWhereItsNameSays)
{
    std::string const spec = environment.Write("here/file", "");
    EXPECT_EQ(Find(spec), spec);
    EXPECT_TRUE(isSequence == 0 && dataValid == 0 && userLocated == 0);
    EXPECT_EQ(Find(Spec("here\\gone")), "(null)");
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
    EXPECT_EQ(Find(Spec("here\\gone"), ZVFSV_NoCheck, 1), Spec("here\\gone"));
    EXPECT_EQ(Find("Root:here:gone", ZVFSV_NoCheck, 1), "Root:\\here\\gone");
    EXPECT_EQ(Find(Spec("here\\gone"), ZVFSV_AskUser, 1), "(null)") << "nobody is there to answer";
    EXPECT_EQ(userLocated, 0);
    EXPECT_EQ(MakeFileSpecValidateZV(nullptr, nullptr), nullptr);
}

TEST_F(FileSpecSearch, AFileIsFoundInTheFirstDirectoryThatHasIt)
{
    environment.Write("b/file", "");
    environment.Write("c/file", "");
    environment.Write("a/other", "");
    std::string a = Spec("a\\"), b = Spec("b\\any name"), c = Spec("c\\");
    char* paths[] = {a.data(), b.data(), c.data(), nullptr};
    EXPECT_EQ(Find("Gone:\\x\\file", ZVFSV_SearchPaths, paths), Spec("b\\file"))
        << "an entry may name a file";
    EXPECT_EQ(Find("Gone:\\x\\FILE", ZVFSV_SearchPaths, paths), "(null)") << "file systems mind the case";
    EXPECT_EQ(Find("Gone:\\x\\nowhere", ZVFSV_SearchPaths, paths), "(null)");
    char* none[] = {nullptr};
    EXPECT_EQ(Find("Gone:\\x\\file", ZVFSV_SearchPaths, none), "(null)");
}

TEST_F(FileSpecSearch, TreesAreSearchedWithoutCase)
{
    environment.Write("tree/a/deep/Clip.MOV", "");
    environment.Write("tree/b/clip.mov", "");
    environment.Write("tree/.hidden/secret", "");
    environment.Write("tree/a/.secret", "");
    std::filesystem::create_directory_symlink(environment.Path("tree"), environment.Path("tree/a/loop"));
    std::string gone = Spec("gone\\"), tree = Spec("tree");
    char* paths[] = {gone.data(), tree.data(), nullptr};
    auto find = [&](char const* name) { return Find(name, ZVFSV_SearchPaths, paths, ZVFSV_SearchTree, 1); };
    EXPECT_EQ(find("Gone:\\clip.mov"), Spec("tree\\a\\deep\\Clip.MOV"))
        << "the first on the way, as it is spelt";
    EXPECT_EQ(find("Gone:\\secret"), "(null)") << "hidden directories are passed by";
    EXPECT_EQ(find("Gone:\\.secret"), "(null)") << "and hidden files";
    EXPECT_EQ(find("Gone:\\nowhere"), "(null)") << "links in a ring come to an end";
}

TEST_F(FileSpecSearch, ATreeSearchEndsAfterTwoHundredDirectories)
{
    for (int i = 0; i < 200; ++i)
        environment.Make_Directory("tree/d" + std::to_string(1000 + i));
    environment.Write("tree/d1198/in", "");   // the 200th, counting the tree itself
    environment.Write("tree/d1199/out", "");  // the 201st
    std::string tree = Spec("tree\\");
    char* paths[] = {tree.data(), nullptr};
    EXPECT_EQ(Find("Gone:\\in", ZVFSV_SearchPaths, paths, ZVFSV_SearchTree, 1), Spec("tree\\d1198\\in"));
    EXPECT_EQ(Find("Gone:\\out", ZVFSV_SearchPaths, paths, ZVFSV_SearchTree, 1), "(null)");
}

TEST_F(FileSpecSearch, ASequenceBecomesItsFirstFrame)
{
    Make_Frames("s",
                {"shot003.tif", "shot004.tif", "shot010.tif", "shot7.tif", "other001.tif", "shot0001.tif"});
    Make_Frames("top", {"t999.tif"});
    Make_Frames("mixed", {"m08.x", "m8.x", "m008.x"});
    Make_Frames("wide", {"w00000042.x"});
    long const from4[] = {4}, from5[] = {5}, from11[] = {11};
    struct {
        char const* why;
        std::string mask;
        long const* frames;
        long count;
        std::string first;
    } const rows[] = {
        {"the lowest number", "s\\shot[###].tif", nullptr, 0, "s\\shot003.tif"},
        {"from the first one wanted", "s\\shot[###].tif", from4, 1, "s\\shot004.tif"},
        {"highest number of a mask is never looked at", "top\\t[###].tif", nullptr, 0, "(null)"},
        {"the widest rendering of one number", "mixed\\m[###].x", nullptr, 0, "mixed\\m008.x"},
        {"narrower than the mask", "mixed\\m[##].x", nullptr, 0, "mixed\\m08.x"},
        {"a mask as wide as can be", "wide\\w[########].x", nullptr, 0, "wide\\w00000042.x"},
        {"a wide mask without files is answered at once", "wide\\v[#########].x", nullptr, 0, "(null)"},
        {"no such directory", "gone\\shot[###].tif", nullptr, 0, "(null)"},
        {"a frame that is not there", "s\\shot[###].tif", from5, 1, "(null)"},
        {"nor anything behind it", "s\\shot[###].tif", from11, 1, "(null)"},
    };
    for (auto const& row : rows) {
        std::string const expected = row.first == "(null)" ? row.first : Spec(row.first);
        EXPECT_EQ(Find(Spec(row.mask), ZVFSV_Frames, row.frames, ZVFSV_FrameCount, row.count), expected)
            << row.why;
        EXPECT_EQ(isSequence, 1) << row.why;
        EXPECT_EQ(dataValid, row.first != "(null)" && row.count > 0) << row.why;
    }
}

TEST_F(FileSpecSearch, ASequenceIsFoundWhereAllItsFramesAre)
{
    Make_Frames("a", {"s02.x"});
    Make_Frames("b", {"s00.x", "s02.x"});
    Make_Frames("c/d", {"s00.x", "s01.x", "s02.x"});
    std::string a = Spec("a\\"), b = Spec("b\\"), d = Spec("c\\d\\"), top = Spec("");
    char* paths[] = {a.data(), b.data(), d.data(), nullptr};
    char* trees[] = {top.data(), nullptr};
    std::string const mask = "Gone:\\s[##].x";
    EXPECT_EQ(Find(mask, ZVFSV_SearchPaths, paths, ZVFSV_FrameCount, 3), Spec("c\\d\\s00.x"));
    EXPECT_EQ(dataValid, 1);
    EXPECT_EQ(Find(mask, ZVFSV_SearchPaths, trees, ZVFSV_SearchTree, 1, ZVFSV_FrameCount, 3),
              Spec("c\\d\\s00.x"));
    EXPECT_EQ(dataValid, 1);
    long const frames[] = {0, 2};
    EXPECT_EQ(Find(mask, ZVFSV_SearchPaths, paths, ZVFSV_Frames, frames, ZVFSV_FrameCount, 2),
              Spec("b\\s00.x"));
    EXPECT_EQ(Find(mask, ZVFSV_SearchPaths, paths), "(null)") << "of unknown length it is taken as it stands";
    EXPECT_EQ(dataValid, 0);
    EXPECT_EQ(Find(mask, ZVFSV_SearchPaths, paths, ZVFSV_FrameCount, 4), "(null)");
    EXPECT_EQ(isSequence, 1);
}

TEST_F(FileSpecSearch, AStoredSpecWithAnAliasGoesOnToTheSearch)
{
    environment.Write("new/file", "");
    Make_Frames("b", {"s00.x", "s02.x"});
    std::string directory = Spec("new\\"), frames = Spec("b\\");
    char* paths[] = {directory.data(), frames.data(), nullptr};
    for (auto const& [path, found] :
         {std::pair("Old:\\file", "new\\file"), std::pair("Old:\\s[##].x", "b\\s00.x")}) {
        std::string stored = std::string(4, '\0') + path + '\0' + "alias";
        stored[3] = static_cast<char>(stored.size() - 4);
        OpenFile const memory = Open_Block(stored);
        EXPECT_EQ(Text(ReadFileSpecZV(memory.get(), ZVFSV_SearchPaths, paths)), Spec(found));
        EXPECT_EQ(Position(memory), static_cast<long>(stored.size()));
    }
}

}  // namespace
