// See MovieBands.h.
#include "MovieBands.h"

#include <algorithm>
#include <cstdint>
#include <system_error>

namespace {

constexpr unsigned MostThreads = 16;

/// What a band has at least, so that waking up another thread is little beside it.
constexpr std::int64_t BandPixels = 1 << 15;

/// Bands for each processor: one that is late with its last band should not keep the others waiting.
constexpr int BandsEach = 8;

/// Looks at whether the others have ended before going to sleep for it.
constexpr int Patience = 200;

}  // namespace

std::shared_ptr<MovieBands> MovieBands::Shared()
{
    static std::mutex mutex;
    static std::weak_ptr<MovieBands> known;
    std::lock_guard const lock(mutex);
    std::shared_ptr<MovieBands> bands = known.lock();
    if (!bands) {
        bands = std::make_shared<MovieBands>();
        known = bands;
    }
    return bands;
}

MovieBands::MovieBands()
{
    unsigned const count = std::clamp(std::thread::hardware_concurrency(), 1U, MostThreads);
    threads_.reserve(count);
    for (unsigned worker = 1; worker < count; ++worker)
        try {
            threads_.emplace_back(&MovieBands::Wait_For_Work, this, std::size_t{worker});
        } catch (std::system_error const&) {
            break;  // those that there are will do
        }
}

MovieBands::~MovieBands()
{
    {
        std::lock_guard const lock(mutex_);
        isOver_ = true;
    }
    begins_.notify_all();
    for (std::thread& thread : threads_)
        thread.join();
}

void MovieBands::Work_On(std::size_t worker)
{
    for (;;) {
        int const top = next_.fetch_add(bandRows_, std::memory_order_relaxed);
        if (top >= height_) return;
        (*work_)(top, std::min(top + bandRows_, height_), worker);
    }
}

void MovieBands::Wait_For_Work(std::size_t worker)
{
    std::unique_lock lock(mutex_);
    for (;;) {
        begins_.wait(lock, [&] { return isOver_ || (work_ && next_.load() < height_); });
        if (isOver_) return;
        ++working_;
        lock.unlock();
        Work_On(worker);
        lock.lock();
        if (--working_ == 0) ends_.notify_one();
    }
}

void MovieBands::Run(int width, int height, Work const& work)
{
    std::int64_t const most = std::int64_t{width} * height / BandPixels;
    auto const bands = static_cast<int>(std::min<std::int64_t>(most, std::int64_t{BandsEach} * Workers()));
    std::unique_lock const caller(callers_, std::try_to_lock);
    if (bands < 2 || threads_.empty() || !caller) return work(0, height, 0);
    {
        std::lock_guard const lock(mutex_);
        work_ = &work;
        height_ = height;
        bandRows_ = std::max(2, (height / bands + 1) & ~1);
        next_ = 0;
    }
    begins_.notify_all();
    Work_On(0);
    // The last bands of the others end soon, most likely before a sleep would.
    for (int i = 0; i < Patience && working_.load(std::memory_order_acquire) > 0; ++i)
        std::this_thread::yield();
    std::unique_lock lock(mutex_);
    ends_.wait(lock, [&] { return working_ == 0; });
    work_ = nullptr;
}
