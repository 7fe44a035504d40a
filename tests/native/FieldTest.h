// A palette of fields and lists on the desktop in memory, what happened to it, and keys and mouse in short.
#pragma once

#include "DesktopTest.h"

#include <ZVKey.h>

class FieldTest : public DesktopTest {
protected:
    static constexpr unsigned short PaletteId = 9;

    /// What shows of an item.
    struct Picture {
        explicit Picture(unsigned long id);
        uint32_t At(long x, long y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
        bool operator==(Picture const&) const = default;

        long width, height;
        std::vector<uint32_t> pixels;  ///< 0xRRGGBB
    };

    FieldTest();

    /// Displays a palette whose groups and items are added by the function.
    ZVPalette* Show(std::function<void()> add);

    /// Shows one gadget of id 1 and gives it the focus.
    void Show_Field(ZVGadgetType type, char const* text, std::vector<TagItem> tags = {});

    /// Adds a group with one gadget below the other.
    static void Add_Group(short id, std::vector<std::pair<unsigned short, ZVGadgetType>> const& gadgets);

    /// Plays keys: text as it is typed, "<Left>" for a named key, with S- C- M- ahead of it for Shift,
    /// Control, and Command, as in "<S-Left>" and "<C-a>".
    static void Play(std::string_view keys);

    /// A point of an item on the screen.
    static ZVRectT<long> Place(unsigned long id);
    static void Click(unsigned long id, long x, long y);

    static ZVItem* Item(unsigned long id)
    {
        return FindItem2ZV(FindPaletteZV(PaletteId), static_cast<unsigned short>(id));
    }
    static std::string Text(unsigned long id = 1) { return Item(id)->editText; }
    static std::string Marked_Text();  ///< of 1, with "|" for the caret or the selection in brackets
    static ZVTextEditorProperties Properties(unsigned long id = 1);
    static long Caret_X();          ///< Where it shows in 1; -1 when it does not.
    static unsigned short Focus();  ///< id; 0 for none

    /// "change 1" for event 5 of gadget 1 with that report bit, "gadget 1" for one without, "key 65".
    static Strings events;
    static std::function<void(ZVEvent const&)> onGadgetEvent, onKey;

private:
    static void Note_Event(ZVEvent const& event);
};
