// Pictures decoded ahead of the reading, for codecs whose pictures need no others.
#pragma once

#include "MovieLibrary.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

/// One decoder for each processor, on a thread of its own that sleeps while nothing is waiting. Samples are
/// taken out in the order in which they were given.
class MovieAhead {
public:
    explicit MovieAhead(AVStream const& stream);
    ~MovieAhead();
    MovieAhead(MovieAhead const&) = delete;
    MovieAhead& operator=(MovieAhead const&) = delete;

    /// False when as many samples are under way as should be.
    bool Has_Room() const { return jobs_.size() < most_; }

    /// Takes over the bytes of the packet, which is empty afterwards.
    void Give(std::int32_t sample, AVPacket& packet);

    bool Has(std::int32_t sample) const;

    /// Waits for a sample that was given, and forgets those given before it.
    /// @return  null when it could not be decoded
    MovieOwner<AVFrame> Take(std::int32_t sample);

    /// Forgets all that is under way.
    void Drop();

private:
    enum class State { Waiting, Running, Done };
    struct Job {
        explicit Job(std::int32_t number) : sample(number) {}

        std::int32_t sample;
        State state = State::Waiting;
        MovieOwner<AVPacket> packet{av_packet_alloc()};
        MovieOwner<AVFrame> picture;
    };
    void Work(AVCodecContext* decoder);

    std::vector<MovieOwner<AVCodecContext>> decoders_;
    std::vector<std::thread> threads_;
    std::mutex mutex_;
    std::condition_variable waiting_, done_;
    std::deque<std::shared_ptr<Job>> jobs_;  ///< changed by the reading thread alone, with the lock held
    std::size_t most_ = 0;
    bool isOver_ = false;
};
