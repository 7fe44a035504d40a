// The host's functions that Photoshop plug-ins call: in the record of a format plug-in, and in suites for
// others.
#include "PluginCall.h"

#include "ZVLibInternal.h"

#include "clips/ClipMemory.h"

#include <algorithm>
#include <climits>
#include <new>

namespace {

uint8_t TestAbort()
{
    return 0;
}

void Progress(int32_t, int32_t) {}

void HostFunc(int16_t, long*) {}

void ProcessEvent(void*) {}

short DisplayPixels(void const*, void const*, int32_t, int32_t, void*)
{
    return 0;
}

// ---- buffers ----------------------------------------------------------------------------------------------

/// An assertion must not go through a plug-in, so memory that runs out is an answer here.
short AllocateBuffer(long size, BufferID* id)
{
    *id = size < 0 ? nullptr
                   : Alloc_Aligned(static_cast<unsigned long>(std::max(size, 1L)), alignof(std::max_align_t));
    return *id ? 0 : memFullErr;
}

void* LockBuffer(BufferID id, uint8_t)
{
    return id;
}

void UnlockBuffer(BufferID) {}

void FreeBuffer(BufferID id)
{
    FreeMemZV(id);
}

constexpr BufferProcs Buffers = {2, 5, AllocateBuffer, LockBuffer, UnlockBuffer, FreeBuffer, Max_Block};

constexpr HandleProcs Handles = {1,
                                 7,
                                 NewPIHandleZV,
                                 DisposePIHandleZV,
                                 GetPIHandleSizeZV,
                                 SetPIHandleSizeZV,
                                 LockPIHandleZV,
                                 UnlockPIHandleZV,
                                 RecoverSpaceZV};

// ---- handles that can change their size -------------------------------------------------------------------

PIHandle NewPIHandle(long size)
{
    PIHandle const handle = Alloc_Zeroed<ZVFormatParams>(1);
    if (!handle) return nullptr;
    handle->Data = Alloc_Zeroed<uint8_t>(size);
    if (!handle->Data) {
        FreeMemZV(handle);
        return nullptr;
    }
    handle->Size = size;
    return handle;
}

void DisposePIHandle(PIHandle handle)
{
    if (handle) FreeMemZV(handle->Data);
    FreeMemZV(handle);
}

short SetPIHandleSize(PIHandle handle, long size)
{
    if (!handle) return memFullErr;
    auto* const bytes = Alloc_Zeroed<uint8_t>(size);
    if (!bytes) return memFullErr;
    std::copy_n(static_cast<uint8_t const*>(handle->Data), std::min(size, handle->Size), bytes);
    FreeMemZV(handle->Data);
    *handle = {bytes, size};
    return 0;
}

// ---- properties and image services ------------------------------------------------------------------------

short PSGetPropertyFunc(uint32_t, uint32_t, int32_t, long*, PIHandle*)
{
    return 0;
}

short PSSetPropertyFunc(uint32_t, uint32_t, int32_t, long, PIHandle)
{
    return 0;
}

short PSInterpolate1DFunc(PSImagePlane*, PSImagePlane*, PIRect*, int32_t*, int16_t)
{
    return 0;
}

short PSInterpolate2DFunc(PSImagePlane*, PSImagePlane*, PIRect*, int32_t*, int16_t)
{
    return 0;
}

template <typename Procs> Procs* Alloc_Procs(Procs const& procs)
{
    auto* const copy = Alloc_Zeroed<Procs>(1);
    if (!copy) {
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
    *copy = procs;
    return copy;
}

}  // namespace

long Max_Block()
{
    return static_cast<long>(std::min<uint64_t>(AvailableMemoryZV(ZV_MEM_LARGEST), LONG_MAX));
}

// ---- the record -------------------------------------------------------------------------------------------

void Init_Callbacks(FormatRecord* record, ZVPlugin*)
{
    record->abortProc = TestAbort;
    record->progressProc = Progress;
    record->hostProc = HostFunc;
    record->processEvent = ProcessEvent;
    record->displayPixels = DisplayPixels;
    if (record->bufferProcs) *record->bufferProcs = Buffers;
    if (record->handleProcs) *record->handleProcs = Handles;
    record->hostNewHdl = NewPIHandleZV;
    record->hostDisposeHdl = DisposePIHandleZV;
}

void Cleanup_Callbacks(FormatRecord*, ZVPlugin*) {}

unsigned long GetFormatRecordLayoutZV()
{
    return Format_Record_Layout();
}

// ---- handles ----------------------------------------------------------------------------------------------

PIHandle NewPIHandleZV(long size)
{
    constexpr auto header = static_cast<long>(sizeof(ZVFormatParams));
    if (size < 0 || size > LONG_MAX - header) return nullptr;
    auto* const block = Alloc_Zeroed<uint8_t>(header + size);
    return block ? new (block) ZVFormatParams{block + header, size} : nullptr;
}

void DisposePIHandleZV(PIHandle handle)
{
    FreeMemZV(handle);
}

long GetPIHandleSizeZV(PIHandle handle)
{
    return handle ? handle->Size : 0;
}

short SetPIHandleSizeZV(PIHandle, long)
{
    return 0;
}

void* LockPIHandleZV(PIHandle handle, uint8_t)
{
    return handle ? handle->Data : nullptr;
}

void UnlockPIHandleZV(PIHandle) {}

void RecoverSpaceZV(long) {}

// ---- suites for others ------------------------------------------------------------------------------------

HandleProcs* AllocHandleProcs()
{
    HandleProcs procs = Handles;
    procs.newProc = NewPIHandle;
    procs.disposeProc = DisposePIHandle;
    procs.setSizeProc = SetPIHandleSize;
    return Alloc_Procs(procs);
}

void FreeHandleProcs(HandleProcs* procs)
{
    FreeMemZV(procs);
}

BufferProcs* AllocBufferProcs()
{
    return Alloc_Procs(Buffers);
}

void FreeBufferProcs(BufferProcs* procs)
{
    FreeMemZV(procs);
}

ResourceProcs* AllocResourceProcs()
{
    return Alloc_Procs<ResourceProcs>({3, 4, nullptr, nullptr, nullptr, nullptr});
}

void FreeResourceProcs(ResourceProcs* procs)
{
    FreeMemZV(procs);
}

PropertyProcs* AllocPropertyProcs()
{
    return Alloc_Procs<PropertyProcs>({1, 2, PSGetPropertyFunc, PSSetPropertyFunc});
}

void FreePropertyProcs(PropertyProcs* procs)
{
    FreeMemZV(procs);
}

ImageServicesProcs* AllocImageServicesProcs()
{
    return Alloc_Procs<ImageServicesProcs>({1, 2, PSInterpolate1DFunc, PSInterpolate2DFunc});
}

void FreeImageServicesProcs(ImageServicesProcs* procs)
{
    FreeMemZV(procs);
}
