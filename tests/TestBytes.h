// Bytes as tests make them and find them in files.
#pragma once

#include <cstdint>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

using Bytes = std::vector<uint8_t>;

inline Bytes Random_Bytes(std::mt19937& random, std::size_t count)
{
    Bytes bytes(count);
    for (uint8_t& byte : bytes)
        byte = static_cast<uint8_t>(random());
    return bytes;
}

inline Bytes Random_Bytes(unsigned seed, std::size_t count)
{
    std::mt19937 random(seed);
    return Random_Bytes(random, count);
}

/// The first bytes, as a file cut short has them.
inline Bytes Head(Bytes const& bytes, std::size_t length)
{
    return Bytes(bytes.begin(), bytes.begin() + static_cast<long>(length));
}

inline Bytes Bytes_In_File(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

inline std::string_view As_Text(Bytes const& bytes)
{
    return {reinterpret_cast<char const*>(bytes.data()), bytes.size()};
}
