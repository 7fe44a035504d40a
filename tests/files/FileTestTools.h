// Files as the system sees them, for comparing with what the library says, and guards for what it gives.
#pragma once

#include "TestBytes.h"

#include <ZVLibInternal.h>

#include <memory>
#include <sys/stat.h>

inline void Write_Native(std::string const& path, std::string_view bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

inline void Write_Native(std::string const& path, Bytes const& bytes)
{
    Write_Native(path, As_Text(bytes));
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

inline OpenFile Create_File(std::string const& spec, ZVFilePermission permission = ZVFilePermWrite,
                            ZVFileFlags flags = ZVFileFlagNone)
{
    return OpenFile(CreateFileZV(spec.c_str(), permission, ZV_BLANK_CODE, ZV_BLANK_CODE, flags));
}

inline OpenFile Open_File(std::string const& spec, ZVFilePermission permission = ZVFilePermRead,
                          ZVFileFlags flags = ZVFileFlagNone)
{
    return OpenFile(OpenFileZV(spec.c_str(), permission, flags));
}

/// A file over the bytes of a block.
inline OpenFile Open_Block(std::string& block)
{
    return OpenFile(OpenFileinMemoryZV(block.data(), block.size(), ZVFilePermReadWrite));
}

inline long Position(OpenFile const& file)
{
    return SeekFileZV(file.get(), 0, 1);
}

/// The text of a spec that is freed, or "(null)".
inline std::string Text(char* spec)
{
    std::string const text = spec ? spec : "(null)";
    FreeFileSpecZV(spec);
    return text;
}
