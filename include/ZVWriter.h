// Byte sinks with a typed view. Calls answer 1, or 0 at the first write that failed.
#pragma once

#include "ZVBase.h"

class ZV_API ZVWriter {
public:
    virtual ~ZVWriter() = default;
    virtual long Seek(long offset, long mode) = 0;  ///< Modes of SeekFileZV; returns the position before.
    virtual long WriteByte(unsigned char value) = 0;
    virtual long WriteShortBE(uint16_t value) = 0;
    virtual long WriteShortLE(uint16_t value) = 0;
    virtual long WriteLongBE(uint32_t value) = 0;
    virtual long WriteLongLE(uint32_t value) = 0;
    virtual long WriteFloatBE(float value) = 0;
    virtual long WriteFloatLE(float value) = 0;
    virtual long Write(void const* source, long count) = 0;
    virtual long Flush() = 0;
    virtual long GetPosition() = 0;
};

/// Writes a file through a buffer of its own. The file stays the caller's. Flush before the writer goes: its
/// destructor drops what is still held.
class ZV_API ZVFileWriter : public ZVWriter {
public:
    ZVFileWriter(ZVFileInfo* file, long bufferSize);  ///< A size below 1 counts as 1.
    ~ZVFileWriter() override;
    ZVFileWriter(ZVFileWriter const&) = delete;
    ZVFileWriter& operator=(ZVFileWriter const&) = delete;

    long Seek(long offset, long mode) override;
    long WriteByte(unsigned char value) override;
    long WriteShortBE(uint16_t value) override;
    long WriteShortLE(uint16_t value) override;
    long WriteLongBE(uint32_t value) override;
    long WriteLongLE(uint32_t value) override;
    long WriteFloatBE(float value) override;
    long WriteFloatLE(float value) override;
    long Write(void const* source, long count) override;
    long Flush() override;
    long GetPosition() override;

private:
    ZVFileInfo* file_;
    long position_ = 0;
    long bufferSize_;
    long held_ = 0;
    uint8_t* buffer_;
};
