// Specs to native paths and back, and the volumes that they begin with.
#include "TestEnvironment.h"
#include "files/FileTestTools.h"
#include "files/PrivateMounts.h"

#include "MacVolumes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace {

constexpr char SpecColon[] = "\xEF\x80\xBA";
constexpr char SpecBackslash[] = "\xEF\x81\x9C";

std::string To_Native(std::string const& spec)
{
    char path[ZV_SPEC_SIZE];
    return OS_Native_Path(spec.c_str(), path, sizeof path) ? path : "(none)";
}

std::string To_Spec(std::string const& path)
{
    char spec[ZV_SPEC_SIZE] = "#";
    FSSpec place{};
    std::strncpy(place.path, path.c_str(), sizeof place.path - 1);
    long const result = GetDOSPathZV(spec, &place);
    EXPECT_TRUE(result == 0 || (result == -1 && spec[0] == '#'));
    return result == 0 ? spec : "(none)";
}

TEST(FilePath, SpecsNameNativePaths)
{
    struct {
        char const* why;
        std::string spec;
        char const* path;
    } const rows[] = {
        {"a file", "Root:\\srv\\shots\\a.mov", "/srv/shots/a.mov"},
        {"a directory", "Root:\\srv\\", "/srv/"},
        {"the root", "Root:\\", "/"},
        {"without its backslash", "Root:", "/"},
        {"a classic path", "Root:srv:a.mov", "/srv/a.mov"},
        {"in any case", "rOOT:\\a", "/a"},
        {"a colon and a backslash in a name", std::string("Root:\\a") + SpecColon + "b" + SpecBackslash + "c",
         "/a:b\\c"},
        {"no other private character", "Root:\\a\xEF\x80\xBB\xEF\x81\x9D", "/a\xEF\x80\xBB\xEF\x81\x9D"},
        {"the beginning of one at the end", "Root:\\a\xEF\x80", "/a\xEF\x80"},
        {"bytes that are not UTF-8", "Root:\\\xFF\xE4", "/\xFF\xE4"},
        {"a bar in a name", "Root:\\a|b", "/a|b"},
        {"a later colon", "Root:\\a:b", "/a:b"},
        {"no volume", "file", "(none)"},
        {"a native path", "/srv/a.mov", "(none)"},
        {"nothing", "", "(none)"},
        {"an empty volume", ":\\a", "(none)"},
        {"an unknown volume", "Nowhere:\\a", "(none)"},
        {"a bar form", "|Root:\\a", "(none)"},
        {"a bar in the volume", "Ro|ot:\\a", "(none)"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(To_Native(row.spec), row.path) << row.why;
        char text[ZV_SPEC_SIZE];
        std::strcpy(text, row.spec.c_str());
        ConvertDOStoPathZV(text, true);
        EXPECT_EQ(text, std::strcmp(row.path, "(none)") ? row.path : row.spec) << row.why;
    }
    EXPECT_FALSE(OS_Native_Path(nullptr, nullptr, 0));
}

TEST(FilePath, LongSpecsFitOrAreLeftAlone)
{
    std::string const longest = "Root:\\" + std::string(1017, 'x');
    EXPECT_EQ(To_Native(longest), "/" + std::string(1017, 'x'));
    EXPECT_EQ(To_Native(longest + 'x'), "(none)");
    EXPECT_EQ(To_Native("Root:" + std::string(1018, 'x')), "/" + std::string(1018, 'x')) << "a classic path";
    char small[4] = "#";
    EXPECT_FALSE(OS_Native_Path("Root:\\abc", small, 4));
    EXPECT_STREQ(small, "#");
    EXPECT_TRUE(OS_Native_Path("Root:\\ab", small, 4));
}

using FilePathOnDisk = EnvironmentTest;

TEST_F(FilePathOnDisk, PlacesHaveOneSpec)
{
    environment.Write("dir\\file" + std::string(), "");
    environment.Write("sub/file", "");
    std::filesystem::create_directory_symlink(environment.Path("sub"), environment.Path("link"));
    std::filesystem::create_symlink(environment.Path("missing"), environment.Path("dangling"));
    std::string const base = environment.Path();
    std::string const spec = environment.Spec();
    struct {
        char const* why;
        std::string path, spec;
    } const rows[] = {
        {"a file", "sub/file", "sub\\file"},
        {"a directory", "sub", "sub\\"},
        {"with its slash", "sub/", "sub\\"},
        {"dots and doubled slashes", "./sub//../sub/./file", "sub\\file"},
        {"through a link", "link/file", "sub\\file"},
        {"the link itself, which is a directory", "link", "link\\"},
        {"a link that leads nowhere", "dangling", "dangling"},
        {"a dot at the end", "sub/.", "sub\\"},
        {"two dots behind a link", "link/..", ""},
        {"not there yet", "sub/new", "sub\\new"},
        {"a directory not there yet", "sub/new/", "sub\\new\\"},
        {"in a directory not there yet", "link/new/deep/../x", "sub\\new\\x"},
        {"separators in a name", "dir\\file", std::string("dir") + SpecBackslash + "file"},
    };
    for (auto const& row : rows)
        EXPECT_EQ(To_Spec(base + row.path), spec + row.spec) << row.why;

    for (char const* root : {"/", "//", "/.."})
        EXPECT_EQ(To_Spec(root), "Root:\\");
    EXPECT_EQ(To_Spec("/proc"), "Root:\\proc\\");
    EXPECT_EQ(To_Spec("sub/file"), "(none)") << "a relative path";
    EXPECT_EQ(To_Spec(""), "(none)");
    EXPECT_EQ(To_Spec("/" + std::string(1017, 'x')).size(), 1023U);
    EXPECT_EQ(To_Spec("/" + std::string(1018, 'x')), "(none)");
    char buffer[ZV_SPEC_SIZE];
    EXPECT_EQ(GetDOSPathZV(buffer, nullptr), -1);
}

TEST_F(FilePathOnDisk, EveryNameSurvivesTheRoundTrip)
{
    std::mt19937 random(3);
    std::string const alphabet = std::string(":\\|. aZ\x01\x7F\x80\xEF\xC3\xFF") + "\xA4\t\n";
    for (int round = 0; round < 2000; ++round) {
        std::string path;
        for (unsigned part = 0; part <= random() % 3; ++part) {
            path += "/";
            for (auto length = 1 + random() % 9; length > 0; --length)
                path += alphabet[random() % alphabet.size()];
            path += "_";  // neither "." nor ".."
        }
        std::string const spec = To_Spec(path);
        EXPECT_EQ(To_Native(spec), path) << spec;
        EXPECT_EQ(Text(MakeFileSpecZV(spec.c_str())), spec);
    }
    for (int byte = 1; byte < 256; ++byte) {
        if (byte == '/' || byte == '.') continue;
        std::string const name = {'a', static_cast<char>(byte)};
        std::string const spec = To_Spec(environment.Path(name));
        Write_Native(environment.Path(name), "");
        EXPECT_TRUE(FileExistsZV(spec.c_str())) << byte;
        EXPECT_EQ(To_Spec(environment.Path(name)), spec) << byte;
    }
}

TEST_F(FilePathOnDisk, PlacesTellWhatIsThere)
{
    environment.Write("file", "");
    struct {
        char const* why;
        std::string spec;
        long result, refResult;
    } const rows[] = {
        {"a file", environment.Spec("file"), 0, 0},
        {"a directory", environment.Spec(), 0, 0},
        {"a missing file", environment.Spec("missing"), -43, -43},
        {"a missing directory", environment.Spec("missing\\"), -43, -43},
        {"in a missing directory", environment.Spec("missing\\file"), -120, -120},
        {"in a file", environment.Spec("file\\file"), -120, -120},
        {"an unknown volume", "Nowhere:\\file", -35, -35},
        {"no volume", "file", -35, -1},
        {"too long", "Root:\\" + std::string(2000, 'x'), -120, -120},
    };
    for (auto const& row : rows) {
        FSSpec place;
        EXPECT_EQ(GetFSSpecZV(row.spec.c_str(), &place), row.result) << row.why;
        EXPECT_EQ(GetFSRefZV(row.spec.c_str(), &place), row.refResult) << row.why;
    }
    FSSpec place;
    EXPECT_EQ(GetFSSpecZV(environment.Spec("missing").c_str(), &place), -43);
    EXPECT_EQ(place.path, environment.Path("missing"));
    EXPECT_TRUE(GetFSSpecZV(nullptr, &place) == -1 && GetFSSpecZV("Root:\\", nullptr) == -1);
}

TEST(Volumes, ComeFromTheMountTable)
{
    std::string_view const table = "/dev/sda1 / ext4 rw 0 0\n"
                                   "tmpfs /media tmpfs rw 0 0\n"
                                   "/dev/sdb1 /media/jo/CARD vfat rw 0 0\n"
                                   "/dev/sdc1 /run/media/jo/My\\040Disk\\134x vfat rw 0 0\n"
                                   "/dev/sdd1 /mnt/CARD ext4 rw 0 0\n"
                                   "/dev/sdd1 /mnt/card ext4 rw 0 0\n"
                                   "/dev/sde1 /mnt/root ext4 rw 0 0\n"
                                   "/dev/sdf1 /mnt/a|b ext4 rw 0 0\n"
                                   "/dev/sdg1 /srv/disk ext4 rw 0 0\n"
                                   "/dev/sdh1 /mnt/odd\\09\\04 ext4 rw 0 0\n"
                                   "/dev/sdi1 /mntx/disk ext4 rw 0 0\n"
                                   "broken\n"
                                   "\n"
                                   "host:/x /mnt/last";
    std::string volumes;
    for (MacVolume const& volume : Mac_Parse_Mounts(table))
        volumes += volume.name + "=" + volume.root + ";";
    EXPECT_EQ(volumes, "CARD=/media/jo/CARD;My Disk\\x=/run/media/jo/My Disk\\x;card=/mnt/card;"
                       "odd\\09\\04=/mnt/odd\\09\\04;last=/mnt/last;");
    EXPECT_TRUE(Mac_Parse_Mounts("").empty());
}

TEST(Volumes, AreNamedAsTheyAreMounted)
{
    With_Mounts({"/mnt/CARD", "/mnt/two/CARD", "/mnt/Root", "/mnt/a:b \\c", "/mnt/CARD/inner"}, [] {
        std::string const odd = std::string("a") + SpecColon + "b " + SpecBackslash + "c";
        struct {
            std::string path, spec;
        } const rows[] = {
            {"/mnt/CARD/", "CARD:\\"},
            {"/mnt/CARD/x/y", "CARD:\\x\\y"},
            {"/mnt/CARDS/x", "Root:\\mnt\\CARDS\\x"},
            {"/mnt/two/CARD/x", "Root:\\mnt\\two\\CARD\\x"},
            {"/mnt/Root/x", "Root:\\mnt\\Root\\x"},
            {"/mnt/CARD/inner/x", "inner:\\x"},
            {"/mnt/a:b \\c/x", odd + ":\\x"},
            {"/mnt/x", "Root:\\mnt\\x"},
        };
        for (auto const& row : rows) {
            EXPECT_EQ(To_Spec(row.path), row.spec);
            EXPECT_EQ(To_Native(row.spec), row.path);
        }
        EXPECT_EQ(To_Spec("/mnt/CARD"), "CARD:\\");
        EXPECT_EQ(To_Native("card:\\x"), "/mnt/CARD/x");
        EXPECT_EQ(To_Native("CARD:x:y"), "/mnt/CARD/x/y");

        umount("/mnt/CARD/inner");
        EXPECT_EQ(To_Native("inner:\\x"), "(none)") << "nothing is remembered";
        EXPECT_EQ(To_Spec("/mnt/CARD/inner/x"), "CARD:\\inner\\x");
    });
}

}  // namespace
