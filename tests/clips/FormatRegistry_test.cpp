// Format modules: their list, which of them has a file, their properties and the options that they keep.
#include "clips/ClipFixture.h"

#include <cstring>
#include <vector>

namespace {

using FormatRegistry = EnvironmentTest;

TEST_F(FormatRegistry, ModulesRegisterAndAreCleanedUpOnceWithTheirDescriptors)
{
    TestFormat format;
    InitFormatModulesZV(nullptr);
    long const count = List_Entries(&ZVEnv->formats);
    Free_Format_Modules();
    EXPECT_TRUE(List_Empty(&ZVEnv->formats));
    EXPECT_EQ(format.Count("Cleanup"), 1);
    EXPECT_FALSE(format.desc);
    InitAllFormatModulesZV(nullptr);
    EXPECT_EQ(List_Entries(&ZVEnv->formats), count - 1);
}

TEST_F(FormatRegistry, TheExtensionIsTheLastFourCharactersAtMost)
{
    std::pair<char const*, uint32_t> const cases[] = {{"A.Tiff", ZV_FourCC("tiff")},
                                                      {"x.ei", 0x65690000},
                                                      {"clip.picture", ZV_FourCC("pict")},
                                                      {"name.", 0},
                                                      {"name", 0},
                                                      {"", 0},
                                                      {"a.b.tif", 0x74696600},
                                                      {".tif", 0x74696600},
                                                      {"Root:\\dir.tif\\name", 0},
                                                      {"Vol.tif:name", 0}};
    for (auto const& [name, code] : cases)
        EXPECT_EQ(Extension_Code(name), code) << name;
    EXPECT_EQ(Extension_Code(nullptr), 0u);
}

TEST_F(FormatRegistry, AModuleClaimsFilesByTypeThenByExtension)
{
    ZVTypePair const pairs[] = {{ZV_FourCC("PICT"), ZV_BLANK_CODE}, {ZV_FourCC("Mine"), ZV_FourCC("ours")}};
    uint32_t const extensions[] = {ZV_FourCC("pict"), 0x70637400};
    ZVFormatDesc* desc = Make_Format_Desc({"Test", 1, 2, pairs, 2, extensions, 2});
    ASSERT_TRUE(desc);
    EXPECT_EQ(desc->MaxWidth, 32767);
    unsigned long const blank = ZV_BLANK_CODE;
    struct {
        char const* why;
        unsigned long creator, type, extension;
        long answer;
    } const cases[] = {
        {"type, any creator", 77, ZV_FourCC("PICT"), 0, 1},
        {"type and creator", ZV_FourCC("ours"), ZV_FourCC("Mine"), 0, 1},
        {"another creator", 77, ZV_FourCC("Mine"), 0, 0},
        {"extension", blank, blank, 0x70637400, 1},
        {"neither", blank, blank, ZV_FourCC("tiff"), 0},
        {"nothing at all", blank, blank, 0, 0},
    };
    for (auto const& row : cases)
        EXPECT_EQ(Standard_CanLoad(desc, "any", row.creator, row.type, row.extension), row.answer) << row.why;
    desc->ReadTypes[1] = {ZV_BLANK_CODE, ZV_BLANK_CODE};
    EXPECT_EQ(Standard_CanLoad(desc, "any", 1, 2, 3), 1) << "a blank pair matches any file";
    Free_Format_Mod(desc);
    Free_Format_Mod(nullptr);
}

TEST_F(FormatRegistry, TheFirstModuleInTheListHasAFile)
{
    TestFormat first("one"), second("one"), other("two");
    EXPECT_EQ(GetFormatModuleZV(environment.Write("a.ONE", "").c_str()), first.desc);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NONE);
    EXPECT_EQ(GetFormatModuleZV(environment.Spec("missing.two").c_str()), other.desc)
        << "names alone will do";
    EXPECT_EQ(GetFormatModuleZV(environment.Write("a.three", "").c_str()), nullptr);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NO_FORMAT);
    EXPECT_EQ(GetFormatModuleZV(nullptr), nullptr);
    environment.Make_Directory("dir.one");
    for (char const* name : {"dir.one", "dir.one/"})
        EXPECT_EQ(GetFormatModuleZV(environment.Spec(name).c_str()), nullptr);
}

TEST_F(FormatRegistry, ATableOfFileTypesIsMatchedByTypeOrExtension)
{
    int values[3];
    ZVFileTypeDescriptor table[] = {{&values[0], "tif", ZV_BLANK_CODE},
                                    {&values[1], "mov", ZV_FourCC("Test")},
                                    {&values[2], "ei\0", 0},
                                    {}};
    std::pair<char const*, ZVFileTypeDescriptor*> const cases[] = {
        {"a.TIFF", &table[0]}, {"a.mov", &table[1]}, {"a.ei", &table[2]},
        {"a.eip", nullptr},    {"a.ti", nullptr},    {"a", nullptr}};
    for (auto const& [name, entry] : cases)
        EXPECT_EQ(FindFileTypeDescZV(table, environment.Write(name, "").c_str()), entry) << name;
    EXPECT_EQ(FindFileTypeDescZV(table + 3, environment.Spec("a.tif").c_str()), nullptr);

    std::string const typed = environment.Spec("typed.tif");
    CloseFileZV(
        CreateFileZV(typed.c_str(), ZVFilePermWrite, ZV_FourCC("Test"), ZV_BLANK_CODE, ZVFileFlagNone));
    uint32_t creator, type;
    Get_FileInfo(typed.c_str(), &creator, &type);
    if (type != ZV_FourCC("Test")) GTEST_SKIP() << "no extended attributes here";
    std::swap(table[0], table[1]);
    EXPECT_EQ(FindFileTypeDescZV(table, typed.c_str()), &table[0]);
}

TEST_F(FormatRegistry, PropertiesOfNothingAreZero)
{
    TestFormat format("tst", 0x1234);
    ZVClip* clip = NewClipZV();
    clip->Format = nullptr;
    EXPECT_FALSE(GetImportPropertiesZV(nullptr) || GetExportPropertiesZV(static_cast<ZVClip*>(nullptr)) ||
                 GetExportPropertiesZV(static_cast<ZVFormatDesc*>(nullptr)));
    EXPECT_FALSE(GetExportPropertiesZV(clip) || GetCodecFccZV(clip));
    clip->Format = format.desc;
    EXPECT_EQ(GetImportPropertiesZV(format.desc), 0x1234);
    EXPECT_EQ(GetExportPropertiesZV(clip), 0x1234);
    EXPECT_EQ(GetCodecFccZV(clip), 0u);
    format.desc->GetCodecFcc = [](ZVClip*) -> unsigned long { return ZV_FourCC("tcod"); };
    EXPECT_EQ(GetCodecFccZV(clip), ZV_FourCC("tcod"));
    FreeClipZV(clip);
}

class FormatOptions : public EnvironmentTest {
protected:
    FormatOptions() : clip(NewClipZV()) { clip->Format = format.desc; }
    ~FormatOptions() override { FreeClipZV(clip); }

    static std::vector<unsigned char> Bytes(ZVFormatParams const* params)
    {
        if (!params) return {};
        auto const* data = static_cast<unsigned char const*>(params->Data);
        return {data, data + params->Size};
    }
    using Option = std::vector<unsigned char>;

    TestFormat format;
    ZVClip* clip;
};

TEST_F(FormatOptions, ACopyIsOneBlock)
{
    unsigned char bytes[] = {1, 2, 3};
    ZVFormatParams const params{bytes, 3};
    ZVFormatParams* copy = Copy_Format_Params(&params);
    EXPECT_EQ(copy->Data, copy + 1);
    EXPECT_EQ(Bytes(copy), (Option{1, 2, 3}));
    FreeMemZV(copy);
    EXPECT_EQ(Copy_Format_Params(nullptr), nullptr);
    ZVFormatParams const empty{nullptr, 3}, broken{bytes, -5};
    for (ZVFormatParams const* odd : {&empty, &broken}) {
        copy = Copy_Format_Params(odd);
        EXPECT_EQ(copy->Size, 0);
        FreeMemZV(copy);
    }
}

TEST_F(FormatOptions, AChangeOfFormatFetchesItsDefaultsOnce)
{
    format.desc->Options = TestFormat::Options;
    format.desc->AudioOptions = TestFormat::AudioOptions;
    format.options = {7};
    EXPECT_EQ(ChangeClipFormatParamsZV(nullptr, format.desc, true), 0);
    EXPECT_EQ(ChangeClipFormatParamsZV(clip, format.desc, false), 1);
    EXPECT_TRUE(format.calls.empty());
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(ChangeClipFormatParamsZV(clip, format.desc, true), 1);
    EXPECT_EQ(format.Count("Options"), 1);
    EXPECT_EQ(format.Count("AudioOptions"), 1);
    EXPECT_EQ(format.Last("Options").argument, 1) << "in silence";
    EXPECT_EQ(Bytes(format.desc->DefaultVideoParams), (Option{7}));
    EXPECT_EQ(Bytes(format.desc->DefaultAudioParams), (Option{7}));
    EXPECT_EQ(ChangeClipFormatParamsZV(clip, nullptr, true), 1);
    EXPECT_FALSE(clip->Format);
}

TEST_F(FormatOptions, ADialogBeginsWithTheLastOptionsAndLeavesNewOnes)
{
    ClipOptionsZV(nullptr);
    ClipOptionsZV(clip);
    EXPECT_TRUE(format.calls.empty()) << "a module without options";
    format.desc->Options = [](ZVClip* c, bool silent) {
        EXPECT_FALSE(silent);
        EXPECT_EQ(Bytes(c->VideoParams), (Option{1, 2}));
        static_cast<unsigned char*>(c->VideoParams->Data)[1] = 9;
    };
    unsigned char bytes[] = {1, 2};
    ZVFormatParams const params{bytes, 2};
    format.desc->DefaultVideoParams = Copy_Format_Params(&params);
    ClipOptionsZV(clip);
    EXPECT_EQ(Bytes(clip->VideoParams), (Option{1, 9}));
    EXPECT_EQ(Bytes(format.desc->DefaultVideoParams), (Option{1, 9}));
    EXPECT_NE(format.desc->DefaultVideoParams, clip->VideoParams);

    format.desc->AudioOptions = TestFormat::AudioOptions;
    format.options = {5};
    ClipAudioOptionsZV(clip);
    EXPECT_EQ(Bytes(format.desc->DefaultAudioParams), (Option{5}));
}

TEST_F(FormatOptions, OptionsThatNobodyCanConvertAreDropped)
{
    unsigned char bytes[] = {1, 2};
    ZVFormatParams const one{bytes, 1}, two{bytes, 2};
    clip->VideoParams = Copy_Format_Params(&one);
    clip->AudioParams = Copy_Format_Params(&two);
    ClipConvertEndianOptionsZV(clip);
    EXPECT_TRUE(clip->VideoParams) << "a single byte has no order";
    EXPECT_FALSE(clip->AudioParams);
    FreeMemZV(clip->VideoParams);
    clip->VideoParams = clip->AudioParams = Copy_Format_Params(&two);
    ClipConvertEndianOptionsZV(clip);
    EXPECT_FALSE(clip->VideoParams || clip->AudioParams) << "one block for both is freed once";

    clip->VideoParams = Copy_Format_Params(&two);
    format.desc->ConvertEndianOptions = TestFormat::ConvertEndianOptions;
    ClipConvertEndianOptionsZV(clip);
    EXPECT_TRUE(clip->VideoParams);
    EXPECT_EQ(format.Count("ConvertEndianOptions"), 1);
}

}  // namespace
