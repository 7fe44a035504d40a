// File specs as texts.
#include "TestEnvironment.h"
#include "files/FileTestTools.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

/// A text before and after a conversion.
using TextCase = std::pair<char const*, char const*>;

/// What a conversion in place makes of a text.
template <typename Convert> std::string Converted(char const* text, Convert convert)
{
    char buffer[ZV_SPEC_SIZE];
    std::strcpy(buffer, text);
    convert(buffer);
    return buffer;
}

TEST(FileSpec, IsMadeFromClassicPaths)
{
    TextCase const rows[] = {
        {"Volume:dir:file", "Volume:\\dir\\file"},
        {"Volume:", "Volume:\\"},
        {"Volume:\\dir\\file", "Volume:\\dir\\file"},  // a spec stays
        {"a:b:\\c", "a:b:\\c"},                        // with its mark further on too
        {"Volume:dir:", "Volume:\\dir\\"},
        {":dir:file", ":\\dir\\file"},  // the first colon is that of the volume
        {"file.ext", "file.ext"},
        {"/srv/shots/a.mov", "/srv/shots/a.mov"},
        {"dir\\file", "dir\\file"},
        {"", ""},
        {"|a:b:c", "|a:b:c"},  // a bar ahead of the colon protects
        {"a|b:c:d", "a|b:c:d"},
        {"a:b|c:d", "a:\\b|c\\d"},
        {"a::b", "a:\\\\b"},
    };
    for (auto const& [path, spec] : rows) {
        EXPECT_EQ(Text(MakeFileSpecZV(path)), spec) << path;
        EXPECT_EQ(Text(CopyFileSpecZV(path)), spec) << path;
    }
    std::string const longPath = "Volume:" + std::string(5000, 'x');
    EXPECT_EQ(Text(MakeFileSpecZV(longPath.c_str())), "Volume:\\" + std::string(5000, 'x'));
    EXPECT_EQ(MakeFileSpecZV(nullptr), nullptr);
}

TEST(FileSpec, ClassicPathsConvertInPlaceAndBack)
{
    TextCase const there[] = {
        {"Volume:dir:file", "Volume:\\dir\\file"},
        {"Volume:\\dir", "Volume:\\\\dir"},  // without a look for a spec
        {"file", "file"},
        {"|a:b", "|a:b"},
        {"", ""},
    };
    for (auto const& [path, spec] : there)
        EXPECT_EQ(Converted(path, ConvertPathtoDOSZV), spec) << path;
    TextCase const back[] = {
        {"Volume:\\dir\\file", "Volume:dir:file"},
        {"Volume:\\", "Volume:"},
        {"dir\\file", "dir:file"},
        {"Volume:dir:file", "Volume:dir:file"},
        {"a|b:\\c", "a|b:\\c"},
        {"a:\\b|c", "a:b|c"},
        {"", ""},
    };
    for (auto const& [spec, path] : back)
        EXPECT_EQ(Converted(spec, [](char* text) { ConvertDOStoPathZV(text, false); }), path) << spec;
    ConvertPathtoDOSZV(nullptr);
    ConvertDOStoPathZV(nullptr, false);
}

TEST(FileSpec, ComesApartIntoPathNameAndExtension)
{
    struct {
        char const *spec, *path, *name, *extension;  ///< no extension is null
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
    EXPECT_FALSE(GetFileNameZV(nullptr, nullptr) || GetExtensionZV(nullptr, nullptr));
    EXPECT_FALSE(GetPathZV(nullptr, nullptr) || FileSpecToDosZV(nullptr, nullptr));
}

TEST(FileSpec, TakesAnotherExtension)
{
    struct {
        char const *why, *spec, *extension, *out;
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
    EXPECT_FALSE(MakeNewFileSpecZV(nullptr, "x") || MakeNewFileSpecZV("a", nullptr));

    TextCase const truncated[] = {{"a.b", "a"},   {"a.b.c", "a.b"}, {".a", ".a"},
                                  {".a.b", ".a"}, {"abc", "abc"},   {"", ""}};
    for (auto const& [spec, rest] : truncated)
        EXPECT_EQ(Converted(spec, TruncateExtensionZV), rest) << spec;
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

    EXPECT_TRUE(isPondgateZV("a/b/c.pgt") && isPondgateZV(".Pgt"));
    for (char const* other : {"a.pgt\\b", "pgt", "", static_cast<char const*>(nullptr)})
        EXPECT_FALSE(isPondgateZV(other));
}

}  // namespace
