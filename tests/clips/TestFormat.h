// A format module for tests. Its pictures come from a formula, so that every pixel that reaches a caller can
// be foretold; what it tells of a file, which of its entries fail and what it offers is set by the test, and
// every call that it gets is written down.
#pragma once

#include "ZVLibInternal.h"

#include <map>
#include <set>
#include <string>
#include <vector>

/// One call of an entry. Fields that an entry has no argument for are 0.
struct TestCall {
    std::string entry;  ///< "Open", "GetFrame" ...
    std::string fileName;
    long frame = 0;
    long layer = 0;
    long argument = 0;   ///< writing, create flags, `silent`, `what`
    ZVRectT<long> rect;  ///< source offset and size of GetFrame, region of AddFrame
    ZVBitmap* bitmap = nullptr;
    std::vector<unsigned char> data;  ///< data handed to GetFrame, pixels given to AddFrame
    ZVBitmapType type = ZV_BITMAP_NONE;
};

struct TestLayer {
    char const* name;
    long width, height, bitDepth;
    uint8_t alphaType;
};

/// A frame taken by AddFrameAsync and not yet completed.
struct TestPending {
    ZVFrameCompletion completion;
    ZVCompletionParams* params;
};

class TestFormat {
public:
    static constexpr long defaultProperties =
        ZV_FORMAT_ALPHA | ZV_FORMAT_MULTIFRAME | ZV_FORMAT_READ | ZV_FORMAT_WRITE;

    /// Adds the module at the tail of the environment's list. It claims files by extension alone.
    explicit TestFormat(char const* extension = "tst", long properties = defaultProperties);

    /// Takes the module out of the list again, unless the environment has gone before.
    ~TestFormat();
    TestFormat(TestFormat const&) = delete;
    TestFormat& operator=(TestFormat const&) = delete;

    ZVFormatDesc* desc = nullptr;

    // What Open tells of any file. Zero or negative values are left to the library where it has a rule.
    long width = 8;
    long height = 6;
    long bitDepth = 8;
    long frames = 10;
    double rate = 25.0;
    double pixelAspect = 1.0;
    uint8_t fieldOrder = ZV_FIELDS_NONE;
    uint8_t alphaType = ZV_ALPHA_CHANNEL;
    unsigned long media = ZV_MEDIA_VIDEO;
    unsigned long flags = ZV_CLIP_ALPHA_KNOWN;  ///< added to the clip's flags, so that alpha is read as it is
    std::vector<TestLayer> layers;
    bool usesModuleData = true;  ///< false: all clips keep a null ModuleData
    bool isOpaque = false;       ///< frames have full alpha instead of one by the formula

    long properties;
    std::map<long, long>
        picture;  ///< picture shown for a frame, by the formula's number; the frame itself if absent

    std::set<std::string> failing;                ///< names of entries that answer 0
    std::map<std::string, unsigned long> errors;  ///< error numbers that failing entries set
    std::set<std::string> throwing;               ///< names of entries that throw an int

    // For GetFrameDataReference, which is offered when a test puts it into the descriptor.
    long dataSize = 0;  ///< 0: the whole file
    void* dataBuffer = nullptr;

    std::vector<unsigned char> options;  ///< what Options and AudioOptions leave in the clip

    bool completesAtOnce = true;  ///< AddFrameAsync completes before it returns
    std::vector<TestPending> pending;
    void Complete_Pending();

    std::vector<TestCall> calls;
    long Count(std::string const& entry) const;
    TestCall const& Last(std::string const& entry) const;  ///< aborts the test when there was no such call

    // Entries that a test may put into the descriptor; the obligatory ones are there from the start.
    static long AddFrameAsync(ZVClip*, ZVBitmap*, long frame, ZVRectT<long>* region, ZVFrameCompletion,
                              ZVCompletionParams*, long reserved);
    static long GetFrameDataReference(ZVClip*, long frame, long layer, long long* offset, long* size,
                                      void** data);
    static void Options(ZVClip*, bool silent);
    static void AudioOptions(ZVClip*, bool silent);
    static long GetFrameData(ZVClip*, long frame, unsigned long what, void* buffer, long size);
    static void ConvertEndianOptions(ZVClip*);

private:
    static TestFormat& Of(ZVFormatDesc* format) { return *static_cast<TestFormat*>(format->ModuleInfo); }
    static TestFormat& Of(ZVClip* clip) { return Of(clip->Format); }
    static long Open(ZVClip*, TagItem*);
    static void Close(ZVClip*);
    static long Create(ZVClip*, unsigned long createFlags);
    static long BeginIO(ZVClip*, long writing);
    static long EndIO(ZVClip*, long writing);
    static long GetFrame(ZVClip*, ZVBitmap*, long frame, ZVRectT<long>*, long width, long height, long layer,
                         void*, long);
    static long AddFrame(ZVClip*, ZVBitmap*, long frame, ZVRectT<long>* region);
    static void Cleanup(ZVFormatDesc*);

    TestCall& Note(char const* entry, ZVClip* clip);
    long Answer(char const* entry);
    void Set_Options(char const* entry, ZVClip* clip, bool silent, ZVFormatParams*& params);
};

/// Channel of a pixel of a picture, 0 to `max`: no two neighbours in time or space look alike.
unsigned long Test_Channel(long picture, long layer, long x, long y, int channel, unsigned long max);

/// Draws a whole picture into a bitmap of one of the five RGBA types; float channels are the 16-bit ones over
/// 65535.
void Draw_Test_Picture(ZVBitmap* bitmap, long picture, long layer = 0, bool isOpaque = false);
