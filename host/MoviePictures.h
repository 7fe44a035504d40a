// The picture track of an open movie.
#pragma once

#include "MovieAhead.h"
#include "MovieConvert.h"
#include "MovieIndex.h"
#include "MovieTurn.h"

#include <deque>
#include <vector>

class MoviePictures {
public:
    /// Takes the file over. Describe must say that the codec is there before frames can be read.
    MoviePictures(std::string url, MovieOwner<AVFormatContext> file, int stream);

    /// False when the stream has no frames.
    bool Describe();

    HostVideoTrack const& Track() const { return track_; }
    bool Read(std::int64_t frame, void* pixels, std::size_t rowBytes, HostPixels layout);

    /// When the first picture is shown, in seconds; 0 when unknown.
    double Start_Seconds() const;

private:
    enum class Outcome { Found, Missing, Failed };
    /// How pictures are asked for.
    enum class Manner { Forward, Back, Jumping };
    /// A decoded picture at hand.
    struct Kept {
        std::int32_t shown;
        std::size_t bytes;
        MovieOwner<AVFrame> picture;
    };

    bool Start_Decoder();
    void Save_Palette();
    void Add_Palette();
    AVFrame const* Find_Kept(std::int32_t shown, bool orBefore) const;
    void Keep(std::int32_t shown);
    bool Read_Packet();
    bool Restart();
    bool Try_Seek(std::int32_t sample, std::int64_t time);
    bool Go_To(std::int32_t sample);
    bool Can_Go_On(std::int32_t shown) const;
    Outcome Decode_To(std::int32_t shown);
    Outcome Take_Picture(std::int32_t wanted);
    bool Feed(std::int32_t last);
    void Settle_Manner(std::int32_t shown);
    bool Is_Stepping_Back() const;
    std::size_t Most_Kept() const;
    bool Fill_Ahead(std::int32_t sample);
    bool Take_Ahead(std::int32_t shown);
    bool Try(std::int32_t shown, std::int32_t key, bool mayGoOn);
    bool Try_Skipping(std::int32_t shown);
    void Forget_Kept();
    AVFrame const* Fetch(std::int32_t shown);

    std::string url_;
    MovieOwner<AVFormatContext> file_;
    int stream_;
    MovieOwner<AVCodecContext> decoder_;
    MovieOwner<AVPacket> packet_;
    MovieOwner<AVFrame> frame_;
    MovieIndex index_;
    HostVideoTrack track_;
    PictureConverter converter_;
    MovieTurn turn_;
    std::vector<std::uint8_t> stored_;   ///< a picture that is still to be turned
    std::vector<std::uint8_t> palette_;  ///< of the first packet, or empty
    std::deque<Kept> kept_;
    std::size_t keptBytes_ = 0;
    std::unique_ptr<MovieAhead> ahead_;  ///< made when pictures that need no others are played
    std::int32_t aheadNext_ = -1;        ///< sample behind the last one that it has got
    Manner manner_ = Manner::Jumping;
    int steps_ = 0;              ///< pictures in a row that were asked for in that manner
    bool isIntra_ = false;       ///< every picture is decoded without others
    bool isInPlace_ = false;     ///< the decoder changes its last picture into the next one
    std::int32_t asked_ = -1;    ///< picture that was asked for last
    std::int32_t skipped_ = -1;  ///< last sample that was left out, since nothing needed it
    std::int32_t next_ = -1;     ///< sample of the packet that is read next; -1 when the place is unknown
    std::int32_t latest_ =
        -1;  ///< shown place of the picture that came out last since the decoder was emptied
    std::int32_t fedFrom_ = -1;   ///< first sample the decoder got since then
    bool hasPacket_ = false;      ///< packet_ is the sample next_
    bool isEnding_ = false;       ///< the decoder was told that nothing follows
    bool skipsOthers_ = false;    ///< what no other picture needs stays undecoded
    bool stopsAtWanted_ = false;  ///< one picture alone is wanted, and it needs no other
    int troubles_ = 0;            ///< complaints of the decoder since it was emptied
};
