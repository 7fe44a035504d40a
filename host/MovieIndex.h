// The frames of a picture stream: in the order of decoding with what is needed to find and tell them, and in
// the order in which they are shown.
#pragma once

#include "MovieLibrary.h"

#include <span>

struct MovieSample {
    std::int64_t pts, dts;  ///< AV_NOPTS_VALUE when unknown
    std::int64_t duration;
    std::int32_t size;
    std::int32_t shown;  ///< place in the order of showing; -1 for one that only others need
    bool isKey;
    bool isSecondField;  ///< belongs to the picture of the sample before it
};

class MovieIndex {
public:
    /// Takes the container's own table where that tells all, and reads through the packets where not. The
    /// file then stands anywhere.
    /// @param first  the first packet of the stream, which has been read
    /// @return  false when the stream has no frames
    bool Build(AVFormatContext& file, int stream, AVPacket const& first);

    /// Frames at a constant rate. A stream of even steps has one for each sample; another one shows at each
    /// frame what is on at that time.
    std::int64_t Frames() const { return frames_; }
    double Rate() const { return rate_; }

    /// Place in the order of showing of a frame within the stream.
    std::int32_t Shown_At(std::int64_t frame) const;

    std::int32_t Sample_Of(std::int32_t shown) const { return shown_[static_cast<std::size_t>(shown)]; }
    MovieSample const& Sample(std::int32_t number) const
    {
        return samples_[static_cast<std::size_t>(number)];
    }
    std::int32_t Samples() const { return static_cast<std::int32_t>(samples_.size()); }

    /// False when the order of showing is that in which the decoder hands the frames out, since the container
    /// does not tell their times.
    bool Has_Times() const { return hasTimes_; }

    /// The last sample that a sample's picture is made of.
    std::int32_t Picture_End(std::int32_t sample) const
    {
        bool const hasMore = sample + 1 < Samples() && Sample(sample + 1).isSecondField;
        return hasMore ? sample + 1 : sample;
    }

    /// The file still stands behind the first packet.
    bool Is_At_First() const { return isAtFirst_; }

    /// The sample to decode from for one to come out right: the last key frame that is neither decoded nor
    /// shown behind it, `back` key frames before that one; the first sample when there is none.
    std::int32_t Key_Before(std::int32_t sample, int back) const;

    /// The sample that a packet is, or -1.
    std::int32_t Find(AVPacket const& packet) const;

    /// Time at which the first frame is shown, in the stream's unit; AV_NOPTS_VALUE when unknown.
    std::int64_t Start() const { return start_; }

private:
    bool Take_Table(AVFormatContext const& file, AVStream& stream, AVPacket const& first);
    void Add_Entries(AVStream& stream, std::int64_t shift, std::span<std::int32_t const> offsets);
    bool Number_Times(std::span<int const> numbers);
    bool Scan(AVFormatContext& file, int stream, std::span<AVPacket const* const> begun);
    void Order_Shown(std::vector<bool> const& isShown);
    void Settle_Rate(AVFormatContext& file, AVStream& stream);
    bool Is_Even(AVRational rate, AVRational unit) const;
    std::int64_t Usual_Duration() const;
    std::int64_t Time_Of(std::size_t shown) const
    {
        return samples_[static_cast<std::size_t>(shown_[shown])].pts;
    }
    std::int64_t Duration_Of(std::size_t shown) const;

    std::vector<MovieSample> samples_;
    std::vector<std::int32_t> shown_;
    std::vector<std::int32_t> keys_;
    std::int64_t frames_ = 0;
    std::int64_t start_ = AV_NOPTS_VALUE;
    double rate_ = 0;
    double ticksPerFrame_ = 0;  ///< 0 when each sample is a frame
    bool hasTimes_ = true;
    bool isAtFirst_ = false;
    bool isSorted_ = true;  ///< the decoding times never fall
};
