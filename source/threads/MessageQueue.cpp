// Queues of messages between threads.
#include "MessageQueue.h"

#include <new>

ZVPlatformQueue::ZVPlatformQueue()
{
    // A deque keeps its first block, so one message has room from now on.
    messages_.push_back({});
    messages_.pop_front();
}

bool ZVPlatformQueue::Post(QueueMessage const& message)
{
    std::lock_guard const lock(mutex_);
    try {
        messages_.push_back(message);
    } catch (std::bad_alloc const&) {
        return false;
    }
    // Under the lock: the one who takes the message may delete the queue.
    arrived_.notify_one();
    return true;
}

std::optional<QueueMessage> ZVPlatformQueue::Take()
{
    std::lock_guard const lock(mutex_);
    if (messages_.empty()) return std::nullopt;
    return Take_First();
}

QueueMessage ZVPlatformQueue::Wait_For_Message()
{
    std::unique_lock lock(mutex_);
    arrived_.wait(lock, [this] { return !messages_.empty(); });
    return Take_First();
}

QueueMessage ZVPlatformQueue::Take_First()
{
    QueueMessage const message = messages_.front();
    messages_.pop_front();
    return message;
}

ZVPlatformQueue* Make_Queue()
{
    try {
        return new ZVPlatformQueue;
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
}
