// See MovieAhead.h.
#include "MovieAhead.h"

#include <algorithm>
#include <system_error>

namespace {

constexpr unsigned MostThreads = 16;

/// Decodes a packet that needs no other; null when that fails.
MovieOwner<AVFrame> Decode_Alone(AVCodecContext& decoder, AVPacket const& packet)
{
    MovieOwner<AVFrame> picture(av_frame_alloc());
    if (!picture || avcodec_send_packet(&decoder, &packet) < 0) return nullptr;
    int result = avcodec_receive_frame(&decoder, picture.get());
    if (result == AVERROR(EAGAIN)) {
        avcodec_send_packet(&decoder, nullptr);
        result = avcodec_receive_frame(&decoder, picture.get());
        avcodec_flush_buffers(&decoder);
    }
    return result >= 0 ? std::move(picture) : nullptr;
}

}  // namespace

MovieAhead::MovieAhead(AVStream const& stream)
{
    unsigned const count = std::clamp(std::thread::hardware_concurrency(), 1U, MostThreads);
    for (unsigned i = 0; i < count; ++i)
        if (MovieOwner<AVCodecContext> decoder = Open_Decoder(stream, 1, 0))
            decoders_.push_back(std::move(decoder));
    for (MovieOwner<AVCodecContext> const& decoder : decoders_)
        try {
            threads_.emplace_back(&MovieAhead::Work, this, decoder.get());
        } catch (std::system_error const&) {
            break;  // those that there are will do
        }
    // Two more: the decoders have finished a picture each when one is taken, and none should wait for its
    // next.
    most_ = threads_.empty() ? 0 : threads_.size() + 2;
}

MovieAhead::~MovieAhead()
{
    Drop();
    {
        std::lock_guard const lock(mutex_);
        isOver_ = true;
    }
    waiting_.notify_all();
    for (std::thread& thread : threads_)
        thread.join();
}

void MovieAhead::Work(AVCodecContext* decoder)
{
    auto const isWaiting = [](auto const& job) { return job->state == State::Waiting; };
    std::unique_lock lock(mutex_);
    for (;;) {
        auto next = jobs_.begin();
        waiting_.wait(lock, [&] {
            next = std::ranges::find_if(jobs_, isWaiting);
            return isOver_ || next != jobs_.end();
        });
        if (isOver_) return;
        std::shared_ptr<Job> const job = *next;
        job->state = State::Running;
        lock.unlock();
        MovieOwner<AVFrame> picture = Decode_Alone(*decoder, *job->packet);
        lock.lock();
        job->picture = std::move(picture);
        job->state = State::Done;
        done_.notify_one();
    }
}

void MovieAhead::Give(std::int32_t sample, AVPacket& packet)
{
    auto job = std::make_shared<Job>(sample);
    if (job->packet) av_packet_move_ref(job->packet.get(), &packet);
    if (!job->packet) job->state = State::Done;
    {
        std::lock_guard const lock(mutex_);
        jobs_.push_back(std::move(job));
    }
    waiting_.notify_one();
}

bool MovieAhead::Has(std::int32_t sample) const
{
    return std::ranges::any_of(jobs_, [&](auto const& job) { return job->sample == sample; });
}

MovieOwner<AVFrame> MovieAhead::Take(std::int32_t sample)
{
    std::unique_lock lock(mutex_);
    while (!jobs_.empty() && jobs_.front()->sample != sample)
        jobs_.pop_front();
    if (jobs_.empty()) return nullptr;
    std::shared_ptr<Job> const job = jobs_.front();
    done_.wait(lock, [&] { return job->state == State::Done; });
    jobs_.pop_front();
    return std::move(job->picture);
}

void MovieAhead::Drop()
{
    std::lock_guard const lock(mutex_);
    jobs_.clear();
}
