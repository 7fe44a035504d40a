// What a Photoshop format plug-in is built against: the published interface of such plug-ins, in the layout
// that hosts of this library have on a 64-bit machine. A plug-in is a shared object with the extension .8bi,
// or with the file type `8BIF` and the creator `Qrnd`, in the directory Plugins of an application; resources
// in its companion ._name say what it reads and writes. See docs/photoshop-plugins.md.
//
//     #include <ZVFormatRecord.h>
//     static void Main(short selector, FormatRecord* record, long* data, short* result) { ... }
//     ZV_FORMAT_PLUGIN(Main)
//
// Names are those of the published interface, without a prefix, so <ZVLib.h> does not include this header.
// Fields that were words of 32 bits but hold a reference, or a number of bytes of memory or file, are as wide
// as a pointer; all other fields keep their widths.
#pragma once

#include "ZVFileSpec.h"
#include "ZVFormat.h"
#include "ZVRecordLayout.h"

/// What a call asks of the plug-in. In each family `prepare` comes before anything is opened or allocated and
/// `continue` comes once for each tile.
enum FormatSelector : short {
    formatSelectorAbout = 0,
    formatSelectorReadPrepare = 1,
    formatSelectorReadStart = 2,
    formatSelectorReadContinue = 3,
    formatSelectorReadFinish = 4,
    formatSelectorOptionsPrepare = 5,
    formatSelectorOptionsStart = 6,
    formatSelectorOptionsContinue = 7,  ///< never sent
    formatSelectorOptionsFinish = 8,
    formatSelectorEstimatePrepare = 9,
    formatSelectorEstimateStart = 10,
    formatSelectorEstimateContinue = 11,
    formatSelectorEstimateFinish = 12,
    formatSelectorWritePrepare = 13,
    formatSelectorWriteStart = 14,
    formatSelectorWriteContinue = 15,
    formatSelectorWriteFinish = 16,
    formatSelectorFilterFile = 17  ///< is the open file one of the plug-in's? Result 0 for yes
};

/// Results with a message of their own. Any other result but 0 is a failure without one, such as -128 after a
/// dialog that the user left.
enum FormatResult : short {
    errPlugInHostInsufficient = -30900,
    formatCannotRead = -30501,
    memFullErr = -108,
    vLckdErr = -46,
    fLckdErr = -45,
    fnfErr = -43,
    eofErr = -39,
    ioErr = -36,
    dskFulErr = -34,
    openErr = -23,
    writErr = -20,
    readErr = -19
};

/// Values of `imageMode`; bit n of a set of modes stands for mode n. Pictures of the other modes are passed
/// over.
enum PlugInMode : short {
    plugInModeBitmap = 0,
    plugInModeGrayScale = 1,
    plugInModeIndexedColor = 2,
    plugInModeRGBColor = 3,
    plugInModeRGB48 = 11
};

struct PIPoint {
    int16_t v;
    int16_t h;
};

/// Right and bottom are exclusive.
struct PIRect {
    int16_t top;
    int16_t left;
    int16_t bottom;
    int16_t right;
};

/// Bytes with their count; a handle and an option block are one kind of record.
using PIHandle = ZVFormatParams*;

using BufferID = void*;

/// Memory for the length of one call. 0, or memFullErr with the id null.
using AllocateBufferProc = short (*)(long size, BufferID* id);
struct BufferProcs {
    int16_t bufferProcsVersion;
    int16_t numBufferProcs;
    AllocateBufferProc allocateProc;
    void* (*lockProc)(BufferID id, uint8_t moveHigh);  ///< the bytes
    void (*unlockProc)(BufferID id);
    void (*freeProc)(BufferID id);
    long (*spaceProc)();  ///< bytes that can be had
};

struct HandleProcs {
    int16_t handleProcsVersion;
    int16_t numHandleProcs;
    PIHandle (*newProc)(long size);  ///< null when memory runs out
    void (*disposeProc)(PIHandle handle);
    long (*getSizeProc)(PIHandle handle);
    short (*setSizeProc)(PIHandle handle, long size);
    void* (*lockProc)(PIHandle handle, uint8_t moveHigh);  ///< the bytes
    void (*unlockProc)(PIHandle handle);
    void (*recoverSpaceProc)(long size);
};

struct ResourceProcs {
    int16_t resourceProcsVersion;
    int16_t numResourceProcs;
    int16_t (*countProc)(uint32_t type);
    PIHandle (*getProc)(uint32_t type, int16_t index);
    void (*deleteProc)(uint32_t type, int16_t index);
    short (*addProc)(uint32_t type, PIHandle data);
};

struct PropertyProcs {
    int16_t propertyProcsVersion;
    int16_t numPropertyProcs;
    short (*getPropertyProc)(uint32_t signature, uint32_t key, int32_t index, long* simple,
                             PIHandle* complex);
    short (*setPropertyProc)(uint32_t signature, uint32_t key, int32_t index, long simple, PIHandle complex);
};

struct PSImagePlane {
    void* data;
    PIRect bounds;
    int32_t rowBytes;
    int32_t colBytes;
};

struct ImageServicesProcs {
    int16_t imageServicesProcsVersion;
    int16_t numImageServicesProcs;
    /// Coordinates are 16.16 fixed point.
    short (*interpolate1DProc)(PSImagePlane* source, PSImagePlane* destination, PIRect* area, int32_t* coords,
                               int16_t method);
    short (*interpolate2DProc)(PSImagePlane* source, PSImagePlane* destination, PIRect* area, int32_t* coords,
                               int16_t method);
};

/// The record of all calls of one operation: the same one from `prepare` to `finish`, zeroed before. [in] the
/// host sets it, [out] the plug-in does, and [none] stays null with this host.
///
/// Reading: `start` sets the picture's mode, size, depth and planes. After `start`, and after each
/// `continue`, `data` offers a tile: the rectangle theRect of the planes loPlane to hiPlane. The sample of
/// plane p at column x and row y stands at
///     data + (y - theRect.top) * rowBytes + (x - theRect.left) * colBytes + p * planeBytes
/// and goes to the channel planeMap[p]: 0 red, 1 green, 2 blue, 3 alpha. Null for `data` ends the picture.
/// Writing is the same the other way round: the plug-in's memory at `data` is filled, and the next `continue`
/// finds it so.
///
/// Samples are bytes in 8-bit pictures, words of 16 bits in those of 10, 12 and 16 bits, and floats in those
/// of 32 bits, in the machine's order. In mode 0 a sample is a bit, the highest of a byte first.
struct FormatRecord {
    int32_t serialNumber;    ///< [none] 0
    uint8_t (*abortProc)();  ///< non-zero when the user gave up
    void (*progressProc)(int32_t done, int32_t total);
    long maxData;       ///< [in, out] bytes that may be used
    long minDataBytes;  ///< [in] the ZVFileInfo* of the open file; [out] estimate, at least
    long maxDataBytes;  ///< [out] estimate of the file's length, at most
    long minRsrcBytes;  ///< [out] the same of its resources
    long maxRsrcBytes;  ///< [out]
    long dataFork;      ///< [in] descriptor of the open file, at its start; 0 for none
    void* rsrcFork;     ///< [in] the file's ZVResourceFile*, null when it has no resources
    FSSpec* fileSpec;   ///< [in] the file's place
    int16_t imageMode;  ///< [in when writing, out when reading] a PlugInMode
    PIPoint imageSize;  ///< [in when writing, out when reading]
    int16_t depth;      ///< [in when writing, out when reading] bits of a channel
    int16_t planes;     ///< [in when writing, out when reading] 4 with alpha
    int32_t imageHRes;  ///< [in when writing, out when reading] pixels per inch, 16.16
    int32_t imageVRes;
    uint8_t redLUT[256];  ///< [in when writing, out when reading] colours of mode 2
    uint8_t greenLUT[256];
    uint8_t blueLUT[256];
    void* data;             ///< [out] the tile; null when there is none left
    PIRect theRect;         ///< [out]
    int16_t loPlane;        ///< [out]
    int16_t hiPlane;        ///< [out]
    int16_t colBytes;       ///< [out] bytes from a column to the next
    int32_t rowBytes;       ///< [out]
    int32_t planeBytes;     ///< [out]
    int16_t planeMap[16];   ///< [in, out] channel of each plane; at first plane i is channel i
    uint8_t canTranspose;   ///< [in] 0
    uint8_t needTranspose;  ///< ignored
    uint32_t hostSig;       ///< [in] `QVRN`
    void (*hostProc)(int16_t selector, long* data);
    int16_t hostModes;    ///< [in] set of the modes that the host takes
    PIHandle revertInfo;  ///< [in, out] options, kept with the clip; from hostNewHdl, or null
    PIHandle (*hostNewHdl)(long size);
    void (*hostDisposeHdl)(PIHandle handle);
    PIHandle imageRsrcData;  ///< [none]
    int32_t imageRsrcSize;   ///< [none] 0
    void* monitor;           ///< [none]
    void* platformData;      ///< [none]
    BufferProcs* bufferProcs;
    ResourceProcs* resourceProcs;  ///< [none]
    void (*processEvent)(void* event);
    short (*displayPixels)(void const* pixels, void const* area, int32_t row, int32_t column, void* context);
    HandleProcs* handleProcs;
    uint32_t fileType;                       ///< [none] 0
    void* colorServices;                     ///< [none]
    void* advanceState;                      ///< [none] tiles come by `continue` alone
    PropertyProcs* propertyProcs;            ///< [none]
    ImageServicesProcs* imageServicesProcs;  ///< [none]
    int16_t tileWidth;                       ///< [none] 0
    int16_t tileHeight;                      ///< [none] 0
    PIPoint tileOrigin;                      ///< [none] 0
    void* descriptorParameters;              ///< [none]
    uint8_t* errorString;                    ///< [none]
    long reserved[32];                       ///< [none] 0
};

/// @param data    a word of the plug-in's own, 0 at first, that stays until the application ends
/// @param result  0 when the call comes; what the plug-in leaves there is its answer
using FormatPluginEntry = void (*)(short selector, FormatRecord* record, long* data, short* result);

/// A number for the layout of the record and its suites.
consteval unsigned long Format_Record_Layout()
{
    return Layout_Number({
        1,
        sizeof(ZVFormatParams),
        sizeof(FSSpec),
        sizeof(BufferProcs),
        sizeof(HandleProcs),
        sizeof(ResourceProcs),
        sizeof(PropertyProcs),
        sizeof(ImageServicesProcs),
        sizeof(FormatRecord),
        offsetof(FormatRecord, maxData),
        offsetof(FormatRecord, fileSpec),
        offsetof(FormatRecord, imageSize),
        offsetof(FormatRecord, redLUT),
        offsetof(FormatRecord, data),
        offsetof(FormatRecord, rowBytes),
        offsetof(FormatRecord, planeMap),
        offsetof(FormatRecord, hostSig),
        offsetof(FormatRecord, revertInfo),
        offsetof(FormatRecord, bufferProcs),
        offsetof(FormatRecord, handleProcs),
        offsetof(FormatRecord, errorString),
    });
}

/// The layout that the library was built with.
ZV_API unsigned long GetFormatRecordLayoutZV();

/// The exported entry of a plug-in. One that was built against another layout answers
/// errPlugInHostInsufficient without a touch at the record.
#define ZV_FORMAT_PLUGIN(main)                                                                               \
    extern "C" __attribute__((visibility("default"))) void ENTRYPOINT1(short selector, FormatRecord* record, \
                                                                       long* data, short* result)            \
    {                                                                                                        \
        if (GetFormatRecordLayoutZV() == Format_Record_Layout())                                             \
            (main)(selector, record, data, result);                                                          \
        else                                                                                                 \
            *result = errPlugInHostInsufficient;                                                             \
    }

// ---- handles ----------------------------------------------------------------------------------------------
//
// The functions of the record's handle suite. A handle is one block with its bytes behind the header, as all
// option blocks that the library makes.

ZV_API PIHandle NewPIHandleZV(long size);  ///< Zeroed; null for a size below 0 and when memory runs out.
ZV_API void DisposePIHandleZV(PIHandle handle);
ZV_API long GetPIHandleSizeZV(PIHandle handle);
ZV_API short SetPIHandleSizeZV(PIHandle handle, long size);  ///< 0, and the handle stays as it is.
ZV_API void* LockPIHandleZV(PIHandle handle, uint8_t moveHigh);
ZV_API void UnlockPIHandleZV(PIHandle handle);
ZV_API void RecoverSpaceZV(long size);

// ---- suites for others ------------------------------------------------------------------------------------
//
// Further suites, for hosts that call plug-ins of other kinds. Each is the caller's until its Free call; null
// with error 1 when memory runs out.

/// Handles that can change their size, which are no option blocks of the library.
ZV_API HandleProcs* AllocHandleProcs();
ZV_API void FreeHandleProcs(HandleProcs* procs);

ZV_API BufferProcs* AllocBufferProcs();  ///< The same functions as in a FormatRecord.
ZV_API void FreeBufferProcs(BufferProcs* procs);

ZV_API ResourceProcs* AllocResourceProcs();  ///< All of its functions are null.
ZV_API void FreeResourceProcs(ResourceProcs* procs);

ZV_API PropertyProcs* AllocPropertyProcs();  ///< Its functions answer 0 and do nothing.
ZV_API void FreePropertyProcs(PropertyProcs* procs);

ZV_API ImageServicesProcs* AllocImageServicesProcs();  ///< Its functions answer 0 and do nothing.
ZV_API void FreeImageServicesProcs(ImageServicesProcs* procs);
