// Reads of whole frames in chunks, so that the caller's poll function runs while the disk works.

#include "MacChunkedRead.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <stop_token>
#include <sys/uio.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr unsigned long ChunkSize = 0x20000;

/// How long the caller rests between two polls. The end of the read wakes it at once.
constexpr auto PollPause = std::chrono::milliseconds(1);

/// A chain of chunk reads. While a worker runs it, only `done` is looked at by anyone else.
struct ChunkChain {
    int descriptor = -1;
    uint8_t* next = nullptr;
    unsigned long remaining = 0;
    unsigned long total = 0;
    int error = 0;

    std::mutex mutex;
    std::condition_variable finished;
    bool done = false;
};

void Count_Chunk(ChunkChain& chain, unsigned long got)
{
    chain.next += got;
    chain.remaining -= got;
    chain.total += got;
}

/// Reads the next chunk.
/// @return  whether another one follows
bool Read_Next_Chunk(ChunkChain& chain)
{
    unsigned long const wanted = std::min(chain.remaining, ChunkSize);
    unsigned long got = wanted;
    chain.error = Mac_Read_Plain(chain.descriptor, &got, chain.next);
    Count_Chunk(chain, got);
    return chain.error == 0 && got == wanted && chain.remaining > 0;
}

void Run_Chain(std::stop_token const& stop, ChunkChain& chain)
{
    while (Read_Next_Chunk(chain) && !stop.stop_requested()) {
    }
    std::lock_guard lock(chain.mutex);
    chain.done = true;
    chain.finished.notify_one();
}

/// Asks the caller whether to go on.
bool Poll_Says_Stop(ZVPollFunc poll, long* pollResult)
{
    long const answer = poll();
    if (pollResult) *pollResult = answer;
    return answer != 0;
}

/// Takes chunks from the page cache while they lie there whole, with a poll now and then: a second thread
/// would cost more than such a read takes. Failures and the end of the file are left to the plain read.
/// @return  true when the poll function gave up
bool Read_Cached_Chunks(ChunkChain& chain, ZVPollFunc poll, long* pollResult)
{
    auto polled = std::chrono::steady_clock::now();
    for (;;) {
        iovec const chunk = {chain.next, std::min(chain.remaining, ChunkSize)};
        ssize_t const got = preadv2(chain.descriptor, &chunk, 1, -1, RWF_NOWAIT);
        if (got <= 0) return false;
        Count_Chunk(chain, static_cast<unsigned long>(got));
        if (chain.remaining == 0 || static_cast<std::size_t>(got) < chunk.iov_len) return false;
        auto const now = std::chrono::steady_clock::now();
        if (now - polled < PollPause) continue;
        if (Poll_Says_Stop(poll, pollResult)) return true;
        polled = now;
    }
}

/// Polls until the worker is done; true when the poll function gave up before.
bool Poll_Until_Done(ChunkChain& chain, ZVPollFunc poll, long* pollResult)
{
    for (;;) {
        if (Poll_Says_Stop(poll, pollResult)) return true;
        std::unique_lock lock(chain.mutex);
        if (chain.finished.wait_for(lock, PollPause, [&] { return chain.done; })) return false;
    }
}

/// For a machine that gives no thread: polls between the chunks.
bool Poll_Between_Chunks(ChunkChain& chain, ZVPollFunc poll, long* pollResult)
{
    do {
        if (Poll_Says_Stop(poll, pollResult)) return true;
    } while (Read_Next_Chunk(chain));
    return false;
}

bool Run_Polled(ChunkChain& chain, ZVPollFunc poll, long* pollResult)
{
    if (Poll_Says_Stop(poll, pollResult) || Read_Cached_Chunks(chain, poll, pollResult)) return true;
    if (chain.remaining == 0) return false;
    std::jthread worker;
    try {
        worker = std::jthread([&chain](std::stop_token stop) { Run_Chain(stop, chain); });
    } catch (std::exception const&) {
        return Poll_Between_Chunks(chain, poll, pollResult);
    }
    bool const aborted = Poll_Until_Done(chain, poll, pollResult);
    // The worker is joined on leaving, after the chunk it has begun: the caller's memory is its own again.
    worker.request_stop();
    return aborted;
}

}  // namespace

int Mac_Read_Plain(int descriptor, unsigned long* count, void* destination)
{
    auto* next = static_cast<uint8_t*>(destination);
    unsigned long const wanted = *count;
    *count = 0;
    while (*count < wanted) {
        ssize_t const got = read(descriptor, next + *count, wanted - *count);
        if (got == 0) return 0;
        if (got > 0)
            *count += static_cast<unsigned long>(got);
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

int Mac_Read_Chunked(int descriptor, unsigned long* count, void* destination, ZVPollFunc poll,
                     long* pollResult)
{
    ChunkChain chain;
    chain.descriptor = descriptor;
    chain.next = static_cast<uint8_t*>(destination);
    chain.remaining = *count;
    if (!poll) {
        while (Read_Next_Chunk(chain)) {
        }
        *count = chain.total;
        return chain.error;
    }
    bool const aborted = Run_Polled(chain, poll, pollResult);
    if (aborted) {
        lseek(descriptor, -static_cast<off_t>(chain.total), SEEK_CUR);
        *count = 0;
        return ECANCELED;
    }
    *count = chain.total;
    return chain.error;
}
