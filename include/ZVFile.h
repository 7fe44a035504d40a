// Open files on disk or in memory, with a small transfer buffer and big-endian number helpers. Files are
// named by file specs (ZVFileSpec.h), and only regular files are opened. Open calls return null, transfers 0,
// and leave the error number 6 to 12 behind; the end of a file is no error. One thread uses a handle at a
// time; different threads may use different handles.
#pragma once

#include "ZVBase.h"

enum ZVFilePermission : uint8_t {
    ZVFilePermRead = 0,       ///< transfer buffer of 4096 bytes
    ZVFilePermWrite = 1,      ///< transfer buffer of 20480 bytes
    ZVFilePermReadWrite = 2,  ///< unbuffered
    ZVFilePermReadLarge = 3   ///< read with a transfer buffer of 20480 bytes
};

enum ZVFileFlags : uint8_t {
    ZVFileFlagNone = 0,
    ZVFileFlagLargeRead =
        1  ///< no transfer buffer when opened; reads go in chunks of 128 KiB and can be polled
};

/// An open file. In a read buffer the bytes from `cursor` to `bufferEnd` were read and not yet handed out; in
/// a write buffer those from `buffer` to `cursor` were accepted and not yet written.
struct ZVFileInfo {
    uint8_t* buffer;     ///< null when unbuffered or in memory
    uint8_t* cursor;     ///< next byte to take or to put
    uint8_t* bufferEnd;  ///< end of the valid bytes (reading), of the buffer (writing)
    uint32_t bufferSize;
    uint32_t permission;  ///< a ZVFilePermission
    uint8_t* memoryBase;  ///< block of a file in memory, owned by the caller; null for a file on disk
    uint8_t* memoryEnd;
    uint8_t* memoryCursor;
    ZVFileFlags flags;
    int32_t forkRef;    ///< descriptor of the open file, never 0 for a file on disk; 0 for one in memory
    int32_t volumeRef;  ///< device number of the volume, as far as 32 bits hold it
};

/// Creates a file with the given type and creator, and opens it. An existing file of the same type and
/// creator is emptied; another one is deleted first. A file without stored codes counts as one of those that
/// Get_FileInfo gives, and as one of blank codes. A file that may not be written is neither emptied nor
/// deleted, with error 9.
ZV_API ZVFileInfo* CreateFileZV(char const* spec, ZVFilePermission permission, uint32_t type,
                                uint32_t creator, ZVFileFlags flags);
ZV_API ZVFileInfo* OpenFileZV(char const* spec, ZVFilePermission permission, ZVFileFlags flags);

/// A block of memory as a file. It never grows, and the permission is not enforced.
ZV_API ZVFileInfo* OpenFileinMemoryZV(void* block, unsigned long size, ZVFilePermission permission);

/// Writes what is still in the buffer and closes. A write that fails here sets the error number, and so does
/// one that SeekFileZV had to make.
ZV_API void CloseFileZV(ZVFileInfo* file);

/// Called during a long read; answers non-zero to give up.
using ZVPollFunc = long (*)();

/// Reads up to `count` bytes. Across the end of the file it delivers what there is; from memory it is all or
/// nothing. The poll function is called only for a file without a transfer buffer and with
/// ZVFileFlagLargeRead; its last answer is stored at `pollResult`.
/// @return  1 when at least one byte came
ZV_API long ReadFileZV(ZVFileInfo* file, void* destination, unsigned long count, ZVPollFunc poll = nullptr,
                       long* pollResult = nullptr);

/// Writes all of the bytes; to memory it is all or nothing. A failed write leaves the position where it was,
/// so that the same bytes may be written again.
ZV_API long WriteFileZV(ZVFileInfo* file, void const* source, unsigned long count);

/// Moves the position: mode 0 from the start, 1 from the present position, 2 from the end (in memory, from
/// the last byte). Beyond the end a file on disk that can be written is extended with zeros; with mode 2 the
/// offset then counts from the new end.
/// @return  the position before the move; (0, 1) just tells it
ZV_API long SeekFileZV(ZVFileInfo* file, long offset, unsigned short mode);

/// Length on disk, without bytes still in the buffer; size of the block for a file in memory.
ZV_API int64_t GetFileLengthZV(ZVFileInfo* file);
ZV_API int64_t GetFileModificationDateZV(ZVFileInfo* file);  ///< Seconds since 1 January 1970.

/// Big-endian numbers. On failure the value is not written and the result is 0.
ZV_API long GetLongZV(ZVFileInfo* file, int32_t* value);
ZV_API long GetULongZV(ZVFileInfo* file, uint32_t* value);
ZV_API long GetShortZV(ZVFileInfo* file, int16_t* value);
ZV_API long GetUShortZV(ZVFileInfo* file, uint16_t* value);
ZV_API long PutLongZV(ZVFileInfo* file, uint32_t value);
ZV_API long PutShortZV(ZVFileInfo* file, uint16_t value);

/// Reads a line of at most `size` - 1 bytes. LF, CR and NUL end it, empty lines are passed over.
/// @return  the buffer, or null at the end of the file
ZV_API char* FGetStringZV(ZVFileInfo* file, char* buffer, long size);

/// Writes the text and a CR, without a closing zero.
ZV_API long FPutStringZV(ZVFileInfo* file, char const* text);

ZV_API ZVFileInfo* OpenFolderZV(char const* spec);  ///< Always null: there are no folder handles.

/// Seconds since 1904 to and from seconds since 1970.
ZV_API int64_t ConvertMacOSTimeToZVLibTime(int64_t seconds);
ZV_API int64_t ConvertZVLibTimeToMacOSTime(int64_t seconds);

/// Text conversions; the system encoding is UTF-8. The count, which may be null, is of bytes, or of 16-bit
/// units for Unicode. Only whole characters are delivered, and a zero behind them when there is room for it.
/// @return  0; -108 for text that is not UTF-8; -50 when it did not fit whole, the count then telling what
///          did
ZV_API long UTF8ToSystemEncoding(char const* source, char* destination, unsigned long size,
                                 unsigned long* count);
ZV_API long SystemEncodingToUTF8(char const* source, char* destination, unsigned long size,
                                 unsigned long* count);
ZV_API long SystemEncodingToUnicode(char const* source, uint16_t* destination, unsigned long sizeBytes,
                                    unsigned long* count);
