// zvclip sound, and the reading of sound for the other commands.
#include "Sound.h"

#include "Commands.h"
#include "OptionReader.h"
#include "Output.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <memory>

char const* const soundHelp =
    "Usage: zvclip sound IN OUT.wav [--overwrite]\n"
    "\n"
    "Writes the sound of IN as a WAVE file, in its own rate, channels and sample size.\n"
    "\n"
    "  --overwrite  replace OUT.wav when it exists\n";

bool Has_Sound(ZVClip const* clip)
{
    return (clip->Media & ZV_MEDIA_AUDIO) && clip->AudioFormat.Rate > 0 && clip->Format->GetAudio;
}

SoundReader::SoundReader(ZVClip* clip, std::string const& path, double start)
    : clip_(clip), path_(path), first_(std::llround(start * static_cast<double>(clip->AudioFormat.Rate))),
      next_(first_)
{
}

long long SoundReader::Length() const
{
    unsigned long const known = GetMovieSoundLengthZV(clip_);
    auto const length = known ? static_cast<long long>(known)
                              : std::llround(Length_Of(clip_) * static_cast<double>(Format().Rate));
    return std::max(length - next_, 0LL);
}

AudioBufferHandle SoundReader::Read_Until(double seconds)
{
    return Read(first_ + std::llround(seconds * static_cast<double>(Format().Rate)) - next_);
}

/// The module is asked by the sample, where the calls of the library go by the frame of pictures.
AudioBufferHandle SoundReader::Read(long long most)
{
    if (most <= 0) return nullptr;
    auto const count = static_cast<unsigned long>(most);
    AudioBufferHandle buffer(AllocAudioBufferZV(&clip_->AudioFormat, count));
    if (!buffer) throw JobError(path_, Reason());
    if (!clip_->Format->GetAudio(clip_, buffer->Data, static_cast<unsigned long>(next_), count))
        throw JobError(path_,
                       "the sound at " +
                           std::to_string(static_cast<double>(next_) / static_cast<double>(Format().Rate)) +
                           " s cannot be read");
    next_ += most;
    return buffer;
}

namespace {

constexpr long long PieceSamples = 1 << 16;
constexpr long HeaderSize = 44;

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

template <typename Number> void Put_Little(std::uint8_t* place, Number value)
{
    for (std::size_t i = 0; i < sizeof value; ++i)
        place[i] = static_cast<std::uint8_t>(value >> (8 * i) & 255);
}

/// The header of a WAVE file of linear samples: a RIFF chunk with a "fmt " and a "data" chunk.
std::array<std::uint8_t, HeaderSize> Wave_Header(ZVAudioFormat const& format, std::uint32_t dataSize)
{
    auto const frameBytes = static_cast<std::uint16_t>(format.Channels * format.SampleSize);
    auto const rate = static_cast<std::uint32_t>(format.Rate);
    std::array<std::uint8_t, HeaderSize> header{'R', 'I', 'F', 'F', 0,   0,   0,   0, 'W',
                                                'A', 'V', 'E', 'f', 'm', 't', ' ', 16};
    Put_Little<std::uint32_t>(&header[4], HeaderSize - 8 + dataSize);
    Put_Little<std::uint16_t>(&header[20], 1);  // linear samples
    Put_Little(&header[22], static_cast<std::uint16_t>(format.Channels));
    Put_Little(&header[24], rate);
    Put_Little(&header[28], rate * frameBytes);
    Put_Little(&header[32], frameBytes);
    Put_Little(&header[34], static_cast<std::uint16_t>(format.SampleSize * 8));
    for (int i = 0; i < 4; ++i)
        header[36 + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>("data"[i]);
    Put_Little(&header[40], dataSize);
    return header;
}

/// Makes the samples those of a WAVE file: bytes without a sign, words with the low byte first.
void Turn_To_Wave(ZVAudioBuffer const& buffer)
{
    auto* const bytes = static_cast<std::uint8_t*>(buffer.Data);
    auto const size =
        static_cast<std::size_t>(buffer.Samples) * buffer.Format.Channels * buffer.Format.SampleSize;
    if (buffer.Format.SampleSize == 1) {
        if (!(buffer.Format.Flags & ZV_AUDIO_UNSIGNED))
            for (std::size_t i = 0; i < size; ++i)
                bytes[i] ^= 0x80;
        return;
    }
    bool const isSwapped = buffer.Format.Flags & ZV_AUDIO_SWAPPED;
    bool const isLittle = (std::endian::native == std::endian::little) != isSwapped;
    for (std::size_t i = 0; !isLittle && i + 1 < size; i += 2)
        std::swap(bytes[i], bytes[i + 1]);
}

void Write_Wave(std::string const& in, std::string const& out, bool mayOverwrite)
{
    ClipHandle const clip = Open_Source(in);
    if (!Has_Sound(clip.get())) throw JobError(in, "has no sound");
    SoundReader reader(clip.get(), in, 0);
    ZVAudioFormat const& format = reader.Format();
    long long const length = reader.Length();
    auto const frameBytes = static_cast<long long>(format.Channels * format.SampleSize);
    if (length * frameBytes > UINT32_MAX - HeaderSize)
        throw JobError(out, "the sound is too long for a WAVE file");

    PendingFile pending(out, mayOverwrite);
    std::unique_ptr<std::FILE, FileCloser> file(std::fopen(pending.WorkPath().c_str(), "wb"));
    auto const put = [&](void const* bytes, std::size_t size) {
        if (!file || std::fwrite(bytes, 1, size, file.get()) != size)
            throw JobError(out, std::generic_category().message(errno));
    };
    auto const header = Wave_Header(format, static_cast<std::uint32_t>(length * frameBytes));
    put(header.data(), header.size());
    for (long long left = length; left > 0; left -= PieceSamples) {
        AudioBufferHandle const piece = reader.Read(std::min(left, PieceSamples));
        Turn_To_Wave(*piece);
        put(piece->Data, static_cast<std::size_t>(piece->Samples * frameBytes));
        Stop_If_Interrupted();
    }
    if (std::fclose(file.release()) != 0) throw JobError(out, std::generic_category().message(errno));
    pending.Commit();
}

}  // namespace

int Run_Sound(int argc, char** argv)
{
    bool mayOverwrite = false;
    option const table[] = {{"overwrite", no_argument, nullptr, 'o'}, {}};
    std::vector<std::string> const words =
        Read_Options(argc, argv, table, [&](int, std::string const&) { mayOverwrite = true; });
    if (words.size() != 2) throw UsageError("it takes the names IN and OUT.wav");
    Write_Wave(words[0], words[1], mayOverwrite);
    return 0;
}
