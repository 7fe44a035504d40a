// Writing under pull-down: 24 film frames become 30 video frames, four of them five. Two of the five mix
// fields of neighbouring film frames, so one field of a film frame is carried over in the clip's FieldBitmap
// to the next.
#include "BitmapBlock.h"
#include "FieldRows.h"
#include "FrameWrite.h"

#include "ZVLibInternal.h"

namespace {

/// Positions of a film frame within its group of four, as FrameNumberToSequenceNumberZV counts them.
enum Position : long {
    WholeAndCarried = 0,  ///< goes out whole, its field waits for the next frame
    Mixed = 1,            ///< goes out mixed with the frame before; its field waits
    MixedAndWhole = 2     ///< completes the frame before, then goes out whole
};

/// The field that is carried over to the next output frame.
Field Carried_Field(ZVClip const& clip)
{
    return clip.FieldOrder == ZV_FIELDS_LOWER_FIRST ? Field::Lower : Field::Upper;
}

/// The clip's field bitmap, made for the first frame that needs it. All frames of a run have one type and the
/// clip's size.
ZVBitmap* Field_Bitmap(ZVClip& clip, ZVBitmap const& frame, bool isFirst)
{
    ZVBitmap* field = clip.FieldBitmap;
    bool const fitsField =
        field && field->Type == frame.Type && field->Width == clip.Width && field->Height == clip.Height / 2;
    if (frame.Width != clip.Width || frame.Height != clip.Height || (field && !fitsField && !isFirst)) {
        SetError(ZV_ERR_CLIP);
        return nullptr;
    }
    if (fitsField) return field;
    FreeBitmapZV(field);
    clip.FieldBitmap = AllocBitmapZV(clip.Width, clip.Height / 2, frame.Type, "FieldBitmap");
    if (clip.FieldBitmap)
        FillBitmapZV(clip.FieldBitmap, clip.Background);
    else
        SetError(ZV_ERR_MEMORY);
    return clip.FieldBitmap;
}

/// Sends the frame with the carried field in the place of its own one, which is carried from here on. The
/// caller's pixels are back when it returns.
long Send_Mixed(FrameWrite const& write, FieldRows const& own, FieldRows const& carried, long number)
{
    Swap_Rows(own, carried);
    long const answer = Send_Frame(write, write.bitmap, number, nullptr);
    Copy_Rows(carried, own);
    return answer;
}

/// A run that ends on a mixed frame owes the other field of its last film frame: it goes out over Background.
long Send_Owed_Frame(FrameWrite const& write, FieldRows const& carried, long number)
{
    ZVBitmap const& bitmap = *write.bitmap;
    BitmapBlock const owed(AllocBitmapZV(bitmap.Width, bitmap.Height, bitmap.Type, "PullDown"));
    if (!owed) {
        SetError(ZV_ERR_MEMORY);
        return 0;
    }
    FillBitmapZV(owed.get(), write.clip->Background);
    Copy_Rows(carried, Rows_Of_Field(*owed, Carried_Field(*write.clip)));
    return Send_Frame(write, owed.get(), number, nullptr);
}

/// Nothing of the first frame of a run goes out where it would have to be mixed with a frame before it. A
/// completion runs once for every frame that was taken, also when only its field was.
long Send_At_Position(FrameWrite const& write, FieldRows const& carried, long position, long number,
                      bool isFirst)
{
    FieldRows const own = Rows_Of_Field(*write.bitmap, Carried_Field(*write.clip));
    long answer = 1;
    switch (position) {
    case WholeAndCarried:
        Copy_Rows(own, carried);
        if (!isFirst || write.clip->PullDown == 3) break;
        Run_Completion(write);
        return 1;
    case Mixed:
        if (isFirst)
            Copy_Rows(own, carried);
        else
            answer = Send_Mixed(write, own, carried, number);
        Run_Completion(write);
        return answer;
    case MixedAndWhole:
        if (isFirst)
            Copy_Rows(own, carried);
        else if (!Send_Mixed(write, own, carried, number++))
            return 0;
        break;
    default: break;
    }
    return Send_Frame(write, write.bitmap, number, write.completion);
}

}  // namespace

long Write_Film_Frame(FrameWrite const& write)
{
    bool const isFirst = write.absolute == write.firstFrame;
    bool const isLast = write.absolute >= write.lastFrame;
    ZVBitmap* field = Field_Bitmap(*write.clip, *write.bitmap, isFirst);
    if (!field) return 0;
    FieldRows const carried = All_Rows(*field);
    long position = 0, number = 0;
    FrameNumberToSequenceNumberZV(&position, &number, write.frame, isFirst, write.clip);

    FrameWrite now = write;
    if (isLast) now.completion = nullptr;
    long answer = Send_At_Position(now, carried, position, number, isFirst);
    if (!isLast) return answer;
    if (answer && position == Mixed) answer = Send_Owed_Frame(write, carried, number + 1);
    Run_Completion(write);
    return answer;
}
