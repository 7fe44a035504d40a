// Gives a spec the extension that a file type or a format module asks for.

#include "FileSpecText.h"

#include "ZVFormat.h"
#include "ZVSequence.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <strings.h>

namespace {

char* With_Extension(std::string const& spec, std::string const& extension)
{
    return MakeFileSpecZV((spec + '.' + extension).c_str());
}

char* Append_Extension(char const* spec, ZVExtension const* wanted)
{
    if (!wanted || !wanted->extension) return CopyFileSpecZV(spec);
    char const* dot = std::strrchr(spec, '.');
    if (dot && dot != spec && strcasecmp(dot + 1, wanted->extension) == 0) return CopyFileSpecZV(spec);
    return With_Extension(spec, wanted->extension);
}

/// The first extension of a format, empty when it has none.
std::string Format_Extension(ZVFormatDesc const& format)
{
    std::string extension;
    if (format.ReadExtensionCount < 1 || !format.ReadExtensions) return extension;
    for (int shift = 24; shift >= 0; shift -= 8) {
        char const c = static_cast<char>(format.ReadExtensions[0] >> shift);
        if (c != ' ' && c != 0) extension += c;
    }
    return extension;
}

char* Replace_Extension(char const* spec, ZVFormatDesc* format, bool stripSequence)
{
    char name[ZV_SPEC_SIZE];
    if (!Copy_Spec_Text(name, spec)) return nullptr;
    ZVFormatDesc const* present = GetFormatModuleZV(spec);
    char* fileName = name + (File_Name(name) - name);
    if (stripSequence && (GetImportPropertiesZV(format) & ZV_FORMAT_MULTIFRAME))
        RemoveSequenceNumberingZV(fileName);

    std::string const extension = Format_Extension(*format);
    if (format == present || extension.empty()) return CopyFileSpecZV(name);
    if (char* dot = std::strrchr(fileName, '.'); dot && present) *dot = 0;
    return With_Extension(name, extension);
}

}  // namespace

char* MakeValidExtensionZV(char const* spec, long mode, void const* what, void*, long stripSequence)
{
    if (!spec) return nullptr;
    if (mode == 0) return Append_Extension(spec, static_cast<ZVExtension const*>(what));
    if (!what) return CopyFileSpecZV(spec);
    // The module is asked for its properties, which may fill a cache of its own.
    auto* format = static_cast<ZVFormatDesc*>(const_cast<void*>(what));
    return Replace_Extension(spec, format, stripSequence != 0);
}
