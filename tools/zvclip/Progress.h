// The progress of a long job, on a terminal; silence otherwise.
#pragma once

#include <chrono>

class Progress {
public:
    explicit Progress(long total);
    ~Progress();
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

    void Step();  ///< One more frame is done.

private:
    using Clock = std::chrono::steady_clock;

    void Show();

    long total_;
    long done_ = 0;
    bool isShown_;
    Clock::time_point start_ = Clock::now();
    Clock::time_point lastShown_{};
};
