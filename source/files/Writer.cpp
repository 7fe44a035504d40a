// The writer over a file.
#include "ZVWriter.h"

#include "ZVFile.h"
#include "ZVMemory.h"

#include <algorithm>
#include <bit>
#include <cstring>

ZVFileWriter::ZVFileWriter(ZVFileInfo* file, long bufferSize)
    : file_(file), bufferSize_(std::max(bufferSize, 1L)),
      buffer_(static_cast<uint8_t*>(AllocMemZV(static_cast<unsigned long>(bufferSize_), 0)))
{
}

ZVFileWriter::~ZVFileWriter()
{
    FreeMemZV(buffer_);
}

long ZVFileWriter::Flush()
{
    if (held_ > 0 && !WriteFileZV(file_, buffer_, static_cast<unsigned long>(held_))) return 0;
    held_ = 0;
    return 1;
}

long ZVFileWriter::Seek(long offset, long mode)
{
    Flush();
    long const old = SeekFileZV(file_, offset, static_cast<unsigned short>(mode));
    position_ = SeekFileZV(file_, 0, 1);
    held_ = 0;
    return old;
}

long ZVFileWriter::WriteByte(unsigned char value)
{
    if (held_ == bufferSize_ && !Flush()) return 0;
    buffer_[held_++] = value;
    ++position_;
    return 1;
}

long ZVFileWriter::WriteShortBE(uint16_t value)
{
    return WriteByte(static_cast<uint8_t>(value >> 8)) && WriteByte(static_cast<uint8_t>(value));
}

long ZVFileWriter::WriteShortLE(uint16_t value)
{
    return WriteByte(static_cast<uint8_t>(value)) && WriteByte(static_cast<uint8_t>(value >> 8));
}

long ZVFileWriter::WriteLongBE(uint32_t value)
{
    return WriteShortBE(static_cast<uint16_t>(value >> 16)) && WriteShortBE(static_cast<uint16_t>(value));
}

long ZVFileWriter::WriteLongLE(uint32_t value)
{
    return WriteShortLE(static_cast<uint16_t>(value)) && WriteShortLE(static_cast<uint16_t>(value >> 16));
}

long ZVFileWriter::WriteFloatBE(float value)
{
    return WriteLongBE(std::bit_cast<uint32_t>(value));
}

long ZVFileWriter::WriteFloatLE(float value)
{
    return WriteLongLE(std::bit_cast<uint32_t>(value));
}

long ZVFileWriter::Write(void const* source, long count)
{
    auto const* in = static_cast<uint8_t const*>(source);
    for (long rest = count; rest > 0;) {
        if (held_ == bufferSize_ && !Flush()) return 0;
        long const piece = std::min(rest, bufferSize_ - held_);
        std::memcpy(buffer_ + held_, in, static_cast<std::size_t>(piece));
        in += piece;
        held_ += piece;
        position_ += piece;
        rest -= piece;
    }
    return 1;
}

long ZVFileWriter::GetPosition()
{
    return position_;
}
