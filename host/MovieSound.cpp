// See MovieSound.h.
#include "MovieSound.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

constexpr std::size_t MostHeldBytes = 64u << 20;

/// How far ahead decoding goes on rather than seek: what has a memory of its past comes out the same as if it
/// had been played from the start.
constexpr int PatienceSeconds = 60;

/// How much earlier decoding begins after a seek, for what overlaps and what is borrowed from earlier
/// packets.
constexpr double PrerollSeconds = 0.5;

bool Is_Plain(AVCodecID codec)
{
    return codec >= AV_CODEC_ID_PCM_S16LE && codec < AV_CODEC_ID_ADPCM_IMA_QT;
}

bool Is_Byte_Sound(AVCodecParameters const& codec)
{
    return codec.format == AV_SAMPLE_FMT_U8 || codec.format == AV_SAMPLE_FMT_U8P;
}

}  // namespace

MovieSound::MovieSound(std::string url, AVFormatContext const& file, int stream)
    : url_(std::move(url)), stream_(stream), unit_(file.streams[stream]->time_base),
      packet_(av_packet_alloc()), frame_(av_frame_alloc())
{
    AVCodecParameters const& codec = *file.streams[stream]->codecpar;
    std::int64_t const duration = file.streams[stream]->duration;
    isPlain_ = Is_Plain(codec.codec_id);
    track_.rate = codec.sample_rate;
    track_.channels = codec.ch_layout.nb_channels;
    track_.sampleBytes = Is_Byte_Sound(codec) ? 1 : 2;
    if (duration != AV_NOPTS_VALUE)
        track_.seconds = static_cast<double>(duration) * av_q2d(unit_);
    else if (file.duration != AV_NOPTS_VALUE)
        track_.seconds = static_cast<double>(file.duration) / AV_TIME_BASE;
    frameBytes_ = static_cast<std::size_t>(track_.sampleBytes * track_.channels);
}

void MovieSound::Begin_At(double seconds)
{
    origin_ = std::llround(seconds * track_.rate);
    hasOrigin_ = true;
}

std::int64_t MovieSound::Held_End() const
{
    return heldFirst_ + static_cast<std::int64_t>(held_.size() / frameBytes_);
}

/// Whether the times of packets tell single samples apart.
bool MovieSound::Is_Clock_Fine() const
{
    return unit_.num > 0 && static_cast<std::int64_t>(unit_.num) * track_.rate <= unit_.den;
}

bool MovieSound::Open()
{
    file_.reset();  // there is a file only together with its decoder
    decoder_.reset();
    HostMovieError error;
    auto file = Open_Movie_File(url_, error);
    if (!file || static_cast<int>(file->nb_streams) <= stream_ || !packet_ || !frame_) return false;
    Select_Stream(*file, stream_);
    decoder_ = Open_Decoder(*file->streams[stream_]);
    if (!decoder_) return false;
    file_ = std::move(file);
    return true;
}

void MovieSound::Forget(std::int64_t sample)
{
    held_.clear();
    heldFirst_ = sample;
    isPlaced_ = false;
    isAtEnd_ = false;
}

bool MovieSound::Start_Over()
{
    Forget(0);
    return Open();
}

/// Stands at or before a sample. The first frame that is decoded then tells where exactly.
bool MovieSound::Seek(std::int64_t sample)
{
    if (!file_ || !Is_Clock_Fine()) return Start_Over();
    std::int64_t const early = isPlain_ ? 0 : std::llround(PrerollSeconds * track_.rate);
    std::int64_t const time =
        av_rescale_q(std::max<std::int64_t>(0, sample - early) + origin_, {1, track_.rate}, unit_);
    if (av_seek_frame(file_.get(), stream_, time, AVSEEK_FLAG_BACKWARD) < 0) return Start_Over();
    avcodec_flush_buffers(decoder_.get());
    Forget(sample);
    // A seek that ends too late, or at no known time, is as good as none.
    if (!Decode_More() || !isPlaced_ || heldFirst_ > std::max<std::int64_t>(0, sample - early / 2))
        return Start_Over();
    return true;
}

bool MovieSound::Prepare_Converter()
{
    if (converter_ && converterFormat_ == frame_->format && converterRate_ == frame_->sample_rate &&
        converterChannels_ == frame_->ch_layout.nb_channels)
        return true;
    AVChannelLayout in{}, out{};
    // Movies leave the meaning of channels open now and then; one or two are mono and stereo.
    av_channel_layout_default(&in, frame_->ch_layout.nb_channels);
    av_channel_layout_default(&out, track_.channels);
    SwrContext* context = nullptr;
    AVSampleFormat const format = track_.sampleBytes == 1 ? AV_SAMPLE_FMT_U8 : AV_SAMPLE_FMT_S16;
    int const result =
        swr_alloc_set_opts2(&context, &out, format, track_.rate, &in,
                            static_cast<AVSampleFormat>(frame_->format), frame_->sample_rate, 0, nullptr);
    converter_.reset(context);
    if (result < 0 || swr_init(context) < 0) {
        converter_.reset();
        return false;
    }
    converterFormat_ = frame_->format;
    converterRate_ = frame_->sample_rate;
    converterChannels_ = frame_->ch_layout.nb_channels;
    return true;
}

/// Settles where the frame in frame_ begins. A gap in the track becomes silence.
void MovieSound::Place_Frame()
{
    std::int64_t const pts = frame_->pts != AV_NOPTS_VALUE ? frame_->pts : frame_->best_effort_timestamp;
    bool const hasTime = pts != AV_NOPTS_VALUE;
    std::int64_t const time = hasTime ? av_rescale_q(pts, unit_, {1, track_.rate}) : 0;
    if (!hasOrigin_) {
        origin_ = time;
        hasOrigin_ = true;
    }
    if (!isPlaced_) {
        heldFirst_ = hasTime ? time - origin_ : 0;
        isPlaced_ = true;
        return;
    }
    std::int64_t const gap = hasTime ? time - origin_ - Held_End() : 0;
    // Less is the rounding of a clock; more than fits would only push out what is held.
    if (gap <= track_.rate / 10 || gap > static_cast<std::int64_t>(MostHeldBytes / frameBytes_) / 2) return;
    held_.resize(held_.size() + static_cast<std::size_t>(gap) * frameBytes_,
                 track_.sampleBytes == 1 ? 128 : 0);
}

/// Appends the frame in frame_ to what is held.
bool MovieSound::Take_Frame()
{
    if (frame_->nb_samples < 1 || frame_->sample_rate < 1 || frame_->ch_layout.nb_channels < 1) return true;
    if (!Prepare_Converter()) return false;
    Place_Frame();
    int const room = swr_get_out_samples(converter_.get(), frame_->nb_samples);
    if (room < 0) return false;
    std::size_t const size = held_.size();
    held_.resize(size + static_cast<std::size_t>(room) * frameBytes_);
    std::uint8_t* out = held_.data() + size;
    auto const** in = const_cast<std::uint8_t const**>(frame_->extended_data);
    int const made = swr_convert(converter_.get(), &out, room, in, frame_->nb_samples);
    held_.resize(size + static_cast<std::size_t>(std::max(made, 0)) * frameBytes_);
    if (held_.size() > MostHeldBytes) {
        std::size_t const frames = held_.size() / frameBytes_ / 2;
        held_.erase(held_.begin(), held_.begin() + static_cast<std::ptrdiff_t>(frames * frameBytes_));
        heldFirst_ += static_cast<std::int64_t>(frames);
    }
    return made >= 0;
}

/// Decodes the next frame of sound. False at the end.
bool MovieSound::Decode_More()
{
    for (int complaints = 0; complaints < 1000;) {
        int const result = avcodec_receive_frame(decoder_.get(), frame_.get());
        if (result >= 0) {
            bool const isTaken = Take_Frame();
            av_frame_unref(frame_.get());
            if (isTaken) return true;
            ++complaints;
        } else if (result == AVERROR(EAGAIN)) {
            av_packet_unref(packet_.get());
            int const read = av_read_frame(file_.get(), packet_.get());
            if (read >= 0 && packet_->stream_index != stream_) continue;
            if (avcodec_send_packet(decoder_.get(), read >= 0 ? packet_.get() : nullptr) < 0) ++complaints;
        } else if (result == AVERROR_EOF) {
            break;
        } else {
            ++complaints;
        }
    }
    isAtEnd_ = true;
    return false;
}

bool MovieSound::Read(std::int64_t first, std::size_t count, std::uint8_t* samples)
{
    auto const end = first + static_cast<std::int64_t>(count);
    std::memset(samples, track_.sampleBytes == 1 ? 128 : 0, count * frameBytes_);
    if (!file_ && !Start_Over()) return false;
    std::int64_t const patience = static_cast<std::int64_t>(PatienceSeconds) * track_.rate;
    if (isPlaced_ && (first < heldFirst_ || (first > Held_End() + patience && !isAtEnd_))) {
        // What lies ahead of the track's own first sample is silence, and is found without a search.
        if (!Seek(first)) return false;
    } else if (!isPlaced_ && first > patience && !Seek(first)) {
        return false;
    }
    for (std::int64_t at = first; at < end;) {
        if (isPlaced_ && at < heldFirst_) at = std::min(end, heldFirst_);
        std::int64_t const held = isPlaced_ ? Held_End() : 0;
        if (isPlaced_ && at < held && at < end) {
            std::int64_t const part = std::min(end, held) - at;
            std::memcpy(samples + static_cast<std::size_t>(at - first) * frameBytes_,
                        held_.data() + static_cast<std::size_t>(at - heldFirst_) * frameBytes_,
                        static_cast<std::size_t>(part) * frameBytes_);
            at += part;
        } else if (at < end && (isAtEnd_ || !Decode_More())) {
            break;
        }
    }
    return true;
}
