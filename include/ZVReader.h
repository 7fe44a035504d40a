// Byte sources with a typed view. A reader never fails loudly: a file reader keeps a sticky error flag after
// which its typed reads give 0. Seek modes are those of SeekFileZV: 0 from the start, 1 from the position, 2
// from the end.
#pragma once

#include "ZVBase.h"

class ZV_API ZVReader {
public:
    virtual ~ZVReader() = default;
    virtual long Seek(long offset, long mode) = 0;  ///< Returns the position before.
    virtual long End() = 0;                         ///< Non-zero when the source is used up.
    virtual uint8_t ReadByte() = 0;
    virtual uint16_t ReadShortBE() = 0;
    virtual uint16_t ReadShortLE() = 0;
    virtual uint32_t ReadLongBE() = 0;
    virtual uint32_t ReadLongLE() = 0;
    virtual long Read(void* destination, long count) = 0;  ///< Returns the count delivered.
};

/// Reads a file through a window of 8192 bytes. The file stays the caller's.
class ZV_API ZVFileReader : public ZVReader {
public:
    explicit ZVFileReader(ZVFileInfo* file);
    long Seek(long offset, long mode) override;
    long End() override;
    uint8_t ReadByte() override;
    uint16_t ReadShortBE() override;
    uint16_t ReadShortLE() override;
    uint32_t ReadLongBE() override;
    uint32_t ReadLongLE() override;
    long Read(void* destination, long count) override;

    bool HasError() const { return hasError_; }  ///< Sticky: a read failed or ran past the end.

private:
    static constexpr long windowSize = 8192;

    void Refill();

    ZVFileInfo* file_;
    long length_;
    long position_ = 0;
    uint8_t window_[windowSize] = {};
    long windowStart_ = 0;  ///< file positions of the window
    long windowEnd_ = 0;
    bool hasError_ = false;
};

/// Reads a block of memory, which stays the caller's. No read goes outside the block: typed reads past its
/// end take the missing bytes as 0 and leave the cursor at the end, and a token may end with the block.
class ZV_API ZVBufferReader : public ZVReader {
public:
    ZVBufferReader(void const* block, long length);
    long Seek(long offset,
              long mode) override;  ///< Mode 2 subtracts the offset from the end. Kept inside the block.
    long End() override;
    uint8_t ReadByte() override;
    uint16_t ReadShortBE() override;
    uint16_t ReadShortLE() override;
    uint32_t ReadLongBE() override;
    uint32_t ReadLongLE() override;
    long Read(void* destination, long count) override;

    virtual uint16_t
    ReadShortHex();  ///< The next four characters as hexadecimal; characters that are none end it.
    virtual long ReadLongASCII();  ///< The next word as a signed decimal; 0 for a word that is none.

    /// The next word, and the rest of the line, as a copy to be freed by FreeMemZV; null when it is empty. A
    /// line ends at one CR or LF, so CR LF reads as a line and an empty one: End tells the end of the data.
    virtual char* ReadString();
    virtual char* ReadLine();

    virtual uint8_t const* Read(long count);  ///< Skips, and returns the cursor before.
    virtual uint8_t const* GetBufferPtr();    ///< The cursor.

private:
    long length_;
    uint8_t const* cursor_;
    uint8_t const* base_;
};
