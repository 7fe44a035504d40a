// The window preferences: where palettes were, by their names. What is open is taken down again and again, in
// place of what was known of it; what is closed stays known as it was.
#include "interface/WindowPrefs.h"
#include "interface/PaletteTree.h"

#include "ZVWindowPrefs.h"

#include <strings.h>

namespace {

/// A lack of memory costs a record, and is no error of whoever moves or closes a palette.
class KeptError {
public:
    KeptError() : error_(GetErrorZV()) {}
    ~KeptError() { SetError(error_); }
    KeptError(KeptError const&) = delete;
    KeptError& operator=(KeptError const&) = delete;

private:
    unsigned long error_;
};

/// Of a palette and its window.
struct KnownPalette {
    ZVWindowPrefs* window = nullptr;
    ZVPalettePrefs* palette = nullptr;
};

bool Are_Same(char const* a, char const* b)
{
    return a && b && strcasecmp(a, b) == 0;
}

/// The name that the preferences know a palette by; null for none.
char const* Prefs_Name(ZVPalette const& palette)
{
    char const* const name = palette.prefName ? palette.prefName : palette.title;
    return name && *name ? name : nullptr;
}

bool Takes_Part(ZVPalette const& palette)
{
    return !(palette.flags & ZV_PALF_NO_PREFS);
}

bool Is_Kept(ZVPalette const& palette)
{
    return Takes_Part(palette) && palette.kind != ZV_KIND_DOCUMENT && Prefs_Name(palette);
}

bool Is_Pseudo(ZVWindow const& window)
{
    return window.parent != nullptr;
}

KnownPalette Find(char const* name)
{
    for (ZVWindowPrefs& window : All_WindowPrefs())
        for (ZVPalettePrefs& palette : Palettes_Of(window))
            if (Are_Same(palette.node.name, name)) return {&window, &palette};
    return {};
}

/// The first open palette of a name, sub-palettes included.
ZVPalette* Open_Palette(char const* name)
{
    for (ZVWindow& window : All_Windows())
        for (ZVPalette* palette = nullptr; (palette = Get_Next_Palette(&window, palette));)
            if (Takes_Part(*palette) && Are_Same(Prefs_Name(*palette), name)) return palette;
    return nullptr;
}

void Free_Window_Prefs(ZVWindowPrefs& window)
{
    Free_List(&window.palettes);
    FreeNode(&window.node);
}

void Forget(char const* name)
{
    KnownPalette const known = Find(name);
    if (!known.palette) return;
    FreeNode(&known.palette->node);
    if (List_Empty(&known.window->palettes)) Free_Window_Prefs(*known.window);
}

ZVWindowPrefs* Prefs_At(ZVWindow const& window)
{
    uint32_t const id = Is_Pseudo(window) ? window.node.id : 0;
    for (ZVWindowPrefs& known : All_WindowPrefs())
        if (known.x == window.left && known.y == window.top && known.pseudoId == id) return &known;
    return Add_Window_Prefs(id, window.left, window.top);
}

void Take_Down(ZVWindow const& window)
{
    ZVWindowPrefs* known = nullptr;
    for (ZVPalette const& palette : Palettes_Of(window)) {
        if (!Is_Kept(palette)) continue;
        if (!known && !(known = Prefs_At(window))) return;
        ZVPalettePrefs* const record = Add_Palette_Prefs(*known, Prefs_Name(palette));
        if (!record) continue;
        record->active = window.activePalette == &palette;
        record->width = palette.width;
        record->height = palette.height + (palette.kind == ZV_KIND_FLOATER ? ZVEnv->style->tabHeight : 0);
        record->isOfThisRun = true;
    }
    if (known && List_Empty(&known->palettes)) Free_Window_Prefs(*known);
}

/// The window of a palette that was together with the others of its window.
ZVWindow* Window_Of_Others(ZVWindowPrefs const& known)
{
    for (ZVPalettePrefs const& other : Palettes_Of(known))
        if (ZVPalette const* palette = Open_Palette(other.node.name)) return palette->window;
    return nullptr;
}

template <typename To, typename From> void Store(To* place, From value)
{
    if (place) *place = static_cast<To>(value);
}

void Tell(KnownPalette const& known, ZVWindow** window, unsigned long* pseudoId, long* x, long* y,
          long* width, long* height, long* active)
{
    uint32_t const id = known.window->pseudoId;
    Store(x, known.window->x);
    Store(y, known.window->y);
    Store(width, known.palette->width);
    Store(height, known.palette->height);
    Store(active, known.palette->active);
    Store(pseudoId, id);
    if (window) *window = id ? Find_Record<ZVWindow>(ZVEnv->windows, id) : Window_Of_Others(*known.window);
}

}  // namespace

// ---- records ----------------------------------------------------------------------------------------------

ZVWindowPrefs* Add_Window_Prefs(uint32_t pseudoId, int32_t x, int32_t y)
{
    KeptError const kept;
    auto* const window = New_Record<ZVWindowPrefs>();
    if (!window) return nullptr;
    NewList(&window->palettes);
    window->pseudoId = pseudoId;
    window->x = x;
    window->y = y;
    AddTail(&ZVEnv->windowPrefs, &window->node);
    return window;
}

ZVPalettePrefs* Add_Palette_Prefs(ZVWindowPrefs& window, char const* name)
{
    KeptError const kept;
    auto* const palette = New_Record<ZVPalettePrefs>();
    if (!palette) return nullptr;
    if (!Replace_Text(palette->node.name, name)) {
        FreeMemZV(palette);
        return nullptr;
    }
    AddTail(&window.palettes, &palette->node);
    return palette;
}

void FreeWindowPrefsZV()
{
    if (!ZVEnv) return;
    while (Node* window = List_First(&ZVEnv->windowPrefs))
        Free_Window_Prefs(*reinterpret_cast<ZVWindowPrefs*>(window));
}

// ---- taking down ------------------------------------------------------------------------------------------

bool Is_Open(char const* name)
{
    return Open_Palette(name);
}

void Snapshot_WindowPrefs()
{
    if (!ZVEnv) return;
    // A document takes a record of its name away as well, and leaves none.
    for (ZVWindow const& window : All_Windows())
        for (ZVPalette const& palette : Palettes_Of(window))
            if (Takes_Part(palette)) Forget(Prefs_Name(palette));
    for (ZVWindow const& window : All_Windows())
        Take_Down(window);
}

void Seal_WindowPrefs()
{
    for (ZVWindowPrefs& window : All_WindowPrefs()) {
        for (ZVPalettePrefs& palette : Palettes_Of(window)) {
            if (!palette.isOfThisRun) continue;
            palette.hidden = !Is_Open(palette.node.name);
            palette.isOfThisRun = false;
        }
    }
}

// ---- looking up -------------------------------------------------------------------------------------------

long GetPalettePrefsZV(char const* name, long* visible, ZVWindow** window, unsigned long* pseudoId, long* x,
                       long* y, long* width, long* height, long* active)
{
    Store(visible, 1);
    KnownPalette const known = ZVEnv ? Find(name) : KnownPalette();
    if (!known.palette) return 0;
    Store(visible, known.palette->isOfThisRun ? Is_Open(name) : !known.palette->hidden);
    Tell(known, window, pseudoId, x, y, width, height, active);
    return 1;
}

long Get_Dest_Window(ZVPalette const* palette, ZVWindow** window, unsigned long* pseudoId, long* x, long* y,
                     long* width, long* height, long* active)
{
    KnownPalette const known = palette ? Find(Prefs_Name(*palette)) : KnownPalette();
    if (!known.palette) return 0;
    Tell(known, window, pseudoId, x, y, width, height, active);
    return 1;
}
