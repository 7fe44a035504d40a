// Files as the system sees them, for comparing with what the library says.
#pragma once

#include <cstdint>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

#include <ZVLibInternal.h>

using Bytes = std::vector<uint8_t>;

inline Bytes Native_Bytes(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

inline void Write_Native(std::string const& path, std::string_view bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

inline void Write_Native(std::string const& path, Bytes const& bytes)
{
    Write_Native(path, std::string_view(reinterpret_cast<char const*>(bytes.data()), bytes.size()));
}

inline struct stat Native_Info(std::string const& path)
{
    struct stat info {};
    stat(path.c_str(), &info);
    return info;
}

/// Bytes that differ from their neighbours near and far.
inline Bytes Pattern(std::size_t size)
{
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<uint8_t>(i * 31 + (i >> 8) * 7 + (i >> 16));
    return bytes;
}

inline Bytes To_Bytes(std::string_view text)
{
    return Bytes(text.begin(), text.end());
}

struct Close_File {
    void operator()(ZVFileInfo* file) const { CloseFileZV(file); }
};
using OpenFile = std::unique_ptr<ZVFileInfo, Close_File>;

struct Free_Spec {
    void operator()(char* spec) const { FreeFileSpecZV(spec); }
};
using Spec = std::unique_ptr<char, Free_Spec>;

/// The text of a spec that is freed, or "(null)".
inline std::string Text(char* spec)
{
    Spec const owned(spec);
    return spec ? spec : "(null)";
}
