// What the built-in modules tell of themselves, and which files they claim.
#include "FormatTest.h"

namespace {

TEST_F(FormatTest, BuiltinModulesStandInTheirOrderWithNamesCodesAndProperties)
{
    struct {
        char const* name;  ///< in the texts of the library
        uint32_t fileType, fileCreator;
        char const* fileName;  ///< of a file that the module claims, or null
        long properties;
    } const cases[] = {
        {"PICT Picture", ZV_FourCC("PICT"), ZV_FourCC("ttxt"), "a.PICT", 0x1000D},
        {"PICS Animation", ZV_FourCC("PICS"), ZV_FourCC("ttxt"), "a.pcs", 0x1000F},
        {"Filmstrip", ZV_FourCC("Film"), ZV_BLANK_CODE, "a.FLM", 0x1000F},
        {"Electric Image", ZV_FourCC("EIDI"), ZV_FourCC("EIAD"), "a.ei", 0x1000F},
        {"VPB Picture", ZV_FourCC("VPB "), ZV_BLANK_CODE, "a.vpb", 0x1000C},
        {"Ram", ZV_BLANK_CODE, ZV_BLANK_CODE, nullptr, 0x1008E},
    };
    Node* node = List_First(&ZVEnv->formats);
    for (auto const& row : cases) {
        while (node && reinterpret_cast<ZVFormatDesc*>(node)->FileType != row.fileType)
            node = List_Next(node);
        ASSERT_TRUE(node) << row.name;
        auto* desc = reinterpret_cast<ZVFormatDesc*>(node);
        EXPECT_STREQ(desc->Node.name, row.name);
        EXPECT_EQ(desc->FileCreator, row.fileCreator) << row.name;
        EXPECT_TRUE(desc->MaxWidth == 32767 && desc->MaxHeight == 32767) << row.name;
        EXPECT_EQ(GetImportPropertiesZV(desc), row.properties) << row.name;
        EXPECT_EQ(GetExportPropertiesZV(desc), row.properties) << row.name;
        if (row.fileName) {
            EXPECT_EQ(GetFormatModuleZV(Write(row.fileName, {0}).c_str()), desc) << row.name;
            EXPECT_EQ(OpenClipZV(environment.Spec(row.fileName).c_str(), nullptr), nullptr) << row.name;
        }
    }
}

TEST_F(FormatTest, AModuleWhoseNameIsMissingInTheTextsIsNamedAllTheSame)
{
    Free_Format_Modules();
    FreeStringTable(std::exchange(ZVEnv->stringTable, nullptr));
    InitFormatModulesZV(nullptr);
    EXPECT_STREQ(Module(ZV_FourCC("Film"))->Node.name, "Filmstrip");
    EXPECT_STREQ(Module(ZV_FourCC("EIDI"))->Node.name, "EIDI");
}

}  // namespace
