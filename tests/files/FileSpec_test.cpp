// File specs as texts.
#include "TestEnvironment.h"
#include "files/FileTestTools.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

struct TextCase {
    char const* why;
    char const* in;
    char const* out;
};

TEST(FileSpec, IsMadeFromClassicPaths)
{
    TextCase const rows[] = {
        {"a classic path", "Volume:dir:file", "Volume:\\dir\\file"},
        {"a volume alone", "Volume:", "Volume:\\"},
        {"a spec stays", "Volume:\\dir\\file", "Volume:\\dir\\file"},
        {"so does a text with the mark further on", "a:b:\\c", "a:b:\\c"},
        {"a classic directory", "Volume:dir:", "Volume:\\dir\\"},
        {"the first colon is that of the volume", ":dir:file", ":\\dir\\file"},
        {"a name", "file.ext", "file.ext"},
        {"a native path", "/srv/shots/a.mov", "/srv/shots/a.mov"},
        {"backslashes without a volume", "dir\\file", "dir\\file"},
        {"nothing", "", ""},
        {"a bar in front", "|a:b:c", "|a:b:c"},
        {"a bar ahead of the colon", "a|b:c:d", "a|b:c:d"},
        {"a bar behind it", "a:b|c:d", "a:\\b|c\\d"},
        {"doubled colons", "a::b", "a:\\\\b"},
    };
    for (TextCase const& row : rows) {
        EXPECT_EQ(Text(MakeFileSpecZV(row.in)), row.out) << row.why;
        EXPECT_EQ(Text(CopyFileSpecZV(row.in)), row.out) << row.why;
    }
    EXPECT_EQ(MakeFileSpecZV(nullptr), nullptr);
    std::string const longPath = "Volume:" + std::string(5000, 'x');
    EXPECT_EQ(Text(MakeFileSpecZV(longPath.c_str())), "Volume:\\" + std::string(5000, 'x'));
    FreeFileSpecZV(nullptr);
}

TEST(FileSpec, ClassicPathsConvertInPlaceAndBack)
{
    TextCase const rows[] = {
        {"a classic path", "Volume:dir:file", "Volume:\\dir\\file"},
        {"without a look for a spec", "Volume:\\dir", "Volume:\\\\dir"},
        {"no colon", "file", "file"},
        {"a bar in front", "|a:b", "|a:b"},
        {"nothing", "", ""},
    };
    for (TextCase const& row : rows) {
        char text[64];
        std::strcpy(text, row.in);
        ConvertPathtoDOSZV(text);
        EXPECT_STREQ(text, row.out) << row.why;
    }
    TextCase const back[] = {
        {"a spec", "Volume:\\dir\\file", "Volume:dir:file"},
        {"a volume", "Volume:\\", "Volume:"},
        {"no volume", "dir\\file", "dir:file"},
        {"no backslash", "Volume:dir:file", "Volume:dir:file"},
        {"a bar first", "a|b:\\c", "a|b:\\c"},
        {"a bar behind", "a:\\b|c", "a:b|c"},
        {"nothing", "", ""},
    };
    for (TextCase const& row : back) {
        char text[ZV_SPEC_SIZE];
        std::strcpy(text, row.in);
        ConvertDOStoPathZV(text, false);
        EXPECT_STREQ(text, row.out) << row.why;
    }
    ConvertPathtoDOSZV(nullptr);
    ConvertDOStoPathZV(nullptr, false);
}

TEST(FileSpec, ComesApartIntoPathNameAndExtension)
{
    struct {
        char const* spec;
        char const* path;
        char const* name;
        char const* extension;  ///< null for none
    } const rows[] = {
        {"Root:\\dir\\file.ext", "Root:\\dir\\", "file.ext", "ext"},
        {"Root:\\dir\\", "Root:\\dir\\", "", nullptr},
        {"Root:\\", "Root:\\", "", nullptr},
        {"Root:", "Root:", "", nullptr},
        {"file", "file", "file", nullptr},
        {"", "", "", nullptr},
        {"Root:\\dir.d\\file", "Root:\\dir.d\\", "file", nullptr},
        {"Root:\\.hidden", "Root:\\", ".hidden", "hidden"},
        {"a.b.c", "a.b.c", "a.b.c", "c"},
        {"dir\\a.", "dir\\", "a.", ""},
        {"Volume:dir:file.x", "Volume:dir:", "file.x", "x"},
    };
    for (auto const& row : rows) {
        char buffer[ZV_SPEC_SIZE];
        EXPECT_TRUE(GetPathZV(row.spec, buffer)) << row.spec;
        EXPECT_STREQ(buffer, row.path) << row.spec;
        EXPECT_EQ(GetFileNameZV(row.spec, buffer), buffer) << row.spec;
        EXPECT_STREQ(buffer, row.name) << row.spec;
        EXPECT_EQ(GetExtensionZV(row.spec, buffer), row.extension ? buffer : nullptr) << row.spec;
        EXPECT_STREQ(buffer, row.extension ? row.extension : "") << row.spec;
        std::strcpy(buffer, row.spec);
        EXPECT_TRUE(GetFileNameZV(buffer, buffer)) << "in place";
        EXPECT_STREQ(buffer, row.name) << row.spec;
        EXPECT_EQ(FileSpecToDosZV(buffer, row.spec), buffer);
        EXPECT_STREQ(buffer, row.spec);
    }
}

TEST(FileSpec, TextsTooLongForABufferAreRefused)
{
    TestEnvironment const environment;
    for (std::size_t length : {1023U, 1024U, 5000U}) {
        std::string const name(length, 'x');
        std::string const extension = '.' + name;
        std::string const path = name.substr(0, length - 1) + '\\';
        bool const fits = length == 1023;
        struct {
            char buffer[ZV_SPEC_SIZE];
            char guard = '#';
        } out;
        auto check = [&](bool result) {
            EXPECT_EQ(result, fits) << length;
            EXPECT_EQ(std::strlen(out.buffer), fits ? length : 0) << length;
            EXPECT_EQ(out.guard, '#');
            EXPECT_EQ(GetErrorZV(), fits ? ZV_ERR_NONE : ZV_ERR_NOT_FOUND);
            SetError(0);
        };
        check(GetFileNameZV(name.c_str(), out.buffer));
        check(GetExtensionZV(extension.c_str(), out.buffer));
        check(GetPathZV(path.c_str(), out.buffer));
        check(FileSpecToDosZV(out.buffer, name.c_str()));
    }
    EXPECT_EQ(GetFileNameZV(nullptr, nullptr), nullptr);
    EXPECT_EQ(GetExtensionZV(nullptr, nullptr), nullptr);
    EXPECT_FALSE(GetPathZV(nullptr, nullptr));
    EXPECT_EQ(FileSpecToDosZV(nullptr, nullptr), nullptr);
}

TEST(FileSpec, TakesAnotherExtension)
{
    struct {
        char const* why;
        char const* spec;
        char const* extension;
        char const* out;
    } const rows[] = {
        {"four characters are an extension", "a.b.cdef", "x", "a.b.x"},
        {"five are none", "a.abcde", "x", "a.abcde.x"},
        {"the last of two dots", "a.b.c", "x", "a.b.x"},
        {"none yet", "file", "x", "file.x"},
        {"a closing dot", "file.", "x", "file.x"},
        {"only a dot", ".", "x", ".x"},
        {"nothing", "", "x", ".x"},
        {"longer than before", "Root:\\dir\\a.c", "longer", "Root:\\dir\\a.longer"},
        {"a directory keeps its dot", "Root:\\v1.2\\a", "x", "Root:\\v1.2\\a.x"},
    };
    for (auto const& row : rows)
        EXPECT_EQ(Text(MakeNewFileSpecZV(row.spec, row.extension)), row.out) << row.why;
    EXPECT_EQ(MakeNewFileSpecZV(nullptr, "x"), nullptr);
    EXPECT_EQ(MakeNewFileSpecZV("a", nullptr), nullptr);

    TextCase const truncated[] = {
        {"an extension", "a.b", "a"},   {"the last one only", "a.b.c", "a.b"},
        {"a dot in front", ".a", ".a"}, {"a second dot", ".a.b", ".a"},
        {"no dot", "abc", "abc"},       {"nothing", "", ""},
    };
    for (TextCase const& row : truncated) {
        char text[16];
        std::strcpy(text, row.in);
        TruncateExtensionZV(text);
        EXPECT_STREQ(text, row.out) << row.why;
    }
    TruncateExtensionZV(nullptr);
}

TEST(FileSpec, ComparesWithoutCase)
{
    EXPECT_EQ(FileSpecCompareZV("Root:\\A.Mov", "root:\\a.mOV"), 1);
    EXPECT_EQ(FileSpecCompareZV("Root:\\a", "Root:\\ab"), 0);
    EXPECT_EQ(FileSpecCompareZV("", ""), 1);
    EXPECT_EQ(FileSpecCompareZV(nullptr, ""), 0);
    EXPECT_EQ(FileSpecCompareZV("", nullptr), 0);
}

TEST(FileSpec, RemotePathsHaveAFormOfTheirOwn)
{
    struct {
        char const* spec;
        bool isValid;
        char const* path;
    } const rows[] = {
        {"abc/def/ghi/jkl", true, "abcdef\\"},
        {"a/b/c", true, "a"},
        {"a/b/c/d/e", true, "ab\\c\\"},
        {"abc", true, "abc"},
        {"", true, ""},
        {"a/b", false, ""},
        {"/a/b", false, ""},
        {"/", false, ""},
        {"//", false, ""},
        {"/a/b/c", true, "a\\"},
    };
    for (auto const& row : rows) {
        char buffer[ZV_SPEC_SIZE] = "#";
        char* const spec = const_cast<char*>(row.spec);
        EXPECT_EQ(GetPondGatePath(spec, buffer), row.isValid) << row.spec;
        EXPECT_STREQ(buffer, row.path) << row.spec;
    }
    char buffer[ZV_SPEC_SIZE];
    EXPECT_TRUE(GetPathZV("abc/def/ghi/jkl.PGT", buffer));
    EXPECT_STREQ(buffer, "abcdef\\");

    EXPECT_TRUE(isPondgateZV("a/b/c.pgt"));
    EXPECT_TRUE(isPondgateZV(".Pgt"));
    EXPECT_FALSE(isPondgateZV("a.pgt\\b"));
    EXPECT_FALSE(isPondgateZV("pgt"));
    EXPECT_FALSE(isPondgateZV(""));
    EXPECT_FALSE(isPondgateZV(nullptr));
}

}  // namespace
