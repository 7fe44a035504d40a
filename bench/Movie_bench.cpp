// Movies of 1920 x 1080 read through their module. The yardstick is a bare loop on the same FFmpeg libraries,
// with as many threads, that decodes each frame once and converts it with the scaler's usual settings.
#include "BenchTools.h"

#include <ZVLibInternal.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <stdexcept>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

namespace {

constexpr long width = 1920, height = 1080;
constexpr int rounds = 7;

struct Deleter {
    void operator()(ZVBitmap* bitmap) const { FreeBitmapZV(bitmap); }
    void operator()(ZVClip* clip) const { FreeClipZV(clip); }
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};
template <typename T> using Owner = std::unique_ptr<T, Deleter>;

/// The library brought up, and a folder of movies made by ffmpeg: that of ZV_BENCH_MOVIES, where they stay
/// for the next run, or one that goes with this program.
class Movies {
public:
    Movies()
    {
        char const* kept = std::getenv("ZV_BENCH_MOVIES");
        isKept_ = kept != nullptr;
        std::string pattern = std::filesystem::temp_directory_path() / "zvbench.XXXXXX";
        if (!isKept_ && !mkdtemp(pattern.data())) throw std::runtime_error("no temporary directory");
        directory_ = isKept_ ? kept : pattern;
        setenv("KL_APP_DATA_DIR", directory_.c_str(), 1);
        ownsLibrary_ = !ZVEnv;
        if (ownsLibrary_ && !InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 1, 0))
            throw std::runtime_error("InitZV");
        InitFormatModulesZV(nullptr);
        Add_QuickTime_Format(nullptr);
    }
    ~Movies()
    {
        if (ownsLibrary_) CleanUpZV();
        if (!isKept_) std::filesystem::remove_all(directory_);
    }

    /// The native path of a movie.
    std::string Make(std::string const& name, std::string const& codec) const
    {
        return Run(name, "-f lavfi -i testsrc2=s=1920x1080:r=25:d=2," + codec);
    }

    /// Two hours of small pictures: two seconds over and over.
    std::string Make_Long() const
    {
        std::string const piece =
            Run("piece.mov", "-f lavfi -i testsrc2=s=320x180:r=25:d=2 -c:v libx264 -bf 2 -g 25");
        return Run("long.mov", "-stream_loop 3599 -i " + piece + " -c copy");
    }

    static std::string Spec(std::string path)
    {
        std::ranges::replace(path, '/', '\\');
        return "Root:" + path;
    }

private:
    std::string Run(std::string const& name, std::string const& arguments) const
    {
        std::string path = directory_ + "/" + name;
        std::string const command = "ffmpeg -v error -y " + arguments + " " + path;
        if (!std::filesystem::exists(path) && std::system(command.c_str()) != 0)
            throw std::runtime_error("ffmpeg");
        return path;
    }

    std::string directory_;
    bool isKept_;
    bool ownsLibrary_;
};

/// The bare loop.
class BareMovie {
public:
    BareMovie(std::string const& path, ZVBitmap* bitmap, bool isForward) : bitmap_(bitmap)
    {
        AVFormatContext* file = nullptr;
        if (avformat_open_input(&file, path.c_str(), nullptr, nullptr) < 0) throw std::runtime_error(path);
        file_.reset(file);
        avformat_find_stream_info(file, nullptr);
        AVCodecParameters const* codec = file->streams[0]->codecpar;
        AVCodec const* decoder = avcodec_find_decoder(codec->codec_id);
        bool const isIntra = avcodec_descriptor_get(codec->codec_id)->props & AV_CODEC_PROP_INTRA_ONLY;
        decoder_.reset(avcodec_alloc_context3(decoder));
        avcodec_parameters_to_context(decoder_.get(), codec);
        decoder_->thread_count = 0;
        decoder_->thread_type = isIntra && !isForward ? FF_THREAD_SLICE : FF_THREAD_FRAME | FF_THREAD_SLICE;
        avcodec_open2(decoder_.get(), decoder, nullptr);
        AVPixelFormat const to = bitmap->Type == ZV_BITMAP_RGBA16 ? AV_PIX_FMT_RGBA64 : AV_PIX_FMT_RGBA;
        scaler_.reset(sws_getContext(codec->width, codec->height, static_cast<AVPixelFormat>(codec->format),
                                     codec->width, codec->height, to, SWS_BICUBIC, nullptr, nullptr,
                                     nullptr));
        AVRational const rate = file->streams[0]->r_frame_rate;
        frameTicks_ = av_rescale_q(1, av_inv_q(rate), file->streams[0]->time_base);
    }

    void Read_All()
    {
        Seek(0);
        while (Next())
            Convert();
    }

    /// Goes on inside a group of pictures where the target lies ahead in it, and skips what nothing needs.
    void Read_At(long frame)
    {
        std::int64_t const time = file_->streams[0]->start_time + frame * frameTicks_;
        AVStream* stream = file_->streams[0];
        int const entry = av_index_search_timestamp(stream, time, AVSEEK_FLAG_BACKWARD);
        std::int64_t const key = avformat_index_get_entry(stream, entry)->timestamp;
        if (last_ == AV_NOPTS_VALUE || time <= last_ || key > last_) Seek(time);
        AVDiscard const skip = frameTicks_ > 0 ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
        target_ = time;
        skip_ = skip;
        while (Next() && frame_->pts < time) {
        }
        target_ = AV_NOPTS_VALUE;
        Convert();
    }

private:
    void Seek(std::int64_t time)
    {
        av_seek_frame(file_.get(), 0, time, AVSEEK_FLAG_BACKWARD);
        avcodec_flush_buffers(decoder_.get());
        isOver_ = false;
    }
    bool Next()
    {
        for (;;) {
            if (avcodec_receive_frame(decoder_.get(), frame_.get()) >= 0) {
                last_ = frame_->pts;
                return true;
            }
            if (isOver_) return false;
            if (av_read_frame(file_.get(), packet_.get()) < 0) {
                isOver_ = true;
                avcodec_send_packet(decoder_.get(), nullptr);
                continue;
            }
            bool const isBefore = target_ != AV_NOPTS_VALUE && packet_->pts < target_;
            decoder_->skip_frame = isBefore ? skip_ : AVDISCARD_DEFAULT;
            avcodec_send_packet(decoder_.get(), packet_.get());
            av_packet_unref(packet_.get());
        }
    }
    void Convert() const
    {
        std::uint8_t* const rows[] = {bitmap_->Pixels};
        int const rowBytes[] = {static_cast<int>(bitmap_->RowBytes)};
        sws_scale(scaler_.get(), frame_->data, frame_->linesize, 0, frame_->height, rows, rowBytes);
    }

    Owner<AVFormatContext> file_;
    Owner<AVCodecContext> decoder_;
    Owner<AVPacket> packet_{av_packet_alloc()};
    Owner<AVFrame> frame_{av_frame_alloc()};
    Owner<SwsContext> scaler_;
    ZVBitmap* bitmap_;
    std::int64_t frameTicks_ = 0, last_ = AV_NOPTS_VALUE, target_ = AV_NOPTS_VALUE;
    AVDiscard skip_ = AVDISCARD_DEFAULT;
    bool isOver_ = false;
};

/// Both sides of a measurement, with the frames that it reads.
struct Pair {
    Owner<ZVBitmap> bitmap;
    Owner<ZVClip> clip;
    std::unique_ptr<BareMovie> bare;
    std::vector<long> frames;

    void Read() const
    {
        ZVRectT<long> rect{};
        for (long frame : frames)
            if (!clip->Format->GetFrame(clip.get(), bitmap.get(), frame, &rect, width, height, 0, nullptr, 0))
                throw std::runtime_error("frame");
    }
};

Movies const& Known_Movies()
{
    static Movies const movies;
    return movies;
}

std::shared_ptr<Pair> Make_Pair(std::string const& name, std::string const& codec, ZVBitmapType type,
                                bool isForward)
{
    std::string const path = Known_Movies().Make(name, codec);
    auto pair = std::make_shared<Pair>();
    pair->bitmap.reset(AllocBitmapZV(width, height, type, nullptr));
    pair->clip.reset(OpenClipZV(Movies::Spec(path).c_str(), ZV_OPEN_NO_ALPHA_GUESS, 1, 0));
    if (!pair->clip) throw std::runtime_error(path);
    BeginClipIOZV(pair->clip.get(), nullptr);
    pair->bare = std::make_unique<BareMovie>(path, pair->bitmap.get(), isForward);
    for (long i = 0; i < pair->clip->RawFrames; ++i)
        pair->frames.push_back(i);
    if (!isForward) {
        std::ranges::shuffle(pair->frames, std::mt19937(1));
        pair->frames.resize(20);
    }
    return pair;
}

/// @param forward,jumping  limits of the times of all frames in order, and of frames in no order
void Register_Movie(std::string const& name, std::string const& codec, ZVBitmapType type, double forward,
                    double jumping)
{
    Bench::Register(
        "movie/" + name + "_forward", forward,
        [=] {
            auto const pair = Make_Pair(name, codec, type, true);
            return std::pair([=] { pair->Read(); }, [=] { pair->bare->Read_All(); });
        },
        rounds);
    Bench::Register(
        "movie/" + name + "_jumping", jumping,
        [=] {
            auto const pair = Make_Pair(name, codec, type, false);
            return std::pair([=] { pair->Read(); },
                             [=] {
                                 for (long frame : pair->frames)
                                     pair->bare->Read_At(frame);
                             });
        },
        rounds);
}

/// Opening a movie of 180,000 frames, beside opening it by the libraries alone.
void Register_Opening()
{
    Bench::Register(
        "movie/open_two_hours", 0,
        [] {
            std::string const path = Known_Movies().Make_Long();
            auto const work = [spec = Movies::Spec(path)] {
                Owner<ZVClip> const clip(OpenClipZV(spec.c_str(), ZV_OPEN_NO_ALPHA_GUESS, 1, 0));
                if (!clip || clip->RawFrames != 180000) throw std::runtime_error(spec);
            };
            auto const yardstick = [path] {
                AVFormatContext* file = nullptr;
                if (avformat_open_input(&file, path.c_str(), nullptr, nullptr) < 0)
                    throw std::runtime_error(path);
                Owner<AVFormatContext> const owner(file);
                avformat_find_stream_info(file, nullptr);
            };
            return std::pair(work, yardstick);
        },
        rounds);
}

[[maybe_unused]] bool const isRegistered = [] {
    char const noise[] = "noise=alls=8:allf=t";
    auto const grainy = [&](char const* codec) { return std::string(noise) + " -c:v " + codec; };
    // 1/0.97 of the time is the limit where nothing more is asked for.
    Register_Movie("qtrle.mov", "null -c:v qtrle -pix_fmt argb", ZV_BITMAP_RGBA8, 1 / 1.5, 1 / 0.97);
    Register_Movie("jpeg.mov", grainy("mjpeg -q:v 4 -pix_fmt yuvj420p"), ZV_BITMAP_RGBA8, 1 / 1.7, 1 / 0.97);
    Register_Movie("prores.mov", grainy("prores_ks -pix_fmt yuv422p10le"), ZV_BITMAP_RGBA8, 1 / 1.4,
                   1 / 0.97);
    Register_Movie("prores4.mov", grainy("prores_ks -profile:v 4 -pix_fmt yuva444p10le"), ZV_BITMAP_RGBA16,
                   1 / 0.97, 1 / 0.97);
    Register_Movie("h264.mov", grainy("libx264 -preset veryfast -crf 22 -bf 3 -g 250 -pix_fmt yuv420p"),
                   ZV_BITMAP_RGBA8, 1 / 0.97, 1 / 0.97);
    Register_Opening();
    return true;
}();

}  // namespace
