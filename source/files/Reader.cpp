// Readers over a file and over a block of memory.
#include "ZVReader.h"

#include "ZVFile.h"
#include "ZVMemory.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>

namespace {

/// Numbers by the order of their bytes, built from single ones.
template <typename Reader> uint16_t Read_Short_BE(Reader& reader)
{
    unsigned const high = reader.ReadByte();
    return static_cast<uint16_t>(high << 8 | reader.ReadByte());
}

template <typename Reader> uint16_t Read_Short_LE(Reader& reader)
{
    unsigned const low = reader.ReadByte();
    return static_cast<uint16_t>(low | static_cast<unsigned>(reader.ReadByte()) << 8);
}

template <typename Reader> uint32_t Read_Long_BE(Reader& reader)
{
    uint32_t const high = Read_Short_BE(reader);
    return high << 16 | Read_Short_BE(reader);
}

template <typename Reader> uint32_t Read_Long_LE(Reader& reader)
{
    uint32_t const low = Read_Short_LE(reader);
    return low | static_cast<uint32_t>(Read_Short_LE(reader)) << 16;
}

bool Is_Line_End(uint8_t c)
{
    return c == '\n' || c == '\r';
}

bool Is_Space(uint8_t c)
{
    return c == ' ' || c == '\t' || Is_Line_End(c);
}

std::string_view As_Text(uint8_t const* begin, uint8_t const* end)
{
    return {reinterpret_cast<char const*>(begin), static_cast<std::size_t>(end - begin)};
}

/// A copy to be freed by FreeMemZV; null for an empty text.
char* Copy_Of(std::string_view text)
{
    if (text.empty()) return nullptr;
    auto* const copy = static_cast<char*>(AllocMemZV(text.size() + 1, 0));
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = 0;
    return copy;
}

}  // namespace

// ---- over a file ------------------------------------------------------------------------------------------

ZVFileReader::ZVFileReader(ZVFileInfo* file) : file_(file)
{
    // The second call's result is the position before it: the end of the file.
    SeekFileZV(file, 0, 2);
    length_ = SeekFileZV(file, 0, 0);
    Refill();
}

void ZVFileReader::Refill()
{
    windowStart_ = position_;
    windowEnd_ = std::max(windowStart_, std::min(position_ + windowSize, length_));
    long const size = windowEnd_ - windowStart_;
    if (size > 0 && !ReadFileZV(file_, window_, static_cast<unsigned long>(size))) hasError_ = true;
}

long ZVFileReader::Seek(long offset, long mode)
{
    long const old = position_;
    switch (mode) {
    case 0: position_ = offset; break;
    case 1: position_ += offset; break;
    case 2: position_ = length_ + offset; break;
    default: return old;
    }
    position_ = std::max(position_, 0L);
    if (position_ >= old && position_ < windowEnd_) return old;
    SeekFileZV(file_, position_, 0);
    Refill();
    return old;
}

long ZVFileReader::End()
{
    return position_ >= length_;
}

uint8_t ZVFileReader::ReadByte()
{
    if (position_ >= length_) hasError_ = true;
    if (hasError_) return 0;
    if (position_ >= windowEnd_) Refill();
    return window_[position_++ - windowStart_];
}

uint16_t ZVFileReader::ReadShortBE()
{
    return Read_Short_BE(*this);
}
uint16_t ZVFileReader::ReadShortLE()
{
    return Read_Short_LE(*this);
}
uint32_t ZVFileReader::ReadLongBE()
{
    return Read_Long_BE(*this);
}
uint32_t ZVFileReader::ReadLongLE()
{
    return Read_Long_LE(*this);
}

long ZVFileReader::Read(void* destination, long count)
{
    count = std::min(count, length_ - position_);
    if (count < 1) return count;
    auto* out = static_cast<uint8_t*>(destination);
    for (long rest = count; rest > 0;) {
        if (position_ >= windowEnd_) Refill();
        long const piece = std::min(rest, windowEnd_ - position_);
        std::memcpy(out, window_ + (position_ - windowStart_), static_cast<std::size_t>(piece));
        out += piece;
        position_ += piece;
        rest -= piece;
    }
    return count;
}

// ---- over a block -----------------------------------------------------------------------------------------

ZVBufferReader::ZVBufferReader(void const* block, long length)
    : length_(std::max(length, 0L)), cursor_(static_cast<uint8_t const*>(block)), base_(cursor_)
{
}

long ZVBufferReader::Seek(long offset, long mode)
{
    long const old = cursor_ - base_;
    long target;
    bool isBeyond;
    switch (mode) {
    case 0: isBeyond = false, target = offset; break;
    case 1: isBeyond = __builtin_add_overflow(old, offset, &target); break;
    case 2: isBeyond = __builtin_sub_overflow(length_, offset, &target); break;
    default: return old;
    }
    if (isBeyond) target = (mode == 1) == (offset > 0) ? length_ : 0;
    cursor_ = base_ + std::clamp(target, 0L, length_);
    return old;
}

long ZVBufferReader::End()
{
    return cursor_ >= base_ + length_;
}

uint8_t ZVBufferReader::ReadByte()
{
    return End() ? uint8_t{0} : *cursor_++;
}

uint16_t ZVBufferReader::ReadShortBE()
{
    return Read_Short_BE(*this);
}
uint16_t ZVBufferReader::ReadShortLE()
{
    return Read_Short_LE(*this);
}
uint32_t ZVBufferReader::ReadLongBE()
{
    return Read_Long_BE(*this);
}
uint32_t ZVBufferReader::ReadLongLE()
{
    return Read_Long_LE(*this);
}

long ZVBufferReader::Read(void* destination, long count)
{
    long const size = std::clamp(count, 0L, base_ + length_ - cursor_);
    if (size > 0) std::memcpy(destination, cursor_, static_cast<std::size_t>(size));
    cursor_ += size;
    return size;
}

uint16_t ZVBufferReader::ReadShortHex()
{
    uint8_t const* const begin = cursor_;
    cursor_ += std::min(4L, base_ + length_ - cursor_);
    std::string_view const text = As_Text(begin, cursor_);
    unsigned value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value, 16);
    return static_cast<uint16_t>(value);
}

/// Passes over white space and takes the run up to the next.
static std::string_view Next_Word(uint8_t const*& cursor, uint8_t const* end)
{
    uint8_t const* const begin = std::find_if_not(cursor, end, Is_Space);
    cursor = std::find_if(begin, end, Is_Space);
    return As_Text(begin, cursor);
}

long ZVBufferReader::ReadLongASCII()
{
    std::string_view word = Next_Word(cursor_, base_ + length_);
    if (word.starts_with('+')) word.remove_prefix(1);
    long value = 0;
    std::from_chars(word.data(), word.data() + word.size(), value);
    return value;
}

char* ZVBufferReader::ReadString()
{
    return Copy_Of(Next_Word(cursor_, base_ + length_));
}

char* ZVBufferReader::ReadLine()
{
    uint8_t const* const end = base_ + length_;
    uint8_t const* const begin = cursor_;
    uint8_t const* const stop = std::find_if(begin, end, Is_Line_End);
    cursor_ = stop == end ? end : stop + 1;
    return Copy_Of(As_Text(begin, stop));
}

uint8_t const* ZVBufferReader::Read(long count)
{
    uint8_t const* const old = cursor_;
    Seek(count, 1);
    return old;
}

uint8_t const* ZVBufferReader::GetBufferPtr()
{
    return cursor_;
}
