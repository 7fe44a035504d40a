// Which files belong to the clip of a format that holds one picture in a file: the other files of the series
// that the user pointed into.
#include "ClipMemory.h"
#include "foundation/HeapBlock.h"

#include "ZVLibInternal.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
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
        // The series is taken as found until the user can be asked.
        return Take_Sequence(*clip, directory, scan);
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return 0;
    }
}
