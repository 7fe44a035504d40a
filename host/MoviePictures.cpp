// See MoviePictures.h.
#include "MoviePictures.h"

#include <algorithm>
#include <utility>

namespace {

/// While somebody steps back, decoded pictures are kept for the next steps; else only the last few are, so
/// that the decoder works in memory that it had a moment ago.
constexpr std::size_t KeptBytes = 256u << 20;
constexpr std::size_t KeptPictures = 512;
constexpr std::size_t KeptFew = 4;

/// Steps back of up to that many pictures count as stepping, longer ones as jumps.
constexpr std::int32_t LongestStep = 25;

/// Key frames that a second and a third try begin earlier: a stream that refreshes its pictures bit by bit
/// needs a whole round before they are right.
constexpr int earlierTries[] = {0, 1, 4};

/// Bytes of the smallest sample that changes the picture of a codec that changes its last one.
constexpr std::int32_t SmallestChange = 8;

/// Complaints in a row after which a decoder is given up.
constexpr int MostComplaints = 1000;

std::size_t Picture_Bytes(AVFrame const& picture)
{
    std::size_t bytes = 0;
    for (AVBufferRef const* buffer : picture.buf)
        if (buffer) bytes += buffer->size;
    return bytes;
}

int Bit_Depth(AVPixFmtDescriptor const& layout)
{
    int widest = 0;
    for (int i = 0; i < layout.nb_components; ++i)
        widest = std::max(widest, layout.comp[i].depth);
    return widest <= 8 ? 8 : widest <= 10 ? 10 : 16;
}

int Field_Order(AVFieldOrder order)
{
    switch (order) {
    case AV_FIELD_TT:
    case AV_FIELD_BT: return 1;
    case AV_FIELD_BB:
    case AV_FIELD_TB: return 2;
    default: return 0;
    }
}

/// The code of a codec in movies, wherever the stream comes from.
std::uint32_t Movie_Code(AVCodecParameters const& codec, bool isMovie)
{
    if (isMovie && codec.codec_tag) return Turn_Code(codec.codec_tag);
    AVOutputFormat const* movies = av_guess_format("mov", nullptr, nullptr);
    unsigned const tag = movies ? av_codec_get_tag(movies->codec_tag, codec.codec_id) : 0;
    return Turn_Code(tag ? tag : codec.codec_tag);
}

/// What the codec calls itself; the code of one that nobody knows.
std::string Codec_Name(AVCodecParameters const& codec)
{
    AVCodecDescriptor const* descriptor = avcodec_descriptor_get(codec.codec_id);
    if (descriptor) return descriptor->long_name ? descriptor->long_name : descriptor->name;
    std::string code;
    for (unsigned tag = codec.codec_tag, i = 0; i < 4; ++i, tag >>= 8)
        code += (tag & 0xFF) >= 0x20 && (tag & 0xFF) < 0x7F ? static_cast<char>(tag & 0xFF) : '?';
    return code;
}

}  // namespace

MoviePictures::MoviePictures(std::string url, MovieOwner<AVFormatContext> file, int stream)
    : url_(std::move(url)), file_(std::move(file)), stream_(stream), packet_(av_packet_alloc()),
      frame_(av_frame_alloc())
{
    Select_Stream(*file_, stream_);
}

bool MoviePictures::Describe()
{
    if (!packet_ || !frame_ || !Read_Packet()) return false;
    if (file_->streams[stream_]->codecpar->format == AV_PIX_FMT_PAL8) Save_Palette();
    AVStream& stream = *file_->streams[stream_];
    AVCodecParameters const& codec = *stream.codecpar;
    if (codec.width < 1 || codec.height < 1) return false;
    if (!index_.Build(*file_, stream_, *packet_)) return false;
    if (index_.Is_At_First())
        next_ = 0;
    else
        hasPacket_ = false;
    bool const isMovie = std::string_view(file_->iformat->name).find("mov") != std::string_view::npos;
    turn_ = Turn_Of(stream);
    track_.width = turn_.swaps ? codec.height : codec.width;
    track_.height = turn_.swaps ? codec.width : codec.height;
    track_.frameRate = index_.Rate();
    track_.frames = index_.Frames();
    track_.fieldOrder = Field_Order(codec.field_order);
    track_.codec = Movie_Code(codec, isMovie);
    isIntra_ = Is_Intra(stream);
    isInPlace_ = codec.codec_id == AV_CODEC_ID_QTRLE;
    track_.codecName = Codec_Name(codec);
    AVRational const aspect = av_guess_sample_aspect_ratio(file_.get(), &stream, nullptr);
    if (aspect.num > 0 && aspect.den > 0)
        track_.pixelAspect = av_q2d(turn_.swaps ? av_inv_q(aspect) : aspect);
    AVPixFmtDescriptor const* layout = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(codec.format));
    if (layout) {
        track_.bitDepth = Bit_Depth(*layout);
        // Pictures with a palette carry an alpha of no meaning.
        track_.hasAlpha =
            (layout->flags & (AV_PIX_FMT_FLAG_ALPHA | AV_PIX_FMT_FLAG_PAL)) == AV_PIX_FMT_FLAG_ALPHA;
    }
    track_.storedDepth = track_.hasAlpha ? 32 : 24;
    track_.isReadable = layout && Start_Decoder();
    return true;
}

/// Some containers hand out the palette with the first packet alone, and that one may never get to the
/// decoder.
void MoviePictures::Save_Palette()
{
    std::size_t size = 0;
    std::uint8_t const* palette = av_packet_get_side_data(packet_.get(), AV_PKT_DATA_PALETTE, &size);
    if (palette) palette_.assign(palette, palette + size);
}

void MoviePictures::Add_Palette()
{
    if (palette_.empty() || av_packet_get_side_data(packet_.get(), AV_PKT_DATA_PALETTE, nullptr)) return;
    std::uint8_t* palette = av_packet_new_side_data(packet_.get(), AV_PKT_DATA_PALETTE, palette_.size());
    if (palette) std::ranges::copy(palette_, palette);
}

double MoviePictures::Start_Seconds() const
{
    if (index_.Start() == AV_NOPTS_VALUE) return 0;
    return static_cast<double>(index_.Start()) * av_q2d(file_->streams[stream_]->time_base);
}

bool MoviePictures::Start_Decoder()
{
    // What is read in order is decoded by MovieAhead then, and one picture alone is no faster for waiting for
    // the next ones.
    int const manner = isIntra_ ? FF_THREAD_SLICE : FF_THREAD_FRAME | FF_THREAD_SLICE;
    decoder_ = Open_Decoder(*file_->streams[stream_], 0, manner);
    return decoder_ != nullptr;
}

/// The kept picture of that place, or the nearest one before it.
AVFrame const* MoviePictures::Find_Kept(std::int32_t shown, bool orBefore) const
{
    Kept const* best = nullptr;
    for (Kept const& kept : kept_)
        if (kept.shown == shown || (orBefore && kept.shown < shown && (!best || kept.shown > best->shown))) {
            best = &kept;
            if (kept.shown == shown) break;
        }
    return best ? best->picture.get() : nullptr;
}

/// Moves the picture in frame_ to the end of the ring.
void MoviePictures::Keep(std::int32_t shown)
{
    if (Find_Kept(shown, false)) return av_frame_unref(frame_.get());
    MovieOwner<AVFrame> picture(av_frame_alloc());
    if (!picture) return av_frame_unref(frame_.get());
    av_frame_move_ref(picture.get(), frame_.get());
    std::size_t const bytes = Picture_Bytes(*picture);
    kept_.push_back({shown, bytes, std::move(picture)});
    keptBytes_ += bytes;
    while (kept_.size() > 1 && (keptBytes_ > KeptBytes || kept_.size() > Most_Kept())) {
        keptBytes_ -= kept_.front().bytes;
        kept_.pop_front();
    }
}

/// The next packet of the stream into packet_. False at the end.
bool MoviePictures::Read_Packet()
{
    if (hasPacket_) return true;
    for (;;) {
        av_packet_unref(packet_.get());
        if (av_read_frame(file_.get(), packet_.get()) < 0) return false;
        if (packet_->stream_index == stream_) break;
    }
    return hasPacket_ = true;
}

/// Opens the file anew, where the first packet is that of the first sample for certain.
bool MoviePictures::Restart()
{
    next_ = -1;
    hasPacket_ = false;
    HostMovieError error;
    MovieOwner<AVFormatContext> file = Open_Movie_File(url_, error);
    if (!file || static_cast<int>(file->nb_streams) <= stream_) return false;
    file_ = std::move(file);
    Select_Stream(*file_, stream_);
    next_ = 0;
    return true;
}

/// Seeks to a time and stands at the first packet from there on that is known. False when that is behind the
/// wanted sample.
bool MoviePictures::Try_Seek(std::int32_t sample, std::int64_t time)
{
    constexpr int farthest = 64;
    if (time == AV_NOPTS_VALUE) return false;
    next_ = -1;
    hasPacket_ = false;
    if (av_seek_frame(file_.get(), stream_, time, AVSEEK_FLAG_BACKWARD) < 0) return false;
    for (int i = 0; i < farthest && Read_Packet(); ++i) {
        std::int32_t const found = index_.Find(*packet_);
        if (found > sample) return false;
        if (found >= 0) {
            next_ = found;
            return true;
        }
        hasPacket_ = false;
    }
    return false;
}

/// Empties the decoder and makes the sample the next one it gets.
bool MoviePictures::Go_To(std::int32_t sample)
{
    avcodec_flush_buffers(decoder_.get());
    isEnding_ = false;
    latest_ = -1;
    skipped_ = -1;
    troubles_ = 0;
    bool const isNear = next_ >= 0 && next_ <= sample && sample - next_ < 4;
    if (!isNear) {
        MovieSample const& target = index_.Sample(sample);
        AVRational const unit = file_->streams[stream_]->time_base;
        std::int64_t const second = unit.num > 0 ? unit.den / unit.num : 0;
        bool const isThere = Try_Seek(sample, target.pts) || Try_Seek(sample, target.dts) ||
                             (target.dts != AV_NOPTS_VALUE && Try_Seek(sample, target.dts - second)) ||
                             Restart();
        if (!isThere) return false;
    }
    for (; next_ < sample; ++next_, hasPacket_ = false)
        if (!Read_Packet()) {
            next_ = -1;
            return false;
        }
    fedFrom_ = sample;
    return true;
}

/// Whether the picture comes out when decoding goes on from here, and nothing is gained by a seek.
bool MoviePictures::Can_Go_On(std::int32_t shown) const
{
    if (next_ < 0 || fedFrom_ < 0 || shown <= latest_) return false;
    std::int32_t const sample = index_.Sample_Of(shown);
    if (isEnding_ && sample >= next_) return false;  // it only gives out what it has
    std::int32_t const key = index_.Key_Before(sample, 0);
    return key >= fedFrom_ && key <= next_ && sample > skipped_;
}

/// Hands the next packet to the decoder, or the news that there is none, also behind the sample `last`.
bool MoviePictures::Feed(std::int32_t last)
{
    bool const isOver = stopsAtWanted_ && next_ > index_.Picture_End(last);
    if (isOver || next_ < 0 || next_ >= index_.Samples() || !Read_Packet()) {
        if (isEnding_) return false;
        isEnding_ = true;
        avcodec_send_packet(decoder_.get(), nullptr);
        return true;
    }
    Add_Palette();
    decoder_->reordered_opaque = next_;
    bool const skips = skipsOthers_ && next_ < last;
    decoder_->skip_frame = skips ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
    if (skips) skipped_ = next_;
    if (avcodec_send_packet(decoder_.get(), packet_.get()) < 0) ++troubles_;
    hasPacket_ = false;
    ++next_;
    return true;
}

/// Puts the picture that the decoder gave into the ring.
MoviePictures::Outcome MoviePictures::Take_Picture(std::int32_t wanted)
{
    std::int64_t const sample = frame_->reordered_opaque;
    std::int32_t shown = -1;
    if (!index_.Has_Times())
        shown = latest_ + 1;
    else if (sample >= 0 && sample < index_.Samples())
        shown = index_.Sample(static_cast<std::int32_t>(sample)).shown;
    if (shown < 0) {
        av_frame_unref(frame_.get());
        return Outcome::Failed;
    }
    latest_ = std::max(latest_, shown);
    if (isInPlace_ && shown < wanted && !Is_Stepping_Back())
        av_frame_unref(
            frame_.get());  // it is not held, so that it is changed into the next one and not copied
    else
        Keep(shown);
    return shown == wanted ? Outcome::Found : shown > wanted ? Outcome::Missing : Outcome::Failed;
}

/// Decodes on until the picture is in the ring, or a later one says that it does not come.
MoviePictures::Outcome MoviePictures::Decode_To(std::int32_t shown)
{
    std::int32_t const last = index_.Sample_Of(shown);
    for (int complaints = 0; complaints < MostComplaints;) {
        int const result = avcodec_receive_frame(decoder_.get(), frame_.get());
        if (result >= 0) {
            Outcome const outcome = Take_Picture(shown);
            if (outcome != Outcome::Failed) return outcome;
            complaints = 0;
        } else if (result == AVERROR(EAGAIN)) {
            if (!Feed(last)) return Outcome::Missing;
        } else if (result == AVERROR_EOF) {
            return Outcome::Missing;
        } else {
            ++troubles_;
            ++complaints;
        }
    }
    return Outcome::Failed;
}

void MoviePictures::Settle_Manner(std::int32_t shown)
{
    std::int32_t const step = shown - std::exchange(asked_, shown);
    if (step == 0) return;
    // Who begins at the first picture will most likely go on.
    Manner const manner = step == 1 || shown == 0            ? Manner::Forward
                          : step < 0 && step >= -LongestStep ? Manner::Back
                                                             : Manner::Jumping;
    steps_ = std::exchange(manner_, manner) == manner ? steps_ + 1 : 1;
}

/// A single step back may be a jump like any other.
bool MoviePictures::Is_Stepping_Back() const
{
    return manner_ == Manner::Back && steps_ > 1;
}

std::size_t MoviePictures::Most_Kept() const
{
    return manner_ == Manner::Back && !isIntra_ ? KeptPictures : KeptFew;
}

/// Gives out what follows the sample until there is no more room. False when it cannot be reached.
bool MoviePictures::Fill_Ahead(std::int32_t sample)
{
    if (sample >= index_.Samples()) return false;
    if (!ahead_) ahead_ = std::make_unique<MovieAhead>(*file_->streams[stream_]);
    if (!ahead_->Has(sample) || next_ != aheadNext_) {
        ahead_->Drop();
        if (!Go_To(sample)) return false;
        fedFrom_ = -1;  // the other decoder gets nothing of it
    }
    for (; ahead_->Has_Room() && next_ < index_.Samples() && Read_Packet(); ++next_, hasPacket_ = false) {
        Add_Palette();
        ahead_->Give(next_, *packet_);
    }
    aheadNext_ = next_;
    return ahead_->Has(sample);
}

/// Puts a picture into the ring that was decoded ahead. False when there is none.
bool MoviePictures::Take_Ahead(std::int32_t shown)
{
    std::int32_t const sample = index_.Sample_Of(shown);
    if (!Fill_Ahead(sample)) return false;
    MovieOwner<AVFrame> const picture = ahead_->Take(sample);
    Fill_Ahead(sample + 1);
    if (!picture) return false;
    av_frame_unref(frame_.get());
    av_frame_move_ref(frame_.get(), picture.get());
    Keep(shown);
    return true;
}

/// Decodes until the picture is in the ring: going on from here where that leads to it, else from a key
/// frame.
bool MoviePictures::Try(std::int32_t shown, std::int32_t key, bool mayGoOn)
{
    stopsAtWanted_ = false;
    if (!mayGoOn || !Can_Go_On(shown)) {
        // A picture that needs no other is decoded alone. Going on behind it empties the decoder again.
        stopsAtWanted_ = mayGoOn && key == index_.Sample_Of(shown) && manner_ != Manner::Forward;
        if (!Go_To(key)) return false;
    }
    return Decode_To(shown) == Outcome::Found;
}

/// The same without what no other picture needs. A decoder can depend on it all the same, so that this may
/// fail.
bool MoviePictures::Try_Skipping(std::int32_t shown)
{
    skipsOthers_ = true;
    bool const isFound = Try(shown, index_.Key_Before(index_.Sample_Of(shown), 0), true);
    skipsOthers_ = false;
    if (!isFound) fedFrom_ = -1;  // nothing goes on from here
    return isFound;
}

void MoviePictures::Forget_Kept()
{
    kept_.clear();
    keptBytes_ = 0;
}

/// The decoded picture, out of the ring or made now; null when it cannot be had.
AVFrame const* MoviePictures::Fetch(std::int32_t shown)
{
    Settle_Manner(shown);
    if (AVFrame const* kept = Find_Kept(shown, false)) return kept;
    bool const isPlayed = manner_ == Manner::Forward && steps_ > 1;
    if (isIntra_ && isPlayed && index_.Has_Times() && Take_Ahead(shown)) return Find_Kept(shown, false);
    std::int32_t const sample = index_.Sample_Of(shown);
    // A picture that is still held somewhere is copied before it is changed.
    if (isInPlace_ && !Is_Stepping_Back() && index_.Sample(sample).size >= SmallestChange) Forget_Kept();
    if (manner_ == Manner::Jumping && index_.Has_Times() && !isIntra_ && Try_Skipping(shown))
        return Find_Kept(shown, false);
    for (int back : earlierTries) {
        std::int32_t const key = index_.Key_Before(sample, back);
        if (back > 0 && fedFrom_ >= 0 && key >= fedFrom_) break;
        if (Try(shown, key, back == 0)) return Find_Kept(shown, false);
        // A sample without a picture of its own leaves on what was shown before it.
        if (troubles_ == 0 && (key == 0 || back > 0))
            if (AVFrame const* before = Find_Kept(shown, true)) return before;
        if (key == 0) break;
    }
    return nullptr;
}

bool MoviePictures::Read(std::int64_t frame, void* pixels, std::size_t rowBytes, HostPixels layout)
{
    if (!track_.isReadable || frame < 0 || frame >= index_.Frames()) return false;
    AVFrame const* picture = Fetch(index_.Shown_At(frame));
    if (!picture) return false;
    if (turn_.Is_None())
        return converter_.To_RGBA(*picture, track_.width, track_.height, pixels, rowBytes, layout);
    int const width = turn_.swaps ? track_.height : track_.width;
    int const height = turn_.swaps ? track_.width : track_.height;
    std::size_t const storedRowBytes = static_cast<std::size_t>(width) * Host_Pixel_Bytes(layout);
    stored_.resize(storedRowBytes * static_cast<std::size_t>(height));
    if (!converter_.To_RGBA(*picture, width, height, stored_.data(), storedRowBytes, layout)) return false;
    Turn_Picture(turn_, width, height, layout, stored_.data(), storedRowBytes, pixels, rowBytes);
    return true;
}
