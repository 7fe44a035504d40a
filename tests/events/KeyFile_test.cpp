// Key files, and what a key does by them.
#include "EventTest.h"

#include "interface/KeyFile.h"

namespace {

ZVKeyCommand const commands[] = {{"Save", 10}, {"Load", 11}, {"Refresh", 12}, {nullptr, 0}};

/// Reads a text into the sections "Main" and "Other" and keeps what was said about it.
struct Sections {
    ZVKeySection other{.name = "Other", .commands = commands};
    ZVKeySection main{.next = &other, .name = "Main", .commands = commands};
    std::string messages;

    explicit Sections(std::string_view text = {}) { Read(text); }
    ~Sections() { CleanupKeySectionZV(&main); }

    void Read(std::string_view text)
    {
        testing::internal::CaptureStderr();
        Parse_Key_Text(text, &main);
        messages = testing::internal::GetCapturedStderr();
    }

    /// Each binding as "key:action", with its number when there is one.
    static std::string Bindings(ZVKeySection const& section)
    {
        std::string text;
        for (auto const* binding = section.bindings; binding && binding[0]; binding += 3) {
            text += (text.empty() ? "" : " ") + std::to_string(binding[0]) + ":" + std::to_string(binding[1]);
            if (binding[2]) text += "/" + std::to_string(binding[2]);
        }
        return text;
    }
};

/// What the user is told, as the string file has it.
template <typename... Values> std::string Said(unsigned long id, Values... values)
{
    testing::internal::CaptureStderr();
    UserMessageZV(id, values...);
    return testing::internal::GetCapturedStderr();
}

class KeyFile : public EventTest {
protected:
    KeyFile() { Load_Texts(); }

    /// The library's own texts, put where the string file is looked for.
    void Load_Texts()
    {
        FreeFileSpecZV(std::exchange(ZVEnv->homeDir, AllocString(environment.Spec().c_str())));
        if (ZVEnv->stringTable) return;
        std::filesystem::create_directories(environment.Path("Locale"));
        for (char const* name : {"ZVLibStr.txt", "ZVLibStr.h"})
            std::filesystem::copy_file(std::string(ZV_RESOURCES_DIR "/Locale/") + name,
                                       environment.Path(std::string("Locale/") + name));
        AppendStringFileZV("Locale\\ZVLibStr.txt");
    }
};

}  // namespace

/// Each bar is the end of a line.
static std::string Lines(std::string text)
{
    std::ranges::replace(text, '|', '\n');
    return text;
}

TEST_F(KeyFile, LinesBecomeBindings)
{
    struct {
        char const *text, *main, *other;
        std::string messages;
    } const rows[] = {
        {"a Save|Section Main", "", "", ""},
        {"Section Main|a Save|Section None|b Nonsense", "97:10", "", ""},
        {"Section Main|a Save|Section Other|a Load|", "97:10", "97:11", ""},
        {"Section Main|A Save|a Load|SHIFT b Save", "1121:10 97:11 1122:10", "", ""},
        {"sECTION mAIN|control Command f5 sAVE", "4900:10", "", ""},
        {"Section Main|ALT a Save|OPTION b Load", "2145:10 2146:11", "", ""},
        {" \t Section\tMain |\t|  \t a \t Save\t ", "97:10", "", ""},
        {"Section Main|F5 Refresh 2|F6 Refresh x|F7 Save -1", "292:12/2 293:12 294:10/65535", "", ""},
        {"Section Main|F1 Save|F15 Save|LEFTARROW Save|Help Save|INSERT Save|SPACE Save",
         "288:10 302:10 303:10 307:10 319:10 32:10", "", ""},
        {"//Section Main|Section Main|  // a Save|/ Load", "47:11", "", ""},
        {"Section Main\ra Save\r\nb Load||q None", "97:10 98:11 113:0", "", Said(116, 5)},
        {"Section Main|SHIFT|a Save", "97:10", "", ""},
        {"Section Main|F99 Save|a Save", "97:10", "", Said(116, 2)},
        {"Section Main|a None 5|b", "97:0/5 98:0", "", Said(116, 2) + Said(116, 3)},
        {"Section Main|SHIFT q Save|b Load|Q None|", "1137:10 98:11", "", Said(117, "Q", 4)},
        {"Section Main|a Save|section main|b Load|Section Other|c Save", "97:10", "99:10",
         Said(119, "main", 3)},
        {"Section Main|if Linux|a Save|else|b Save|endif|c Load", "97:10 99:11", "", ""},
        {"Section Main|if Macintosh|a Save|else|b Save|endif|c Load", "98:10 99:11", "", ""},
        {"Section Main|IFDEF linux64|a Save|ELSE|b Save|EndIf|c Load", "97:10 99:11", "", ""},
        {"Section Main|if|a Save|endif|b Load", "98:11", "", ""},
        {"Section Main|a Save|else|b Save|else|c Save", "97:10 99:10", "", ""},
        {"Section Main|if Other|Section Other|endif|a Save", "97:10", "", ""},
    };
    for (auto const& row : rows) {
        Sections const sections(Lines(row.text));
        EXPECT_EQ(Sections::Bindings(sections.main), row.main) << row.text;
        EXPECT_EQ(Sections::Bindings(sections.other), row.other) << row.text;
        EXPECT_EQ(sections.messages, row.messages) << row.text;
    }
    EXPECT_EQ(Sections("// nothing but comments\n").main.block, nullptr);
}

TEST_F(KeyFile, FilesAreReadFromTheHomeDirectoryInPlaceOfWhatWasThere)
{
    Sections sections("Section Main\na Save\nSection Other\nb Save");
    environment.Write("Keys.txt", "Section Main\nx Load\n");
    SetKeyFileZV("Keys.txt", &sections.main);
    EXPECT_EQ(Sections::Bindings(sections.main), "120:11");
    EXPECT_EQ(sections.other.bindings, nullptr);

    // A second file adds to the first one.
    Parse_KeyFile(environment.Write("More.txt", "Section Other\ny Save").c_str(), &sections.main);
    EXPECT_EQ(Sections::Bindings(sections.main) + " " + Sections::Bindings(sections.other), "120:11 121:10");

    testing::internal::CaptureStderr();
    SetKeyFileZV("None.txt", &sections.main);
    std::string const message = testing::internal::GetCapturedStderr();
    EXPECT_EQ(message, Said(115));
    EXPECT_EQ(sections.main.bindings, nullptr);
}

TEST_F(KeyFile, AKeyThatNobodyTookBecomesAnAction)
{
    Sections sections("Section Main\na Save\nSection Other\nb Load");
    ZVEnv->keySection = &sections.main;
    unsigned long action = 0;
    bool isTaken = false;
    onEvent = [&](auto const&, ZVEvent* event) {
        if (event->type == ZV_EVENT_ACTION) action = event->item;
        event->result = isTaken;
    };
    Do_Event(ZV_EVENT_KEY, 'a' << 16 | 'a');
    EXPECT_EQ(Log(), "A:1 A:24");
    EXPECT_EQ(action, 10u);
    Do_Event(ZV_EVENT_KEY, 'b' << 16 | 'b');
    EXPECT_EQ(Log(), "A:1") << "the first section alone";
    ZVEnv->modifiers = ZV_MOD_KEY_UP;
    Do_Event(ZV_EVENT_KEY, 'a' << 16 | 'a');
    EXPECT_EQ(Log(), "A:1") << "a release";
    isTaken = true;
    Do_Event(ZV_EVENT_KEY, 'a' << 16 | 'a');
    EXPECT_EQ(Log(), "A:1");
    EXPECT_EQ(ProcessKeyEventZV(&sections.main, 'b', 0), 1);
    EXPECT_EQ(ProcessKeyEventZV(&sections.main, 'b', ZV_MOD_KEY_UP), 0);
    EXPECT_EQ(ProcessKeyEventZV(&sections.main, 'c', 0), 0);
    EXPECT_EQ(ProcessKeyEventZV(nullptr, 'b', 0), 0);
    EXPECT_EQ(Log(), "A:24");
    ZVEnv->keySection = nullptr;
}

TEST_F(KeyFile, AModalPaletteKeepsKeysForItself)
{
    Sections global("Section Main\na Save\nm Save");
    Sections own("Section Main\nm Load\nSection Other\na Load");
    ZVEnv->keySection = &global.main;
    ZVPalette* const modal = Add_Palette(Add_Window(0, 0), 1, ZV_KIND_MODAL);
    ZVEnv->modalPalette = modal;
    Process_Keys('a', 0);
    EXPECT_EQ(Log(), "") << "nothing reaches behind it";
    modal->keySection = &own.main;
    onEvent = [](auto const&, ZVEvent* event) { EXPECT_EQ(event->item, 11u); };
    Process_Keys('a', 0);
    EXPECT_EQ(Log(), "");
    Process_Keys('m', 0);
    EXPECT_EQ(Log(), "P1:24");
    modal->callback = nullptr;
    Process_Keys('m', 0);
    EXPECT_EQ(Log(), "A:24");
    ZVEnv->keySection = nullptr;
}

TEST(KeyFileAtStart, IsReadByInitZVAndFreedAtTheEnd)
{
    ScratchDir directory;
    directory.Write("Keys.txt", "Section Main\na Save");
    ZVKeySection section{.name = "Main", .commands = commands};
    setenv("KL_APP_DATA_DIR", directory.Path().c_str(), 1);
    ASSERT_TRUE(InitZV(nullptr, nullptr, "Keys.txt", nullptr, ZV_INIT_NO_GUI, 1, ZV_INIT_HOME_DIR,
                       directory.Path().c_str(), ZV_INIT_KEY_SECTION, &section, 0));
    EXPECT_EQ(Sections::Bindings(section), "97:10");
    CleanUpZV();
    unsetenv("KL_APP_DATA_DIR");
    EXPECT_EQ(section.bindings, nullptr);
    EXPECT_EQ(section.block, nullptr);
}
