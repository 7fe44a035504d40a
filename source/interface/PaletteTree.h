// What the files about palettes share: the tree that palettes form, how far up the screen they are, and
// noticing that a callback has closed one.
#pragma once

#include "interface/Records.h"

/// Tells after a callback whether a palette is still there: neither closed nor about to be, and not another
/// one that was made at its address.
class LivingPalette {
public:
    explicit LivingPalette(ZVPalette* palette) : palette_(palette), serial_(palette->serial) {}
    bool Is_There() const;
    bool Is_Known() const;  ///< Also while it is being closed.

private:
    ZVPalette* palette_;
    uint32_t serial_;
};

/// The next palette of the tree below `root`, which is the first for a null palette; null ends the walk.
ZVPalette* Next_Below(ZVPalette* root, ZVPalette* palette);

/// The palette at the top of a sub-palette's tree.
inline ZVPalette* Root_Of(ZVPalette* palette)
{
    while (palette && palette->parent)
        palette = palette->parent;
    return palette;
}
inline ZVPalette const& Root_Of(ZVPalette const& palette)
{
    return *Root_Of(const_cast<ZVPalette*>(&palette));
}

/// Whether the palette belongs to the active one of its window, or has no window: what calls change of others
/// would show through.
inline bool Is_In_Front(ZVPalette const& palette)
{
    ZVPalette const& root = Root_Of(palette);
    return !root.window || root.window->activePalette == &root;
}

/// Whether neither the palette nor one around it is hidden.
inline bool Is_Shown(ZVPalette const* palette)
{
    while (palette && !(palette->flags & ZV_PALF_HIDDEN))
        palette = palette->parent;
    return !palette;
}

inline bool Is_On_Screen(ZVPalette const& palette)
{
    return palette.window && Is_Shown(&palette);
}

/// A window's record, the last of the environment's; null with error 1 when memory runs out.
ZVWindow* New_Window();

/// Whether a palette is still there, in a window or under construction; the pointer is compared, never
/// followed.
bool Is_Palette(ZVPalette const* palette);

/// Whether a window is still there; the pointer is compared, never followed.
bool Is_Window(ZVWindow const* window);

/// Frees a window with all its palettes. It stays when one of those is being closed already.
void Close_Window(ZVWindow& window);

/// The highest id below 65000 that no palette has; 0 when there is none.
uint16_t Free_Palette_Id();

/// Makes a palette current, unless it has been closed meanwhile: then none is.
class CurrentPalette {
public:
    explicit CurrentPalette(ZVPalette* palette);
    ~CurrentPalette();
    CurrentPalette(CurrentPalette const&) = delete;
    CurrentPalette& operator=(CurrentPalette const&) = delete;

private:
    ZVPalette* old_;
    uint32_t oldSerial_;
};

/// Shows or hides what a palette and its sub-palettes have on screen. The functions of gadgets run, so that
/// the palette may be gone afterwards.
void Palette_Visible(ZVPalette& palette, bool visible);

/// The rectangle around all monitors.
ZVRectT<long> Desktop_Area();

/// The monitor that holds the mouse; the first one when none does.
ZVRectT<long> Mouse_Monitor();

/// What the menu bar, which is that of the first monitor, leaves free of the monitor that holds a point.
ZVRectT<long> Free_Area_At(long x, long y);

/// The title that a window shows.
char const* Window_Title(ZVWindow const& window);

/// Ends the loop of a modal palette; nothing for another one.
void End_Modal(ZVPalette& palette);

/// Frees a palette of which Free_Palette knows already that it is being closed.
void Free_Closing_Palette(ZVPalette& palette);

/// Takes margins, and answers the gap towards the reference, as the tags of a palette give them.
long Take_Palette_Spacing(ZVPalette& palette);

/// Reads what the tags of a palette's sub-palettes say of themselves, and settles which ones they stand
/// beside.
void Prepare_Sub_Palettes(ZVPalette& palette);

/// Lays a palette out, its sub-palettes first; -1 is the natural size. Places of sub-palettes are relative to
/// the palette's origin until Settle_Palette has been called.
void Lay_Out_Palette(ZVPalette& palette, long width, long height);

/// The height by which Lay_Out_Palette gives a palette so much room: below a tab bar, which counts.
long Height_With_Tabs(ZVPalette const& palette, long height);

/// Places the palette in its window, and its sub-palettes with it.
void Settle_Palette(ZVPalette& palette, long x, long y);
