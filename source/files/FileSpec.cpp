// File specs as texts: made, copied, compared and taken apart without a look at the file system.

#include "ZVLibInternal.h"

#include "FileSpecText.h"

#include <algorithm>
#include <cstring>
#include <strings.h>

namespace {

/// The colon that ends the volume name, or null for a text that every conversion leaves alone.
char const* Volume_Colon(char const* path)
{
    char const* found = std::strpbrk(path, ":|");
    return found && *found == ':' ? found : nullptr;
}

/// Classic path to spec; `colon` is the one that ends the volume name.
void Insert_Backslash(char* colon)
{
    char* rest = colon + 1;
    std::memmove(rest + 1, rest, std::strlen(rest) + 1);
    *rest++ = '\\';
    for (; *rest; ++rest)
        if (*rest == ':') *rest = '\\';
}

}  // namespace

bool Copy_Spec_Text(char* buffer, std::string_view text)
{
    if (text.size() >= static_cast<std::size_t>(ZV_SPEC_SIZE)) {
        buffer[0] = 0;
        SetError(ZV_ERR_NOT_FOUND);
        return false;
    }
    // The text may lie in the buffer itself.
    std::memmove(buffer, text.data(), text.size());
    buffer[text.size()] = 0;
    return true;
}

char const* File_Name(char const* spec)
{
    // Behind the last separator, or at the start: one behind npos is 0.
    return spec + (std::string_view(spec).find_last_of(":\\") + 1);
}

char* Allocate_Spec(std::size_t length)
{
    SetError(ZV_ERR_MEMORY);
    auto* spec = static_cast<char*>(Alloc_Aligned(length + 1, 1));
    if (spec) SetError(ZV_ERR_NONE);
    return spec;
}

char* MakeFileSpecZV(char const* path)
{
    if (!path) return nullptr;
    std::size_t const length = std::strlen(path);
    char* spec = Allocate_Spec(length + 1);
    if (!spec) return nullptr;
    std::memcpy(spec, path, length + 1);
    if (!std::strstr(path, ":\\")) ConvertPathtoDOSZV(spec);
    return spec;
}

char* CopyFileSpecZV(char const* spec)
{
    return MakeFileSpecZV(spec);
}

void FreeFileSpecZV(char* spec)
{
    FreeMemZV(spec);
}

char* MakeNewFileSpecZV(char const* spec, char const* extension)
{
    if (!spec || !extension) return nullptr;
    std::size_t length = std::strlen(spec);
    // A dot in the name of a directory is no extension, however near the end it stands.
    std::size_t const nameStart = static_cast<std::size_t>(File_Name(spec) - spec);
    std::size_t const first = std::max(nameStart, length < 5 ? 0 : length - 5);
    std::string_view const tail(spec + first, length - first);
    if (std::size_t const dot = tail.rfind('.'); dot != std::string_view::npos) length = first + dot;

    std::size_t const extensionLength = std::strlen(extension);
    char* made = Allocate_Spec(length + 1 + extensionLength);
    if (!made) return nullptr;
    std::memcpy(made, spec, length);
    made[length] = '.';
    std::memcpy(made + length + 1, extension, extensionLength + 1);
    return made;
}

char* GetFileNameZV(char const* spec, char* buffer)
{
    if (!spec || !buffer) return nullptr;
    return Copy_Spec_Text(buffer, File_Name(spec)) ? buffer : nullptr;
}

char* GetExtensionZV(char const* spec, char* buffer)
{
    if (!spec || !buffer) return nullptr;
    char const* dot = std::strrchr(File_Name(spec), '.');
    if (!dot) {
        buffer[0] = 0;
        return nullptr;
    }
    return Copy_Spec_Text(buffer, dot + 1) ? buffer : nullptr;
}

long GetPathZV(char const* spec, char* buffer)
{
    if (!spec || !buffer) return 0;
    if (isPondgateZV(spec)) return GetPondGatePath(const_cast<char*>(spec), buffer);
    std::string_view const text(spec);
    std::size_t const separator = text.find_last_of(":\\");
    return Copy_Spec_Text(buffer, separator == std::string_view::npos ? text : text.substr(0, separator + 1));
}

void TruncateExtensionZV(char* text)
{
    if (!text) return;
    char* dot = std::strrchr(text, '.');
    if (dot && dot != text) *dot = 0;
}

long FileSpecCompareZV(char const* a, char const* b)
{
    return a && b && strcasecmp(a, b) == 0;
}

char* FileSpecToDosZV(char* buffer, char const* spec)
{
    if (!spec || !buffer) return nullptr;
    return Copy_Spec_Text(buffer, spec) ? buffer : nullptr;
}

void ConvertPathtoDOSZV(char* path)
{
    if (!path) return;
    if (char const* colon = Volume_Colon(path)) Insert_Backslash(path + (colon - path));
}

long isPondgateZV(char const* spec)
{
    if (!spec) return 0;
    char const* dot = std::strrchr(File_Name(spec), '.');
    return dot && strcasecmp(dot + 1, "pgt") == 0;
}

long GetPondGatePath(char* const& spec, char* buffer)
{
    if (!spec || !buffer) return 0;
    std::string_view const text(spec);
    std::size_t const first = text.find('/');
    if (first == std::string_view::npos) return Copy_Spec_Text(buffer, text);

    std::size_t const last = text.rfind('/');
    std::size_t const lastButOne = last == 0 ? std::string_view::npos : text.rfind('/', last - 1);
    if (lastButOne == std::string_view::npos || lastButOne == 0) {
        buffer[0] = 0;
        return 0;
    }
    std::string_view const kept = text.substr(first + 1, lastButOne - first);
    if (!Copy_Spec_Text(buffer, text.substr(0, first + kept.size() + 1))) return 0;
    std::memmove(buffer + first, buffer + first + 1, kept.size() + 1);
    std::replace(buffer, buffer + first + kept.size(), '/', '\\');
    return 1;
}
