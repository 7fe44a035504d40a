// Memory blocks, the new-handler, and the error number with its text.
#include "../FailingHeap.h"
#include "TestEnvironment.h"

#include <cstring>

// A failed allocation shall be told to the library rather than end the program.
extern "C" __attribute__((visibility("default"), used)) char const* __asan_default_options()
{
    return "allocator_may_return_null=1";
}

static constexpr unsigned long Absurd = 1ul << 62;

static long handlerCalls = 0;
static unsigned long handlerSize = 0;
static long handlerAnswer = 0;

static long Handler(unsigned long size)
{
    ++handlerCalls;
    handlerSize = size;
    return handlerAnswer;
}

/// Runs something that fails an assertion and returns what it says.
template <typename Work> static std::string Assertion_Of(Work work)
{
    testing::internal::CaptureStderr();
    EXPECT_THROW(work(), ZVAssertFail);
    std::string text = testing::internal::GetCapturedStderr();
    return text.substr(std::min(text.find("Assertion"), text.size()));  // a sanitizer may speak first
}

TEST(Memory, BlocksAreZeroFilledOrAlignedOnRequestAndFreedAlike)
{
    auto* cleared = static_cast<char*>(AllocMemZV(1000, ZV_MEM_CLEAR));
    EXPECT_TRUE(std::all_of(cleared, cleared + 1000, [](char c) { return c == 0; }));
    FreeMemZV(cleared);
    FreeMemZV(AllocMemZV(0, ZV_MEM_CLEAR));
    FreeMemZV(nullptr);
    for (unsigned long alignment : {1ul, 16ul, 64ul, 4096ul, 1ul << 21}) {
        void* block = Alloc_Aligned(100, alignment);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<unsigned long>(block) % alignment, 0u);
        std::memset(block, 1, 100);
        FreeMemZV(block);
    }
}

TEST(Memory, AFailureAsksTheHandlerOnceAndIsAnAssertion)
{
    std::string const first = "Assertion Failure in file \"Memory\", line 124.\n";
    std::string const second = "Assertion Failure in file \"Memory\", line 132.\n";
    for (unsigned long flags : {0ul, static_cast<unsigned long>(ZV_MEM_CLEAR)})
        EXPECT_EQ(Assertion_Of([=] { AllocMemZV(Absurd, flags); }), first) << "no handler";
    EXPECT_EQ(Alloc_Aligned(Absurd, 64), nullptr);

    handlerCalls = 0;
    EXPECT_EQ(set_new_handler(Handler), nullptr);
    handlerAnswer = 0;
    EXPECT_EQ(Assertion_Of([] { AllocMemZV(Absurd, 0); }), first) << "the handler has nothing to give";
    EXPECT_EQ(handlerCalls, 1);
    EXPECT_EQ(handlerSize, Absurd);
    handlerAnswer = 5;
    EXPECT_EQ(Assertion_Of([] { AllocMemZV(Absurd, 0); }), second) << "it has, but not enough";
    EXPECT_EQ(handlerCalls, 2);
    EXPECT_EQ(Alloc_Aligned(Absurd, 64), nullptr);
    EXPECT_EQ(handlerCalls, 3);
    EXPECT_EQ(call_newhandler_zvlib(9), 1);
    EXPECT_EQ(set_new_handler(nullptr), Handler);
    EXPECT_EQ(call_newhandler_zvlib(9), 0);
}

TEST(Memory, AHandlerThatFindsMemorySavesTheCall)
{
    if (!FailingHeap::Is_Available()) GTEST_SKIP() << "needs a heap that fails on demand";
    set_new_handler([](unsigned long) -> long {
        FailingHeap::Recover();
        return 1;
    });
    char* block = nullptr;
    {
        FailingHeap heap(0);
        block = static_cast<char*>(AllocMemZV(64, ZV_MEM_CLEAR));
    }
    set_new_handler(nullptr);
    EXPECT_EQ(block[63], 0);
    FreeMemZV(block);
}

TEST(Memory, AHalfMadeNodeIsNotLeftBehind)
{
    if (!FailingHeap::Is_Available()) GTEST_SKIP() << "needs a heap that fails on demand";
    List list;
    NewList(&list);
    for (long after = 0; after < 2; ++after) {
        Assertion_Of([&list, after] {
            FailingHeap heap(after);
            Add_Node(&list, "name");
        });
        EXPECT_TRUE(List_Empty(&list));
    }
}

TEST(Memory, WhatIsAvailableIsAskedOfTheMachine)
{
    EXPECT_EQ(AvailableMemoryZV(ZV_MEM_TOTAL), 0u) << "no environment";
    TestEnvironment environment;
    EXPECT_EQ(AvailableMemoryZV(ZV_MEM_TOTAL), ZVEnv->physicalMemory);
    EXPECT_GT(AvailableMemoryZV(0), 0u);
    EXPECT_GT(AvailableMemoryZV(ZV_MEM_LARGEST | ZV_MEM_TOTAL), 0u);
}

TEST(Errors, WithoutAnEnvironmentTheNumberIsOneAndTheTextTellsWhy)
{
    ASSERT_EQ(ZVEnv, nullptr);
    SetError(7);
    EXPECT_EQ(GetErrorZV(), 1u);
    SetErrorString("no display");
    SetErrorString(GetErrorStringZV());
    EXPECT_STREQ(GetErrorStringZV(), "no display");
    SetErrorString(std::string(5000, 'x').c_str());
    EXPECT_EQ(std::strlen(GetErrorStringZV()), 511u);
    {
        TestEnvironment environment;
        EXPECT_EQ(GetErrorStringZV(), nullptr) << "a successful start clears it";
    }
    EXPECT_EQ(GetErrorStringZV(), nullptr);
}

TEST(Errors, NumberAndTextAreKept)
{
    TestEnvironment environment;
    EXPECT_EQ(GetErrorZV(), 0u);
    SetError(ZV_ERR_NOT_FOUND);
    EXPECT_EQ(GetErrorZV(), 12u);
    SetErrorString("first");
    SetErrorString("second");
    SetErrorString(GetErrorStringZV() + 3);
    EXPECT_STREQ(GetErrorStringZV(), "ond") << "a part of the old text";
    SetErrorString(nullptr);
    EXPECT_EQ(GetErrorStringZV(), nullptr);
}

TEST(Errors, AssertionsSayWhereAndThrow)
{
    EXPECT_EQ(Assertion_Of([] { Assert_Fail("source/Thing.cpp", 12); }),
              "Assertion Failure in file \"source/Thing.cpp\", line 12.\n");
    TestEnvironment environment;
    SetErrorModeZV(ZV_ERRORMODE_YES);
    EXPECT_EQ(Assertion_Of([] { Assert_Fail("x", 1); }), "") << "silenced, but thrown all the same";
}
