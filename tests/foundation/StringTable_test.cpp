// The string table: loading files from disk, looking texts up, and the library's own texts.
#include "../FailingHeap.h"
#include "Locale/ZVLibStr.h"
#include "TestEnvironment.h"

#include <cstring>
#include <map>
#include <random>

namespace {
/// A library whose home directory is the test's own; the library's texts are there as in every run.
class StringTable : public testing::Test {
protected:
    /// What standard error says meanwhile.
    template <typename Work> std::string Said_By(Work work)
    {
        testing::internal::CaptureStderr();
        work();
        return testing::internal::GetCapturedStderr();
    }

    /// The line that a message with a name makes.
    static std::string Line_Of(unsigned long id, char const* name = "")
    {
        char text[2048];
        std::snprintf(text, sizeof text, GetStringZV(id), name);
        return text + std::string("\n");
    }

    void Write_Files(std::string const& name, std::string const& lines, std::string const& header)
    {
        environment.Write(name + ".h", header);
        environment.Write(name + ".txt", "#include \"" + name + ".h\"\n" + lines);
    }

    TestEnvironment environment{TestEnvironment::Home::Directory};
};
}  // namespace

TEST_F(StringTable, FilesAddUpAndOldTextsStay)
{
    Write_Files("a", "#define A \"first\"\n#define B \"\"\n", "#define A 5001\n#define B 5003\n");
    Write_Files("b", "#define C \"third\"\n#define D \"fourth\"\n", "enum { D = 5000, C = 5002 }");
    EXPECT_STREQ(GetStringZV(5001), "");
    ASSERT_EQ(AppendStringFileZV("a.txt"), 1);
    char* const first = GetStringZV(5001);
    EXPECT_STREQ(first, "first");
    ASSERT_EQ(AppendStringFileZV("b.txt"), 1);
    EXPECT_EQ(GetStringZV(5001), first) << "texts never move";
    std::pair<unsigned long, char const*> const texts[] = {
        {5000, "fourth"}, {5002, "third"}, {5003, ""}, {0, ""}, {0xFFFFFFFF, ""}};
    for (auto const& [id, text] : texts)
        EXPECT_STREQ(GetStringZV(id), text) << id;
    EXPECT_TRUE(std::is_sorted(ZVEnv->stringTable->ids, ZVEnv->stringTable->ids + ZVEnv->stringTable->count));
}

TEST_F(StringTable, AFileIsReadOnceUntilTheTableIsFreed)
{
    Write_Files("a", "#define A \"old\"", "#define A 5001");
    EXPECT_EQ(AppendStringFileZV(nullptr), 1);
    EXPECT_EQ(AppendStringFileZV("a.txt"), 1);
    Write_Files("a", "#define A \"new\"", "#define A 5001");
    EXPECT_EQ(AppendStringFileZV("A.TXT"), 1) << "names compare without case";
    EXPECT_STREQ(GetStringZV(5001), "old");
    FreeStringTable(ZVEnv->stringTable);
    EXPECT_EQ(ZVEnv->stringTable, nullptr);
    EXPECT_STREQ(GetStringZV(5001), "");
    EXPECT_EQ(AppendStringFileZV("a.txt"), 1);
    EXPECT_STREQ(GetStringZV(5001), "new");
    FreeStringTable(ZVEnv->stringTable);
    FreeStringTable(nullptr);
}

TEST_F(StringTable, TextsAreClosedAndPaddedToAnEvenLength)
{
    int32_t const before = ZVEnv->stringTable->textBytes;
    Write_Files("a", "#define A \"\"\n#define B \"abc\"\n#define C \"ab\\n\\\"\"\n",
                "enum { A = 5001, B, C }");
    ASSERT_EQ(AppendStringFileZV("a.txt"), 1);
    EXPECT_EQ(ZVEnv->stringTable->textBytes - before, 2 + 4 + 6);
    EXPECT_EQ(GetStringZV(5002), GetStringZV(5001) + 2);
    EXPECT_EQ(GetStringZV(5003), GetStringZV(5002) + 4);
    EXPECT_EQ(std::memcmp(GetStringZV(5003), "ab\n\"\0", 6), 0);
}

TEST_F(StringTable, FailuresAreShownAndLeaveTheTableAlone)
{
    environment.Write("noinclude.txt", "#define A \"a\"");
    environment.Write("badinclude.txt", "#include h\n");
    environment.Write("noheader.txt", "#include \"absent.h\"\n");
    environment.Write("empty.txt", "");
    Write_Files("badheader", "#define A \"a\"", "#define A x");
    Write_Files("badline", "#define\n", "#define A 5001");
    Write_Files("notext", "#define A \"a\"\n#define B\n", "#define A 5001\n#define B 5002");

    struct {
        char const* file;
        std::string message;
        unsigned long error;
    } const rows[] = {
        {"absent.txt", Line_Of(ZVSTR_STRING_FILE, "absent.txt"), ZV_ERR_NOT_FOUND},
        {"empty.txt", Line_Of(ZVSTR_NO_INCLUDE), ZV_ERR_IO},
        {"noinclude.txt", Line_Of(ZVSTR_NO_INCLUDE), ZV_ERR_IO},
        {"badinclude.txt", Line_Of(ZVSTR_BAD_INCLUDE), ZV_ERR_IO},
        {"noheader.txt", "Can't find include file 'absent.h'!\n", ZV_ERR_NOT_FOUND},
        {"badheader.txt", Line_Of(ZVSTR_BAD_DEFINE), ZV_ERR_IO},
        {"badline.txt", Line_Of(ZVSTR_BAD_DEFINE), ZV_ERR_IO},
        {"notext.txt", Line_Of(ZVSTR_NO_TEXT, "B"), ZV_ERR_IO},
    };
    ZVStringTable const* const table = ZVEnv->stringTable;
    int32_t const count = table->count;
    long const files = List_Entries(&ZVEnv->stringFiles);
    for (auto const& row : rows) {
        SetError(0);
        EXPECT_EQ(Said_By([&row] { EXPECT_EQ(AppendStringFileZV(row.file), 0); }), row.message) << row.file;
        EXPECT_EQ(GetErrorZV(), row.error) << row.file;
        EXPECT_EQ(ZVEnv->stringTable, table) << row.file;
        EXPECT_EQ(table->count, count) << row.file;
        EXPECT_EQ(List_Entries(&ZVEnv->stringFiles), files) << row.file;
    }
    EXPECT_STREQ(GetStringZV(5001), "");
}

TEST_F(StringTable, UnknownNamesAndUsedIdsAreTold)
{
    Write_Files("a", "#define X \"x\"\n#define A \"a\"\n#define B \"b\"\n", "#define A 5001\n#define B 5001");
    std::string const unknown = Line_Of(ZVSTR_UNKNOWN_NAME, "X");
    EXPECT_EQ(Said_By([] { EXPECT_EQ(AppendStringFileZV("a.txt"), 1); }),
              unknown + "The ID '5001', defined by 'B', is already in use!\n");
    Write_Files("b", "#define C \"c\"\n", "#define C 5001");
    EXPECT_EQ(Said_By([] { EXPECT_EQ(AppendStringFileZV("b.txt"), 1); }),
              "The ID '5001', defined by 'C', is already in use!\n");
    EXPECT_TRUE(std::strchr("abc", *GetStringZV(5001)));
}

TEST_F(StringTable, RunningOutOfMemoryAnywhereLeavesTheTableAlone)
{
    if (!FailingHeap::Is_Available()) GTEST_SKIP() << "needs a heap that fails on demand";
    Write_Files("a", "#define A \"a\"\n#define B \"b\"\n", "enum { A = 5001, B }");
    int32_t const count = ZVEnv->stringTable->count;
    bool isLoaded = false;
    for (long after = 0; !isLoaded; ++after) {
        ASSERT_LT(after, 200);
        testing::internal::CaptureStderr();
        try {
            FailingHeap heap(after);
            isLoaded = AppendStringFileZV("a.txt") == 1;
            EXPECT_EQ(isLoaded, heap.Failures() == 0) << after;
        } catch (ZVAssertFail const&) {
        }
        testing::internal::GetCapturedStderr();
        ASSERT_EQ(ZVEnv->stringTable->count, count + (isLoaded ? 2 : 0)) << after;
        ASSERT_EQ(Find_Name(&ZVEnv->stringFiles, "a.txt") != nullptr, isLoaded) << after;
    }
    EXPECT_STREQ(GetStringZV(5002), "b");
}

TEST(StringTableSort, IdsAscendAndKeepTheirTexts)
{
    std::mt19937 random(9);
    for (int round = 0; round < 200; ++round) {
        std::vector<uint32_t> ids(random() % 60);
        std::vector<char*> texts;
        for (uint32_t& id : ids) {
            id = static_cast<uint32_t>(round % 2 ? random() : random() % 8);
            texts.push_back(reinterpret_cast<char*>(static_cast<uintptr_t>(id)));
        }
        ZVStringTable table{static_cast<int32_t>(ids.size()), 0, ids.data(), texts.data(), nullptr};
        SortStringTable(&table, 0, table.count - 1);
        EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end()));
        for (std::size_t i = 0; i < ids.size(); ++i)
            EXPECT_EQ(reinterpret_cast<uintptr_t>(texts[i]), ids[i]);
    }
}

TEST(StringTableWithoutEnvironment, HoldsNothing)
{
    EXPECT_STREQ(GetStringZV(100), "");
    EXPECT_EQ(AppendStringFileZV("a.txt"), 0);
    EXPECT_EQ(AppendStringFileZV(nullptr), 1);
}

TEST(LibraryTexts, EveryIdHasATextWithTheArgumentsOfItsUse)
{
    TestEnvironment environment(ZV_RESOURCES_DIR);
    ASSERT_EQ(AppendStringFileZV("Locale\\ZVLibStr.txt"), 1);
    std::pair<unsigned long, unsigned long> const ranges[] = {
        {100, 106}, {108, 109}, {111, 111}, {113, 113}, {115, 117}, {119, 119}, {121, 127},
        {129, 129}, {131, 140}, {145, 151}, {154, 160}, {162, 194}, {204, 228}, {237, 248}};
    for (auto const& [first, last] : ranges)
        for (unsigned long id = first; id <= last; ++id)
            EXPECT_STRNE(GetStringZV(id), "") << id;

    // What the calls hand to messages that are formats; no other one takes an argument.
    std::map<unsigned long, std::string> const formats = {{104, "s"},  {105, "s"},  {116, "d"},
                                                          {117, "sd"}, {119, "sd"}, {121, "s"},
                                                          {125, "s"},  {126, "s"},  {178, "s"}};
    for (unsigned long id = 104; id <= 178; id = id == 140 ? 178 : id + 1) {
        std::string arguments;
        for (char const* c = GetStringZV(id); (c = std::strchr(c, '%')); c += 2)
            arguments += c[1];
        EXPECT_EQ(arguments, formats.contains(id) ? formats.at(id) : "") << id;
    }
    EXPECT_EQ(CSV_Entries(GetStringZV(ZVSTR_SEQUENCE_RATES)), 8);
    EXPECT_EQ(CSV_Entries(GetStringZV(ZVSTR_SEQUENCE_ASPECTS)), 7);
    EXPECT_EQ(CSV_Entries(GetStringZV(ZVSTR_SEQUENCE_FIELD_ORDERS)), 3);
}
