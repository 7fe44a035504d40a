// See MovieIndex.h.
#include "MovieIndex.h"

#include "MovieFields.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>

namespace {

/// Codecs without frames shown out of order but with such that need others.
bool Is_In_Order(AVStream const& stream)
{
    switch (stream.codecpar->codec_id) {
    case AV_CODEC_ID_QTRLE:
    case AV_CODEC_ID_FFV1:
    case AV_CODEC_ID_CINEPAK:
    case AV_CODEC_ID_RPZA:
    case AV_CODEC_ID_SMC: return true;
    default: return Is_Intra(stream);
    }
}

double Seconds(AVRational unit)
{
    return unit.den ? static_cast<double>(unit.num) / unit.den : 0.0;
}

/// Whether a container's table was written with the packets: one that points at nothing, or outside the file,
/// was not.
bool Is_Whole(AVFormatContext const& file, AVStream& stream)
{
    std::int64_t const fileSize = avio_size(file.pb);
    for (int i = 0; i < avformat_index_get_entries_count(&stream); ++i) {
        AVIndexEntry const* const entry = avformat_index_get_entry(&stream, i);
        if (entry->size < 1 || entry->pos < 0 || entry->pos > fileSize - entry->size) return false;
    }
    return true;
}

/// How much later than they are decoded samples are shown. False where the container has no tables that tell
/// all.
bool Read_Offsets(AVFormatContext const& file, AVStream& stream, std::vector<std::int32_t>& offsets)
{
    if (std::strstr(file.iformat->name, "mov"))
        return Read_Movie_Offsets(Movie_Path(file.url), stream.id, offsets);
    return Is_In_Order(stream) && Is_Whole(file, stream);
}

}  // namespace

void MovieIndex::Add_Entries(AVStream& stream, std::int64_t shift, std::span<std::int32_t const> offsets)
{
    std::vector<bool> isShown;
    samples_.reserve(offsets.size());
    for (std::int32_t offset : offsets) {
        AVIndexEntry const* entry = avformat_index_get_entry(&stream, static_cast<int>(samples_.size()));
        std::int64_t const time = entry->timestamp;
        if (!samples_.empty()) samples_.back().duration = time - samples_.back().dts;
        samples_.push_back(
            {time + shift + offset, time, 0, entry->size, -1, (entry->flags & AVINDEX_KEYFRAME) != 0, false});
        isShown.push_back(!(entry->flags & AVINDEX_DISCARD_FRAME));
    }
    std::size_t const count = samples_.size();
    samples_.back().duration = std::max<std::int64_t>(
        0, stream.duration != AV_NOPTS_VALUE ? stream.duration - samples_.back().dts
                                             : (count > 1 ? samples_[count - 2].duration : 0));
    Order_Shown(isShown);
}

/// The library has the times of decoding, after the edits of the movie, and the file how much later samples
/// are shown; the first packet tells what is added to all of them. Fragments come with tables of their own,
/// which are read on the way, and edits that leave out samples or repeat them are followed by the library
/// alone.
bool MovieIndex::Take_Table(AVFormatContext const& file, AVStream& stream, AVPacket const& first)
{
    int const entries = avformat_index_get_entries_count(&stream);
    if (entries < 1 || entries != stream.nb_frames) return false;
    std::vector<std::int32_t> offsets(static_cast<std::size_t>(entries));
    if (!Read_Offsets(file, stream, offsets)) return false;
    AVIndexEntry const* const start = avformat_index_get_entry(&stream, 0);
    if (first.pts == AV_NOPTS_VALUE || first.dts != start->timestamp || first.size != start->size)
        return false;
    Add_Entries(stream, first.pts - first.dts - offsets[0], offsets);
    return true;
}

/// Gives samples without times those of decoding, in the order of their numbers, which begin anew with 0 at
/// some of the key frames. False when the numbers tell no order.
bool MovieIndex::Number_Times(std::span<int const> numbers)
{
    std::vector<std::int64_t> times;
    std::vector<std::size_t> pictures;
    for (std::size_t i = 0; i < samples_.size(); ++i) {
        if (samples_[i].isSecondField) continue;
        if (samples_[i].dts == AV_NOPTS_VALUE) return false;
        pictures.push_back(i);
        times.push_back(samples_[i].dts);
    }
    auto const isBeginning = [&](std::size_t i) { return samples_[i].isKey && numbers[i] == 0; };
    if (pictures.empty() || !isBeginning(pictures[0]) || !std::ranges::is_sorted(times)) return false;
    for (auto first = pictures.begin(); first != pictures.end();) {
        auto const end = std::find_if(first + 1, pictures.end(), isBeginning);
        std::sort(first, end, [&](std::size_t a, std::size_t b) { return numbers[a] < numbers[b]; });
        auto const isSame = [&](std::size_t a, std::size_t b) { return numbers[a] == numbers[b]; };
        if (std::adjacent_find(first, end, isSame) != end) return false;
        first = end;
    }
    for (std::size_t i = 0; i < pictures.size(); ++i)
        samples_[pictures[i]].pts = times[i];
    return true;
}

bool MovieIndex::Scan(AVFormatContext& file, int stream, std::span<AVPacket const* const> begun)
{
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    MovieOwner<AVPacket> packet(av_packet_alloc());
    if (!packet) return false;
    std::vector<bool> isShown;
    FieldPairs fields(*file.streams[stream]);
    std::vector<int> numbers;
    auto const add = [&](AVPacket const& next) {
        if (next.stream_index != stream || samples_.size() >= most) return;
        bool const isSecond = fields.Is_Second(next);
        bool const isKey = next.flags & AV_PKT_FLAG_KEY && !isSecond;
        samples_.push_back({next.pts, next.dts, next.duration, next.size, -1, isKey, isSecond});
        isShown.push_back(!(next.flags & AV_PKT_FLAG_DISCARD) && !isSecond);
        numbers.push_back(fields.Has_Numbers() ? fields.Number() : 0);
    };
    for (AVPacket const* next : begun)
        add(*next);
    for (; av_read_frame(&file, packet.get()) >= 0; av_packet_unref(packet.get()))
        add(*packet);
    if (samples_.empty()) return false;
    hasTimes_ = std::ranges::none_of(
        samples_, [](auto const& s) { return s.pts == AV_NOPTS_VALUE && !s.isSecondField; });
    if (!hasTimes_ && Is_In_Order(*file.streams[stream])) {
        hasTimes_ = std::ranges::none_of(samples_, [](auto const& s) { return s.dts == AV_NOPTS_VALUE; });
        if (hasTimes_)
            for (MovieSample& sample : samples_)
                sample.pts = sample.dts;
    }
    if (!hasTimes_ && fields.Has_Numbers()) hasTimes_ = Number_Times(numbers);
    Order_Shown(isShown);
    return true;
}

void MovieIndex::Order_Shown(std::vector<bool> const& isShown)
{
    for (std::size_t i = 0; i < samples_.size(); ++i) {
        if (samples_[i].isKey) keys_.push_back(static_cast<std::int32_t>(i));
        if (isShown[i]) shown_.push_back(static_cast<std::int32_t>(i));
        if (samples_[i].dts == AV_NOPTS_VALUE || (i > 0 && samples_[i].dts < samples_[i - 1].dts))
            isSorted_ = false;
    }
    if (hasTimes_)
        std::ranges::stable_sort(shown_, {}, [&](std::int32_t number) { return Sample(number).pts; });
    for (std::size_t i = 0; i < shown_.size(); ++i)
        samples_[static_cast<std::size_t>(shown_[i])].shown = static_cast<std::int32_t>(i);
    if (hasTimes_ && !shown_.empty()) start_ = Time_Of(0);
}

std::int64_t MovieIndex::Duration_Of(std::size_t shown) const
{
    if (shown + 1 < shown_.size()) return Time_Of(shown + 1) - Time_Of(shown);
    return Sample(shown_[shown]).duration;
}

/// The first duration that two neighbours share, else that of the first sample.
std::int64_t MovieIndex::Usual_Duration() const
{
    for (std::size_t i = 1; i < shown_.size(); ++i)
        if (Duration_Of(i) == Duration_Of(i - 1)) return Duration_Of(i);
    std::int64_t const first = Duration_Of(0);
    if (first > 1) return first;
    std::int64_t const all = Time_Of(shown_.size() - 1) + Duration_Of(shown_.size() - 1) - start_;
    return all / static_cast<std::int64_t>(shown_.size());
}

/// Whether steps of that rate explain all times but for rounding to the unit.
bool MovieIndex::Is_Even(AVRational rate, AVRational unit) const
{
    if (rate.num <= 0 || rate.den <= 0) return false;
    double const step = 1.0 / (av_q2d(rate) * Seconds(unit));
    if (!(step >= 4.0)) return false;
    for (std::size_t i = 0; i < shown_.size(); ++i)
        if (std::fabs(static_cast<double>(Time_Of(i) - start_) - static_cast<double>(i) * step) > 1.01)
            return false;
    return true;
}

void MovieIndex::Settle_Rate(AVFormatContext& file, AVStream& stream)
{
    frames_ = static_cast<std::int64_t>(shown_.size());
    AVRational const guess = av_guess_frame_rate(&file, &stream, nullptr);
    rate_ = guess.num > 0 && guess.den > 0 ? av_q2d(guess) : 30.0;
    AVRational const unit = stream.time_base;
    if (!hasTimes_ || unit.num <= 0 || unit.den <= 0) return;

    std::int64_t const first = Duration_Of(0);
    bool isEven = first > 0;
    for (std::size_t i = 1; isEven && i + 1 < shown_.size(); ++i)
        isEven = Duration_Of(i) == first;
    auto const rateOf = [&](std::int64_t ticks) {
        return unit.den / (static_cast<double>(unit.num) * static_cast<double>(ticks));
    };
    if (isEven) {
        // A coarse clock can hide the true rate behind even steps, as thirds of a tick in a short movie.
        rate_ = shown_.size() > 1 && Is_Even(stream.r_frame_rate, unit) ? av_q2d(stream.r_frame_rate)
                                                                        : rateOf(first);
        return;
    }
    for (AVRational const& rate : {stream.r_frame_rate, stream.avg_frame_rate, guess})
        if (Is_Even(rate, unit)) {
            rate_ = av_q2d(rate);
            return;
        }
    bool const isMpeg = stream.codecpar->codec_id == AV_CODEC_ID_MPEG1VIDEO ||
                        stream.codecpar->codec_id == AV_CODEC_ID_MPEG2VIDEO;
    std::int64_t const usual = isMpeg ? 0 : Usual_Duration();
    if (usual > 0) rate_ = rateOf(usual);
    ticksPerFrame_ = 1.0 / (rate_ * Seconds(unit));
    auto const last = shown_.size() - 1;
    double const length = static_cast<double>(Time_Of(last) - start_) +
                          (Duration_Of(last) > 0 ? static_cast<double>(Duration_Of(last)) : ticksPerFrame_);
    frames_ = std::max<std::int64_t>(1, std::llround(std::min(length / ticksPerFrame_, 2147483647.0)));
}

bool MovieIndex::Build(AVFormatContext& file, int stream, AVPacket const& first)
{
    AVStream& track = *file.streams[stream];
    std::vector<AVPacket const*> begun{&first};
    FieldPairs fields(track);
    fields.Is_Second(first);
    // Tables do not tell two fields in samples of their own from two pictures. Movie files hardly ever have
    // them.
    MovieOwner<AVPacket> second(av_packet_alloc());
    bool hasPairs = false;
    if (fields.Has_Field() && second && av_read_frame(&file, second.get()) >= 0) {
        begun.push_back(second.get());
        hasPairs = second->stream_index == stream && fields.Is_Second(*second);
    }
    bool const hasTable = !hasPairs && Take_Table(file, track, first);
    isAtFirst_ = hasTable && begun.size() == 1;
    if (!hasTable && !Scan(file, stream, begun)) return false;
    if (shown_.empty()) return false;
    Settle_Rate(file, *file.streams[stream]);
    return true;
}

std::int32_t MovieIndex::Shown_At(std::int64_t frame) const
{
    if (ticksPerFrame_ == 0) return static_cast<std::int32_t>(frame);
    // Not the middle of the frame: a sample that is due at it belongs to the next one.
    double const time = (static_cast<double>(frame) + 0.4) * ticksPerFrame_ + static_cast<double>(start_);
    auto const next = std::ranges::upper_bound(
        shown_, time, {}, [&](std::int32_t number) { return static_cast<double>(Sample(number).pts); });
    return std::max(0, static_cast<std::int32_t>(next - shown_.begin()) - 1);
}

std::int32_t MovieIndex::Key_Before(std::int32_t sample, int back) const
{
    auto key = std::ranges::upper_bound(keys_, sample) - keys_.begin() - 1;
    while (key > 0 && hasTimes_ && Sample(keys_[static_cast<std::size_t>(key)]).pts > Sample(sample).pts)
        --key;
    key -= back;
    return key >= 0 && hasTimes_ ? keys_[static_cast<std::size_t>(key)] : 0;
}

std::int32_t MovieIndex::Find(AVPacket const& packet) const
{
    if (!isSorted_ || packet.dts == AV_NOPTS_VALUE) return -1;
    auto sample = std::ranges::lower_bound(samples_, packet.dts, {}, &MovieSample::dts);
    for (; sample != samples_.end() && sample->dts == packet.dts; ++sample)
        if (sample->size == packet.size && (packet.pts == AV_NOPTS_VALUE || packet.pts == sample->pts))
            return static_cast<std::int32_t>(sample - samples_.begin());
    return -1;
}
