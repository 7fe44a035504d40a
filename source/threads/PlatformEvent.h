// What an event is underneath, for the event class and the thread class.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>

/// The word that threads wait on holds the flag and a number that every change steps, so that a waiting
/// thread wakes even when the flag is what it was.
struct ZVPlatformEvent {
    void Set() { Change(flagBit); }
    void Reset() { Change(0); }
    void Delete();  ///< Ends all waits, now and later.
    bool IsSet() const { return word_.load() & flagBit; }

    /// What a wait ends with now; nothing while the event is clear.
    std::optional<long> Look() const { return Meaning(word_.load()); }

    /// See ZVCEvent::WaitFor.
    long Wait(unsigned long milliseconds);

private:
    static constexpr uint32_t flagBit = 1;
    static constexpr uint32_t deletedBit = 2;
    static constexpr uint32_t numberStep = 4;

    static std::optional<long> Meaning(uint32_t now);
    void Change(uint32_t flag);

    std::atomic<uint32_t> word_ = 0;
};
