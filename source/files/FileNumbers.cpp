// Big-endian numbers in files.

#include "ZVFile.h"

#include <array>

namespace {

template <std::size_t Size> bool Read_Number(ZVFileInfo* file, uint32_t& number)
{
    std::array<uint8_t, Size> bytes{};
    if (!ReadFileZV(file, bytes.data(), Size)) return false;
    number = 0;
    for (uint8_t byte : bytes)
        number = number << 8 | byte;
    return true;
}

template <std::size_t Size> long Write_Number(ZVFileInfo* file, uint32_t number)
{
    std::array<uint8_t, Size> bytes;
    for (std::size_t i = 0; i < Size; ++i)
        bytes[i] = static_cast<uint8_t>(number >> (8 * (Size - 1 - i)));
    return WriteFileZV(file, bytes.data(), Size);
}

template <typename Number> long Get_Number(ZVFileInfo* file, Number* value)
{
    uint32_t number;
    if (!value || !Read_Number<sizeof(Number)>(file, number)) return 0;
    *value = static_cast<Number>(number);
    return 1;
}

}  // namespace

long GetLongZV(ZVFileInfo* file, int32_t* value)
{
    return Get_Number(file, value);
}

long GetULongZV(ZVFileInfo* file, uint32_t* value)
{
    return Get_Number(file, value);
}

long GetShortZV(ZVFileInfo* file, int16_t* value)
{
    return Get_Number(file, value);
}

long GetUShortZV(ZVFileInfo* file, uint16_t* value)
{
    return Get_Number(file, value);
}

long PutLongZV(ZVFileInfo* file, uint32_t value)
{
    return Write_Number<4>(file, value);
}

long PutShortZV(ZVFileInfo* file, uint16_t value)
{
    return Write_Number<2>(file, value);
}
