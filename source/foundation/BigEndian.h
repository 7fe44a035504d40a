// Numbers in files, which are big-endian whatever the host is.
#pragma once

#include <cstdint>

inline uint16_t Load_Big16(uint8_t const* bytes)
{
    return static_cast<uint16_t>(bytes[0] << 8 | bytes[1]);
}

inline uint32_t Load_Big32(uint8_t const* bytes)
{
    return static_cast<uint32_t>(Load_Big16(bytes)) << 16 | Load_Big16(bytes + 2);
}

inline void Store_Big16(uint8_t* bytes, uint32_t value)
{
    bytes[0] = static_cast<uint8_t>(value >> 8);
    bytes[1] = static_cast<uint8_t>(value);
}

inline void Store_Big32(uint8_t* bytes, uint32_t value)
{
    Store_Big16(bytes, value >> 16);
    Store_Big16(bytes + 2, value);
}
