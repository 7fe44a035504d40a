// Work on the rows of a picture, shared out to all processors.
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

/// Threads that sleep until a picture comes along. All movies of the process share them.
class MovieBands {
public:
    /// Works on the rows from `top` to before `bottom`. Calls that run at the same time have different
    /// numbers for `worker`, below Workers().
    using Work = std::function<void(int top, int bottom, std::size_t worker)>;

    /// Those of the process, which live for as long as somebody has them.
    static std::shared_ptr<MovieBands> Shared();

    MovieBands();
    ~MovieBands();
    MovieBands(MovieBands const&) = delete;
    MovieBands& operator=(MovieBands const&) = delete;

    /// The caller's thread is one of them.
    std::size_t Workers() const { return threads_.size() + 1; }

    /// Has all rows of a picture worked on, and returns when that is done. The caller takes part, and does it
    /// alone for a small picture and while the threads work for somebody else. Bands begin at even rows.
    /// @param work  must not throw
    void Run(int width, int height, Work const& work);

private:
    void Wait_For_Work(std::size_t worker);
    void Work_On(std::size_t worker);

    std::vector<std::thread> threads_;
    std::mutex callers_;  ///< held by the one caller whom the threads work for
    std::mutex mutex_;
    std::condition_variable begins_, ends_;
    Work const* work_ = nullptr;  ///< null: nothing to do
    int height_ = 0, bandRows_ = 0;
    std::atomic<int> next_{0};     ///< first row that nobody has begun
    std::atomic<int> working_{0};  ///< threads between their first and their last band
    bool isOver_ = false;
};
