// The writing side of the movie service. Packets go to the file in the order in which they are made: the file
// format needs no interleaving, and waiting for the other track would keep everything of this one in memory.
#include "MovieCodecs.h"
#include "MovieConvert.h"

#include <algorithm>
#include <cstring>

namespace {

/// Frames of sound in a packet of a codec that takes any number.
constexpr int FreePacketFrames = 4096;

struct OutputDeleter {
    void operator()(AVFormatContext* context) const
    {
        if (context->pb) avio_closep(&context->pb);
        avformat_free_context(context);
    }
};
using OutputFile = std::unique_ptr<AVFormatContext, OutputDeleter>;

/// A track being written: its encoder and its place in the file.
struct OutputTrack {
    MovieOwner<AVCodecContext> encoder;
    AVStream* stream = nullptr;
    std::int64_t next = 0;  ///< time of the next frame, in the encoder's unit
};

class FileWriter : public HostMovieWriter {
public:
    bool Open(char const* path, HostVideoSettings const* video, HostSoundSettings const* sound, bool hinted,
              HostMovieError& error);
    HostMovieError Add_Frame(void const* pixels, std::size_t rowBytes, HostPixels layout) override;
    HostMovieError Add_Sound(void const* samples, std::size_t count) override;
    HostMovieError Finish() override;

private:
    bool Add_Track(OutputTrack& track, HostMovieError& error);
    bool Open_Converter(HostSoundSettings const& sound);
    bool Write_Header(HostVideoSettings const* video, bool hinted, HostMovieError& error);
    bool Prepare_Picture();
    int Encode(OutputTrack& track, AVFrame const* frame);
    int Encode_Waiting(bool isLast);
    HostMovieError Settle(int result);

    OutputFile file_;
    OutputTrack video_, sound_;
    MovieOwner<AVPacket> packet_{av_packet_alloc()};
    MovieOwner<AVFrame> picture_;
    PictureConverter converter_;
    MovieOwner<SwrContext> resampler_;
    MovieOwner<AVAudioFifo> waiting_;
    std::size_t frameBytes_ = 0;  ///< of the sound that comes in
    bool hasHeader_ = false;
    HostMovieError failure_ = HostMovieError::None;
};

bool FileWriter::Add_Track(OutputTrack& track, HostMovieError& error)
{
    track.stream = avformat_new_stream(file_.get(), nullptr);
    error = HostMovieError::Memory;
    if (!track.stream || avcodec_parameters_from_context(track.stream->codecpar, track.encoder.get()) < 0)
        return false;
    // The encoder of raw pictures has codes of its own; the muxer gives those of movies where it has one.
    AVCodecParameters& codec = *track.stream->codecpar;
    if (codec.codec_id == AV_CODEC_ID_RAWVIDEO && codec.format != AV_PIX_FMT_RGBA64BE) codec.codec_tag = 0;
    track.stream->time_base = track.encoder->time_base;
    track.stream->sample_aspect_ratio = track.encoder->sample_aspect_ratio;
    track.stream->avg_frame_rate = track.encoder->framerate;
    track.stream->disposition = AV_DISPOSITION_DEFAULT;
    error = HostMovieError::None;
    return true;
}

/// Samples wait in a queue until they fill a packet of the codec.
bool FileWriter::Open_Converter(HostSoundSettings const& sound)
{
    AVCodecContext& encoder = *sound_.encoder;
    AVSampleFormat const in = sound.sampleBytes == 1 ? AV_SAMPLE_FMT_U8 : AV_SAMPLE_FMT_S16;
    frameBytes_ = static_cast<std::size_t>(sound.sampleBytes * sound.channels);
    SwrContext* context = nullptr;
    int const result = swr_alloc_set_opts2(&context, &encoder.ch_layout, encoder.sample_fmt, sound.rate,
                                           &encoder.ch_layout, in, sound.rate, 0, nullptr);
    resampler_.reset(context);
    waiting_.reset(av_audio_fifo_alloc(encoder.sample_fmt, encoder.ch_layout.nb_channels, FreePacketFrames));
    return result >= 0 && swr_init(context) >= 0 && waiting_;
}

bool FileWriter::Write_Header(HostVideoSettings const* video, bool hinted, HostMovieError& error)
{
    MovieOptions options;
    if (video) {
        options.Set("video_track_timescale", video->timeScale);
        options.Set("movie_timescale", video->timeScale);
        video_.stream->time_base = {1, static_cast<int>(video->timeScale)};
        if (video->fieldOrder)
            video_.stream->codecpar->field_order = video->fieldOrder == 1 ? AV_FIELD_TT : AV_FIELD_BB;
    }
    if (hinted) options.Set("movflags", "+rtphint+faststart");
    int result = avio_open2(&file_->pb, file_->url, AVIO_FLAG_WRITE, nullptr, nullptr);
    if (result >= 0) result = avformat_write_header(file_.get(), options.Address());
    hasHeader_ = result >= 0;
    if (!hasHeader_) error = Movie_Error(result);
    return hasHeader_;
}

bool FileWriter::Open(char const* path, HostVideoSettings const* video, HostSoundSettings const* sound,
                      bool hinted, HostMovieError& error)
{
    error = HostMovieError::NoHints;
    if (hinted && video) {
        PictureCodec const* codec = Find_Picture_Codec(video->codec);
        if (codec && !codec->canStream) return false;
    }
    if (hinted && sound && sound->codec) {
        SoundCodec const* codec = Find_Sound_Codec(sound->codec);
        if (codec && !codec->canStream) return false;
    }
    AVFormatContext* context = nullptr;
    int const result = avformat_alloc_output_context2(&context, nullptr, "mov", Movie_Url(path).c_str());
    file_.reset(context);
    error = HostMovieError::Memory;
    if (result < 0 || !packet_) return false;
    context->strict_std_compliance = FF_COMPLIANCE_UNOFFICIAL;  // keeps the codes that were chosen
    // What packets for streaming may wait for more to fill them, in microseconds.
    if (sound && sound->packetMilliseconds > 0) context->max_delay = sound->packetMilliseconds * 1000;
    if (video) {
        video_.encoder = Open_Picture_Encoder(*video, error);
        if (!video_.encoder || !Add_Track(video_, error)) return false;
    }
    if (sound) {
        sound_.encoder = Open_Sound_Encoder(*sound, hinted, error);
        if (!sound_.encoder || !Add_Track(sound_, error)) return false;
        error = HostMovieError::Memory;
        if (!Open_Converter(*sound)) return false;
    }
    error = HostMovieError::Failed;
    return Write_Header(video, hinted, error);
}

/// Keeps the first failure; nothing works after it.
HostMovieError FileWriter::Settle(int result)
{
    if (result >= 0 && file_->pb) result = file_->pb->error;
    if (result < 0 && failure_ == HostMovieError::None) failure_ = Movie_Error(result);
    return failure_;
}

/// Encodes a frame (null for the rest) and writes what comes out.
int FileWriter::Encode(OutputTrack& track, AVFrame const* frame)
{
    int result = avcodec_send_frame(track.encoder.get(), frame);
    while (result >= 0) {
        result = avcodec_receive_packet(track.encoder.get(), packet_.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return 0;
        if (result < 0) break;
        bool const isPicture = &track == &video_;
        if (isPicture && packet_->duration == 0) packet_->duration = 1;
        packet_->stream_index = track.stream->index;
        av_packet_rescale_ts(packet_.get(), track.encoder->time_base, track.stream->time_base);
        result = av_write_frame(file_.get(), packet_.get());
        av_packet_unref(packet_.get());
    }
    return result;
}

/// A picture to convert into. The one before serves again when the encoder has done with it.
bool FileWriter::Prepare_Picture()
{
    if (picture_ && av_frame_is_writable(picture_.get())) return true;
    picture_ = New_Picture(*video_.encoder);
    return picture_ != nullptr;
}

HostMovieError FileWriter::Add_Frame(void const* pixels, std::size_t rowBytes, HostPixels layout)
{
    if (failure_ != HostMovieError::None) return failure_;
    if (!video_.encoder) return Settle(AVERROR(EINVAL));
    if (!Prepare_Picture()) return Settle(AVERROR(ENOMEM));
    if (!converter_.From_RGBA(pixels, rowBytes, layout, *picture_)) return Settle(AVERROR(EINVAL));
    picture_->pts = video_.next++;
    return Settle(Encode(video_, picture_.get()));
}

/// Encodes the waiting samples that fill packets; with `isLast` also those that do not.
int FileWriter::Encode_Waiting(bool isLast)
{
    AVCodecContext const& encoder = *sound_.encoder;
    int const packetFrames = encoder.frame_size > 0 ? encoder.frame_size : FreePacketFrames;
    for (;;) {
        int const there = av_audio_fifo_size(waiting_.get());
        if (there == 0 || (there < packetFrames && !isLast)) return 0;
        MovieOwner<AVFrame> frame(av_frame_alloc());
        if (!frame) return AVERROR(ENOMEM);
        frame->nb_samples = std::min(there, packetFrames);
        frame->format = encoder.sample_fmt;
        frame->sample_rate = encoder.sample_rate;
        int result = av_channel_layout_copy(&frame->ch_layout, &encoder.ch_layout);
        if (result >= 0) result = av_frame_get_buffer(frame.get(), 0);
        if (result < 0) return result;
        av_audio_fifo_read(waiting_.get(), reinterpret_cast<void**>(frame->extended_data), frame->nb_samples);
        frame->pts = sound_.next;
        sound_.next += frame->nb_samples;
        result = Encode(sound_, frame.get());
        if (result < 0) return result;
    }
}

HostMovieError FileWriter::Add_Sound(void const* samples, std::size_t count)
{
    if (failure_ != HostMovieError::None) return failure_;
    if (!sound_.encoder) return Settle(AVERROR(EINVAL));
    AVCodecContext const& encoder = *sound_.encoder;
    auto const* next = static_cast<std::uint8_t const*>(samples);
    MovieOwner<AVFrame> piece(av_frame_alloc());
    if (!piece) return Settle(AVERROR(ENOMEM));
    piece->nb_samples = FreePacketFrames;
    piece->format = encoder.sample_fmt;
    int result = av_channel_layout_copy(&piece->ch_layout, &encoder.ch_layout);
    if (result >= 0) result = av_frame_get_buffer(piece.get(), 0);
    while (result >= 0 && count > 0) {
        int const frames = static_cast<int>(std::min<std::size_t>(count, FreePacketFrames));
        result = swr_convert(resampler_.get(), piece->extended_data, frames, &next, frames);
        if (result < 0) break;
        result = av_audio_fifo_write(waiting_.get(), reinterpret_cast<void**>(piece->extended_data), frames);
        next += static_cast<std::size_t>(frames) * frameBytes_;
        count -= static_cast<std::size_t>(frames);
        if (result >= 0) result = Encode_Waiting(false);
    }
    return Settle(std::min(result, 0));
}

HostMovieError FileWriter::Finish()
{
    if (failure_ != HostMovieError::None) return failure_;
    int result = 0;
    if (sound_.encoder) {
        result = Encode_Waiting(true);
        if (result >= 0) result = Encode(sound_, nullptr);
    }
    if (result >= 0 && video_.encoder) result = Encode(video_, nullptr);
    if (Settle(result) != HostMovieError::None) return failure_;
    result = av_write_trailer(file_.get());
    if (Settle(result) != HostMovieError::None) return failure_;
    // What is still in the transfer buffer can fail as well.
    return Settle(std::min(0, avio_closep(&file_->pb)));
}

}  // namespace

std::unique_ptr<HostMovieWriter> Create_Host_Movie(char const* path, HostVideoSettings const* video,
                                                   HostSoundSettings const* sound, bool hinted,
                                                   HostMovieError& error)
{
    auto writer = std::make_unique<FileWriter>();
    if (!writer->Open(path, video, sound, hinted, error)) return nullptr;
    return writer;
}
