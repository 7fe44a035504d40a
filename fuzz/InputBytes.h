// The bytes of a fuzzer's input as numbers, ids and texts.
#pragma once

#include <ZVLibInternal.h>

#include <cstdint>
#include <cstdlib>
#include <string>

/// What is left of the input; zeros behind its end.
class Bytes {
public:
    Bytes(uint8_t const* data, std::size_t size) : data_(data), size_(size) {}
    bool Is_Empty() const { return size_ == 0; }
    unsigned Next()
    {
        if (size_ == 0) return 0;
        --size_;
        return *data_++;
    }
    unsigned short Next_Short() { return static_cast<unsigned short>(Next() << 8 | Next()); }
    unsigned short Next_Id() { return static_cast<unsigned short>(1 + Next() % 12); }
    std::string Next_Text()
    {
        std::string text;
        for (unsigned count = Next() % 24; count > 0; --count)
            text.push_back(static_cast<char>(Next()));
        return text;
    }

private:
    uint8_t const* data_;
    std::size_t size_;
};

/// Starts the library's interface on the desktop in memory, once.
inline void Start_Headless(void (*callback)(ZVEvent*))
{
    static bool const isStarted = [callback] {
        setenv("ZV_HOST", "headless", 1);
        return InitZV(callback, nullptr, nullptr, nullptr, nullptr) != nullptr;
    }();
    if (!isStarted) std::abort();
}
