// Memory blocks, the error number and assertions. Blocks may be had and freed on any thread; the error number
// is one word for the whole process, and a function that can fail returns 0 or null and stores it.
#pragma once

#include "ZVBase.h"

/// Thrown when an assertion of the library fails, after its message was shown. The library never catches it.
struct ZVAssertFail {};

/// Thrown by some constructors when memory runs out.
struct ZVBadAlloc {};

inline constexpr unsigned long ZV_MEM_CLEAR = 1;  ///< flag of AllocMemZV: fill the block with zeros

/// A block from the system heap. When there is none the new-handler runs once and the allocation is tried
/// again.
/// @return  the block, released by FreeMemZV; never null: a second failure, or a handler that answers 0, is
///          an assertion failure
ZV_API void* AllocMemZV(unsigned long size, unsigned long flags);

/// Frees a block of AllocMemZV; null is accepted.
ZV_API void FreeMemZV(void* block);

inline constexpr unsigned long ZV_MEM_TOTAL = 16;    ///< the machine's memory as the environment holds it
inline constexpr unsigned long ZV_MEM_LARGEST = 64;  ///< largest free block; tested first

/// Bytes of memory: what the flags name, or the free memory with none of them.
ZV_API uint64_t AvailableMemoryZV(unsigned long flags);

/// Asked for memory when an allocation of `size` bytes failed; answers non-zero when a second try may
/// succeed.
using ZVNewHandler = long (*)(unsigned long size);

/// Installs the handler (null for none) and returns the one before. It runs on the allocating thread.
ZV_API ZVNewHandler set_new_handler(ZVNewHandler handler);

/// Calls the handler and tells whether it answered non-zero; 0 without one.
ZV_API long call_newhandler_zvlib(unsigned long size);

/// Error numbers of GetErrorZV.
enum ZVError : unsigned long {
    ZV_ERR_NONE = 0,
    ZV_ERR_MEMORY = 1,           ///< out of memory; also the answer when there is no environment
    ZV_ERR_NO_GROUP = 4,         ///< an item was added with no group under construction
    ZV_ERR_NO_MENU = 5,          ///< a menu item was added with no menu under construction
    ZV_ERR_DISK_FULL = 6,        ///< volume or directory full
    ZV_ERR_IO = 7,               ///< any other file failure
    ZV_ERR_NOT_OPEN = 8,         ///< file not open
    ZV_ERR_LOCKED = 9,           ///< file locked
    ZV_ERR_BUSY = 10,            ///< file busy
    ZV_ERR_PROTECTED = 11,       ///< volume locked or write-protected
    ZV_ERR_NOT_FOUND = 12,       ///< file, directory or volume not found
    ZV_ERR_NO_FORMAT = 15,       ///< no format module accepts the file
    ZV_ERR_DEPTH = 16,           ///< native bitmap of an unsupported depth
    ZV_ERR_CLIP_EXCEPTION = 17,  ///< a clip could not be opened by its format module
    ZV_ERR_CLIP = 18,            ///< a clip operation failed for another reason
    ZV_ERR_CLIP_OPEN = 20,       ///< a clip could not be opened and no other error was set
    ZV_ERR_SEQUENCE = 21,        ///< sequence check failed, or the user gave up the dialog of an operation
    ZV_ERR_MOVIE_CLOSE = 25,     ///< closing a movie failed
    ZV_ERR_MOVIE_FRAME = 26,     ///< adding a movie frame failed; the error text may tell why
    ZV_ERR_MOVIE_SIZE = 27       ///< the movie would exceed its size limit
};

/// The error number of the latest operation; 1 while no environment exists.
ZV_API unsigned long GetErrorZV();

/// The error text, owned by the library, or null. It also tells why InitZV returned null.
ZV_API char const* GetErrorStringZV();

/// Stores the number; nothing happens while no environment exists.
ZV_API void SetError(unsigned long number);

/// Stores a copy of the text in place of the old one; null clears it. While no environment exists the text is
/// kept apart, cut at 511 bytes: InitZV clears it before it makes the environment, and after a failure tells
/// the reason here, once the environment is gone again.
ZV_API void SetErrorString(char const* text);
