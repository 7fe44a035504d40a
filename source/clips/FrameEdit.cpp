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

/// New pixels of a frame, in a file beside the one that the frame has or will have: until they are committed
/// the clip shows what it showed, and pixels that could not be stored whole never count.
class StagedFrame {
public:
    explicit StagedFrame(ZVClip& clip) : clip_(clip) {}

    /// False with the error number set.
    bool Write(long frame, ZVBitmap const& bitmap)
    {
        long const mapped = Get_FrameMapping(&clip_, frame);
        isNew_ = mapped >= 0;
        frame_ = frame;
        scratch_ = isNew_ ? New_Scratch_Number(clip_) : mapped;
        char const* name = scratch_ ? Make_TempName(clip_.ClipID, scratch_, 0) : nullptr;
        if (!name) return false;
        std::snprintf(target_, sizeof target_, "%s", name);
        std::snprintf(beside_, sizeof beside_, "%s", name);
        beside_[std::strlen(beside_) - 1] = 'W';
        return Write_Pixels(bitmap) || Give_Up(beside_);
    }

    bool Commit()
    {
        if (!*beside_) return true;
        if (!RenameFileZV(beside_, target_)) return Give_Up(beside_);
        // Without memory for a map the frame stays as it was, and the call counts as done all the same.
        if (!isNew_ || !Make_Frame_Map(clip_)) return true;
        return Replace_Mapped_Frame(clip_, frame_, scratch_) || Give_Up(target_);
    }

    void Discard()
    {
        if (*beside_) Give_Up(beside_);
    }

private:
    bool Write_Pixels(ZVBitmap const& bitmap) const
    {
        ZVFileInfo* file =
            CreateFileZV(beside_, ZVFilePermReadWrite, ZV_BLANK_CODE, ZV_BLANK_CODE, ZVFileFlagNone);
        if (!file) return false;
        bool const isWritten = WriteFileZV(file, bitmap.Pixels, static_cast<unsigned long>(bitmap.Size));
        CloseFileZV(file);
        return isWritten;
    }

    /// Deletes the file and keeps the error number of what went wrong before.
    bool Give_Up(char const* file)
    {
        unsigned long const error = GetErrorZV();
        DeleteFileZV(file);
        SetError(error);
        *beside_ = 0;
        return false;
    }

    ZVClip& clip_;
    long frame_ = 0;
    long scratch_ = 0;
    bool isNew_ = false;
    char target_[ZV_SPEC_SIZE] = "";
    char beside_[ZV_SPEC_SIZE] = "";  ///< empty when nothing is staged
};

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

/// A film frame on its way into the video frames that show it.
class FilmEdit {
public:
    FilmEdit(ZVClip& clip, ZVBitmap& bitmap, ZVBitmap& work)
        : clip_(clip), bitmap_(bitmap), work_(work), own_(clip), neighbour_(clip)
    {
    }

    /// Stages all video frames that show the film frame. Its own one is `video`, its place in the group of
    /// four film frames `place`.
    bool Stage(long video, long place)
    {
        // A mixed video frame shows the earlier of its film frames in its first field, the later one in its
        // second.
        Field const second = clip_.FieldOrder == ZV_FIELDS_UPPER_FIRST ? Field::Lower : Field::Upper;
        Field const first = Other_Field(second);
        if (place == 3) return Stage_Half(own_, video, second) && Stage_Half(neighbour_, video + 1, first);
        if (!own_.Write(video, bitmap_)) return false;
        if (place == 0) return Stage_Edited_Half(video - 1, second);
        if (place == 2) return Stage_Edited_Half(video + 1, first);
        return true;
    }

    /// Shows all that was staged, or drops it when it is not all.
    bool Commit(bool isStaged)
    {
        if (isStaged && own_.Commit() && neighbour_.Commit()) return true;
        own_.Discard();
        neighbour_.Discard();
        return false;
    }

private:
    /// Stages one field of a video frame that the film frame shares with a neighbour.
    bool Stage_Half(StagedFrame& staged, long video, Field field)
    {
        if (video >= Get_ReadableFrames(&clip_)) return true;
        long const mapped = Get_FrameMapping(&clip_, video);
        AsyncParams async;
        bool const isRead = mapped < 0 ? Read_Scratch(clip_, mapped, work_)
                                       : Get_Frame(&clip_, static_cast<unsigned long>(video), &work_, 0,
                                                   nullptr, clip_.Width, clip_.Height, async);
        if (!isRead) FillBitmapZV(&work_, clip_.Background);
        return Stage_Work(staged, video, field);
    }

    /// The same, but only where the shared frame was edited before: an untouched one goes on showing the
    /// source in both fields.
    bool Stage_Edited_Half(long video, Field field)
    {
        if (video < 0 || video >= Get_ReadableFrames(&clip_)) return true;
        long const mapped = Get_FrameMapping(&clip_, video);
        if (mapped >= 0 || !Read_Scratch(clip_, mapped, work_)) return true;
        return Stage_Work(neighbour_, video, field);
    }

    bool Stage_Work(StagedFrame& staged, long video, Field field)
    {
        Copy_Rows(Rows_Of_Field(bitmap_, field), Rows_Of_Field(work_, field));
        return staged.Write(video, work_);
    }

    ZVClip& clip_;
    ZVBitmap& bitmap_;
    ZVBitmap& work_;
    StagedFrame own_;
    StagedFrame neighbour_;
};

/// One film frame lies in up to three video frames.
long Modify_Film_Frame(ZVClip& clip, long film, ZVBitmap& bitmap)
{
    long const count = film + clip.PullDown - 1;
    long const place = count % 4;
    long const video = place + count / 4 * 5 - clip.PullDown + 1;
    if (video >= Get_ReadableFrames(&clip)) return Fail(ZV_ERR_CLIP);
    BitmapBlock const work(AllocBitmapZV(bitmap.Width, bitmap.Height, bitmap.Type, "ModifyFrameZV"));
    if (!work) return Fail(ZV_ERR_MEMORY);
    FilmEdit edit(clip, bitmap, *work);
    return edit.Commit(edit.Stage(video, place));
}

}  // namespace

long ModifyFrameZV(ZVClip* clip, ZVBitmap* bitmap, ZVTimeValue const* time, ZVTimeValue const*, TagItem* tags)
{
    if (!clip || !bitmap || !bitmap->Pixels) return 0;
    SetError(ZV_ERR_NONE);
    ZVTimeValue const moment = time ? *time : ZVTimeValue{};
    long const frame = Get_Frame(clip, &moment);
    if (frame < 0 || frame >= Get_ReadableFrames(clip)) return Fail(ZV_ERR_CLIP);
    if (clip->PullDown) return Modify_Film_Frame(*clip, frame, *bitmap);
    return ModifyFrame2(clip, static_cast<unsigned long>(frame), bitmap, tags);
}

long ModifyFrame2(ZVClip* clip, unsigned long frame, ZVBitmap* bitmap, TagItem*)
{
    if (!clip || !bitmap || !bitmap->Pixels) return 0;
    SetError(ZV_ERR_NONE);
    if (frame >= static_cast<unsigned long>(Get_ReadableFrames(clip))) return Fail(ZV_ERR_CLIP);
    StagedFrame staged(*clip);
    return staged.Write(static_cast<long>(frame), *bitmap) && staged.Commit();
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
