// The machine's fonts as records, a family each.
#include "MacText.h"
#include "ZVFont.h"
#include "ZVLibInternal.h"

/// A zeroed record that begins with a node, with a copy of a name.
template <typename Record> static Record* Make_Named(std::string const& name)
{
    auto* const record = static_cast<Record*>(AllocMemZV(sizeof(Record), ZV_MEM_CLEAR));
    AddName(&record->node, name.c_str());
    return record;
}

static ZVFont* Make_Font(std::string const& family, int32_t fontId, int32_t instance)
{
    auto* const font = Make_Named<ZVFont>(family);
    NewList(&font->Styles);
    font->ScaleX = font->ScaleY = 1.0F;
    font->FontId = fontId;
    font->Instance = instance;
    return font;
}

static int32_t Instance_Of(HostFontFace const& face)
{
    return face.instance == HostFontFace::NoInstance ? ZV_FONT_NO_INSTANCE : face.instance;
}

static int32_t Id_Of(std::span<HostFontFace const> all, HostFontFace const& face)
{
    return static_cast<int32_t>(&face - all.data()) + 1;
}

long GetAvailableFontsZV(List* fonts, long, long)
{
    if (!fonts || !Open_Fonts()) return 1;
    std::span<HostFontFace const> const all = Open_Fonts()->Faces();
    for (auto rest = all; !rest.empty();) {
        std::size_t count = 1;
        while (count < rest.size() && rest[count].family == rest[0].family)
            ++count;
        ZVFont* const font = Make_Font(rest[0].family, Id_Of(all, rest[0]), Instance_Of(rest[0]));
        AddTail(fonts, &font->node);
        uint32_t styleId = ZV_FONT_STYLE_FIRST_NODE;
        for (HostFontFace const& face : rest.first(count > 1 ? count : 0)) {
            auto* const style = Make_Named<ZVFontStyle>(face.style);
            style->node.id = styleId++;
            style->FontId = Id_Of(all, face);
            style->Instance = Instance_Of(face);
            AddTail(&font->Styles, &style->node);
        }
        rest = rest.subspan(count);
    }
    return 0;
}

void FreeFontListZV(List* fonts)
{
    if (!fonts) return;
    for (Node* node = List_First(fonts); node; node = List_First(fonts)) {
        auto* const font = reinterpret_cast<ZVFont*>(node);
        CloseFontZV(font);
        Free_List(&font->Styles);
        FreeNode(node);
    }
}

ZVFont* CreateFontZV(long fontId, long bold, long italic)
{
    HostFontFace const* const face = Find_Face(fontId);
    ZVFont* const font = face ? Make_Font(face->family, static_cast<int32_t>(fontId), Instance_Of(*face))
                              : Make_Font("sans", 0, ZV_FONT_NO_INSTANCE);
    font->Flags = (bold ? ZV_FONT_FLAG_BOLD : 0) | (italic ? ZV_FONT_FLAG_ITALIC : 0);
    TextFont const measured = Find_Font({ZV_FONT_EXPLICIT, font});
    font->Size = static_cast<int32_t>(measured.Ascent() + measured.Descent());
    return font;
}
