// Writing frames: from the tags of AddFrameZV to the module, with conversion to the clip's pixel type, one
// file for each frame of a sequence, and the hand-over to modules that finish a frame later.
#include "FrameWrite.h"

#include "ClipMemory.h"
#include "foundation/HeapBlock.h"

#include "ZVFileSpec.h"
#include "ZVLibInternal.h"
#include "ZVSequence.h"

#include <atomic>
#include <climits>
#include <cmath>
#include <utility>

namespace {

/// Lends a clip a file name for the length of a block.
class LentFileName {
public:
    LentFileName(ZVClip& clip, char* name) : clip_(clip), own_(std::exchange(clip.FileName, name)) {}
    ~LentFileName() { clip_.FileName = own_; }
    LentFileName(LentFileName const&) = delete;
    LentFileName& operator=(LentFileName const&) = delete;

private:
    ZVClip& clip_;
    char* own_;
};

using Record = HeapBlock<ZVCompletionParams>;

/// Whole frames up to a time, counted from time 0.
long Absolute_Frame(ZVClip const& clip, ZVTimeValue const& time)
{
    double const position = Get_Time(&time) * clip.FrameRate + 1e-7;
    // Beyond what a double counts exactly there are no frames.
    return std::abs(position) < 0x1p53 ? static_cast<long>(position) : 0;
}

void Read_Tags(FrameWrite& write, TagItem* tags)
{
    long divisor = 1, useDivisor = 1;
    bool hasFunction = false, hasTarget = false;
    while (TagItem const* item = NextTagItem(&tags)) {
        auto const number = static_cast<long>(item->data);
        switch (item->tag) {
        case ZV_ADD_RECT:
            if (number) write.region = reinterpret_cast<ZVRectT<long>*>(item->data);
            break;
        case ZV_ADD_TO_BITMAP:
            write.target = reinterpret_cast<ZVBitmap*>(item->data);
            hasTarget = true;
            break;
        case ZV_ADD_FUNCTION:
            write.writer = reinterpret_cast<ZVFrameWriter>(item->data);
            hasFunction = true;
            break;
        case ZV_ADD_COMPLETION: write.completion = reinterpret_cast<ZVWriteCompletion>(item->data); break;
        case ZV_ADD_COMPLETION_DATA: write.completionData = reinterpret_cast<void*>(item->data); break;
        case ZV_ADD_COMPLETION_ARGUMENT: write.completionArgument = item->data; break;
        case ZV_ADD_FIRST_FRAME: write.firstFrame = number; break;
        case ZV_ADD_LAST_FRAME: write.lastFrame = number; break;
        case ZV_ADD_FRAME_DIVISOR: divisor = number; break;
        case ZV_ADD_NO_OVERWRITE: write.noOverwrite = number; break;
        case ZV_ADD_USE_DIVISOR: useDivisor = number; break;
        default: break;
        }
    }
    if (!hasFunction && !hasTarget) write.writer = Add_Frame;
    if (useDivisor && divisor) write.frame /= divisor;
}

/// A file that cannot be looked into counts as one with data: nobody may write over it by mistake.
bool Holds_Data(char const* name)
{
    if (!FileExistsZV(name)) return false;
    ZVFileInfo* file = OpenFileZV(name, ZVFilePermRead, ZVFileFlagLargeRead);
    bool const isEmpty = file && GetFileLengthZV(file) == 0;
    CloseFileZV(file);
    return !isEmpty;
}

ZVBitmap* Converted_Copy(ZVBitmap const& bitmap, ZVBitmapType type)
{
    // There is no conversion from mono types.
    if (GetChannelsZV(&bitmap) != GetChannelsZV(type)) {
        SetError(ZV_ERR_CLIP);
        return nullptr;
    }
    ZVBitmap* copy = AllocBitmapZV(bitmap.Width, bitmap.Height, type, "Add_Frame");
    if (copy) CopyBitmapZV(&bitmap, copy, 0, 0, bitmap.Width, bitmap.Height, 0, 0);
    return copy;
}

long Hand_Over(ZVClip& clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* region, Record& record)
{
    auto const addFrame = clip.Format->AddFrameAsync;
    if (record->Completion || record->Bitmap)
        return addFrame(&clip, bitmap, frame, region, AddFrameCompletionFunc, record.release(), 0);
    // The bitmap is the caller's, and nothing but this call's return tells him that the module has done with
    // it.
    record->AutoDelete = 0;
    long const answer = addFrame(&clip, bitmap, frame, region, AddFrameCompletionFunc, record.get(), 0);
    while (!std::atomic_ref(record->Done).load(std::memory_order_acquire))
        Delay(2);
    return answer;
}

}  // namespace

long Send_Frame(FrameWrite const& write, ZVBitmap* bitmap, long number, ZVWriteCompletion completion)
{
    if (write.writer)
        return write.writer(write.clip, bitmap, number, write.region, write.noOverwrite, completion,
                            write.completionData, write.completionArgument);
    CopyBitmapZV(bitmap, write.target, 0, 0, bitmap->Width, bitmap->Height, 0, 0);
    if (completion) completion(write.completionData, write.completionArgument);
    return 1;
}

void Run_Completion(FrameWrite const& write)
{
    if (write.completion) write.completion(write.completionData, write.completionArgument);
}

long Add_Frame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* region, long noOverwrite,
               void (*completion)(void*, unsigned long), void* data, unsigned long argument)
{
    if (!clip || !bitmap || !clip->Format) return 0;
    ZVFormatDesc const& format = *clip->Format;
    if (!format.AddFrame && !format.AddFrameAsync) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    Record record(Alloc_Zeroed<ZVCompletionParams>(1));
    if (!record) {
        SetError(ZV_ERR_MEMORY);
        return 0;
    }
    *record = {nullptr, completion, data, argument, 0, 1};

    long const properties = GetExportPropertiesZV(clip);
    bool const isNumbered =
        !(properties & ZV_FORMAT_MULTIFRAME) && (clip->Frames >= 2 || (clip->Flags & ZV_CLIP_NUMBERED));
    char name[ZV_SPEC_SIZE];
    if (isNumbered) {
        FrameNumberToNameZV(name, frame, clip);
        if (!*name) {
            SetError(ZV_ERR_NOT_FOUND);
            return 0;
        }
        if (noOverwrite && Holds_Data(name)) return 0;
    }
    ZVBitmapType const type = GetBitmapTypeZV(clip);
    if (bitmap->Type != type && !(properties & ZV_FORMAT_ANY_TYPE)) {
        record->Bitmap = bitmap = Converted_Copy(*bitmap, type);
        if (!bitmap) return 0;
        if (completion) std::exchange(record->Completion, nullptr)(data, argument);
    }
    long answer;
    {
        LentFileName const lent(*clip, isNumbered ? name : clip->FileName);
        answer = format.AddFrameAsync ? Hand_Over(*clip, bitmap, frame, region, record)
                                      : format.AddFrame(clip, bitmap, frame, region);
    }
    if (!answer && GetErrorZV() == ZV_ERR_NONE) SetError(ZV_ERR_CLIP);
    if (!format.AddFrameAsync) AddFrameCompletionFunc(record.release(), 0);
    return answer;
}

void AddFrameCompletionFunc(void* data, unsigned long)
{
    auto* const record = static_cast<ZVCompletionParams*>(data);
    if (!record) return;
    // Once Done is set, a writer that waits for it deletes the record.
    bool const isMine = record->AutoDelete == 1;
    FreeBitmapZV(record->Bitmap);
    if (record->Completion) record->Completion(record->Data, record->Argument);
    std::atomic_ref(record->Done).store(1, std::memory_order_release);
    if (isMine) FreeMemZV(record);
}

long AddFrameZV(ZVClip* clip, ZVBitmap* bitmap, ZVTimeValue const* time, ZVTimeValue const* duration,
                TagItem* tags)
{
    return PullDownClipZV(clip, bitmap, time, duration, tags);
}

long PullDownClipZV(ZVClip* clip, ZVBitmap* bitmap, ZVTimeValue const* time, ZVTimeValue const*,
                    TagItem* tags)
{
    if (!clip || !bitmap) return 0;
    if (!(GetExportPropertiesZV(clip) & ZV_FORMAT_WRITE)) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    SetError(ZV_ERR_NONE);
    ZVTimeValue const moment = time ? *time : ZVTimeValue{};
    ZVRectT<long> whole{0, 0, bitmap->Width, bitmap->Height};
    FrameWrite write{clip, bitmap, &whole};
    write.frame = Get_Frame(clip, &moment);
    if (write.frame == LONG_MIN) {  // a time beyond all frame numbers
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    write.absolute = Absolute_Frame(*clip, moment);
    write.lastFrame = clip->Frames;
    Read_Tags(write, tags);
    if (!write.writer && !write.target) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    if (clip->PullDown) return Write_Film_Frame(write);
    return Send_Frame(write, bitmap, write.frame, write.completion);
}
