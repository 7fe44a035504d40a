// The player: which frames of its buffer it gives out, what is heard of them, and its settings changed by
// another thread.
#include "TestEnvironment.h"
#include "TestFormat.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

namespace {

using Words = std::vector<uint32_t>;

struct BufferFreer {
    void operator()(ZVAudioBuffer* buffer) const { FreeAudioBufferZV(buffer); }
};
using Buffer = std::unique_ptr<ZVAudioBuffer, BufferFreer>;

constexpr ZVAudioFormat stereo{44100, 2, 2, 0};
constexpr long fillFrames = 1024;

/// Frame i of a buffer; no two are alike and none is silent.
uint32_t Word_Of(long frame)
{
    return 0x00010001u + static_cast<uint32_t>(frame);
}

Buffer Make_Buffer(long samples, ZVAudioFormat const& format = stereo)
{
    Buffer buffer(AllocAudioBufferZV(&format, static_cast<unsigned long>(samples)));
    for (long i = 0; i < samples && format == stereo; ++i) {
        uint32_t const word = Word_Of(i);
        std::memcpy(static_cast<char*>(buffer->Data) + 4 * i, &word, 4);
    }
    return buffer;
}

Words Read(long count)
{
    Words words(static_cast<std::size_t>(count));
    read_source(words.data(), 4 * words.size());
    return words;
}

/// The words of these frames.
Words Words_Of(std::vector<long> const& frames)
{
    Words words;
    for (long frame : frames)
        words.push_back(Word_Of(frame));
    return words;
}

/// The player as it is at first, but for its buffer.
class Playback : public EnvironmentTest {
protected:
    Playback() { Reset(); }
    ~Playback() override { Reset(); }

    static void Reset()
    {
        StopAudioPlaybackZV();
        SetAudioPlaybackBufferZV(nullptr);
        Set_Looping(0);
        SetAudioPlaybackRegionZV(0, 0);
        SetAudioPositionZV(0);
        SetAudioBufferTimeOffsetZV(0);
        SetAudioVolumeZV(1.0);
        MuteAudioZV(0);
    }

    /// Looping is set by a start alone, and so is the latency that only playing gives: both come from a start
    /// on an empty region.
    static void Set_Looping(long loop)
    {
        Buffer const buffer = Make_Buffer(1);
        setenv("SDL_AUDIODRIVER", "dummy", 1);
        SetAudioPlaybackBufferZV(buffer.get());
        SetAudioPlaybackRegionZV(0, 0);
        EXPECT_EQ(StartAudioPlaybackZV(loop), 1);
        StopAudioPlaybackZV();
        SetAudioPlaybackBufferZV(nullptr);
    }
};

struct {
    char const* why;
    long loop, begin, end, offset, position;
    double speed;
    std::vector<long> frames;  ///< of a buffer of ten
    long after;                ///< position
} const readCases[] = {
    {"frame by frame", 0, 0, 10, 0, 3, 1.0, {3, 4, 5, 6}, 7},
    {"nothing is asked for", 0, 0, 10, 0, 3, 1.0, {}, 3},
    {"the end of the region repeats its last frame", 0, 2, 6, 0, 4, 1.0, {4, 5, 5, 5}, 5},
    {"a loop begins again", 1, 2, 6, 0, 4, 1.0, {4, 5, 2, 3, 4, 5, 2}, 3},
    {"a loop of one frame", 1, 7, 8, 0, 0, 1.0, {7, 7, 7}, 7},
    {"an empty region", 0, 5, 5, 0, 7, 1.0, {0, 0, 0}, 0},
    {"an empty region in a loop", 1, 5, 5, 0, 7, 1.0, {0, 0, 0}, 0},
    {"ahead of the buffer its first frame sounds", 0, 0, 100, 6, 4, 1.0, {0, 0, 0, 1, 2}, 9},
    {"behind it the last one", 0, 0, 100, -5, 2, 1.0, {7, 8, 9, 9, 9}, 7},
    {"twice the speed leaves every second frame out", 0, 0, 10, 0, 1, 2.0, {1, 3, 5, 7, 9}, 9},
    {"half the speed repeats", 0, 0, 10, 0, 1, 0.5, {1, 1, 2, 2, 3}, 3},
    {"one and a half", 0, 0, 10, 0, 0, 1.5, {0, 1, 3, 4, 6}, 7},
    {"speed 0 stays", 0, 0, 10, 0, 4, 0.0, {4, 4, 4}, 4},
    {"a loop takes a step beyond its end along", 1, 0, 5, 0, 0, 3.0, {0, 3, 1, 4, 2}, 0},
    {"a step longer than the loop", 1, 2, 5, 0, 2, 100.0, {2, 3, 4, 2}, 3},
    {"below 0", 1, -4, 4, -4, -3, 1.0, {1, 2, 3, 4, 5, 6, 7, 0}, -3},
};

TEST_F(Playback, FramesAreTakenFromThePositionOn)
{
    Buffer const buffer = Make_Buffer(10);
    for (auto const& row : readCases) {
        SCOPED_TRACE(row.why);
        Set_Looping(row.loop);
        EXPECT_EQ(SetAudioPlaybackBufferZV(buffer.get()), 1);
        SetAudioBufferTimeOffsetZV(row.offset);
        SetAudioPlaybackRegionZV(row.begin, row.end);
        SetAudioPositionZV(row.position);
        SetAudioFrequencyZV(row.speed);
        EXPECT_EQ(Read(static_cast<long>(row.frames.size())), Words_Of(row.frames));
        EXPECT_EQ(GetAudioPositionZV(), row.after);
    }
}

TEST_F(Playback, PositionAndRegionKeepInLine)
{
    struct {
        char const* why;
        long loop, begin, end, position, result;
    } const cases[] = {
        {"a loop takes a position into the region", 1, 100, 200, 250, 150},
        {"from below too", 1, 100, 200, -30, 170},
        {"the end is outside", 1, 100, 200, 200, 100},
        {"without a loop the last frame", 0, 100, 200, 250, 199},
        {"or the first", 0, 100, 200, 99, 100},
        {"inside nothing changes", 0, 100, 200, 100, 100},
        {"an empty region", 0, 100, 100, 100, 0},
        {"given the wrong way round", 0, 200, 100, 250, 199},
        {"far away", 1, 0, 7, std::numeric_limits<long>::max(), std::numeric_limits<long>::max() % 7},
        {"all there is", 1, std::numeric_limits<long>::min(), std::numeric_limits<long>::max(), 5, 5},
    };
    for (auto const& row : cases) {
        Set_Looping(row.loop);
        SetAudioPlaybackRegionZV(row.begin, row.end);
        SetAudioPositionZV(row.position);
        EXPECT_EQ(GetAudioPositionZV(), row.result) << row.why;
        long begin, end;
        GetAudioPlaybackRegionZV(&begin, nullptr);
        GetAudioPlaybackRegionZV(nullptr, &end);
        EXPECT_EQ(begin, std::min(row.begin, row.end)) << row.why;
        EXPECT_EQ(end, std::max(row.begin, row.end)) << row.why;
    }
    Set_Looping(0);
    SetAudioPlaybackRegionZV(0, 1000);
    SetAudioPositionZV(700);
    SetAudioPlaybackRegionZV(100, 200);
    EXPECT_EQ(GetAudioPositionZV(), 199) << "a new region takes the position along";
}

TEST_F(Playback, ANewBufferEndsWhatPlaysAndSpeedsAreBroughtIntoRange)
{
    Buffer const first = Make_Buffer(10), second = Make_Buffer(10);
    EXPECT_EQ(StartAudioPlaybackZV(0), 0) << "nothing to play";
    EXPECT_EQ(SetAudioPlaybackBufferZV(first.get()), 1);
    EXPECT_EQ(GetAudioPlaybackBufferZV(), first.get());
    std::pair<double, double> const speeds[] = {{1.5, 1.0},     {0.99, 0.0},        {-2.0, 0.0},
                                                {1e9, 65535.0}, {65535.5, 65535.0}, {std::nan(""), 0.0},
                                                {3.5, 3.0}};
    for (auto const& [speed, whole] : speeds) {
        SetAudioFrequencyZV(speed);
        EXPECT_EQ(GetAudioFrequencyZV(), whole) << speed;
    }
    EXPECT_EQ(StartAudioPlaybackZV(1), 1);
    EXPECT_EQ(StartAudioPlaybackZV(1), 1) << "playing already";
    EXPECT_EQ(SetAudioPlaybackBufferZV(first.get()), 1);
    EXPECT_TRUE(AudioIsPlayingZV() == 1 && GetAudioFrequencyZV() == 3.0)
        << "the buffer in use changes nothing";
    EXPECT_EQ(SetAudioPlaybackBufferZV(second.get()), 1);
    EXPECT_TRUE(AudioIsPlayingZV() == 0 && GetAudioFrequencyZV() == 1.0);
    EXPECT_EQ(SetAudioPlaybackBufferZV(nullptr), 0);
    EXPECT_EQ(GetAudioPlaybackBufferZV(), nullptr);
}

TEST_F(Playback, WhatTheOutputDoesNotTakeIsNotStarted)
{
    for (ZVAudioFormat const& format :
         {ZVAudioFormat{44100, 1, 2, 0}, {44100, 2, 1, 0}, {44100, 1, 1, ZV_AUDIO_UNSIGNED}}) {
        Buffer const buffer = Make_Buffer(10, format);
        SetAudioPlaybackBufferZV(buffer.get());
        EXPECT_EQ(StartAudioPlaybackZV(0), 0);
        EXPECT_EQ(AudioIsPlayingZV(), 0);
        SetAudioPlaybackBufferZV(nullptr);
    }
}

/// The output goes to a file.
class HeardPlayback : public Playback {
protected:
    HeardPlayback() : path(environment.Path("heard.raw"))
    {
        setenv("SDL_AUDIODRIVER", "disk", 1);
        setenv("SDL_DISKAUDIOFILE", path.c_str(), 1);
        setenv("SDL_DISKAUDIODELAY", "2", 1);
    }
    ~HeardPlayback() override
    {
        unsetenv("SDL_DISKAUDIOFILE");
        unsetenv("SDL_DISKAUDIODELAY");
    }

    /// Starts a new output.
    void Play(Buffer const& buffer, long begin, long end, long position = 0, long loop = 0) const
    {
        std::filesystem::remove(path);
        SetAudioPlaybackBufferZV(buffer.get());
        SetAudioPlaybackRegionZV(begin, end);
        SetAudioPositionZV(position);
        ASSERT_EQ(StartAudioPlaybackZV(loop), 1);
    }

    /// Everything that went out so far, without the silence ahead of the start.
    Words Heard() const
    {
        std::ifstream file(path, std::ios::binary);
        std::vector<char> const bytes(std::istreambuf_iterator<char>(file), {});
        Words words(bytes.size() / 4);
        std::memcpy(words.data(), bytes.data(), 4 * words.size());
        words.erase(words.begin(), std::ranges::find_if(words, [](uint32_t word) { return word != 0; }));
        return words;
    }

    /// Waits until that many frames more have gone out.
    void Hear(long frames) const
    {
        auto const size = [&] {
            std::error_code none;
            auto const bytes = std::filesystem::file_size(path, none);
            return none ? 0L : static_cast<long>(bytes / 4);
        };
        long const start = size();
        for (int i = 0; size() < start + frames; ++i) {
            ASSERT_LT(i, 5000) << "the output has stopped";
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    std::string path;
};

TEST_F(HeardPlayback, IsTheBufferWordForWord)
{
    struct {
        char const* why;
        long loop, begin, end, offset, position;
        double speed;
    } const cases[] = {
        {"all of it, then its last frame", 0, 0, 5000, 0, 0, 1.0},
        {"a loop", 1, 1000, 4000, 0, 1500, 1.0},
        {"a loop shorter than a buffer", 1, 100, 400, 0, 399, 1.0},
        {"a region that begins late", 0, 3000, 5000, 0, 3500, 1.0},
        {"ahead of the buffer", 0, 0, 100000, 3000, 500, 1.0},
        {"behind it", 0, 0, 100000, -4000, 500, 1.0},
        {"twice the speed", 0, 0, 100000, 0, 10, 2.0},
        {"a third of the speed", 0, 0, 100000, 0, 10, 0.333},
    };
    Buffer const buffer = Make_Buffer(5000);
    for (auto const& row : cases) {
        SCOPED_TRACE(row.why);
        Set_Looping(row.loop);
        setenv("SDL_AUDIODRIVER", "disk", 1);
        SetAudioPlaybackBufferZV(buffer.get());
        SetAudioBufferTimeOffsetZV(row.offset);
        SetAudioFrequencyZV(row.speed);
        Play(buffer, row.begin, row.end, row.position, row.loop);
        Hear(9000);
        StopAudioPlaybackZV();
        Words const heard = Heard();
        ASSERT_GE(heard.size(), 8 * 1024u);

        long const step = static_cast<long>(65536 * row.speed);
        // One buffer is filled at a time, and parts of a frame are dropped at its end.
        long position = row.position;
        for (std::size_t first = 0; first < heard.size(); first += fillFrames) {
            long way = 0;
            for (std::size_t i = first; i < std::min(first + fillFrames, heard.size()); ++i, way += step) {
                long at = position + (way >> 16);
                if (at >= row.end) {
                    at = row.loop ? row.begin + (at - row.begin) % (row.end - row.begin) : row.end - 1;
                    position = at;
                    way = 0;
                }
                long const frame = std::clamp(at - row.offset, 0L, 4999L);
                ASSERT_EQ(heard[i], Word_Of(frame)) << "word " << i;
            }
            position += way >> 16;
        }
    }
}

TEST_F(HeardPlayback, ThePositionIsTheFrameHeard)
{
    Buffer const buffer = Make_Buffer(200000);
    Play(buffer, 1000, 200000, 5000);
    Hear(20000);
    StopAudioPlaybackZV();
    // The output has taken what was heard and no more than two buffers of it.
    long const heard = 5000 + static_cast<long>(Heard().size());
    EXPECT_LE(std::abs(GetAudioPositionZV() - heard), 2 * fillFrames);

    Play(buffer, 1000, 9000, 5000);
    Hear(12000);
    EXPECT_EQ(AudioIsPlayingZV(), 1) << "until somebody stops it";
    StopAudioPlaybackZV();
    EXPECT_EQ(GetAudioPositionZV(), 8999) << "it rests at the end";
}

TEST_F(HeardPlayback, ChangesTakeEffectWithTheNextBuffer)
{
    Buffer const buffer = Make_Buffer(400000);
    Play(buffer, 0, 400000);
    Hear(4000);
    SetAudioFrequencyZV(2.0);
    Hear(8000);
    SetAudioFrequencyZV(1.0);
    SetAudioBufferTimeOffsetZV(50);
    Hear(8000);
    StopAudioPlaybackZV();
    Words const heard = Heard();
    std::vector<std::pair<std::size_t, uint32_t>> steps;  // where the step from frame to frame changes
    for (std::size_t i = 1; i < heard.size(); ++i)
        if (steps.empty() || heard[i] - heard[i - 1] != steps.back().second)
            steps.emplace_back(i, heard[i] - heard[i - 1]);
    // The offset moves the buffer by 50 frames once; the two settings may fall into one fill or two.
    ASSERT_GE(steps.size(), 4u) << testing::PrintToString(steps);
    EXPECT_TRUE(steps[0].second == 1 && steps[1].second == 2 && steps.back().second == 1)
        << testing::PrintToString(steps);
    EXPECT_EQ(steps[1].first % fillFrames, 1u) << "a whole buffer had the old speed";
}

TEST_F(HeardPlayback, IsAsLoudAsTheVolumeSays)
{
    ZVAudioFormat const swapped{44100, 2, 2, ZV_AUDIO_SWAPPED};
    struct {
        char const* why;
        bool isSwapped;
        double volume;
        long muted;
        int16_t sample, heard;
    } const cases[] = {
        {"full", false, 1.0, 0, -12345, -12345},
        {"half", false, 0.5, 0, -1000, -500},
        {"steps of 1/256", false, 0.0078, 0, 12800, 50},
        {"twice is limited", false, 2.0, 0, 20000, 32767},
        {"and below", false, 2.0, 0, -20000, -32768},
        {"the other byte order", true, 0.5, 0, 0x0204, 0x0102},
        {"nothing", false, -1.0, 0, 1000, 0},
        {"muted", false, 1.0, 1, 1000, 0},
    };
    for (auto const& row : cases) {
        SCOPED_TRACE(row.why);
        Buffer const buffer = Make_Buffer(3000, row.isSwapped ? swapped : stereo);
        auto* samples = static_cast<int16_t*>(buffer->Data);
        auto const order = [&](int16_t sample) {
            return row.isSwapped ? static_cast<int16_t>(__builtin_bswap16(static_cast<uint16_t>(sample)))
                                 : sample;
        };
        std::fill_n(samples, 6000, order(row.sample));
        SetAudioVolumeZV(row.volume);
        MuteAudioZV(row.muted);
        Play(buffer, 0, 3000);
        Hear(3000);
        StopAudioPlaybackZV();
        Words const heard = Heard();
        uint32_t const half = static_cast<uint16_t>(order(row.heard));
        EXPECT_EQ(heard.empty(), row.heard == 0);
        EXPECT_TRUE(std::ranges::all_of(heard, [=](uint32_t word) { return word == (half << 16 | half); }));
        EXPECT_EQ(GetAudioVolumeZV(), row.volume);
        MuteAudioZV(0);
    }
}

TEST_F(HeardPlayback, MutingTakesSoundAwayAndGivesItBack)
{
    Buffer const buffer = Make_Buffer(400000);
    MuteAudioZV(1);
    EXPECT_EQ(GetAudioMuteStateZV(), 1);
    Play(buffer, 0, 400000);
    Hear(4000);
    SetAudioVolumeZV(0.75);
    Hear(4000);
    EXPECT_TRUE(Heard().empty()) << "a volume does not end the silence";
    SetAudioVolumeZV(1.0);
    MuteAudioZV(0);
    Hear(4000);
    StopAudioPlaybackZV();
    Words const heard = Heard();
    ASSERT_FALSE(heard.empty());
    EXPECT_GT(heard.front(), Word_Of(4000)) << "time went on meanwhile";
    for (std::size_t i = 1; i < heard.size(); ++i)
        ASSERT_EQ(heard[i], heard[i - 1] + 1);
}

class PlaySound : public testing::Test {
protected:
    PlaySound()
    {
        open = format.desc->Open;
        format.desc->Open = [](ZVClip* clip, TagItem* tags) -> long {
            if (!open(clip, tags)) return 0;
            clip->AudioFormat = {44100, 2, 2, 0};
            return 1;
        };
        format.desc->GetAudio = [](ZVClip*, void* data, unsigned long first, unsigned long count) -> long {
            for (unsigned long i = 0; i < count; ++i) {
                uint32_t const word = Word_Of(static_cast<long>(first + i));
                std::memcpy(static_cast<char*>(data) + 4 * i, &word, 4);
            }
            return 1;
        };
        format.media = ZV_MEDIA_VIDEO | ZV_MEDIA_AUDIO;
        format.frames = 3;
        environment.Write("ping.tst", "x");
        setenv("SDL_AUDIODRIVER", "disk", 1);
        setenv("SDL_DISKAUDIOFILE", environment.Path("heard.raw").c_str(), 1);
    }
    ~PlaySound() override
    {
        unsetenv("SDL_DISKAUDIOFILE");
        setenv("SDL_AUDIODRIVER", "dummy", 1);
    }

    static inline decltype(ZVFormatDesc::Open) open;
    TestEnvironment environment{TestEnvironment::Home::Directory};
    TestFormat format;
};

TEST_F(PlaySound, AFileIsPlayedToItsEnd)
{
    SetAudioBufferTimeOffsetZV(7);
    SetAudioPlaybackRegionZV(11, 22);
    auto const start = std::chrono::steady_clock::now();
    EXPECT_EQ(ZVCAudio::PlayFile("ping.tst"), 1);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(120))
        << "three of 25 frames";
    EXPECT_TRUE(AudioIsPlayingZV() == 0 && !GetAudioPlaybackBufferZV());
    long begin, end;
    GetAudioPlaybackRegionZV(&begin, &end);
    EXPECT_TRUE(GetAudioBufferTimeOffsetZV() == 7 && begin == 11 && end == 22);
    EXPECT_GT(std::filesystem::file_size(environment.Path("heard.raw")), 4096u);
    SetAudioBufferTimeOffsetZV(0);

    MuteAudioZV(1);
    format.frames = 1000;
    EXPECT_EQ(ZVCAudio::PlayFile("ping.tst"), 1) << "a muted player answers at once";
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
    MuteAudioZV(0);
}

TEST_F(PlaySound, WhatHasNoSoundIsNotPlayed)
{
    format.media = ZV_MEDIA_VIDEO;
    std::string const tooLong(3 * ZV_SPEC_SIZE, 'x');
    for (char const* name : {static_cast<char const*>(nullptr), "absent.tst", tooLong.c_str(), "ping.tst"})
        EXPECT_EQ(ZVCAudio::PlayFile(name), 0);
    EXPECT_EQ(ZVCAudio::Beep(1), 1);
}

/// Run under the thread sanitizer; the checks are that nothing races and that every frame comes from the
/// buffer.
class PlaybackThreads : public Playback {};

TEST_F(PlaybackThreads, SettingsChangeWhileTheOutputPlays)
{
    Buffer const buffers[] = {Make_Buffer(3000), Make_Buffer(5000)};
    // Dummy is a device without sound; a driver that is not there leaves the output without a device.
    for (char const* driver : {"dummy", "none-such"}) {
        setenv("SDL_AUDIODRIVER", driver, 1);
        for (int round = 0; round < 3; ++round) {
            SetAudioPlaybackBufferZV(buffers[round % 2].get());
            SetAudioPlaybackRegionZV(0, 3000);
            ASSERT_EQ(StartAudioPlaybackZV(round % 2), 1);
            long const before = GetAudioPositionZV();
            bool hasMoved = false;
            for (long i = 0; i < 60; ++i) {
                hasMoved |= GetAudioPositionZV() != before;
                SetAudioFrequencyZV(0.5 + static_cast<double>(i % 7));
                if (i % 5 == 0) SetAudioPositionZV(37 * i);
                if (i % 9 == 0) SetAudioPlaybackRegionZV(i, 2000 + 10 * i);
                SetAudioBufferTimeOffsetZV(i % 11 - 5);
                SetAudioVolumeZV(static_cast<double>(i % 3));
                MuteAudioZV(i % 4 == 0);
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
            StopAudioPlaybackZV();
            EXPECT_TRUE(hasMoved) << driver;
            long begin, end;
            GetAudioPlaybackRegionZV(&begin, &end);
            EXPECT_GE(GetAudioPositionZV(), begin);
            EXPECT_LT(GetAudioPositionZV(), end);
        }
    }
    setenv("SDL_AUDIODRIVER", "dummy", 1);
}

}  // namespace
