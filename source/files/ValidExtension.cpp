// Gives a spec the extension that a file type or a format module asks for.

#include "FileSpecText.h"
#include "SpecText.h"

#include "ZVFormat.h"
#include "ZVMemory.h"
#include "ZVSequence.h"

#include <cstring>
#include <strings.h>

namespace {

char* With_Extension(std::string_view spec, std::string_view extension)
{
    SpecText text(spec, ".");
    if (text.Append(extension).Fits()) return MakeFileSpecZV(text.Text());
    SetError(ZV_ERR_NOT_FOUND);
    return nullptr;
}

char* Append_Extension(char const* spec, ZVExtension const* wanted)
{
    if (!wanted || !wanted->extension) return CopyFileSpecZV(spec);
    char const* dot = std::strrchr(spec, '.');
    if (dot && dot != spec && strcasecmp(dot + 1, wanted->extension) == 0) return CopyFileSpecZV(spec);
    return With_Extension(spec, wanted->extension);
}

/// Writes the first extension of a format; an empty text when it has none.
void Format_Extension(ZVFormatDesc const& format, char (&extension)[5])
{
    char* next = extension;
    if (format.ReadExtensionCount > 0 && format.ReadExtensions) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            char const c = static_cast<char>(format.ReadExtensions[0] >> shift);
            if (c != ' ' && c != 0) *next++ = c;
        }
    }
    *next = 0;
}

char* Replace_Extension(char const* spec, ZVFormatDesc* format, bool stripSequence)
{
    char name[ZV_SPEC_SIZE];
    if (!Copy_Spec_Text(name, spec)) return nullptr;
    ZVFormatDesc const* present = GetFormatModuleZV(spec);
    char* fileName = name + (File_Name(name) - name);
    if (stripSequence && (GetImportPropertiesZV(format) & ZV_FORMAT_MULTIFRAME))
        RemoveSequenceNumberingZV(fileName);

    char extension[5];
    Format_Extension(*format, extension);
    if (format == present || !*extension) return CopyFileSpecZV(name);
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
