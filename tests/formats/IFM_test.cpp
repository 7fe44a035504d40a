// Loadable format modules: found in the folder Plugins, and loaded only while they are needed.
#include "FormatTest.h"

#include <dlfcn.h>
#include <functional>
#include <set>

namespace fs = std::filesystem;

namespace {

class Modules : public testing::Test {
protected:
    Modules() { Behave(nullptr); }
    ~Modules() override { Behave(nullptr); }

    /// Puts the module in Plugins, under some names, and registers all formats.
    void Register(std::initializer_list<char const*> names = {"a.ifm"}, char const* module = ZV_TEST_MODULE)
    {
        for (char const* name : names) {
            fs::path const path = environment.Path(std::string("Plugins/") + name);
            fs::create_directories(path.parent_path());
            fs::copy_file(module, path);
        }
        InitAllFormatModulesZV(nullptr);
    }

    static void Behave(char const* how)
    {
        how ? setenv("ZV_TEST_MODULE", how, 1) : unsetenv("ZV_TEST_MODULE");
        unsetenv("ZV_TEST_CLEANUP");
    }

    /// The registered test modules.
    static std::vector<ZVFormatDesc*> Found()
    {
        std::vector<ZVFormatDesc*> found;
        for (Node* node = List_First(&ZVEnv->formats); node; node = List_Next(node)) {
            auto* const desc = reinterpret_cast<ZVFormatDesc*>(node);
            if (desc->Plugin) found.push_back(desc);
        }
        return found;
    }

    bool Is_Loaded(char const* name = "a.ifm") const
    {
        void* const handle =
            dlopen(environment.Path(std::string("Plugins/") + name).c_str(), RTLD_NOW | RTLD_NOLOAD);
        if (handle) dlclose(handle);
        return handle != nullptr;
    }

    TestEnvironment environment{TestEnvironment::Home::Directory};
};

TEST_F(Modules, AreFoundByExtensionInPluginsAndBelow)
{
    environment.Write("Plugins/text.ifm", "no code");
    environment.Write("Plugins/readme", "nothing");
    testing::internal::CaptureStderr();
    Register({"b.ifm", "deep/er/a.ifm", "no_module.so"});
    EXPECT_NE(testing::internal::GetCapturedStderr().find("text.ifm"), std::string::npos);
    ASSERT_EQ(Found().size(), 2U);
    EXPECT_STREQ(Found()[0]->Plugin->FileSpec, environment.Spec("Plugins\\b.ifm").c_str());
    EXPECT_EQ(Found()[0]->Plugin->Flags, 73U);
    EXPECT_EQ(Found()[0]->CachedProperties, ZV_FORMAT_READ);
    EXPECT_FALSE(Is_Loaded("b.ifm"));
    EXPECT_FALSE(Is_Loaded("deep/er/a.ifm"));
    Free_Format_Modules();
    InitFormatModulesZV(nullptr);
    EXPECT_TRUE(Found().empty()) << "the built-in ones alone";
}

TEST_F(Modules, AreNamedInTheRectangleOfTheScanWhileTheyRegister)
{
    constexpr long width = 300, height = 30, left = 10, top = 5;
    std::unique_ptr<ZVNativeBitmap, void (*)(ZVNativeBitmap*)> const bitmap(
        AllocNativeBitmapZV(width, height, 32), [](ZVNativeBitmap* old) { FreeBitmapZV(old); });
    std::memset(bitmap->Pixels, 0x5A, static_cast<std::size_t>(bitmap->Size));
    ZVScanDesc scan{DrawBeginZV(bitmap.get()), left, top, width - 2 * left, height - 2 * top};
    Register({}, ZV_TEST_MODULE);
    fs::copy_file(ZV_TEST_MODULE, environment.Path("a.ifm"));
    EXPECT_EQ(Init_IFM(environment.Spec("a.ifm").c_str(), &scan), 1);
    DrawEndZV(scan.DrawInfo);
    long inside = 0, outside = 0;
    std::set<uint32_t> colours;
    for (long y = 0; y < height; ++y)
        for (long x = 0; x < width; ++x) {
            uint32_t pixel;
            std::memcpy(&pixel, bitmap->Pixels + y * bitmap->RowBytes + 4 * x, sizeof pixel);
            bool const isIn = x >= left && x < width - left && y >= top && y < height - top;
            (isIn ? inside : outside) += pixel != 0x5A5A5A5A;
            if (isIn) colours.insert(pixel);
        }
    EXPECT_EQ(inside, scan.Width * scan.Height);
    EXPECT_EQ(outside, 0);
    EXPECT_GT(colours.size(), 1U) << "a text on its ground";
}

TEST_F(Modules, OfAnotherRecordLayoutAreRefused)
{
    Register({"a.ifm"}, ZV_PACKED_MODULE);
    EXPECT_TRUE(Found().empty());
    EXPECT_FALSE(Is_Loaded());
}

TEST_F(Modules, StandBeforePlainPlugIns)
{
    auto const add = [](uint32_t flags) {
        ZVFormatDesc* const desc = Make_Format_Desc({"Other", flags & 0xFF, 0, nullptr, 0, nullptr, 0});
        desc->Plugin = static_cast<ZVPlugin*>(AllocMemZV(sizeof(ZVPlugin), ZV_MEM_CLEAR));
        desc->Plugin->Flags = flags;
        AddTail(&ZVEnv->formats, &desc->Node);
    };
    add(ZV_PLUGIN_HOST | 16);
    add(0x100 | 17);
    add(16);
    Register();
    std::vector<uint32_t> types;
    for (ZVFormatDesc const* desc : Found())
        types.push_back(desc->FileType);
    EXPECT_EQ(types, (std::vector<uint32_t>{ZV_PLUGIN_HOST | 16, ZV_FourCC("Test"), 17, 16}));
}

TEST_F(Modules, AreLoadedByTheFirstCallThatNeedsThem)
{
    Register();
    ZVFormatDesc* const desc = Found().at(0);
    std::string const spec = environment.Write("picture.test", "");
    EXPECT_EQ(GetFormatModuleZV(spec.c_str()), desc);
    EXPECT_EQ(GetImportPropertiesZV(desc), ZV_FORMAT_READ);
    EXPECT_FALSE(desc->AddAudio || desc->About || desc->AddFrameAsync) << "what is not offered shows";
    EXPECT_TRUE(desc->GetGBuffer);
    EXPECT_FALSE(Is_Loaded());

    desc->DefaultVideoParams = static_cast<ZVFormatParams*>(AllocMemZV(sizeof(ZVFormatParams), ZV_MEM_CLEAR));
    ClipPtr const clip{OpenClipZV(spec.c_str(), ZV_OPEN_NO_ALPHA_GUESS, 1, 0)};
    ASSERT_TRUE(clip);
    EXPECT_TRUE(Is_Loaded());
    EXPECT_EQ(desc->Plugin->UseCount, 1);
    EXPECT_FALSE(desc->DefaultVideoParams);
    EXPECT_EQ(desc->CanLoad(desc, "", 0, ZV_FourCC("Test"), 0), 0) << "the module's own entry now";
    BitmapPtr const bitmap{AllocBitmapZV(2, 1, ZV_BITMAP_RGBA8, "test")};
    EXPECT_EQ(desc->GetFrame(clip.get(), bitmap.get(), 0, nullptr, 2, 1, 0, nullptr, 0), 1);
    EXPECT_EQ(bitmap->Pixels[7], 100);
    EXPECT_EQ(desc->Plugin->UseCount, 1);
    CloseClipZV(clip.get());
    Unload_IFM(desc);
    EXPECT_FALSE(Is_Loaded());
    EXPECT_EQ(desc->CanLoad(desc, "", 0, ZV_FourCC("Test"), 0), 1);
    Free_Format_Modules();
    EXPECT_STREQ(std::getenv("ZV_TEST_CLEANUP"), "done") << "loaded one last time";
    EXPECT_FALSE(Is_Loaded());
    clip->Format = nullptr;
}

TEST_F(Modules, EachStubHandsItsCallOn)
{
    Register();
    ZVFormatDesc* const desc = Found().at(0);
    ClipPtr const clip{NewClipZV()};
    ZVClip* const c = clip.get();
    c->Format = desc;
    c->User3 = 33;
    BitmapPtr const bitmap{AllocBitmapZV(2, 1, ZV_BITMAP_RGBA8, "test")};
    struct {
        char const* why;
        std::function<long()> call;
        long answer;
    } const rows[] = {
        {"Open", [&] { return desc->Open(c, nullptr) * c->Width; }, 2},
        {"Close", [&] { return desc->Close(c), c->User1; }, 77},
        {"Create", [&] { return desc->Create(c, 5); }, 5},
        {"BeginIO", [&] { return desc->BeginIO(c, 0); }, 1},
        {"EndIO", [&] { return desc->EndIO(c, 0); }, 1},
        {"GetFrame",
         [&] { return desc->GetFrame(c, bitmap.get(), 3, nullptr, 2, 1, 0, nullptr, 0) * bitmap->Pixels[0]; },
         103},
        {"AddFrame", [&] { return desc->AddFrame(c, nullptr, 9, nullptr); }, 9},
        {"GetFrameDataReference",
         [&] { return desc->GetFrameDataReference(c, 9, 4, nullptr, nullptr, nullptr); }, 5},
        {"GetGBuffer", [&] { return desc->GetGBuffer(c, 3, 0, nullptr, 0, nullptr, 4); }, 7},
        {"Options", [&] { return desc->Options(c, true), c->User2; }, 1},
        {"AudioOptions", [&] { return desc->AudioOptions(c, false), c->User2; }, 2},
        {"GetExportProperties", [&] { return desc->GetExportProperties(nullptr, c); }, 33},
        {"without a clip", [&] { return desc->GetExportProperties(desc, nullptr); }, ZV_FourCC("Test")},
        {"GetFrameData", [&] { return desc->GetFrameData(c, 0, 6, nullptr, 0); }, 6},
        {"GetAudio", [&] { return desc->GetAudio(c, nullptr, 4, 5); }, 9},
        {"GetCodecFcc", [&] { return static_cast<long>(desc->GetCodecFcc(c)); }, ZV_FourCC("code")},
    };
    for (auto const& row : rows) {
        EXPECT_FALSE(Is_Loaded()) << row.why;
        EXPECT_EQ(row.call(), row.answer) << row.why;
        EXPECT_TRUE(Is_Loaded()) << row.why;
        Unload_IFM(desc);
    }
}

TEST_F(Modules, OneThatFailsLaterStaysStubbed)
{
    Register();
    ZVFormatDesc* const desc = Found().at(0);
    ClipPtr const clip{NewClipZV()};
    clip->Format = desc;
    auto const stub = desc->Open;
    for (char const* how : {"refuse", "damage", "silent"}) {
        Behave(how);
        EXPECT_EQ(desc->Open(clip.get(), nullptr), 0) << how;
        EXPECT_EQ(desc->Open, stub) << how;
        EXPECT_FALSE(desc->ReadTypes || desc->ReadExtensions) << how;
        EXPECT_EQ(desc->ReadTypeCount + desc->ReadExtensionCount, 0) << how;
        EXPECT_STREQ(desc->Node.name, "Test") << how;
        EXPECT_EQ(desc->Plugin->UseCount, 0) << how;
        EXPECT_FALSE(Is_Loaded()) << how;
        EXPECT_EQ(desc->CanLoad(desc, "", 0, ZV_FourCC("Test"), ZV_FourCC("test")), 0) << how;
    }
    Behave("plain");
    EXPECT_EQ(desc->GetAudio(clip.get(), nullptr, 1, 1), 0) << "offered before, and now no more";
    Unload_IFM(desc);
    EXPECT_FALSE(desc->GetAudio);
    Behave(nullptr);
    EXPECT_EQ(desc->Open(clip.get(), nullptr), 1);
    Behave("refuse");
    fs::remove(environment.Path("Plugins/a.ifm"));
    Unload_IFM(desc);
    SetErrorModeZV(ZV_ERRORMODE_NO);
    EXPECT_EQ(desc->Open(clip.get(), nullptr), 0) << "its file is gone";
}

TEST_F(Modules, OneThatFailsAtStartIsDropped)
{
    for (char const* how : {"refuse", "damage", "silent"}) {
        Behave(how);
        fs::remove_all(environment.Path("Plugins"));
        Register();
        EXPECT_TRUE(Found().empty()) << how;
        EXPECT_FALSE(Is_Loaded()) << how;
        Free_Format_Modules();
    }
}

TEST_F(Modules, AClipNeedsNoMoreThanTheModuleOffers)
{
    Behave("plain");
    Register();
    ZVFormatDesc* const desc = Found().at(0);
    EXPECT_FALSE(GetFormatModuleZV(environment.Write("picture.test", "").c_str()));
    EXPECT_EQ(GetExportPropertiesZV(desc), 0);
    ClipPtr const clip{NewClipZV()};
    clip->Format = desc;
    clip->FileName = CopyFileSpecZV(environment.Spec("picture.test").c_str());
    EXPECT_EQ(CreateClipZV(clip.get(), 0), 0);
    EXPECT_EQ(BeginClipIOZV(clip.get(), nullptr), 1);
    EXPECT_EQ(EndClipIOZV(clip.get(), nullptr), 1);
}

}  // namespace
