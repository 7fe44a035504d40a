// The dialogs for files and directories as a user goes through them, and what they list.
#include "DesktopTest.h"

#include "dialogs/FileDialogListing.h"
#include "dialogs/FileDialogText.h"

#include <fstream>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

/// Ids of the dialog's gadgets.
enum : unsigned short { UpId = 2, NewFolderId = 3, RowsId = 5, NameId = 7, KindsId = 8, AcceptId = 11 };

char textName[] = "Text", pictureName[] = "Picture";

class FileDialogTest : public DesktopTest {
protected:
    FileDialogTest()
    {
        std::string const spec = files.Spec();
        spec.copy(directory, spec.size());
        onEvent = [this](ZVEvent& event) {
            if (event.type == ZV_EVENT_TICK && !event.palette && ZVEnv->modalPalette) Tick();
        };
    }

    /// One step a tick, with time for the reading thread in between.
    void Tick()
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (next < steps.size()) {
            auto const step = steps[next++];
            step();
        } else if (++idleTicks > 30) {
            ADD_FAILURE() << "the dialog is still open";
            while (ZVEnv->modalPalette)
                ClosePaletteZV(ZVEnv->modalPalette);
        }
    }

    /// "text", and keys: "<Down>".
    static void Play(std::string_view script)
    {
        static constexpr struct {
            std::string_view name;
            unsigned long code;
        } keys[] = {{"Up", ZV_KEY_UP},         {"Down", ZV_KEY_DOWN},      {"Home", ZV_KEY_HOME},
                    {"End", ZV_KEY_END},       {"Tab", ZV_KEY_TAB},        {"Return", ZV_KEY_RETURN},
                    {"Escape", ZV_KEY_ESCAPE}, {"Back", ZV_KEY_BACKSPACE}, {"PageDown", ZV_KEY_PAGE_DOWN},
                    {"PageUp", ZV_KEY_PAGE_UP}};
        while (!script.empty()) {
            std::size_t const end = script.front() == '<' ? script.find('>') : script.find('<');
            std::string const part(script.substr(0, end));
            if (part.front() != '<') HeadlessTypeZV(part.c_str());
            for (auto const& key : keys)
                if (part == '<' + std::string(key.name)) HeadlessKeyZV(key.code);
            script.remove_prefix(std::min(script.size(), end + (part.front() == '<')));
        }
    }
    /// A bar stands for the time in which a palette opens, which drops the keys that come too early.
    void Then(std::string_view script)
    {
        while (!script.empty()) {
            std::string const part(script.substr(0, script.find('|')));
            steps.emplace_back([part] { Play(part); });
            script.remove_prefix(std::min(script.size(), part.size() + 1));
        }
    }
    void Then_Click(unsigned short id, int x, int y, int times = 1)
    {
        steps.emplace_back([=] {
            ZVItem const* const item = FindItem2ZV(ZVEnv->modalPalette, id);
            long left = 0, top = 0;
            GetItemScreenPosZV(item, &left, &top);
            for (int i = 0; i < times; ++i)
                HeadlessClickZV(left + x, top + y, ZV_HEADLESS_LEFT);
        });
    }

    /// The user takes an entry of the pop-up.
    void Then_Kind(long entry)
    {
        steps.emplace_back([entry] {
            ZVItem* const item = FindItem2ZV(ZVEnv->modalPalette, KindsId);
            ASSERT_TRUE(item);
            SetGadgetStateZV(item, static_cast<double>(entry));
            Do_Event(ZV_EVENT_GADGET, Tag_Word(item));
        });
    }

    /// Native path of what was chosen, below the test's directory; "-" when cancelled.
    std::string Answer(char* spec)
    {
        steps.clear();
        next = 0;
        idleTicks = 0;
        char path[4096] = "-";
        if (spec) OS_Native_Path(spec, path, sizeof path);
        FreeFileSpecZV(spec);
        std::string const answer = path;
        return answer.starts_with(files.Path()) ? answer.substr(files.Path().size()) : answer;
    }
    template <typename... Tags> std::string Open(Tags... tags)
    {
        return Answer(AskFileNameZV(ZV_ASK_DIRECTORY, directory, ZV_ASK_FILE_TYPES, table, tags..., 0));
    }
    template <typename... Tags> std::string Save(Tags... tags)
    {
        return Answer(AskFileNameZV(ZV_ASK_DIRECTORY, directory, ZV_ASK_SAVE, 0, tags..., 0));
    }
    std::string Directory() { return Answer(AskDirectoryZV(ZV_ASK_DIRECTORY, directory, 0)); }

    ScratchDir files;
    char directory[ZV_SPEC_SIZE] = "";
    ZVFileTypeDescriptor table[3] = {{textName, "txt", ZV_FourCC("TEXT")}, {pictureName, "png", 1}, {}};
    std::vector<std::function<void()>> steps;
    std::size_t next = 0;
    int idleTicks = 0;
};

// ---- kinds ------------------------------------------------------------------------------------------------

TEST_F(FileDialogTest, EachKindShowsItsFiles)
{
    InitFormatModulesZV(nullptr);
    enum { Formats = 1, Table = 2 };
    struct {
        char const* why;
        int has;
        long entry;  ///< 0 for the first one; those of modules count from 100
        char const* name;
        char const* type;
        bool isShown;
    } const rows[] = {
        {"nothing tells which files are wanted", 0, 0, "a.txt", "TEXT", false},
        {"by the table's extension", Table, 1, "a.txt", "", true},
        {"in capitals", Table, 1, "a.TXT", "", true},
        {"by the type", Table, 1, "a.dat", "TEXT", true},
        {"the whole extension counts", Table, 1, "a.txtx", "", false},
        {"no dot is no extension", Table, 1, "txt", "", false},
        {"a dot of the directory is none of the name", Table, 1, "b.txt/a", "", false},
        {"all files", Table, 2, "a.dat", "", true},
        {"the line shows all as well", Table, 3, "a.dat", "", true},
        {"the second of the table", Table, 5, "a.png", "", true},
        {"and no other", Table, 5, "a.txt", "TEXT", false},
        {"behind the table without modules there is none", Table, 6, "a.txt", "", false},
        {"any module's", Formats, 1, "a.pct", "", true},
        {"the code is that of small letters", Formats, 1, "a.PCT", "", true},
        {"of a longer extension the first four count", Formats, 1, "a.pictxx", "", true},
        {"not the table's", Formats, 1, "a.txt", "TEXT", false},
        {"the first module alone", Formats, 100, "a.pct", "", true},
        {"the first module alone", Formats, 100, "a.vpb", "", false},
        {"table or module", Formats | Table, 1, "a.txt", "", true},
        {"table or module", Formats | Table, 1, "a.pct", "", true},
        {"neither", Formats | Table, 1, "a.dat", "", false},
        {"no such module", Formats, 1000, "a.pct", "", false},
    };
    for (auto const& row : rows) {
        ZVFileRequest request{};
        if (row.has & Formats) request.Flags |= ZV_FILEREQF_FORMATS;
        if (row.has & Table) request.Types = table;
        Start_File_Request(&request);
        if (row.entry) request.Current = static_cast<int32_t>(row.entry);
        if (row.entry >= 100) request.Current = static_cast<int32_t>(request.ModuleEntry + row.entry - 100);
        std::string spec = files.Spec(row.name);
        std::replace(spec.begin(), spec.end(), '/', '\\');
        uint32_t const type = *row.type ? ZV_FourCC("TEXT") : ZV_BLANK_CODE;
        EXPECT_EQ(Is_File_Shown(&request, spec.c_str(), ZV_BLANK_CODE, type), row.isShown)
            << row.why << ": " << row.name;
    }
}

TEST_F(FileDialogTest, TheChosenKindIsToldWhenTheUserChangesIt)
{
    InitFormatModulesZV(nullptr);
    for (char const* name : {"a.txt", "b.png", "c.pct"})
        files.Write(name, "x");
    ZVFormatDesc* const first = reinterpret_cast<ZVFormatDesc*>(List_First(&ZVEnv->formats));
    ZVFileTypeDescriptor* kind = &table[1];
    ZVFormatDesc* format = nullptr;
    auto const open = [&] {
        return Open(ZV_ASK_FORMATS, 0, ZV_ASK_TYPE_RESULT, &kind, ZV_ASK_FORMAT_RESULT, &format);
    };
    Then("<End><Return>");
    EXPECT_EQ(open(), "b.png") << "the kind that was given shows its files alone";
    EXPECT_EQ(kind, &table[1]);

    Then_Kind(4);
    Then("<End><Return>");
    EXPECT_EQ(open(), "a.txt");
    EXPECT_EQ(kind, &table[0]);

    Then_Kind(6);
    Then("<End><Return>");
    EXPECT_EQ(open(), "c.pct");
    EXPECT_EQ(kind, nullptr);
    EXPECT_EQ(format, first);

    Then_Kind(1);
    Then("<End><Return>");
    EXPECT_EQ(open(), "c.pct");
    EXPECT_EQ(format, nullptr) << "an entry that is no kind";

    kind = table + 2;
    Then("<Escape>");
    open();
    EXPECT_EQ(kind, table + 2) << "what the list does not hold stays, untouched";
}

// ---- opening ----------------------------------------------------------------------------------------------

TEST_F(FileDialogTest, KeysWalkThroughDirectories)
{
    for (char const* name :
         {"sub/deep/x.txt", "sub/y.txt", "a1.txt", "a2.txt", "a10.txt", "Zeta.txt", ".h.txt"})
        files.Write(name, "x");
    struct {
        char const *why, *script, *answer;
    } const rows[] = {
        {"directories come first, then numbers by their value", "<Down><Down><Down><Down><Return>",
         "a10.txt"},
        {"a letter finds a name without case", "z<Return>", "Zeta.txt"},
        {"several letters are one name", "a10<Return>", "a10.txt"},
        {"the end, and back from it", "<End><PageUp><PageDown><Return>", "Zeta.txt"},
        {"into directories", "<Home><Return><Down><Return><Down><Return>", "sub/deep/x.txt"},
        {"up again, where the directory is selected", "<Down><Return><Back><Return><End><Return>",
         "sub/y.txt"},
        {"Return without a selection does nothing", "<Return><End><Return>", "Zeta.txt"},
        {"the places have the keyboard, then the list again", "<Tab><Tab><End><Return>", "Zeta.txt"},
    };
    for (auto const& row : rows) {
        Then(row.script);
        EXPECT_EQ(Open(), row.answer) << row.why;
        std::string const start = files.Spec();
        start.copy(directory, start.size() + 1);
        directory[start.size()] = 0;
    }
    Then("<End><Return>");
    Open();
    EXPECT_EQ(directory, files.Spec()) << "the buffer receives the file's directory";

    SetError(ZV_ERR_IO);
    Then("<Escape>");
    EXPECT_EQ(Open(), "-");
    EXPECT_EQ(GetErrorZV(), ZV_ERR_IO) << "an error number is no business of a user who cancels";
    Then("<End><Return>");
    Open();
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NONE);
}

TEST_F(FileDialogTest, TheMouseSelectsOpensAndSorts)
{
    files.Write("a.txt", "xxx");
    files.Write("b.txt", "x");
    files.Write("c.txt", "xx");
    files.Make_Directory("sub");
    Then_Click(RowsId, 100, 50, 2);
    EXPECT_EQ(Open(), "a.txt") << "a double click";
    Then_Click(RowsId, 100, 70);
    Then_Click(AcceptId, 10, 10);
    EXPECT_EQ(Open(), "b.txt");
    steps.emplace_back([] {
        ZVItem const* const rows = FindItem2ZV(ZVEnv->modalPalette, RowsId);
        long left = 0, top = 0;
        GetItemScreenPosZV(rows, &left, &top);
        HeadlessClickZV(left + rows->width - 160, top + 10, ZV_HEADLESS_LEFT);
    });
    Then("<Home><Down><Return>");
    EXPECT_EQ(Open(), "b.txt") << "by size";
    Then_Click(UpId, 10, 10);
    Then("<Return><End><Return>");
    EXPECT_EQ(Open(), "c.txt") << "up, and down again into what is selected";
}

TEST_F(FileDialogTest, OddNamesComeBackWhole)
{
    std::string const longest = std::string(251, 'n') + ".txt";
    for (std::string const& name :
         {std::string("\xC3\x84rger \xE2\x82\xAC.txt"), std::string("bad \xFF\xC3.txt"),
          std::string("co:lon\\slash.txt"), std::string("new\nline.txt"), longest}) {
        files.Write("odd/" + name, "x");
        std::string const spec = files.Spec("odd\\");
        spec.copy(directory, spec.size() + 1);
        directory[spec.size()] = 0;
        Then("<Down><Return>");
        EXPECT_EQ(Open(), "odd/" + name);
        std::filesystem::remove_all(files.Path("odd"));
    }
}

TEST_F(FileDialogTest, WhatHasVanishedIsTold)
{
    files.Write("gone/a.txt", "x");
    files.Write("b.txt", "x");
    Then("<Down><Return><Down>");
    steps.emplace_back([this] { std::filesystem::remove_all(files.Path("gone")); });
    Then("<Return>");
    Then("<Return>");
    Then("<End><Return>");
    EXPECT_EQ(Open(), "b.txt") << "behind a message the nearest directory shows that is there";
}

// ---- saving -----------------------------------------------------------------------------------------------

TEST_F(FileDialogTest, ANameIsTakenAsItIsMeant)
{
    files.Make_Directory("sub");
    files.Write("old.txt", "x");
    table[1].Extension = "png";
    ZVFileTypeDescriptor* kind = &table[1];
    struct {
        char const *why, *script, *answer;
    } const rows[] = {
        {"the name of a new file", "new.txt<Return>", "new.txt"},
        {"the extension of the kind", "new<Return>", "new.png"},
        {"of a directory goes there", "sub<Return>n.a<Return>", "sub/n.a"},
        {"with a way to it", "sub/n.a<Return>", "sub/n.a"},
        {"no such directory, then another name", "no/n.a<Return>|<Return>|n.a<Return>", "n.a"},
        {"replaced when the user wants that", "old.txt<Return>|<Return>", "old.txt"},
        {"and not when he does not", "old.txt<Return>|<Escape>|n.a<Return>", "n.a"},
        {"cancelled", "x<Escape>", "-"},
        {"a file of the list, by Tab", "<Tab><Tab><End><Return>|<Return>", "old.txt"},
        {"whose name can be changed", "<Tab><Tab><End><Tab>n.a<Return>", "n.a"},
    };
    for (auto const& row : rows) {
        Then(row.script);
        EXPECT_EQ(Save(ZV_ASK_FILE_TYPES, table, ZV_ASK_TYPE_RESULT, &kind), row.answer) << row.why;
        std::string const start = files.Spec();
        start.copy(directory, start.size() + 1);
        directory[start.size()] = 0;
    }
    EXPECT_FALSE(std::filesystem::exists(files.Path("new.txt"))) << "the file is the caller's to make";
    Then("<Return>");
    EXPECT_EQ(Save(ZV_ASK_FILE_NAME, "offered.mov"), "offered.mov");
    Then("x<Return>");
    EXPECT_EQ(Save(ZV_ASK_FILE_NAME, "offered.mov"), "x.mov")
        << "typing replaces the name, not the extension";
}

// ---- directories ------------------------------------------------------------------------------------------

TEST_F(FileDialogTest, ADirectoryIsChosenFromWithinOrWithout)
{
    files.Make_Directory("one/two");
    files.Write("file.txt", "x");
    Then("<Return>");
    EXPECT_EQ(Directory(), "") << "the one that is shown";
    Then("<Down><Return><Return>");
    EXPECT_EQ(Directory(), "one/");
    Then("<End>");
    Then_Click(AcceptId, 10, 10);
    EXPECT_EQ(Directory(), "one/") << "the one that is selected; files do not show";
    Then_Click(NewFolderId, 10, 10);
    Then("made\xC3\xA4<Return>");
    Then("<Return><Return>");
    EXPECT_EQ(Directory(), "made\xC3\xA4/");
    Then_Click(NewFolderId, 10, 10);
    Then("no<Escape>");
    Then("<Escape>");
    Directory();
    EXPECT_FALSE(std::filesystem::exists(files.Path("no")));
}

// ---- around -----------------------------------------------------------------------------------------------

TEST_F(FileDialogTest, AMissingFileIsLookedForByTheUser)
{
    files.Write("found.pct", "x");
    InitFormatModulesZV(nullptr);
    long isLocated = 0;
    char* paths[] = {directory, nullptr};
    Then("<Return>");
    Then("<End><Return>");
    EXPECT_EQ(Answer(MakeFileSpecValidateZV("Root:\\no\\lost.pct", ZVFSV_AskUser, 1, ZVFSV_SearchPaths, paths,
                                            ZVFSV_UserLocated, &isLocated, 0)),
              "found.pct");
    EXPECT_EQ(isLocated, 1);
    Then("<Return>");
    Then("<Escape>");
    EXPECT_EQ(Answer(MakeFileSpecValidateZV("Root:\\no\\lost.pct", ZVFSV_AskUser, 1, 0)), "-");
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
}

TEST_F(FileDialogTest, ADialogOfSomeoneElseKeepsTheInput)
{
    ZVPalette* const palette = Show(1, ZV_KIND_DOCUMENT, 100, 100);
    Log();
    EnterThirdPartyModalDialogZV();
    Click(palette, Gadget(palette));
    EXPECT_EQ(Log(), Strings{});
    Then("<Escape>");
    EXPECT_EQ(Directory(), "-") << "a modal palette has its own";
    ExitThirdPartyModalDialogZV();
    Log();
    Click(palette, Gadget(palette));
    EXPECT_FALSE(Log().empty());
}

TEST(FileDialog, NobodyIsAskedWithoutAnInterface)
{
    TestEnvironment const environment;
    EXPECT_EQ(AskFileNameZV(ZV_ASK_FORMATS, 0, 0), nullptr);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_MEMORY);
    EXPECT_NE(std::string(GetErrorStringZV()).find("interface"), std::string::npos);
    EXPECT_EQ(AskDirectoryZV(nullptr), nullptr);
}

// ---- the list ---------------------------------------------------------------------------------------------

TEST(FileListing, NamesAreInNaturalOrder)
{
    char const* const ordered[] = {
        "a",
        "A1",
        "a02",
        "a2b",
        "a10",
        "a100",
        "\u00c4a",
        "ab",
        "A\u0308c",  // the accent as a character of its own
        "\u00e6",    // spelt ae
        "b 1",
        "\u1ebf\u00f8",  // e with two accents, o with a stroke
        "E\u0301t\u00e92",
        "etE10",
        "na\u00efve",
        "nz",
        "\u017b",
        "\u0451",
        "\u0415\u0436",  // Cyrillic io counts as ie
        "\u0418",
        "\u0439",  // and short i as a letter of its own
    };
    for (std::size_t i = 1; i < std::size(ordered); ++i)
        EXPECT_LT(Sort_Key_Of_Name(ordered[i - 1]), Sort_Key_Of_Name(ordered[i])) << ordered[i];
    EXPECT_EQ(Sort_Key_Of_Name("\u00c9t\u00e9 01"), Sort_Key_Of_Name("ete 1"));
    EXPECT_EQ(Sort_Key_Of_Name("\u0416\u03a3"), Sort_Key_Of_Name("\u0436\u03c2"));
    EXPECT_EQ(Folded("\xC3(\xFF"), "\xC3(\xFF") << "no UTF-8";
    EXPECT_EQ(Size_Text(999), "999 bytes");
    EXPECT_EQ(Size_Text(1500), "1.5 KB");
    EXPECT_EQ(Size_Text(999'960), "1.0 MB");
    EXPECT_EQ(Size_Text(int64_t{123'400'000'000'000}), "123 TB");
}

TEST(FileListing, ALongDirectoryComesInByPortionsAndOneThatCannotBeReadIsTold)
{
    TestEnvironment const environment;
    constexpr int count = 3000;
    for (int i = 0; i < count; ++i)
        environment.Write("d/f" + std::to_string(i) + ".txt", i == 7 ? "larger" : "x");
    FileListing listing([](FileEntry const& entry) { return !entry.name.ends_with("9.txt"); });
    listing.Open(environment.Path("d/"));
    while (listing.Is_Busy())
        listing.Advance();
    ASSERT_EQ(listing.Row_Count(), count * 9 / 10);
    EXPECT_EQ(listing.Row(10).name, "f11.txt");
    EXPECT_EQ(listing.Row_Of_Prefix("F200"), listing.Row_Of_Name("f200.txt"));
    EXPECT_EQ(listing.Row_Of_Name("f9.txt"), -1);
    listing.Set_Order({FileColumn::Name, true});
    EXPECT_EQ(listing.Row(0).name, "f2998.txt");
    listing.Set_Order({FileColumn::Size, true});
    EXPECT_EQ(listing.Row(0).name, "f7.txt");

    auto const wait = [&listing] {
        while (listing.State() == FileReading::Running)
            listing.Advance();
        return listing.State();
    };
    listing.Open(environment.Path("none/"));
    EXPECT_EQ(wait(), FileReading::Missing);
    environment.Make_Directory("closed");
    chmod(environment.Path("closed").c_str(), 0);
    listing.Open(environment.Path("closed/"));
    FileReading const state = wait();
    EXPECT_TRUE(geteuid() == 0 || state == FileReading::Denied) << "root may read all";
    EXPECT_EQ(listing.Row_Count(), 0);
    chmod(environment.Path("closed").c_str(), 0700);
}

}  // namespace
