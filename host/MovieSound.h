// The sound track of an open movie.
#pragma once

#include "MovieLibrary.h"

#include <vector>

/// Reads from a file of its own, opened at the first use, so that pictures and sound never fight for the
/// place in one file.
class MovieSound {
public:
    MovieSound(std::string url, AVFormatContext const& file, int stream);

    HostSoundTrack const& Track() const { return track_; }

    /// Sample 0 is the one at that time of the movie; without a call it is the first one of the track.
    void Begin_At(double seconds);

    bool Read(std::int64_t first, std::size_t count, std::uint8_t* samples);

private:
    std::int64_t Held_End() const;
    bool Open();
    bool Start_Over();
    bool Seek(std::int64_t sample);
    void Forget(std::int64_t sample);
    bool Decode_More();
    bool Take_Frame();
    bool Prepare_Converter();
    void Place_Frame();
    bool Is_Clock_Fine() const;

    std::string url_;
    int stream_;
    HostSoundTrack track_;
    std::size_t frameBytes_;
    AVRational unit_;
    bool isPlain_;  ///< every sample stands for itself
    MovieOwner<AVFormatContext> file_;
    MovieOwner<AVCodecContext> decoder_;
    MovieOwner<AVPacket> packet_;
    MovieOwner<AVFrame> frame_;
    MovieOwner<SwrContext> converter_;
    int converterFormat_ = -1, converterRate_ = 0, converterChannels_ = 0;
    std::int64_t origin_ = 0;  ///< time of sample 0, in samples
    bool hasOrigin_ = false;
    std::vector<std::uint8_t> held_;  ///< decoded sound from heldFirst_ on
    std::int64_t heldFirst_ = 0;
    bool isPlaced_ = false;  ///< held_ ends where the decoder stands
    bool isAtEnd_ = false;
};
