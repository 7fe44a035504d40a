// Queues of messages of three words between threads, for the notifications to tasks and of their end.
#pragma once

#include <array>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>

using QueueMessage = std::array<long, 3>;

struct ZVPlatformQueue {
    ZVPlatformQueue();

    /// False when memory runs out. The first message of a queue always finds its place.
    bool Post(QueueMessage const& message);

    /// The oldest message; nothing when there is none.
    std::optional<QueueMessage> Take();

    /// The oldest message, waited for without limit.
    QueueMessage Wait_For_Message();

private:
    QueueMessage Take_First();

    std::mutex mutex_;
    std::condition_variable arrived_;
    std::deque<QueueMessage> messages_;
};

/// Null when memory runs out.
ZVPlatformQueue* Make_Queue();
