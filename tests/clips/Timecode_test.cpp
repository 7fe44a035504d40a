// Frame numbers and durations as texts.
#include "TestEnvironment.h"

namespace {

struct {
    char const* why;
    double frame, rate;
    ZVTimeUnits units;
    long zeroBased;
    char const* text;
} const textCases[] = {
    {"drop-frame, last label of a minute", 1799, 29.97, ZV_UNITS_TIMECODE, 0, "00;00;59;29"},
    {"drop-frame skips two labels", 1800, 29.97, ZV_UNITS_TIMECODE, 0, "00;01;00;02"},
    {"drop-frame before the tenth minute", 17981, 29.97, ZV_UNITS_TIMECODE, 0, "00;09;59;29"},
    {"the tenth minute skips none", 17982, 29.97, ZV_UNITS_TIMECODE, 0, "00;10;00;00"},
    {"30 is not drop-frame", 1800, 30.0, ZV_UNITS_TIMECODE, 0, "00:01:00:00"},
    {"nor is 29.98", 1800, 29.98, ZV_UNITS_TIMECODE, 0, "00:01:00:00"},
    {"59.94 counts 60", 60, 59.94, ZV_UNITS_TIMECODE, 0, "00:00:01:00"},
    {"an hour at 24", 86400, 24.0, ZV_UNITS_TIMECODE, 0, "01:00:00:00"},
    {"hours wrap at 60", 60.0 * 90000 + 1, 25.0, ZV_UNITS_TIMECODE, 0, "00:00:00:01"},
    {"no rate", 5, 0.0, ZV_UNITS_TIMECODE, 0, "--:--:--:--"},
    {"a rate that rounds to 0", 5, 0.3, ZV_UNITS_TIMECODE, 0, "--:--:--:--"},
    {"a negative frame", -1, 25.0, ZV_UNITS_TIMECODE, 0, "--:--:--:--"},
    {"units without a meaning are timecode", 25, 25.0, static_cast<ZVTimeUnits>(9), 0, "00:00:01:00"},
    {"frames", 1234, 25.0, ZV_UNITS_FRAMES, 0, "1234"},
    {"frames without a rate", 5, 0.0, ZV_UNITS_FRAMES, 0, "-"},
    {"frames from one", 0, 25.0, ZV_UNITS_FRAMES_FROM_ONE, 0, "1"},
    {"frames from one, zero based", 0, 25.0, ZV_UNITS_FRAMES_FROM_ONE, 1, "0"},
};

TEST(Timecode, FramesReadAsTheyShould)
{
    for (auto const& row : textCases) {
        char text[32];
        ZVTimeValue const time{row.frame, row.rate};
        TimecodeToStringZV(text, &time, row.units, row.zeroBased);
        EXPECT_STREQ(text, row.text) << row.why;
    }
}

struct {
    char const *why, *text;
    double rate;
    ZVTimeUnits units;
    long zeroBased, frame;
} const parseCases[] = {
    {"a number is frames", "12", 25, ZV_UNITS_TIMECODE, 0, 12},
    {"two fields are seconds and frames", "1:00", 25, ZV_UNITS_TIMECODE, 0, 25},
    {"frame units read a timecode all the same", "1:00", 25, ZV_UNITS_FRAMES, 0, 25},
    {"an empty field counts", "1::2", 25, ZV_UNITS_TIMECODE, 0, 60 * 25 + 2},
    {"a separator at the end is an empty field", "12:", 25, ZV_UNITS_TIMECODE, 0, 300},
    {"any character separates", "1x2-3 4", 25, ZV_UNITS_TIMECODE, 0, ((3600 + 120 + 3) * 25) + 4},
    {"drop-frame minute", "00;01;00;02", 29.97, ZV_UNITS_TIMECODE, 0, 1800},
    {"drop-frame tenth minute", "00;10;00;00", 29.97, ZV_UNITS_TIMECODE, 0, 17982},
    {"from one", "1", 25, ZV_UNITS_FRAMES_FROM_ONE, 0, 0},
    {"from one, zero based", "1", 25, ZV_UNITS_FRAMES_FROM_ONE, 1, 1},
    {"from one, a timecode is not shifted", "1:00", 25, ZV_UNITS_FRAMES_FROM_ONE, 0, 25},
    {"empty", "", 25, ZV_UNITS_TIMECODE, 0, 0},
    {"empty, from one", "", 25, ZV_UNITS_FRAMES_FROM_ONE, 0, -1},
    {"fields beyond the hours add nothing", "9:0:0:0:7", 25, ZV_UNITS_TIMECODE, 0, 7},
};

TEST(Timecode, TextsAreReadFromTheirEnd)
{
    for (auto const& row : parseCases)
        EXPECT_EQ(StringToTimecodeZV(row.text, row.rate, row.units, row.zeroBased), row.frame) << row.why;
    std::string const endless(5000, '9');
    EXPECT_EQ(StringToTimecodeZV(endless.c_str(), 25, ZV_UNITS_TIMECODE, 0), LONG_MAX);
    EXPECT_EQ(StringToTimecodeZV((endless + ":" + endless).c_str(), 1e9, ZV_UNITS_TIMECODE, 0), LONG_MAX);
}

TEST(Timecode, EveryFrameOfADayComesBack)
{
    for (double rate : {24.0, 25.0, 29.97, 30.0}) {
        long const frames = static_cast<long>(rate * 86400);
        char text[12];
        for (long frame = 0; frame < frames; ++frame) {
            ZVTimeValue const time{static_cast<double>(frame), rate};
            TimecodeToStringZV(text, &time, ZV_UNITS_TIMECODE, 0);
            ASSERT_EQ(StringToTimecodeZV(text, rate, ZV_UNITS_TIMECODE, 0), frame) << text << " at " << rate;
        }
    }
}

using DurationText = EnvironmentTest;

TEST_F(DurationText, ShowsTheTwoLeadingUnits)
{
    std::pair<long, char const*> const rows[] = {
        {0, "0 seconds"},
        {1000, "1 second"},
        {59999, "59 seconds"},
        {60000, "1 minute 0 seconds"},
        {121000, "2 minutes 1 second"},
        {3600000, "1 hour 0 minutes"},
        {7260000, "2 hours 1 minute"},
    };
    for (auto const& [milliseconds, text] : rows) {
        char out[64];
        EXPECT_STREQ(TimestampToStringZV(out, milliseconds), text);
    }
}

}  // namespace
