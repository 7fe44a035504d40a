// The progress of a long job.
#include "Progress.h"

#include <cstdio>
#include <string>
#include <unistd.h>

Progress::Progress(long total) : total_(total), isShown_(isatty(STDERR_FILENO) != 0) {}

Progress::~Progress()
{
    if (!isShown_ || done_ == 0) return;
    Show();
    std::fputc('\n', stderr);
}

void Progress::Step()
{
    ++done_;
    Clock::time_point const now = Clock::now();
    if (!isShown_ || now - lastShown_ < std::chrono::milliseconds(100)) return;
    lastShown_ = now;
    Show();
}

void Progress::Show()
{
    constexpr long barWidth = 30;
    long const filled = total_ > 0 ? done_ * barWidth / total_ : 0;
    std::string bar(static_cast<std::size_t>(filled), '#');
    bar.resize(barWidth, '.');
    double const seconds = std::chrono::duration<double>(Clock::now() - start_).count();
    std::fprintf(stderr, "\r[%s] %3ld%%  %ld/%ld  %.1f fps ", bar.c_str(),
                 total_ > 0 ? done_ * 100 / total_ : 0, done_, total_,
                 seconds > 0 ? static_cast<double>(done_) / seconds : 0.0);
    std::fflush(stderr);
}
