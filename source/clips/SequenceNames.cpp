// The grammar of sequence names, and the files behind them.
#include "ClipMemory.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace {

bool Is_Digit(char c)
{
    return c >= '0' && c <= '9';
}

int Upper(char c)
{
    auto const byte = static_cast<unsigned char>(c);
    return byte >= 'a' && byte <= 'z' ? byte - 32 : byte;
}

/// The part of a name or spec behind its last separator.
template <typename Char> Char* File_Part(Char* name)
{
    Char* part = name;
    for (Char* c = name; *c; ++c)
        if (*c == ':' || *c == '\\') part = c + 1;
    return part;
}

/// A stretch of a name: its mask, or its number. The beginning is negative when there is none.
struct Stretch {
    long begin = -1;
    long length = 0;
    explicit operator bool() const { return begin >= 0; }
    long End() const { return begin + length; }
};

/// From the bracket to the bracket.
Stretch Find_Mask(char const* name)
{
    for (char const* open = std::strchr(name, '['); open; open = std::strchr(open + 1, '[')) {
        auto const hashes = static_cast<long>(std::strspn(open + 1, "#"));
        if (open[1 + hashes] == ']') return {open - name, hashes + 2};
    }
    return {};
}

/// The last digits of the name, nine at most.
Stretch Find_Number(char const* name)
{
    auto end = static_cast<long>(std::strlen(name));
    while (end > 0 && !Is_Digit(name[end - 1]))
        --end;
    long begin = end;
    while (begin > 0 && end - begin < 9 && Is_Digit(name[begin - 1]))
        --begin;
    return end > 0 ? Stretch{begin, end - begin} : Stretch{};
}

/// Puts `text` in place of a stretch of the file part of `name`. False with error 12, `name` as it was, when
/// the result does not fit.
bool Replace(char* name, char* part, Stretch stretch, std::string_view text)
{
    auto const newLength = static_cast<long>(text.size());
    auto const length = static_cast<long>(std::strlen(name));
    if (length - stretch.length + newLength >= ZV_SPEC_SIZE) {
        SetError(ZV_ERR_NOT_FOUND);
        return false;
    }
    char* const tail = part + stretch.End();
    std::memmove(part + stretch.begin + newLength, tail, std::strlen(tail) + 1);
    std::copy(text.begin(), text.end(), part + stretch.begin);
    return true;
}

/// Decimal text of a number, padded with zeros.
struct Digits {
    char text[ZV_SPEC_SIZE];
    std::string_view view;
    Digits(long number, long width)
    {
        int const limited = static_cast<int>(std::clamp(width, 0L, ZV_SPEC_SIZE - 1L));
        view = {text, static_cast<std::size_t>(std::snprintf(text, sizeof text, "%0*ld", limited, number))};
    }
};

}  // namespace

long SequenceCmpZV(char const* a, char const* b)
{
    for (; *a; ++a, ++b) {
        if (int const difference = Upper(*a) - Upper(*b)) return difference;
        if (*a != '[') continue;
        while (a[1] == '#')
            ++a;
        while (b[1] == '#')
            ++b;
    }
    return 0 - Upper(*b);
}

long FileNameToSequenceNameZV(char* name)
{
    char* const part = File_Part(name);
    Stretch const number = Find_Number(part);
    if (!number) return 0;
    char mask[] = "[#########]";
    mask[number.length + 1] = ']';
    return Replace(name, part, number, {mask, static_cast<std::size_t>(number.length) + 2});
}

long EndNumberFileNameToSequenceZV(char* name)
{
    char const* const part = File_Part(name);
    if (SequenceDigitsZV(name) > 0) return 0;
    for (auto i = static_cast<long>(std::strlen(part)); i-- > 0 && !Is_Digit(part[i]);)
        if (part[i] == '.') {
            if (i == 0 || !Is_Digit(part[i - 1])) return 0;
            break;
        }
    return FileNameToSequenceNameZV(name);
}

long IsSequenceZV(char const* name)
{
    return Find_Mask(File_Part(name)) ? 1 : 0;
}

long SequenceDigitsZV(char const* name)
{
    Stretch const mask = Find_Mask(File_Part(name));
    return mask ? mask.length - 2 : 0;
}

long NameToSequenceNumberZV(char const* name)
{
    char const* const part = File_Part(name);
    Stretch const digits = Find_Number(part);
    long number = 0;
    for (long i = digits.begin; i < digits.End(); ++i)
        number = 10 * number + (part[i] - '0');
    return number;
}

long RemoveSequenceNumberingZV(char* name)
{
    char* const part = File_Part(name);
    Stretch mask = Find_Mask(part);
    if (!mask) return 0;
    if (mask.begin > 0 && part[mask.begin - 1] == '_') {
        --mask.begin;
        ++mask.length;
    }
    return Replace(name, part, mask, {});
}

long SwitchToUnderScoreFormat(char* name)
{
    char* const part = File_Part(name);
    Stretch const mask = Find_Mask(part);
    if (!mask) return 0;
    if (mask.begin > 0 && part[mask.begin - 1] == '_') return 1;
    return Replace(name, part, {mask.begin, 0}, "_");
}

long SetIncNumberOnUnderScoreFormat(char* name, long number)
{
    char* const part = File_Part(name);
    Stretch const mask = Find_Mask(part);
    if (!mask || mask.length == 2) return 0;
    std::string wanted = "_";
    wanted.append(part + mask.begin, static_cast<std::size_t>(mask.length));
    char const* const found = std::strstr(part, wanted.c_str());
    if (!found || found == part) return 0;
    return Replace(name, part, {found - part, 0}, Digits(number, 0).view);
}

bool IsFileNameEndedBy(char const* name, char last)
{
    char const* const part = File_Part(name);
    char const* const dot = std::strrchr(part, '.');
    return dot && dot != part && dot[-1] == last;
}

long SequenceNumberToNameZV(char* name, long number, long shrink)
{
    char* const part = File_Part(name);
    if (Stretch const mask = Find_Mask(part))
        return Replace(name, part, mask, Digits(number, mask.length - 2 - shrink).view);
    char const* const dot = std::strrchr(part, '.');
    long const place = dot ? dot - part : static_cast<long>(std::strlen(part));
    return Replace(name, part, {place, 0}, Digits(number, 4).view);
}

/// The search for a file whose name differs from the rendered ones in case alone. A series may hold such
/// names, and the file system tells them apart.
struct CaseSearch {
    std::vector<std::string> names;  // rendered
    std::string found;
};

static bool Try_Entry(char const* name, bool isDirectory, void* data)
{
    auto* search = static_cast<CaseSearch*>(data);
    if (isDirectory) return true;
    for (std::string const& wanted : search->names) {
        if (!FileSpecCompareZV(wanted.c_str(), name)) continue;
        search->found = name;
        return false;
    }
    return true;
}

long SequenceNumberToNameValidateZV(char* path, long number)
{
    long const digits = SequenceDigitsZV(path);
    if (digits == 0 || std::strlen(path) >= ZV_SPEC_SIZE) return 0;
    CaseSearch search;
    char name[ZV_SPEC_SIZE];
    for (long shrink = 0; shrink < digits; ++shrink) {
        std::strcpy(name, path);
        if (!SequenceNumberToNameZV(name, number, shrink)) continue;
        // Once the number fills the width, narrower masks give the same name again.
        if (!search.names.empty() && search.names.back() == File_Part(name)) break;
        if (FileExistsZV(name)) {
            std::strcpy(path, name);
            return 1;
        }
        search.names.emplace_back(File_Part(name));
    }
    GetPathZV(path, name);
    OS_Walk_Directory(name, Try_Entry, &search);
    if (search.found.empty()) return 0;
    // As long as the rendered name, which fits.
    std::strcpy(File_Part(path), search.found.c_str());
    return 1;
}

void FrameNumberToNameZV(char* out, long frame, ZVClip const* clip)
{
    *out = 0;
    if (!clip || !clip->FileName || std::strlen(clip->FileName) >= ZV_SPEC_SIZE) {
        SetError(ZV_ERR_NOT_FOUND);
        return;
    }
    std::strcpy(out, clip->FileName);
    auto const number = static_cast<unsigned long>(frame) * static_cast<unsigned long>(clip->SequenceStep) +
                        static_cast<unsigned long>(clip->SequenceStart);
    if (!SequenceNumberToNameZV(out, static_cast<long>(number), 0)) *out = 0;
}

long FrameNumberToSequenceNumberZV(long* position, long* number, long frame, long isFirst, ZVClip const* clip)
{
    long lead = 0;  // what the frame's group of four has put out ahead of it, in quarters
    switch (clip->PullDown) {
    case 0: *position = 3; break;
    case 1:
        *position = (frame + 2) % 4;
        lead = isFirst ? frame : frame - 1;
        break;
    case 2:
        *position = (frame + 3) % 4;
        lead = frame;
        break;
    case 3:
        *position = frame % 4;
        lead = frame + 1;
        break;
    case 4:
        *position = frame % 4;
        lead = frame - 3;
        break;
    case 5:
        *position = (frame + 1) % 4;
        lead = frame - 2;
        break;
    default:
        *position = frame % 4;
        lead = frame;
        break;
    }
    *number = frame + (lead < 0 ? -1 : lead / 4);
    return 1;
}

/// The numbers of the files in a directory that belong to a mask.
struct SequenceFiles {
    char const* mask;
    std::vector<long> numbers;
};

static bool Collect_Number(char const* name, bool isDirectory, void* data)
{
    auto* files = static_cast<SequenceFiles*>(data);
    char mask[ZV_SPEC_SIZE];
    if (isDirectory || std::strlen(name) >= ZV_SPEC_SIZE - 2) return true;
    std::strcpy(mask, name);
    if (FileNameToSequenceNameZV(mask) && SequenceCmpZV(mask, files->mask) == 0)
        files->numbers.push_back(NameToSequenceNumberZV(name));
    return true;
}

/// Whether 0 to count - 1 are all there; `numbers` is sorted.
static bool Has_First_Numbers(std::vector<long>& numbers, long count)
{
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    auto const last = static_cast<std::size_t>(count - 1);
    return last < numbers.size() && numbers[last] == count - 1;
}

long IsSequenceValidZV(char const* spec, long const* numbers, long count)
{
    if (!spec || count <= 0 || std::strlen(spec) >= ZV_SPEC_SIZE) return 0;
    char directory[ZV_SPEC_SIZE];
    GetPathZV(spec, directory);
    SequenceFiles files{File_Part(spec), {}};
    OS_Walk_Directory(directory, Collect_Number, &files);
    std::sort(files.numbers.begin(), files.numbers.end());
    if (!numbers) return Has_First_Numbers(files.numbers, count);
    std::vector<long> wanted(numbers, numbers + count);
    std::sort(wanted.begin(), wanted.end());
    // Each entry needs a file of its own, so a number that stands there twice needs two, such as s5 and s05.
    return std::includes(files.numbers.begin(), files.numbers.end(), wanted.begin(), wanted.end());
}

long IsSequenceDataValidZV(char const* spec, long const* numbers, long count)
{
    return count == 0 ? 1 : IsSequenceValidZV(spec, numbers, count);
}
