// Which files belong to the clip of a format that holds one picture in a file: the other files of the series
// that the user pointed into, or what he makes of them in a dialog.
#include "ClipRecord.h"
#include "foundation/HeapBlock.h"

#include "ZVLibInternal.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace {

/// The files of a directory that belong to one mask.
struct Scan {
    char const* mask;
    std::vector<long> numbers;
    long widest = 0;  ///< most digits of a number
};

bool Take_File(char const* name, bool isDirectory, void* data)
{
    auto* const scan = static_cast<Scan*>(data);
    char mask[ZV_SPEC_SIZE];
    if (isDirectory || std::strlen(name) >= sizeof mask) return true;
    std::strcpy(mask, name);
    if (!FileNameToSequenceNameZV(mask) || SequenceCmpZV(mask, scan->mask) != 0) return true;
    scan->numbers.push_back(NameToSequenceNumberZV(name));
    scan->widest = std::max(scan->widest, SequenceDigitsZV(mask));
    return true;
}

/// The mask with as many hashes as the widest number has digits; false when that does not fit.
bool Widen_Mask(char* mask, long digits)
{
    // A name may hold brackets of its own, so only one with all the hashes behind it is the mask's.
    std::string const hashes(static_cast<std::size_t>(SequenceDigitsZV(mask)), '#');
    char* const open = std::strstr(mask, ('[' + hashes + ']').c_str());
    long const missing = digits - static_cast<long>(hashes.size());
    if (!open || missing <= 0) return true;
    std::size_t const length = std::strlen(mask);
    auto const count = static_cast<std::size_t>(missing);
    if (length + count >= ZV_SPEC_SIZE) return false;
    char* const behind = open + 1;
    std::memmove(behind + count, behind, length - static_cast<std::size_t>(behind - mask) + 1);
    std::memset(behind, '#', count);
    return true;
}

/// Whether the mask stands for the file that it was made from. It does not where the name holds a mask of its
/// own ahead of the number.
bool Masks(char const* mask, char const* name)
{
    char rendered[ZV_SPEC_SIZE];
    std::strcpy(rendered, mask);
    return SequenceNumberToNameZV(rendered, NameToSequenceNumberZV(name), 0) &&
           std::strcmp(rendered, name) == 0;
}

bool Counts_From_Zero(std::vector<long> const& numbers)
{
    for (std::size_t i = 0; i < numbers.size(); ++i)
        if (numbers[i] != static_cast<long>(i)) return false;
    return true;
}

void Stay_One_Frame(ZVClip& clip)
{
    FreeMemZV(std::exchange(clip.SequenceNumbers, nullptr));
    clip.RawFrames = 1;
    clip.SequenceStart = 0;
}

/// Makes the clip the series `scan.mask` in `directory`. 0 with everything as it was when memory runs out.
long Take_Sequence(ZVClip& clip, char const* directory, Scan const& scan)
{
    char mask[ZV_SPEC_SIZE], spec[ZV_SPEC_SIZE];
    std::strcpy(mask, scan.mask);
    if (!Widen_Mask(mask, scan.widest) ||
        std::snprintf(spec, sizeof spec, "%s%s", directory, mask) >= ZV_SPEC_SIZE) {
        SetError(ZV_ERR_NOT_FOUND);
        return 0;
    }
    auto const count = static_cast<long>(scan.numbers.size());
    HeapBlock<long> table(Counts_From_Zero(scan.numbers) ? nullptr : Alloc_Zeroed<long>(count));
    if (!table && !Counts_From_Zero(scan.numbers)) {
        SetError(ZV_ERR_MEMORY);
        return 0;
    }
    if (table) std::ranges::copy(scan.numbers, table.get());
    char* const name = CopyFileSpecZV(spec);
    if (!name) return 0;
    FreeFileSpecZV(std::exchange(clip.FileName, name));
    FreeMemZV(std::exchange(clip.SequenceNumbers, table.release()));
    clip.RawFrames = count;
    clip.SequenceStart = 0;
    clip.SequenceStep = 1;
    return 1;
}

/// Gives the clip the name of a file in place of the mask; false with error 1.
bool Name_One_File(ZVClip& clip, char const* spec)
{
    char* const name = CopyFileSpecZV(spec);
    if (!name) return false;
    FreeFileSpecZV(std::exchange(clip.FileName, name));
    Stay_One_Frame(clip);
    return true;
}

/// The one frame that is left of the series is the file of that number, which the module has to read in place
/// of the one that was pointed at.
bool Keep_One_Frame(ZVClip& clip, long number)
{
    char spec[ZV_SPEC_SIZE];
    std::strcpy(spec, clip.FileName);
    if (!SequenceNumberToNameValidateZV(spec, number)) {
        SetError(ZV_ERR_NOT_FOUND);
        return false;
    }
    if (!Name_One_File(clip, spec)) return false;
    ZVFormatDesc const* const module = std::exchange(clip.OpenModule, nullptr);
    if (!module) return true;
    if (module->Close) module->Close(&clip);
    return Open_Module(&clip, nullptr);
}

/// Keeps a part of the frames; false with the error number set.
bool Keep_Frames(ZVClip& clip, long first, long last)
{
    long const count = last - first + 1;
    if (count == clip.RawFrames) return true;
    long* const table = clip.SequenceNumbers;
    if (count == 1) return Keep_One_Frame(clip, table ? table[first] : first);
    if (table) {
        std::copy(table + first, table + last + 1, table);
    } else {
        clip.SequenceNumbers = Alloc_Zeroed<long>(count);
        if (!clip.SequenceNumbers) {
            SetError(ZV_ERR_MEMORY);
            return false;
        }
        std::iota(clip.SequenceNumbers, clip.SequenceNumbers + count, first);
    }
    clip.RawFrames = count;
    return true;
}

/// What the dialog starts from: a clip of a usual size most likely has the rate that goes with it, and what
/// applications know goes before all.
ZVSequenceChoice First_Choice(ZVClip const& clip)
{
    UsualRates const usual = Usual_Rates(clip);
    ZVSequenceChoice choice{true,          0, clip.RawFrames - 1, clip.FileFrameRate, clip.PixelAspect,
                            ZV_FIELDS_NONE};
    if (usual.isPreset || Lacks_Rate(clip)) choice.FrameRate = usual.rate;
    if (Lacks_Aspect(clip)) choice.PixelAspect = usual.aspect;
    if (ZVEnv->seqRateSet) choice.FrameRate = ZVEnv->seqRate;
    if (ZVEnv->seqAspectSet) choice.PixelAspect = ZVEnv->seqAspect;
    if (ZVEnv->seqFieldsSet) choice.FieldOrder = ZVEnv->seqFields;
    return choice;
}

/// Lets the user choose what of the series is loaded. 0 with the error number set, 21 when he gives up.
/// @param chosen  spec of the file that he pointed at
long Choose_Frames(ZVClip& clip, char const* chosen)
{
    ZVSequenceChoice choice = First_Choice(clip);
    if (!Ask_Sequence(clip.RawFrames, &choice)) return 0;
    if (!choice.IsWhole) return Name_One_File(clip, chosen);
    if (!Keep_Frames(clip, choice.First, choice.Last)) return 0;
    clip.FileFrameRate = choice.FrameRate;
    clip.PixelAspect = choice.PixelAspect;
    clip.FieldOrder = choice.FieldOrder;
    return 1;
}

}  // namespace

long SequenceCheckZV(ZVClip* clip, TagItem* tags)
{
    char directory[ZV_SPEC_SIZE], name[ZV_SPEC_SIZE], mask[ZV_SPEC_SIZE];
    bool const isSingle = FindTagItem(ZV_OPEN_SINGLE_FRAME, tags);
    GetFileNameZV(clip->FileName, name);
    std::strcpy(mask, name);
    if (isSingle || !GetPathZV(clip->FileName, directory) || !FileNameToSequenceNameZV(mask) ||
        !Masks(mask, name)) {
        Stay_One_Frame(*clip);
        return 1;
    }
    try {
        Scan scan{mask, {}};
        bool const isRead = OS_Walk_Directory(directory, Take_File, &scan);
        // One file alone is no series, and one in a directory that gives no names away may be alone.
        if (!isRead || scan.numbers.size() == 1) {
            Stay_One_Frame(*clip);
            return 1;
        }
        std::ranges::sort(scan.numbers);
        std::string const chosen = clip->FileName;
        if (!Take_Sequence(*clip, directory, scan)) return 0;
        // Of a series that is gone there is nothing to choose.
        bool const asks = clip->RawFrames > 0 && !FindTagItem(ZV_OPEN_NO_SEQUENCE_DIALOG, tags);
        return asks && Has_Interface() ? Choose_Frames(*clip, chosen.c_str()) : 1;
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return 0;
    }
}
