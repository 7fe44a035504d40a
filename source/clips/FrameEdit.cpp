// Editing frames: replace, insert and delete in any clip. The source stays as it is; the clip's frame map
// tells what stands at each place, and new pixels lie in scratch files.
#include "BitmapBlock.h"
#include "FieldRows.h"
#include "FrameMap.h"

#include "ZVFileSpec.h"
#include "ZVLibInternal.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>

namespace {

/// Names of scratch files hold six digits.
constexpr long maxScratchNumber = 999999;

bool Fail(unsigned long error)
{
    SetError(error);
    return false;
}

/// A number for a new scratch frame, negative; 0 with the error number set when there is none. One whose file
/// exists is passed over: clip ids are shortened in the names, so it can be a living frame of another clip.
long New_Scratch_Number(ZVClip& clip)
{
    while (clip.ScratchCount < maxScratchNumber) {
        char const* name = Make_TempName(clip.ClipID, -(clip.ScratchCount + 1), 0);
        if (!name) return 0;
        ++clip.ScratchCount;
        if (!FileExistsZV(name)) return -clip.ScratchCount;
    }
    SetError(ZV_ERR_CLIP);
    return 0;
}

bool Write_Whole_File(char const* name, ZVBitmap const& bitmap)
{
    ZVFileInfo* file = CreateFileZV(name, ZVFilePermReadWrite, ZV_BLANK_CODE, ZV_BLANK_CODE, ZVFileFlagNone);
    if (!file) return false;
    bool const isWritten = WriteFileZV(file, bitmap.Pixels, static_cast<unsigned long>(bitmap.Size));
    CloseFileZV(file);
    return isWritten;
}

/// Stores the pixels of a scratch frame. They are written beside it and take its name when they are whole, so
/// that a failure leaves the frame that was there before.
bool Write_Scratch(ZVClip const& clip, long scratch, ZVBitmap const& bitmap)
{
    char const* name = Make_TempName(clip.ClipID, scratch, 0);
    if (!name) return false;
    char target[ZV_SPEC_SIZE], beside[ZV_SPEC_SIZE];
    std::snprintf(target, sizeof target, "%s", name);
    std::snprintf(beside, sizeof beside, "%s", name);
    beside[std::strlen(beside) - 1] = 'W';
    if (Write_Whole_File(beside, bitmap) && RenameFileZV(beside, target)) return true;
    unsigned long const error = GetErrorZV();
    DeleteFileZV(beside);
    return Fail(error ? error : static_cast<unsigned long>(ZV_ERR_IO));
}

void Delete_Scratch(ZVClip const& clip, long scratch)
{
    unsigned long const error = GetErrorZV();
    if (char const* name = Make_TempName(clip.ClipID, scratch, 0)) DeleteFileZV(name);
    SetError(error);
}

/// The pixels of a scratch frame as they were stored, Background for one that was inserted and never
/// modified. False for pixels of another size or type.
bool Read_Scratch(ZVClip const& clip, long scratch, ZVBitmap& bitmap)
{
    char const* name = Make_TempName(clip.ClipID, scratch, 0);
    if (!name || !FileExistsZV(name)) {
        FillBitmapZV(&bitmap, clip.Background);
        return true;
    }
    ZVFileInfo* file = OpenFileZV(name, ZVFilePermRead, ZVFileFlagLargeRead);
    if (!file) return false;
    bool const isRead = GetFileLengthZV(file) == bitmap.Size &&
                        ReadFileZV(file, bitmap.Pixels, static_cast<unsigned long>(bitmap.Size));
    CloseFileZV(file);
    return isRead;
}

/// A frame of an edit call: times ahead of the clip count as frame 0. -1 behind the last frame.
long Frame_To_Edit(ZVClip const& clip, ZVTimeValue const* time)
{
    ZVTimeValue const moment = time ? *time : ZVTimeValue{};
    long const number = Get_Frame(&clip, &moment);
    long const frame = std::max(number, 0L);
    // LONG_MIN is a time beyond all frame numbers, on either side.
    if (number != LONG_MIN && frame < clip.Frames && frame < Get_ReadableFrames(&clip)) return frame;
    SetError(ZV_ERR_CLIP);
    return -1;
}

long Insert_Frame(ZVClip* clip, ZVTimeValue const* time, long distance)
{
    if (!clip) return 0;
    SetError(ZV_ERR_NONE);
    long const frame = Frame_To_Edit(*clip, time);
    if (frame < 0) return 0;
    long const scratch = New_Scratch_Number(*clip);
    if (!scratch || !Make_Frame_Map(*clip) || !Insert_Mapped_Frame(*clip, frame + distance, scratch))
        return 0;
    ++clip->Frames;
    return 1;
}

/// Puts one field of a film frame into a video frame that holds the other field of a neighbour.
class FieldEdit {
public:
    FieldEdit(ZVClip& clip, ZVBitmap& bitmap, TagItem* tags, ZVBitmap& work)
        : clip_(clip), bitmap_(bitmap), tags_(tags), work_(work)
    {
    }

    /// Only a frame that was edited before: an untouched one goes on showing the source's pixels in both
    /// fields.
    bool Update_Scratch(long frame, Field field)
    {
        if (frame < 0 || frame >= Get_ReadableFrames(&clip_)) return true;
        long const mapped = Get_FrameMapping(&clip_, frame);
        if (mapped >= 0 || !Read_Scratch(clip_, mapped, work_)) return true;
        return Store(frame, field);
    }

    bool Replace(long frame, Field field)
    {
        if (frame >= Get_ReadableFrames(&clip_)) return true;
        long const mapped = Get_FrameMapping(&clip_, frame);
        AsyncParams async;
        bool const isRead = mapped < 0 ? Read_Scratch(clip_, mapped, work_)
                                       : Get_Frame(&clip_, static_cast<unsigned long>(frame), &work_, 0,
                                                   nullptr, clip_.Width, clip_.Height, async);
        if (!isRead) FillBitmapZV(&work_, clip_.Background);
        return Store(frame, field);
    }

private:
    bool Store(long frame, Field field)
    {
        Copy_Rows(Rows_Of_Field(bitmap_, field), Rows_Of_Field(work_, field));
        return ModifyFrame2(&clip_, static_cast<unsigned long>(frame), &work_, tags_);
    }

    ZVClip& clip_;
    ZVBitmap& bitmap_;
    TagItem* tags_;
    ZVBitmap& work_;
};

/// One film frame lies in up to three video frames; its own one is `video`.
long Modify_Film_Frame(ZVClip& clip, long film, ZVBitmap& bitmap, TagItem* tags)
{
    long const phase = film + clip.PullDown - 1;
    long const video = phase % 4 + phase / 4 * 5 - clip.PullDown + 1;
    if (video >= Get_ReadableFrames(&clip)) return Fail(ZV_ERR_CLIP);
    BitmapBlock const work(AllocBitmapZV(bitmap.Width, bitmap.Height, bitmap.Type, "ModifyFrameZV"));
    if (!work) return Fail(ZV_ERR_MEMORY);
    FieldEdit edit(clip, bitmap, tags, *work);

    // A mixed video frame shows the earlier of its film frames in its first field, the later one in its
    // second.
    Field const second = clip.FieldOrder == ZV_FIELDS_UPPER_FIRST ? Field::Lower : Field::Upper;
    Field const first = Other_Field(second);
    if (phase % 4 == 3) return edit.Replace(video, second) && edit.Replace(video + 1, first);
    if (!ModifyFrame2(&clip, static_cast<unsigned long>(video), &bitmap, tags)) return 0;
    if (phase % 4 == 0) return edit.Update_Scratch(video - 1, second);
    if (phase % 4 == 2) return edit.Update_Scratch(video + 1, first);
    return 1;
}

}  // namespace

long ModifyFrameZV(ZVClip* clip, ZVBitmap* bitmap, ZVTimeValue const* time, ZVTimeValue const*, TagItem* tags)
{
    if (!clip || !bitmap) return 0;
    SetError(ZV_ERR_NONE);
    ZVTimeValue const moment = time ? *time : ZVTimeValue{};
    long const frame = Get_Frame(clip, &moment);
    if (frame < 0 || frame >= Get_ReadableFrames(clip)) return Fail(ZV_ERR_CLIP);
    if (clip->PullDown) return Modify_Film_Frame(*clip, frame, *bitmap, tags);
    return ModifyFrame2(clip, static_cast<unsigned long>(frame), bitmap, tags);
}

long ModifyFrame2(ZVClip* clip, unsigned long frame, ZVBitmap* bitmap, TagItem*)
{
    if (!clip || !bitmap || !bitmap->Pixels) return 0;
    SetError(ZV_ERR_NONE);
    if (frame >= static_cast<unsigned long>(Get_ReadableFrames(clip))) return Fail(ZV_ERR_CLIP);
    auto const place = static_cast<long>(frame);
    long const mapped = Get_FrameMapping(clip, place);
    if (mapped < 0) return Write_Scratch(*clip, mapped, *bitmap);

    long const scratch = New_Scratch_Number(*clip);
    if (!scratch || !Write_Scratch(*clip, scratch, *bitmap)) return 0;
    // Without memory for a map the frame stays as it was, and the call counts as done all the same.
    if (!Make_Frame_Map(*clip)) return 1;
    if (Replace_Mapped_Frame(*clip, place, scratch)) return 1;
    Delete_Scratch(*clip, scratch);
    return 0;
}

long InsertFrameBeforeZV(ZVClip* clip, ZVTimeValue const* time)
{
    return Insert_Frame(clip, time, 0);
}

long InsertFrameAfterZV(ZVClip* clip, ZVTimeValue const* time)
{
    return Insert_Frame(clip, time, 1);
}

long DeleteFrameZV(ZVClip* clip, ZVTimeValue const* time)
{
    if (!clip) return 0;
    SetError(ZV_ERR_NONE);
    long const frame = Frame_To_Edit(*clip, time);
    if (frame < 0 || !Make_Frame_Map(*clip) || !Delete_Mapped_Frame(*clip, frame)) return 0;
    --clip->Frames;
    return 1;
}
