// Extensions that fit a file type or a format.
#include "TestEnvironment.h"
#include "files/FileTestTools.h"

#include <gtest/gtest.h>

namespace {

TEST(ValidExtension, IsAppendedUnlessItIsThere)
{
    ZVExtension const text = {"Text", "txt"};
    struct {
        char const* why;
        char const* spec;
        ZVExtension const* wanted;
        char const* out;
    } const rows[] = {
        {"nothing wanted", "Root:\\a.b", nullptr, "Root:\\a.b"},
        {"there already, in another case", "Root:\\a.TXT", &text, "Root:\\a.TXT"},
        {"another extension stays", "Root:\\a.doc", &text, "Root:\\a.doc.txt"},
        {"none yet", "Root:\\a", &text, "Root:\\a.txt"},
        {"a name that is all extension", ".txt", &text, ".txt.txt"},
        {"a dot in a directory", "Root:\\a.txt\\b", &text, "Root:\\a.txt\\b.txt"},
    };
    for (auto const& row : rows)
        EXPECT_EQ(Text(MakeValidExtensionZV(row.spec, 0, row.wanted, nullptr, 0)), row.out) << row.why;
    EXPECT_EQ(MakeValidExtensionZV(nullptr, 0, nullptr, nullptr, 0), nullptr);
}

ZVFormatDesc* Add_Format(char const* name, uint32_t const* extension)
{
    ZVFormatDesc* desc =
        Make_Format_Desc({name, ZV_BLANK_CODE, ZV_BLANK_CODE, nullptr, 0, extension, extension ? 1 : 0});
    desc->CanLoad = Standard_CanLoad;
    desc->GetImportProperties = [](ZVFormatDesc*) -> long { return ZV_FORMAT_MULTIFRAME | ZV_FORMAT_WRITE; };
    AddTail(&ZVEnv->formats, &desc->Node);
    return desc;
}

TEST(ValidExtension, IsThatOfTheFormat)
{
    TestEnvironment const environment;
    uint32_t const one = ZV_FourCC("one\0"), two = ZV_FourCC("two\0");
    ZVFormatDesc* const first = Add_Format("First", &one);
    ZVFormatDesc* const second = Add_Format("Second", &two);
    ZVFormatDesc* const bare = Add_Format("Bare", nullptr);
    struct {
        char const* why;
        char const* spec;
        ZVFormatDesc* format;
        long strip;
        char const* out;
    } const rows[] = {
        {"its own format", "Root:\\a.one", first, 0, "Root:\\a.one"},
        {"another format's is replaced", "Root:\\a.one", second, 0, "Root:\\a.two"},
        {"a strange one stays", "Root:\\a.xyz", second, 0, "Root:\\a.xyz.two"},
        {"none", "Root:\\a.b\\c", second, 0, "Root:\\a.b\\c.two"},
        {"numbering stays", "Root:\\a_[##].one", second, 0, "Root:\\a_[##].two"},
        {"or goes", "Root:\\a_[##].one", second, 1, "Root:\\a.two"},
        {"but not that of a directory", "Root:\\x[##]\\a.one", second, 1, "Root:\\x[##]\\a.two"},
        {"and for the same format too", "Root:\\a[##].one", first, 1, "Root:\\a.one"},
        {"a format without extensions", "Root:\\a.one", bare, 0, "Root:\\a.one"},
        {"no format", "Root:\\a.one", nullptr, 1, "Root:\\a.one"},
    };
    for (auto const& row : rows)
        EXPECT_EQ(Text(MakeValidExtensionZV(row.spec, 1, row.format, nullptr, row.strip)), row.out)
            << row.why;
    EXPECT_EQ(MakeValidExtensionZV(("Root:\\" + std::string(1020, 'x')).c_str(), 1, first, nullptr, 0),
              nullptr);
}

}  // namespace
