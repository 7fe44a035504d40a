// Timecode: the input is a rate, a frame, the units and a text. Texts are read as frames, and frames that a
// text can hold come back from it.
#include <ZVLibInternal.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(uint8_t const* data,
                                                                             std::size_t size)
{
    double rate, frame;
    if (size < sizeof rate + sizeof frame + 1) return 0;
    std::memcpy(&rate, data, sizeof rate);
    std::memcpy(&frame, data + sizeof rate, sizeof frame);
    auto const units = static_cast<ZVTimeUnits>(data[16] & 3);
    bool const zeroBased = data[16] & 4;
    std::string const text(reinterpret_cast<char const*>(data) + 17, size - 17);
    StringToTimecodeZV(text.c_str(), rate, units, zeroBased);

    char out[400];  // a double of any size, counted in frames
    ZVTimeValue const time{frame, rate};
    TimecodeToStringZV(out, &time, units, zeroBased);
    bool const isCode = units != ZV_UNITS_FRAMES && units != ZV_UNITS_FRAMES_FROM_ONE;
    if (isCode && std::strlen(out) != 11) std::abort();

    // Two digits hold the frames of a second up to 100 a second, and an hour field of 0 to 59.
    double const whole = std::trunc(frame);
    bool const fits = std::lrint(std::fmin(std::fmax(rate, 0), 1000)) > 0 && rate < 100 && whole >= 0 &&
                      whole < 3600.0 * 50 * std::round(rate);
    if (isCode && fits && StringToTimecodeZV(out, rate, units, zeroBased) != static_cast<long>(whole))
        std::abort();
    return 0;
}
