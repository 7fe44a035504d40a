// Events, and waiting for them.
#include "PlatformEvent.h"
#include "ZVLibInternal.h"
#include "ZVThread.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <climits>
#include <iterator>
#include <new>
#include <optional>
#include <thread>
#include <vector>

/// Milliseconds until the deadline as OS_Wait_On_Word takes them, rounded up.
static long Time_Left(std::optional<std::chrono::steady_clock::time_point> const& deadline)
{
    if (!deadline) return -1;
    auto const left =
        std::chrono::ceil<std::chrono::milliseconds>(*deadline - std::chrono::steady_clock::now());
    return std::max(static_cast<long>(left.count()), 0L);
}

void ZVPlatformEvent::Change(uint32_t flag)
{
    uint32_t old = word_.load();
    while (!word_.compare_exchange_weak(old, ((old + numberStep) & ~flagBit) | flag)) {
    }
    OS_Wake_Word(word_, true);
}

void ZVPlatformEvent::Delete()
{
    word_.fetch_or(deletedBit);
    OS_Wake_Word(word_, true);
}

std::optional<long> ZVPlatformEvent::Meaning(uint32_t now)
{
    if (now & deletedBit) return ZVCEvent::ZV_EVENT_DELETED;
    if (now & flagBit) return ZVCEvent::ZV_EVENT_SET;
    return std::nullopt;
}

long ZVPlatformEvent::Wait(unsigned long milliseconds)
{
    // Half of what the clock counts to is a limit that nobody lives to see.
    static constexpr unsigned long longest = LONG_MAX / 2 / 1'000'000;
    std::optional<std::chrono::steady_clock::time_point> deadline;
    if (milliseconds)
        deadline =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(std::min(milliseconds, longest));
    uint32_t const before = word_.load() & ~(flagBit | deletedBit);
    for (;;) {
        uint32_t const now = word_.load();
        if (std::optional<long> const result = Meaning(now)) return *result;
        if (now != before) return ZVCEvent::ZV_EVENT_CLEAR;
        if (!OS_Wait_On_Word(word_, before, Time_Left(deadline)) && word_.load() == before)
            return ZVCEvent::ZV_EVENT_TIMEOUT;
    }
}

ZVCEvent::ZVCEvent()
try : event_(std::make_shared<ZVPlatformEvent>()) {
} catch (std::bad_alloc const&) {
    Assert_Fail(__FILE__, __LINE__);
}

ZVCEvent::~ZVCEvent()
{
    event_->Delete();
}

void ZVCEvent::Set()
{
    event_->Set();
}

void ZVCEvent::Reset()
{
    event_->Reset();
}

long ZVCEvent::WaitFor(unsigned long milliseconds)
{
    std::shared_ptr<ZVPlatformEvent> const event = event_;  // outlives this object
    return event->Wait(milliseconds);
}

using EventList = std::vector<std::shared_ptr<ZVPlatformEvent>>;

/// The first event of the list that is set, or with `orDeleted` was deleted; nothing when there is none.
static std::optional<long> Look_At_List(EventList const& list, bool orDeleted)
{
    for (std::size_t i = 0; i < list.size(); ++i) {
        std::optional<long> const result = list[i]->Look();
        if (result == ZVCEvent::ZV_EVENT_SET) return ZVCEvent::ZV_EVENT_FIRST + static_cast<long>(i);
        if (orDeleted && result == ZVCEvent::ZV_EVENT_DELETED) return result;
    }
    return std::nullopt;
}

long ZVCEvent::WaitForMultiple(ZVCEvent** list, unsigned long count, unsigned long tries)
{
    // Neither this object nor those of the list are touched again: they may be deleted meanwhile.
    std::shared_ptr<ZVPlatformEvent> const own = event_;
    EventList others;
    try {
        std::transform(list, list + count, std::back_inserter(others),
                       [](ZVCEvent* each) { return each->event_; });
    } catch (std::bad_alloc const&) {
        return ZV_EVENT_TIMEOUT;
    }

    if (own->Wait(0) == ZV_EVENT_SET) return ZV_EVENT_SET;
    if (std::optional<long> const result = Look_At_List(others, false)) return *result;
    for (;;) {
        long const woken = own->Wait(0);
        if (woken == ZV_EVENT_SET) return woken;
        if (std::optional<long> const result = Look_At_List(others, true)) return *result;
        // No wait on it will ever end otherwise.
        if (woken == ZV_EVENT_DELETED) return woken;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (tries && --tries == 0) return ZV_EVENT_TIMEOUT;
    }
}

long ZVCEvent::WaitForMultiple(std::list<ZVCEvent*> const& list, unsigned long tries)
{
    std::array<ZVCEvent*, 5> first{};
    std::size_t const count = std::min(list.size(), first.size());
    std::copy_n(list.begin(), count, first.begin());
    return WaitForMultiple(first.data(), count, tries);
}
