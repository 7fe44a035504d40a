// The text file of the window preferences; its form is told in ZVWindowPrefs.h. What a line says wrongly
// costs that line or leaves zeros in its record.
#include "interface/WindowPrefs.h"

#include "ZVFileSpec.h"
#include "ZVWindowPrefs.h"
#include "foundation/HeapBlock.h"

#include <algorithm>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <strings.h>

namespace {

constexpr std::size_t LineSize = 256;  ///< with the closing zero
constexpr char title[] = "Window Preferences";
constexpr char activeWord[] = " Active";
constexpr char hiddenWord[] = " Hidden";

/// What lines begin with, which is compared over the length given here.
constexpr std::string_view screenWord = "Screen";
constexpr std::string_view applicationWord = "AppWindow";
constexpr std::string_view windowWord = "Window";
constexpr std::string_view pseudoWord = "PseudoWindow";
constexpr std::string_view paletteWord = "Palett";

using OpenFile = std::unique_ptr<ZVFileInfo, Released_By<CloseFileZV>>;

// ---- reading ----------------------------------------------------------------------------------------------

bool Is_Blank(char c)
{
    return std::isspace(static_cast<unsigned char>(c));
}

char* Skip_Blanks(char* text)
{
    while (Is_Blank(*text))
        ++text;
    return text;
}

char* Skip_Word(char* text)
{
    while (*text && !Is_Blank(*text))
        ++text;
    return text;
}

bool Begins_With(char const* text, std::string_view word)
{
    return strncasecmp(text, word.data(), word.size()) == 0;
}

/// Reads a number of any size as the nearest one of 32 bits. False, with nothing stored, when there is none.
bool Take_Number(char*& text, int32_t& value)
{
    using Limits = std::numeric_limits<int32_t>;
    char* end = text;
    long const number = std::strtol(text, &end, 10);
    if (end == text) return false;
    value = static_cast<int32_t>(std::clamp<long>(number, Limits::min(), Limits::max()));
    text = end;
    return true;
}

/// Reads both or neither.
bool Take_Pair(char*& text, int32_t& first, int32_t& second)
{
    char* rest = text;
    int32_t numbers[2];
    if (!Take_Number(rest, numbers[0]) || !Take_Number(rest, numbers[1])) return false;
    first = numbers[0];
    second = numbers[1];
    text = rest;
    return true;
}

/// Takes a name off a line: a word, or what stands between double quotes, closed where it lies.
char* Take_Name(char*& text)
{
    bool const isQuoted = *text == '"';
    char* const name = isQuoted ? text + 1 : text;
    char* end = name;
    if (isQuoted) {
        while (*end && GetChar(end) != '"')
            end = CharAdvance(end);
    } else {
        end = Skip_Word(name);
    }
    text = *end ? end + 1 : end;
    *end = 0;
    return name;
}

void Read_Palette(ZVWindowPrefs* window, char* text)
{
    char const* const name = Take_Name(text);
    ZVPalettePrefs* const palette = window && *name ? Add_Palette_Prefs(*window, name) : nullptr;
    if (!palette) return;
    Take_Pair(text, palette->width, palette->height);
    palette->active = std::strstr(text, activeWord + 1) != nullptr;
    palette->hidden = std::strstr(text, hiddenWord + 1) != nullptr;
}

ZVWindowPrefs* Read_Window(char* text)
{
    ZVWindowPrefs* const window = Add_Window_Prefs(0, 0, 0);
    if (window) Take_Pair(text, window->x, window->y);
    return window;
}

ZVWindowPrefs* Read_Pseudo_Window(char* text)
{
    int32_t id = 0;
    Take_Number(text, id);
    if (*text == ',') ++text;
    ZVWindowPrefs* const window = Read_Window(text);
    if (window) window->pseudoId = static_cast<uint32_t>(id);
    return window;
}

/// Whether the file has its title, and is of a display of this size.
bool Is_Of_This_Display(ZVFileInfo* file, char* line)
{
    do
        if (!FGetStringZV(file, line, LineSize)) return false;
    while (strcasecmp(line, title) != 0);
    do
        if (!FGetStringZV(file, line, LineSize)) return false;
    while (!Begins_With(line, screenWord));
    char* numbers = Skip_Word(line);
    int32_t width = 0, height = 0;
    return Take_Pair(numbers, width, height) && width == ZVEnv->screenWidth && height == ZVEnv->screenHeight;
}

// ---- writing ----------------------------------------------------------------------------------------------

/// Writes what printf makes of it. A line that would not be read again is left out.
__attribute__((format(printf, 2, 3))) bool Write_Line(ZVFileInfo* file, char const* format, ...)
{
    char line[LineSize];
    va_list arguments;
    va_start(arguments, format);
    int const length = std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    return length >= static_cast<int>(sizeof line) || FPutStringZV(file, line);
}

bool Write_Palette(ZVFileInfo* file, ZVPalettePrefs const& palette)
{
    char const* const name = palette.node.name;
    if (std::strpbrk(name, "\"\r\n")) return true;
    return Write_Line(file, "\tPalette \"%s\" %d %d%s%s", name, palette.width, palette.height,
                      palette.active ? activeWord : "", Is_Open(name) ? "" : hiddenWord);
}

bool Write_Window(ZVFileInfo* file, ZVWindowPrefs const& window)
{
    bool isWell = window.pseudoId
                      ? Write_Line(file, "PseudoWindow %u %d %d", window.pseudoId, window.x, window.y)
                      : Write_Line(file, "Window %d %d", window.x, window.y);
    for (ZVPalettePrefs const& palette : Palettes_Of(window))
        isWell = isWell && Write_Palette(file, palette);
    return isWell && FPutStringZV(file, "");
}

}  // namespace

long Read_WindowPrefs(ZVFileInfo* file)
{
    char line[LineSize];
    if (!Is_Of_This_Display(file, line)) return 0;
    ZVWindowPrefs* window = nullptr;
    while (FGetStringZV(file, line, LineSize)) {
        char* const keyword = Skip_Blanks(line);
        char* const rest = Skip_Blanks(Skip_Word(keyword));
        if (Begins_With(keyword, applicationWord)) continue;
        if (Begins_With(keyword, windowWord)) window = Read_Window(rest);
        if (Begins_With(keyword, pseudoWord)) window = Read_Pseudo_Window(rest);
        if (Begins_With(keyword, paletteWord)) Read_Palette(window, rest);
    }
    return 1;
}

long Load_WindowPrefs()
{
    long width = 0, height = 0;
    GetDisplayFormatZV(&width, &height, nullptr);
    ZVEnv->screenWidth = static_cast<int32_t>(width);
    ZVEnv->screenHeight = static_cast<int32_t>(height);
    if (!ZVEnv->prefsFile) return 0;
    char spec[ZV_SPEC_SIZE];
    int const length = std::snprintf(spec, sizeof spec, "%s%s", ZVEnv->userDataDir, ZVEnv->prefsFile);
    if (length >= static_cast<int>(sizeof spec)) return 0;
    OpenFile const file(OpenFileZV(spec, ZVFilePermRead, ZVFileFlagNone));
    return file && Read_WindowPrefs(file.get());
}

long SaveWindowPositionsZV(ZVFileInfo* file)
{
    if (!ZVEnv || !file) return 0;
    Snapshot_WindowPrefs();
    bool isWell = FPutStringZV(file, title) &&
                  Write_Line(file, "Screen %d %d", ZVEnv->screenWidth, ZVEnv->screenHeight) &&
                  FPutStringZV(file, "");
    for (ZVWindowPrefs const& window : All_WindowPrefs())
        isWell = isWell && Write_Window(file, window);
    return isWell;
}
