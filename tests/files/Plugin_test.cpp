// Code modules: which files are taken for some, how uses are counted, and what happens without code or entry.
#include "FileTestTools.h"
#include "TestEnvironment.h"

#include <dlfcn.h>

namespace fs = std::filesystem;

namespace {

class Plugin : public EnvironmentTest {
protected:
    ~Plugin() override
    {
        for (ZVPlugin* plugin : plugins_)
            Free_Plugin(plugin);
    }

    /// A plug-in record for a copy of one of the test's modules.
    ZVPlugin* Make(std::string const& module, std::string const& name, char const* entry = nullptr)
    {
        fs::create_directories(fs::path(environment.Path(name)).parent_path());
        fs::copy_file(std::string(ZV_TEST_MODULES "/") + module + ".so", environment.Path(name));
        return Record(name, entry);
    }
    ZVPlugin* Record(std::string const& name, char const* entry = nullptr)
    {
        plugins_.push_back(static_cast<ZVPlugin*>(AllocMemZV(sizeof(ZVPlugin), ZV_MEM_CLEAR)));
        plugins_.back()->FileSpec = CopyFileSpecZV(environment.Spec(name).c_str());
        plugins_.back()->EntryName = AllocString(entry);
        return plugins_.back();
    }

    bool Is_Mapped(std::string const& name) const
    {
        void* const handle = dlopen(environment.Path(name).c_str(), RTLD_NOW | RTLD_NOLOAD);
        if (handle) dlclose(handle);
        return handle != nullptr;
    }

    static int Call(ZVPluginProc proc) { return reinterpret_cast<int (*)()>(proc)(); }

    /// What is shown on standard error by a call.
    template <typename Work> static std::string Shown(Work work)
    {
        testing::internal::CaptureStderr();
        work();
        return testing::internal::GetCapturedStderr();
    }

private:
    std::vector<ZVPlugin*> plugins_;
};

TEST_F(Plugin, CodeIsThereWhileSomebodyUsesIt)
{
    ZVPlugin* const plugin = Make("entry", "a.ifm");
    ZVPluginProc const proc = LoadPluginZV(plugin, 0);
    ASSERT_TRUE(proc);
    EXPECT_EQ(Call(proc), 1);
    EXPECT_EQ(LoadPluginZV(plugin, 0), proc);
    PluginIdleZV(plugin, 1);
    EXPECT_EQ(plugin->Proc, proc);
    PluginIdleZV(plugin, 0);
    EXPECT_EQ(plugin->Proc, nullptr);
    EXPECT_EQ(plugin->UseCount, 0);
    EXPECT_TRUE(Is_Mapped("a.ifm"));
    ASSERT_TRUE(LoadPluginZV(plugin, 0));
    EXPECT_EQ(Call(plugin->Proc), 2) << "the code that was still there";
    EXPECT_TRUE(GetProcAddressZV(plugin, "ENTRYPOINT1"));
    EXPECT_FALSE(GetProcAddressZV(plugin, "Another"));
    EXPECT_FALSE(GetProcAddressZV(plugin, nullptr));
    PluginIdleZV(plugin, 1);
    EXPECT_FALSE(Is_Mapped("a.ifm")) << "one unload is enough";
    PluginIdleZV(plugin, 1);
    EXPECT_EQ(plugin->UseCount, 0);
    EXPECT_FALSE(GetProcAddressZV(plugin, "ENTRYPOINT1"));
    EXPECT_EQ(LoadPluginZV(nullptr, 0), nullptr);
}

TEST_F(Plugin, AModuleMayHaveNoSingleEntry)
{
    ZVPlugin* const plugin = Make("other", "a.ifm");
    EXPECT_EQ(LoadPlugin2ZV(plugin, 0), 1);
    EXPECT_EQ(LoadPlugin2ZV(plugin, 0), 1);
    EXPECT_EQ(plugin->UseCount, 2);
    EXPECT_EQ(Call(GetProcAddressZV(plugin, "Another")), 1);
    EXPECT_FALSE(plugin->Proc);
    Shown([&] { EXPECT_FALSE(LoadPluginZV(plugin, 0)); });
    EXPECT_TRUE(Is_Mapped("a.ifm")) << "an entry that is missing takes nothing from those that need none";
    PluginIdleZV(plugin, 0);
    PluginIdleZV(plugin, 1);
    EXPECT_FALSE(Is_Mapped("a.ifm"));
}

TEST_F(Plugin, FailuresAreShownAndLeaveNothing)
{
    environment.Write("text.ifm", "no code");
    std::string const path = environment.Path();
    struct {
        ZVPlugin* plugin;
        char const* text;
    } const rows[] = {
        {Make("other", "no_entry.ifm"),
         "undefined symbol: ENTRYPOINT1\" while loading \"ENTRYPOINT1\" of \""},
        {Make("entry", "named.ifm", "Elsewhere"), "\" while loading \"Elsewhere\" of \""},
        {Make("undefined", "undefined.ifm"), "Nobody_Defines_This"},
        {Record("text.ifm"), "dlopen() return \""},
        {Record("missing.ifm"), "GetDiskFragment() return \""},
        {Make("entry", "plain.so"), "GetDiskFragment() return \""},
    };
    for (auto const& row : rows) {
        std::string const shown = Shown([&] { EXPECT_FALSE(LoadPluginZV(row.plugin, 0)) << row.text; });
        EXPECT_NE(shown.find(row.text), shown.npos) << shown;
        EXPECT_NE(shown.find("while loading \""), shown.npos) << shown;
        EXPECT_EQ(row.plugin->UseCount, 0);
        EXPECT_FALSE(row.plugin->Library);
    }
    EXPECT_EQ(Shown([&] { EXPECT_EQ(LoadPlugin2ZV(rows[0].plugin, 0), 1); }), "");
    EXPECT_EQ(LoadPlugin2ZV(nullptr, 0), 0);
}

TEST_F(Plugin, ResourcesComeAndGoWithTheCode)
{
    ZVPlugin* const plugin = Make("entry", "a.ifm");
    ASSERT_TRUE(LoadPluginZV(plugin, 1));
    EXPECT_FALSE(plugin->ResourceFile) << "it is no failure to have none";
    PluginIdleZV(plugin, 0);
    environment.Write("._a.ifm", std::string("\0\5\x16\7\0\2\0\0", 8) + std::string(16, 0) +
                                     std::string("\0\1\0\0\0\2\0\0\0\x26\0\0\0\x2E", 14) +
                                     std::string("\0\0\0\x10\0\0\0\x10\0\0\0\0\0\0\0\x1E", 16) +
                                     std::string(24, 0) + std::string("\0\x1C\0\x1E\xFF\xFF", 6));
    ASSERT_TRUE(LoadPluginZV(plugin, 1));
    EXPECT_TRUE(plugin->ResourceFile);
    PluginIdleZV(plugin, 0);
    EXPECT_TRUE(plugin->ResourceFile);
    LoadPluginZV(plugin, 0);
    PluginIdleZV(plugin, 1);
    EXPECT_FALSE(plugin->ResourceFile);
}

TEST_F(Plugin, ABundleHasItsCodeInside)
{
    Make("entry", "Name.plugin/Contents/Linux/Name");
    environment.Write("Name.plugin/Contents/Info.plist", "");
    ZVPlugin* const plugin = Record("Name.plugin/Contents/Info.plist", "ENTRYPOINT1");
    ASSERT_TRUE(LoadPluginZV(plugin, 0));
    EXPECT_EQ(Call(plugin->Proc), 1);
    EXPECT_TRUE(plugin->Bundle);
    PluginIdleZV(plugin, 1);
    EXPECT_FALSE(Is_Mapped("Name.plugin/Contents/Linux/Name"));
    Shown([&] {
        EXPECT_THROW(LoadPluginZV(Record("Name.plugin/Contents/Info.plist"), 0), ZVAssertFail);
        EXPECT_THROW(LoadPluginZV(Record("Name.plugin/Contents/Info.plist", "None"), 0), ZVAssertFail);
    });
}

}  // namespace
