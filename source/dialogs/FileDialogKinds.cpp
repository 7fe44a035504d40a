// See FileDialogKinds.h. The numbers of entries count from 1.
#include "FileDialogKinds.h"

#include "Locale/ZVLibStr.h"

#include <string_view>
#include <strings.h>

namespace {

/// Entries of the list for opening that stand for no kind of their own.
constexpr int32_t AnyListed = 1, AnyFile = 2, Separator = 3, FirstOfOpening = 4;

bool Has_Formats(ZVFileRequest const& request)
{
    return request.Flags & ZV_FILEREQF_FORMATS;
}

bool Is_Saving(ZVFileRequest const& request)
{
    return request.Flags & ZV_FILEREQF_SAVE;
}

/// Calls `visit` with each module that is offered, in list order, until it answers true.
template <typename Visit> void Visit_Offered(ZVFileRequest const& request, Visit visit)
{
    if (!Has_Formats(request)) return;
    // The import properties tell what a module writes as well.
    long const wanted = Is_Saving(request) ? ZV_FORMAT_WRITE : ZV_FORMAT_READ;
    for (Node* node = List_First(&ZVEnv->formats); node; node = List_Next(node)) {
        auto* const desc = reinterpret_cast<ZVFormatDesc*>(node);
        long const properties = GetImportPropertiesZV(desc);
        if (properties & ZV_FORMAT_HIDDEN || !(properties & wanted) || !desc->Node.name) continue;
        if (visit(desc)) return;
    }
}

int32_t Table_Size(ZVFileTypeDescriptor const* table)
{
    int32_t size = 0;
    while (table && table[size].Value)
        ++size;
    return size;
}

/// What follows the last dot of the name in a spec; empty without one.
char const* Extension_Of(std::string_view spec)
{
    std::string_view const name = spec.substr(spec.find_last_of(":\\") + 1);
    std::size_t const dot = name.rfind('.');
    return dot == name.npos ? "" : name.data() + dot + 1;
}

bool Matches(ZVFileTypeDescriptor const& entry, char const* extension, uint32_t type)
{
    return entry.Type == type || (entry.Extension && strcasecmp(entry.Extension, extension) == 0);
}

/// A file as modules are asked for it.
struct Candidate {
    char const* spec;
    uint32_t creator, type;

    bool Is_Loaded_By(ZVFormatDesc* desc) const
    {
        return desc->CanLoad && desc->CanLoad(desc, spec, creator, type, Extension_Code(spec));
    }
};

bool Is_Of_Any_Kind(ZVFileRequest const& request, Candidate const& file)
{
    char const* const extension = Extension_Of(file.spec);
    for (int32_t i = 0; i < Table_Size(request.Types); ++i)
        if (Matches(request.Types[i], extension, file.type)) return true;
    bool isLoaded = false;
    Visit_Offered(request, [&](ZVFormatDesc* desc) { return isLoaded = file.Is_Loaded_By(desc); });
    return isLoaded;
}

/// A code of up to four characters as text.
std::string Text_Of_Code(uint32_t code)
{
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        if (char const c = static_cast<char>(code >> shift & 0xFF)) text += c;
    return text;
}

}  // namespace

void Start_File_Request(ZVFileRequest* request)
{
    request->FirstEntry = request->ModuleEntry = request->Current = 0;
    if (!request->Types && !Has_Formats(*request)) return;
    request->FirstEntry = Is_Saving(*request) ? 1 : FirstOfOpening;
    request->ModuleEntry = request->FirstEntry + Table_Size(request->Types);
    request->Current = 1;
    for (int32_t i = 0; request->TypeResult && i < Table_Size(request->Types); ++i)
        if (&request->Types[i] == *request->TypeResult) request->Current = request->FirstEntry + i;
    int32_t entry = request->ModuleEntry;
    Visit_Offered(*request, [&](ZVFormatDesc const* desc) {
        if (request->FormatResult && desc == *request->FormatResult) request->Current = entry;
        ++entry;
        return false;
    });
}

ZVFileTypeDescriptor* File_Kind_Type(ZVFileRequest const* request, long entry)
{
    bool const isOfTable =
        request->FirstEntry > 0 && entry >= request->FirstEntry && entry < request->ModuleEntry;
    return isOfTable ? &request->Types[entry - request->FirstEntry] : nullptr;
}

ZVFormatDesc* File_Kind_Module(ZVFileRequest const* request, long entry)
{
    ZVFormatDesc* found = nullptr;
    long number = request->ModuleEntry;
    Visit_Offered(*request, [&](ZVFormatDesc* desc) {
        if (number++ == entry) found = desc;
        return found != nullptr;
    });
    return found;
}

void Choose_File_Kind(ZVFileRequest* request, long entry)
{
    request->Current = static_cast<int32_t>(entry);
    if (request->TypeResult) *request->TypeResult = File_Kind_Type(request, entry);
    if (request->FormatResult) *request->FormatResult = File_Kind_Module(request, entry);
}

bool Is_File_Shown(ZVFileRequest const* request, char const* spec, uint32_t creator, uint32_t type)
{
    Candidate const file{spec, creator, type};
    long const entry = request->Current;
    if (entry == AnyListed) return Is_Of_Any_Kind(*request, file);
    if (entry == AnyFile || entry == Separator) return true;
    if (ZVFileTypeDescriptor const* const kind = File_Kind_Type(request, entry))
        return Matches(*kind, Extension_Of(spec), type);
    ZVFormatDesc* const desc = File_Kind_Module(request, entry);
    return desc && file.Is_Loaded_By(desc);
}

std::vector<std::string> File_Kind_Names(ZVFileRequest const& request)
{
    std::vector<std::string> names;
    if (request.FirstEntry == FirstOfOpening)
        names = {GetStringZV(ZVSTR_ALL_KINDS), GetStringZV(ZVSTR_ALL_FILES), KindSeparator};
    for (int32_t i = 0; i < Table_Size(request.Types); ++i)
        names.emplace_back(static_cast<char const*>(request.Types[i].Value));
    Visit_Offered(request, [&](ZVFormatDesc const* desc) {
        names.emplace_back(desc->Node.name);
        return false;
    });
    return names;
}

std::string File_Kind_Extension(ZVFileRequest const& request)
{
    if (ZVFileTypeDescriptor const* const kind = File_Kind_Type(&request, request.Current))
        return kind->Extension ? kind->Extension : "";
    ZVFormatDesc const* const desc = File_Kind_Module(&request, request.Current);
    return desc && desc->ReadExtensionCount > 0 ? Text_Of_Code(desc->ReadExtensions[0]) : std::string();
}
