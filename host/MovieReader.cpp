// The reading side of the movie service: one file with its picture and its sound track.
#include "MoviePictures.h"
#include "MovieSound.h"

#include <new>

namespace {

/// The first track of a kind that is switched on; of those that are all off, the first one. -1 without any.
int First_Track(AVFormatContext const& file, AVMediaType type)
{
    int found = -1;
    for (unsigned i = 0; i < file.nb_streams; ++i) {
        AVStream const& stream = *file.streams[i];
        if (stream.codecpar->codec_type != type || stream.disposition & AV_DISPOSITION_ATTACHED_PIC) continue;
        if (stream.disposition & AV_DISPOSITION_DEFAULT) return static_cast<int>(i);
        if (found < 0) found = static_cast<int>(i);
    }
    return found;
}

class FileReader : public HostMovieReader {
public:
    bool Open(char const* path, HostMovieError& error)
    {
        std::string const url = Movie_Url(path);
        MovieOwner<AVFormatContext> file = Open_Movie_File(url, error);
        if (!file) return false;
        error = HostMovieError::Unreadable;
        int const video = First_Track(*file, AVMEDIA_TYPE_VIDEO);
        int const audio = First_Track(*file, AVMEDIA_TYPE_AUDIO);
        if (audio >= 0) Take_Sound(url, *file, audio);
        if (video >= 0) {
            pictures_ = std::make_unique<MoviePictures>(url, std::move(file), video);
            if (!pictures_->Describe()) return false;
            if (sound_) sound_->Begin_At(pictures_->Start_Seconds());
        }
        if (!pictures_ && !sound_) return false;
        error = HostMovieError::None;
        return true;
    }

    HostVideoTrack const* Video() const override { return pictures_ ? &pictures_->Track() : nullptr; }
    HostSoundTrack const* Sound() const override { return sound_ ? &sound_->Track() : nullptr; }

    bool Read_Frame(std::int64_t frame, void* pixels, std::size_t rowBytes, HostPixels layout) override
    {
        return pictures_ && pictures_->Read(frame, pixels, rowBytes, layout);
    }

    bool Read_Sound(std::int64_t first, std::size_t count, void* samples) override
    {
        return sound_ && sound_->Read(first, count, static_cast<std::uint8_t*>(samples));
    }

private:
    /// Sound of more than two channels, and such that nobody can decode, is left out.
    void Take_Sound(std::string const& url, AVFormatContext const& file, int number)
    {
        AVCodecParameters const& codec = *file.streams[number]->codecpar;
        int const channels = codec.ch_layout.nb_channels;
        if (channels < 1 || channels > 2 || codec.sample_rate < 1) return;
        if (codec.format < 0 || !avcodec_find_decoder(codec.codec_id)) return;
        sound_ = std::make_unique<MovieSound>(url, file, number);
    }

    std::unique_ptr<MoviePictures> pictures_;
    std::unique_ptr<MovieSound> sound_;
};

}  // namespace

std::unique_ptr<HostMovieReader> Open_Host_Movie(char const* path, HostMovieError& error)
{
    auto reader = std::make_unique<FileReader>();
    if (!reader->Open(path, error)) return nullptr;
    return reader;
}
