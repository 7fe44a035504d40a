// Files and specs when memory runs out: at each allocation in turn the call fails cleanly or does without.
#include "FailingHeap.h"
#include "TestEnvironment.h"
#include "files/FileTestTools.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

class FileMemory : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!FailingHeap::Is_Available()) GTEST_SKIP() << "the heap belongs to a sanitizer";
    }

    TestEnvironment environment;
    std::string const spec = environment.Write("dir/file", "abc");
};

TEST_F(FileMemory, OpeningDoesWithoutABufferAndCreatingFails)
{
    std::string const created = environment.Spec("new");
    ZVFileInfo* file;
    {
        FailingHeap heap(1);
        file = OpenFileZV(spec.c_str(), ZVFilePermRead, ZVFileFlagNone);
    }
    OpenFile const opened(file);
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->buffer, nullptr);
    char text[4] = {};
    EXPECT_TRUE(ReadFileZV(opened.get(), text, 3));
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(Position(opened), 3);
    {
        FailingHeap heap(1);
        file = CreateFileZV(created.c_str(), ZVFilePermWrite, ZV_BLANK_CODE, ZV_BLANK_CODE, ZVFileFlagNone);
    }
    EXPECT_EQ(file, nullptr);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_MEMORY);
    EXPECT_TRUE(FileExistsZV(created.c_str())) << "the file that was made stays";
}

TEST_F(FileMemory, EveryOtherCallFailsWithTheNumberOfMemory)
{
    std::string record(2000, '#');
    std::string directory = environment.Spec("dir\\");
    std::string const doomed = environment.Spec("doomed");
    char* paths[] = {directory.data(), nullptr};
    FSSpec place;
    GetFSSpecZV(spec.c_str(), &place);
    OpenFile const memory = Open_Block(record);
    WriteFileSpecZV(memory.get(), spec.c_str());
    auto kept = [](char* made) {
        FreeFileSpecZV(made);
        return made != nullptr;
    };
    auto walk = [](char const*, bool, void*) { return true; };
    char buffer[ZV_SPEC_SIZE];

    struct {
        char const* why;
        std::function<bool()> call;
    } const rows[] = {
        {"making", [&] { return kept(MakeFileSpecZV(spec.c_str())); }},
        {"another extension", [&] { return kept(MakeNewFileSpecZV(spec.c_str(), "x")); }},
        {"counting", [&] { return kept(ManageIncrementFileSpecZV("a1", '.', ZVIncFileSpecUp, nullptr)); }},
        {"reading", [&] { return kept(ReadFileSpecZV(memory.get(), nullptr)); }},
        {"writing", [&] { return WriteFileSpecZV(memory.get(), spec.c_str()) != 0; }},
        {"finding", [&] { return kept(MakeFileSpecValidateZV("Gone:\\file", ZVFSV_SearchPaths, paths)); }},
        {"naming", [&] { return GetDOSPathZV(buffer, &place) == 0; }},
        {"walking", [&] { return OS_Walk_Directory(directory.c_str(), walk, nullptr); }},
        {"deleting a directory", [&] { return DeleteDirZV(doomed.c_str()) != 0; }},
    };
    for (auto const& row : rows) {
        bool done = false;
        for (long after = 0; !done && after < 200; ++after) {
            environment.Write("doomed/" + std::string(100, 'x'), "");
            SeekFileZV(memory.get(), 0, 0);
            SetError(0);
            FailingHeap heap(after);
            done = row.call();
            bool const failed = heap.Failures() > 0;
            FailingHeap::Recover();
            EXPECT_TRUE(done || failed) << row.why << " after " << after;
            EXPECT_EQ(GetErrorZV(), done ? ZV_ERR_NONE : ZV_ERR_MEMORY) << row.why << " after " << after;
        }
        EXPECT_TRUE(done) << row.why;
    }
}

}  // namespace
