// Which module has a file: by its type, creator and extension, asked in list order.
#include "FormatMatch.h"

#include <cstring>

/// ASCII alone, so that a name means the same in every locale.
static uint32_t Lower(char c)
{
    auto const byte = static_cast<unsigned char>(c);
    return byte >= 'A' && byte <= 'Z' ? byte + 32u : byte;
}

uint32_t Pack_Extension(char const* text)
{
    uint32_t code = 0;
    for (int shift = 24; shift >= 0 && *text; shift -= 8)
        code |= Lower(*text++) << shift;
    return code;
}

/// What follows the last dot of the last path component, or null.
static char const* Find_Extension(char const* spec)
{
    for (char const* end = spec + std::strlen(spec); end != spec; --end) {
        if (end[-1] == '.') return end;
        if (end[-1] == ':' || end[-1] == '\\') break;
    }
    return nullptr;
}

uint32_t Extension_Code(char const* spec)
{
    char const* extension = spec ? Find_Extension(spec) : nullptr;
    return extension ? Pack_Extension(extension) : 0;
}

bool Matches_Codes(ZVTypePair const& pair, unsigned long creator, unsigned long type)
{
    return (pair.type == type || pair.type == ZV_BLANK_CODE) &&
           (pair.creator == creator || pair.creator == ZV_BLANK_CODE);
}

long Standard_CanLoad(ZVFormatDesc* desc, char const*, unsigned long creator, unsigned long type,
                      unsigned long extension)
{
    for (long i = 0; i < desc->ReadTypeCount; ++i)
        if (Matches_Codes(desc->ReadTypes[i], creator, type)) return 1;
    for (long i = 0; i < desc->ReadExtensionCount; ++i)
        if (desc->ReadExtensions[i] == extension) return 1;
    return 0;
}

ZVFormatDesc* Find_Extension_Format(uint32_t code)
{
    for (Node* node = List_First(&ZVEnv->formats); node; node = List_Next(node)) {
        auto* desc = reinterpret_cast<ZVFormatDesc*>(node);
        for (long i = 0; i < desc->ReadExtensionCount; ++i)
            if (desc->ReadExtensions[i] == code) return desc;
    }
    return nullptr;
}

static bool Is_Directory(char const* spec)
{
    FSSpec place;
    char name[ZV_SPEC_SIZE];
    if (GetFSSpecZV(spec, &place) != 0 || GetDOSPathZV(name, &place) != 0) return false;
    std::size_t const length = std::strlen(name);
    return length > 0 && name[length - 1] == '\\';
}

ZVFormatDesc* Match_Format(char const* spec, uint32_t extension)
{
    uint32_t creator = ZV_BLANK_CODE, type = ZV_BLANK_CODE;
    // A directory may look like a file by its name, and no module can tell.
    if (!Is_Directory(spec)) {
        Get_FileInfo(spec, &creator, &type);
        for (Node* node = List_First(&ZVEnv->formats); node; node = List_Next(node)) {
            auto* desc = reinterpret_cast<ZVFormatDesc*>(node);
            if (desc->CanLoad && desc->CanLoad(desc, spec, creator, type, extension)) return desc;
        }
    }
    SetError(ZV_ERR_NO_FORMAT);
    return nullptr;
}

ZVFormatDesc* GetFormatModuleZV(char const* spec)
{
    SetError(ZV_ERR_NONE);
    if (!spec || !ZVEnv) {
        SetError(ZV_ERR_NO_FORMAT);
        return nullptr;
    }
    ZVFormatDesc* desc = Match_Format(spec, Extension_Code(spec));
    if (desc) SetError(ZV_ERR_NONE);
    return desc;
}

ZVFileTypeDescriptor* FindFileTypeDescZV(ZVFileTypeDescriptor* table, char const* spec)
{
    if (!table || !spec) return nullptr;
    uint32_t creator = ZV_BLANK_CODE, type = ZV_BLANK_CODE;
    Get_FileInfo(spec, &creator, &type);
    uint32_t const code = Extension_Code(spec);
    char const extension[3] = {static_cast<char>(code >> 24), static_cast<char>(code >> 16),
                               static_cast<char>(code >> 8)};
    for (; table->Value; ++table) {
        // A file whose type is not known is told by its extension alone.
        if (type != ZV_BLANK_CODE && table->Type == type) return table;
        if (table->Extension && std::strncmp(table->Extension, extension, 3) == 0) return table;
    }
    return nullptr;
}
