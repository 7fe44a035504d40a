// Sequence names: the input is a number, how much narrower it is to be rendered, and a name.
#include <ZVLibInternal.h>

#include <cstdlib>
#include <cstring>
#include <string>

/// A name after a change, in a block that ends where a buffer for specs does.
template <typename Change> static std::string Changed(std::string const& name, long& answer, Change&& change)
{
    std::string buffer(ZV_SPEC_SIZE, '\0');
    std::memcpy(buffer.data(), name.c_str(), name.size());
    answer = change(buffer.data());
    buffer.resize(std::strlen(buffer.c_str()));
    if (buffer.size() >= ZV_SPEC_SIZE) std::abort();
    if (!answer && buffer != name) std::abort();
    return buffer;
}

static std::string File_Part(std::string const& name)
{
    return name.substr(name.find_last_of(":\\") + 1);
}

/// What holds for the mask of any name.
static void Check_Mask(std::string const& name)
{
    long answer;
    std::string const mask = Changed(name, answer, FileNameToSequenceNameZV);
    bool const hasDigit = File_Part(name).find_first_of("0123456789") != std::string::npos;
    if (answer && !hasDigit) std::abort();
    if (!answer && hasDigit && name.size() + 2 < ZV_SPEC_SIZE) std::abort();
    if (!answer) return;
    if (!IsSequenceZV(mask.c_str()) || SequenceCmpZV(mask.c_str(), mask.c_str()) != 0) std::abort();
    if (IsSequenceZV(name.c_str())) return;  // its own mask is the first one
    long const digits = SequenceDigitsZV(mask.c_str());
    if (digits < 1 || digits > 9) std::abort();
    long const number = NameToSequenceNumberZV(name.c_str());
    std::string const back =
        Changed(mask, answer, [&](char* text) { return SequenceNumberToNameZV(text, number, 0); });
    if (!answer || back != name) std::abort();

    std::string const underscore = Changed(mask, answer, SwitchToUnderScoreFormat);
    if (!answer) return;
    if (Changed(underscore, answer, SwitchToUnderScoreFormat) != underscore || !answer) std::abort();
    Changed(underscore, answer, RemoveSequenceNumberingZV);
    if (!answer) std::abort();
}

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(uint8_t const* data,
                                                                             std::size_t size)
{
    struct {
        long number;
        int8_t shrink;
    } head{};
    if (size < sizeof head.number + 1 || size >= ZV_SPEC_SIZE) return 0;
    std::memcpy(&head.number, data, sizeof head.number);
    head.shrink = static_cast<int8_t>(data[sizeof head.number]);
    std::size_t const begin = sizeof head.number + 1;
    std::string const name(reinterpret_cast<char const*>(data) + begin,
                           strnlen(reinterpret_cast<char const*>(data) + begin, size - begin));
    char const* const text = name.c_str();

    Check_Mask(name);
    long answer;
    Changed(name, answer, EndNumberFileNameToSequenceZV);
    Changed(name, answer, RemoveSequenceNumberingZV);
    Changed(name, answer, SwitchToUnderScoreFormat);
    Changed(name, answer, [&](char* out) { return SetIncNumberOnUnderScoreFormat(out, head.number); });
    Changed(name, answer, [&](char* out) { return SequenceNumberToNameZV(out, head.number, head.shrink); });
    if (SequenceDigitsZV(text) > 0 && !IsSequenceZV(text)) std::abort();
    if (NameToSequenceNumberZV(text) < 0 || NameToSequenceNumberZV(text) > 999999999) std::abort();
    IsFileNameEndedBy(text, static_cast<char>(head.shrink));

    std::size_t const half = name.size() / 2;
    std::string const a = name.substr(0, half), b = name.substr(half);
    long const forth = SequenceCmpZV(a.c_str(), b.c_str()), back = SequenceCmpZV(b.c_str(), a.c_str());
    if ((forth == 0) != (back == 0)) std::abort();
    return 0;
}
