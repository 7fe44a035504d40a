// Format modules: their list, which of them has a file, their properties and the options that they keep.
#include "clips/ClipFixture.h"

#include <cstring>
#include <vector>

namespace {

class FormatRegistry : public EnvironmentTest {
protected:
    std::vector<std::string> Names()
    {
        std::vector<std::string> names;
        for (Node* node = List_First(&ZVEnv->formats); node; node = List_Next(node))
            names.push_back(node->name);
        return names;
    }
};

TEST_F(FormatRegistry, BuiltInModulesRegisterInOrder)
{
    InitFormatModulesZV(nullptr);
    std::vector<uint32_t> types;
    for (Node* node = List_First(&ZVEnv->formats); node; node = List_Next(node))
        types.push_back(reinterpret_cast<ZVFormatDesc*>(node)->FileType);
    EXPECT_EQ(types, (std::vector<uint32_t>{ZV_FourCC("Film"), ZV_FourCC("EIDI"), ZV_FourCC("VPB "),
                                            ZV_BLANK_CODE}));
    EXPECT_EQ(Names().back(), "Ram");
    Free_Format_Modules();
    EXPECT_TRUE(List_Empty(&ZVEnv->formats));
    InitAllFormatModulesZV(nullptr);
    EXPECT_EQ(Names().size(), 4u);
}

TEST_F(FormatRegistry, AModuleIsCleanedUpOnceWithItsDescriptor)
{
    TestFormat format;
    Free_Format_Modules();
    EXPECT_EQ(format.Count("Cleanup"), 1);
    EXPECT_FALSE(format.desc);
}

TEST_F(FormatRegistry, TheExtensionIsTheLastFourCharactersAtMost)
{
    struct {
        char const* name;
        uint32_t code;
    } const cases[] = {{"A.Tiff", ZV_FourCC("tiff")},
                       {"x.ei", 0x65690000},
                       {"clip.picture", ZV_FourCC("pict")},
                       {"name.", 0},
                       {"name", 0},
                       {"", 0},
                       {"a.b.tif", 0x74696600},
                       {".tif", 0x74696600},
                       {"Root:\\dir.tif\\name", 0},
                       {"Vol.tif:name", 0}};
    for (auto const& row : cases)
        EXPECT_EQ(Extension_Code(row.name), row.code) << row.name;
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
    std::filesystem::create_directory(environment.Path("dir.one"));
    EXPECT_EQ(GetFormatModuleZV(environment.Spec("dir.one").c_str()), nullptr);
    EXPECT_EQ(GetFormatModuleZV(environment.Spec("dir.one/").c_str()), nullptr);
}

TEST_F(FormatRegistry, ATableOfFileTypesIsMatchedByTypeOrExtension)
{
    int values[3];
    ZVFileTypeDescriptor table[] = {{&values[0], "tif", ZV_BLANK_CODE},
                                    {&values[1], "mov", ZV_FourCC("Test")},
                                    {&values[2], "ei\0", 0},
                                    {}};
    struct {
        char const* name;
        ZVFileTypeDescriptor* entry;
    } const cases[] = {{"a.TIFF", &table[0]}, {"a.mov", &table[1]}, {"a.ei", &table[2]},
                       {"a.eip", nullptr},    {"a.ti", nullptr},    {"a", nullptr}};
    for (auto const& row : cases)
        EXPECT_EQ(FindFileTypeDescZV(table, environment.Write(row.name, "").c_str()), row.entry) << row.name;

    ZVFileInfo* typed = CreateFileZV(environment.Spec("typed.tif").c_str(), ZVFilePermWrite,
                                     ZV_FourCC("Test"), ZV_BLANK_CODE, ZVFileFlagNone);
    ASSERT_TRUE(typed);
    CloseFileZV(typed);
    uint32_t creator, type;
    Get_FileInfo(environment.Spec("typed.tif").c_str(), &creator, &type);
    if (type == ZV_FourCC("Test")) {
        std::swap(table[0], table[1]);
        EXPECT_EQ(FindFileTypeDescZV(table, environment.Spec("typed.tif").c_str()), &table[0]);
    }
    EXPECT_EQ(FindFileTypeDescZV(table + 3, environment.Spec("a.tif").c_str()), nullptr);
}

TEST_F(FormatRegistry, PropertiesOfNothingAreZero)
{
    TestFormat format("tst", 0x1234);
    ZVClip* clip = NewClipZV();
    clip->Format = nullptr;
    EXPECT_EQ(GetImportPropertiesZV(nullptr), 0);
    EXPECT_EQ(GetExportPropertiesZV(static_cast<ZVClip*>(nullptr)), 0);
    EXPECT_EQ(GetExportPropertiesZV(static_cast<ZVFormatDesc*>(nullptr)), 0);
    EXPECT_EQ(GetExportPropertiesZV(clip), 0);
    EXPECT_EQ(GetCodecFccZV(clip), 0u);
    clip->Format = format.desc;
    EXPECT_EQ(GetImportPropertiesZV(format.desc), 0x1234);
    EXPECT_EQ(GetExportPropertiesZV(clip), 0x1234);
    EXPECT_EQ(GetCodecFccZV(clip), 0u);
    format.desc->GetCodecFcc = TestFormat::GetCodecFcc;
    EXPECT_EQ(GetCodecFccZV(clip), ZV_FourCC("tcod"));
    FreeClipZV(clip);
}

// ---- options ----------------------------------------------------------------------------------------------

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
