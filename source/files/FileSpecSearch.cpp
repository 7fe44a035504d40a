// The search for a file or a sequence that is not where its name says: in the directories of the search
// paths, in the trees below them, and with the user's help.

#include "FileSpecSearch.h"

#include "EnumFiles.h"
#include "FileSpecText.h"
#include "SpecText.h"

#include "ZVLibInternal.h"
#include "ZVMessage.h"
#include "ZVSequence.h"

#include "foundation/HeapBlock.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <strings.h>
#include <utility>

namespace {

constexpr long TreeDirectoryLimit = 200;

constexpr unsigned long StringLocate = 102;  // the button texts of the question, then its two forms
constexpr unsigned long StringCancel = 103;
constexpr unsigned long StringSequenceMissing = 104;
constexpr unsigned long StringFileMissing = 105;

long* Long_Result(TagItem const* item)
{
    return reinterpret_cast<long*>(item->data);
}

void Answer(long* result, bool value)
{
    if (result) *result = value;
}

SpecText Directory_Of(char const* spec)
{
    char directory[ZV_SPEC_SIZE];
    return GetPathZV(spec, directory) ? SpecText(directory) : SpecText();
}

/// The file that must be there for a directory to be looked into any further.
SpecText Wanted_Name(SpecSearch const& search)
{
    char name[ZV_SPEC_SIZE];
    if (!Copy_Spec_Text(name, search.name)) return {};
    if (search.isSequence) {
        long number = 0;
        if (search.frameCount > 0)
            number = search.frames ? search.frames[search.frameCount - 1] : search.frameCount - 1;
        SequenceNumberToNameZV(name, number, 0);
    }
    return SpecText(name);
}

/// The spec of the file, or of the sequence when all frames wanted of it are in the directory.
char* Accept(SpecSearch const& search, std::string_view directory, char const* file)
{
    SpecText const spec(directory, search.isSequence ? search.name : file);
    if (!spec.Fits()) return nullptr;
    bool const isWhole = !search.isSequence || search.frameCount < 1 ||
                         IsSequenceDataValidZV(spec.Text(), search.frames, search.frameCount);
    return isWhole ? MakeFileSpecZV(spec.Text()) : nullptr;
}

char* Search_Directories(SpecSearch const& search)
{
    SpecText const wanted = Wanted_Name(search);
    for (char** entry = search.searchPaths; *entry; ++entry) {
        SpecText const directory = Directory_Of(*entry);
        if (!FileExistsZV(SpecText(directory.View(), wanted.View()).Text())) continue;
        if (char* spec = Accept(search, directory.View(), wanted.Text())) return spec;
    }
    return nullptr;
}

/// A search through directory trees for the first acceptable file.
struct TreeSearch {
    SpecSearch const& search;
    SpecText const wanted;
    char* found = nullptr;
};

long Test_File(char const* spec, unsigned long, long data, long* stop)
{
    auto& tree = *reinterpret_cast<TreeSearch*>(data);
    if (strcasecmp(File_Name(spec), tree.wanted.Text()) != 0) return 1;
    tree.found = Accept(tree.search, Directory_Of(spec).View(), File_Name(spec));
    *stop = tree.found != nullptr;
    return 1;
}

char* Search_Trees(SpecSearch const& search)
{
    TreeSearch tree{search, Wanted_Name(search)};
    Enum_Files_Of_Any_Type(search.searchPaths, Test_File, reinterpret_cast<long>(&tree), 1,
                           TreeDirectoryLimit);
    return tree.found;
}

/// The directory that the user starts from; empty without search paths.
SpecText Start_Of(SpecSearch const& search)
{
    char** entry = search.searchPaths;
    if (!entry || !*entry) return {};
    while (search.startsAtLast && entry[1])
        ++entry;
    return Directory_Of(*entry);
}

/// The spec of the series that a file belongs to, when the user wants that. Takes the spec over; null when he
/// has changed his mind, and without memory.
char* Take_Sequence(char* spec)
{
    ZVClip* const clip = NewClipZV();
    if (!clip) {
        FreeFileSpecZV(spec);
        return nullptr;
    }
    FreeFileSpecZV(std::exchange(clip->FileName, spec));
    char* const taken = SequenceCheckZV(clip, nullptr) ? std::exchange(clip->FileName, nullptr) : nullptr;
    FreeClipZV(clip);
    return taken;
}

/// Lets the user pick the file; cancelled, the search is over and the name no sequence. Without an interface
/// nobody can pick one, which is as if the user had cancelled.
char* Pick_File(SpecSearch& search)
{
    SpecText start = Start_Of(search);
    TagItem tags[] = {{ZV_ASK_FORMATS, 0},
                      {ZV_ASK_FILE_NAME, Tag_Word(search.name)},
                      {start.Length() ? ZV_ASK_DIRECTORY : ZV_TAG_END, Tag_Word(start.Text())},
                      {}};
    char* spec = Mac_Is_Interface_Thread() ? AskFileNameZV(tags) : nullptr;
    if (spec) spec = Take_Sequence(spec);
    search.isSequence = spec && IsSequenceZV(File_Name(spec));
    Answer(search.userLocatedResult, spec);
    return spec;
}

char* Ask_User(SpecSearch& search)
{
    char path[ZV_SPEC_SIZE];
    if (!Copy_Spec_Text(path, search.text)) return nullptr;
    ConvertDOStoPathZV(path, false);
    unsigned long const question = search.isSequence ? StringSequenceMissing : StringFileMissing;
    return AskUser2ZV(StringLocate, StringCancel, question, path) ? Pick_File(search) : nullptr;
}

/// The frames of a sequence as they lie in its directory, of which the first one is wanted.
struct FirstFrame {
    SpecText directory;
    std::string_view prefix;  ///< of the file names, ahead of the number
    std::string_view suffix;
    std::size_t digits = 0;  ///< greatest width of the number
    long start = 0;
    long limit = 0;  ///< first number that does not count
    long number = -1;
    SpecText name;
};

/// The number that a name of the sequence holds, or -1 for any other name.
long Frame_Number(FirstFrame const& frame, std::string_view name)
{
    std::size_t const around = frame.prefix.size() + frame.suffix.size();
    if (name.size() <= around || !name.starts_with(frame.prefix) || !name.ends_with(frame.suffix)) return -1;
    std::string_view const number = name.substr(frame.prefix.size(), name.size() - around);
    if (number.size() > frame.digits) return -1;
    long value = 0;
    for (char c : number) {
        if (c < '0' || c > '9') return -1;
        if (__builtin_mul_overflow(value, 10L, &value) || __builtin_add_overflow(value, c - '0', &value))
            return -1;
    }
    return value;
}

bool Visit_Frame(char const* name, bool, void* data)
{
    auto& frame = *static_cast<FirstFrame*>(data);
    long const number = Frame_Number(frame, name);
    if (number < frame.start || number >= frame.limit) return true;
    // Of two renderings of one number the wider one counts.
    bool const isBetter = frame.number < 0 || number < frame.number ||
                          (number == frame.number && std::strlen(name) > frame.name.Length());
    if (isBetter && FileExistsZV(SpecText(frame.directory.View(), name).Text())) {
        frame.number = number;
        frame.name = SpecText(name);
    }
    return true;
}

/// One less than the power of ten: the highest number of a mask is never looked at.
long Frame_Limit(std::size_t digits)
{
    long power = 1;
    for (std::size_t i = 0; i < digits; ++i)
        if (__builtin_mul_overflow(power, 10L, &power)) return LONG_MAX;
    return power - 1;
}

/// Splits the name of a sequence around its mask, the first bracketed run of hashes.
bool Split_Mask(std::string_view name, FirstFrame& frame)
{
    for (std::size_t open = name.find('['); open != std::string_view::npos; open = name.find('[', open + 1)) {
        std::size_t const close = name.find_first_not_of('#', open + 1);
        if (close == std::string_view::npos || name[close] != ']') continue;
        frame.prefix = name.substr(0, open);
        frame.digits = close - open - 1;
        frame.suffix = name.substr(close + 1);
        return true;
    }
    return false;
}

/// The spec of the first frame that is there, in place of that of the sequence. Reads the directory once:
/// asking for one number after the other takes for ever when a wide mask has no file.
char* Take_First_Frame(SpecSearch const& search, char* sequence)
{
    HeapBlock<char> const spec(sequence);
    FirstFrame frame;
    if (!Split_Mask(File_Name(sequence), frame)) return nullptr;
    frame.directory = Directory_Of(sequence);
    frame.limit = Frame_Limit(frame.digits);
    if (search.frames && search.frameCount > 0) frame.start = std::max(search.frames[0], 0L);
    OS_Walk_Directory(frame.directory.Text(), Visit_Frame, &frame);
    if (frame.number < 0) return nullptr;
    return MakeFileSpecZV(SpecText(frame.directory.View(), frame.name.View()).Text());
}

}  // namespace

SpecSearch Read_Search_Tags(TagItem* tags)
{
    SetError(ZV_ERR_NONE);
    SpecSearch search;
    while (TagItem* item = NextTagItem(&tags)) {
        switch (item->tag) {
        case ZVFSV_AskUser: search.askUser = true; break;
        case ZVFSV_IsSequence: search.isSequenceResult = Long_Result(item); break;
        case ZVFSV_Frames: search.frames = Long_Result(item); break;
        case ZVFSV_DataValid: search.dataValidResult = Long_Result(item); break;
        case ZVFSV_FrameCount: search.frameCount = static_cast<long>(item->data); break;
        case ZVFSV_SearchPaths: search.searchPaths = reinterpret_cast<char**>(item->data); break;
        case ZVFSV_UserLocated: search.userLocatedResult = Long_Result(item); break;
        case ZVFSV_SearchTree: search.searchTree = true; break;
        case ZVFSV_NoCheck: search.noCheck = true; break;
        case ZVFSV_StoredPath: search.storedPathResult = reinterpret_cast<char*>(item->data); break;
        default: break;
        }
    }
    Answer(search.isSequenceResult, false);
    Answer(search.dataValidResult, false);
    Answer(search.userLocatedResult, false);
    if (search.storedPathResult) search.storedPathResult[0] = 0;
    return search;
}

void Name_Search(SpecSearch& search, char const* text)
{
    search.text = text;
    search.name = File_Name(text);
    search.isSequence = IsSequenceZV(search.name);
    Answer(search.isSequenceResult, search.isSequence);
}

char* Make_Tested_Spec(SpecSearch const& search)
{
    char* spec = MakeFileSpecZV(search.text);
    if (!spec) return nullptr;
    bool isThere = true;
    if (!search.isSequence)
        isThere = FileExistsZV(spec);
    else if (search.frameCount > 0)
        isThere = IsSequenceValidZV(spec, search.frames, search.frameCount);
    if (isThere) return spec;
    FreeFileSpecZV(spec);
    return nullptr;
}

char* Finish_Search(SpecSearch& search, char* spec)
{
    if (!spec && search.searchPaths)
        spec = search.searchTree ? Search_Trees(search) : Search_Directories(search);
    // A series that lacks frames is asked for again.
    while (!spec && search.askUser) {
        spec = Ask_User(search);
        if (!spec) break;
        bool const isWhole = !search.isSequence || search.frameCount < 1 ||
                             IsSequenceValidZV(spec, search.frames, search.frameCount);
        if (!isWhole) FreeFileSpecZV(std::exchange(spec, nullptr));
    }
    if (spec && search.isSequence) spec = Take_First_Frame(search, spec);
    if (!spec && GetErrorZV() != ZV_ERR_MEMORY) SetError(ZV_ERR_NOT_FOUND);
    Answer(search.isSequenceResult, search.isSequence);
    // Whatever spec got here has all frames that were asked for.
    Answer(search.dataValidResult, spec && search.isSequence && search.frameCount > 0);
    return spec;
}

char* MakeFileSpecValidateZV(char const* spec, TagItem* tags)
{
    SpecSearch search = Read_Search_Tags(tags);
    // The directories below the search paths are not gone through one by one.
    search.startsAtLast = search.searchTree;
    if (!spec) return nullptr;
    Name_Search(search, spec);
    if (search.noCheck) return MakeFileSpecZV(spec);
    return Finish_Search(search, Make_Tested_Spec(search));
}
