// Messages and questions while no interface runs.
#include "TestEnvironment.h"

#include <cstring>

template <typename Work> static std::string Said_By(Work work)
{
    testing::internal::CaptureStderr();
    work();
    return testing::internal::GetCapturedStderr();
}

TEST(Message, IsOneLineOnStandardError)
{
    std::pair<char const*, char const*> const rows[] = {
        {"plain", "plain\n"},
        {"ends in one\n", "ends in one\n"},
        {"or in many\r\n\n", "or in many\n"},
        {"one\ntwo\r\nthree", "one two  three\n"},
        {"a terminal is not \033[2Jsteered", "a terminal is not  [2Jsteered\n"},
        {"Gr\303\274\303\237e", "Gr\303\274\303\237e\n"},
        {"", ""},
        {"\n", ""},
    };
    for (auto const& [said, line] : rows)
        EXPECT_EQ(Said_By([&] { UserMessageZV("%s", said); }), line);
    std::string const text(5000, 'x');
    EXPECT_EQ(Said_By([&text] { UserMessageZV("%s", text.c_str()); }), std::string(2047, 'x') + "\n");
}

TEST(Message, EveryFormSaysItsTextAndAnswersNo)
{
    EXPECT_EQ(Said_By([] { StopAlertZV("stop %d", 1); }), "stop 1\n");
    EXPECT_EQ(Said_By([] { EXPECT_EQ(AskUserZV("really %d?", 2), 0); }), "really 2?\n");
    EXPECT_EQ(Said_By([] { EXPECT_EQ(AskUser2ZV("Keep", nullptr, "which %d?", 3), 0); }), "which 3?\n");
    EXPECT_EQ(Said_By([] { EXPECT_EQ(User_Req(0, 1, "100% sure?", nullptr, nullptr), 0); }), "100% sure?\n");
    char body[] = "first\nsecond\r\n\nthird";
    EXPECT_EQ(Said_By([&body] { UserScrollMessageZV("heading", body); }), "heading\nfirst\nsecond\nthird\n");
    EXPECT_EQ(Said_By([] { UserScrollMessageZV("heading", nullptr); }), "heading\n");
}

TEST(Message, FormatsComeByStringIdToo)
{
    EXPECT_EQ(Said_By([] { UserMessageZV(121ul, "a.txt"); }), "") << "no table, no text";
    TestEnvironment environment(ZV_RESOURCES_DIR);
    char expected[256];
    std::snprintf(expected, sizeof expected, GetStringZV(116), 12);
    std::strcat(expected, "\n");
    EXPECT_EQ(Said_By([] { UserMessageZV(116ul, 12); }), expected);
    EXPECT_EQ(Said_By([] { StopAlertZV(116ul, 12); }), expected);
    EXPECT_EQ(Said_By([] { AskUserZV(116ul, 12); }), expected);
    EXPECT_EQ(Said_By([] { AskUser2ZV(102ul, 103ul, 116ul, 12); }), expected);
    EXPECT_EQ(Said_By([] { UserScrollMessageZV(111ul, nullptr); }), std::string(GetStringZV(111)) + "\n");
}

TEST(Message, TheErrorModeSilencesAndAnswers)
{
    EXPECT_EQ(SetErrorModeZV(ZV_ERRORMODE_YES), 0u) << "nothing to store it in";
    struct {
        unsigned long mode;
        long answer;
        char const* said;
    } const rows[] = {{1, 1, ""}, {2, 0, ""}, {3, 0, ""}, {4, 0, "?\n"}, {0, 0, "?\n"}};
    TestEnvironment environment;
    unsigned long old = 0;
    for (auto const& row : rows) {
        EXPECT_EQ(SetErrorModeZV(row.mode), old);
        old = row.mode;
        EXPECT_EQ(Said_By([&row] { EXPECT_EQ(AskUserZV("?"), row.answer) << row.mode; }), row.said);
        EXPECT_EQ(Said_By([] { UserMessageZV("?"); }), row.said);
        EXPECT_EQ(Said_By([] { UserScrollMessageZV("?", nullptr); }), row.said);
    }
}
