// The natural size of an item: by its kind, its type and the measures of its font.
#include "interface/ItemParts.h"
#include "interface/Layout.h"
#include "interface/LayoutTags.h"

#include <algorithm>
#include <array>

namespace {

/// Measures of an item's font, taken when they are asked for: most gadgets need none.
class FontMeasure {
public:
    explicit FontMeasure(ZVItem const& item) { draw_.Font = GetItemFont(&item); }
    long Char_Width() const { return GetAveCharWidthZV(&draw_); }
    long Char_Height() const { return GetAveCharHeightZV(&draw_); }
    long Text_Width(char const* text) const { return GetTextWidthZV(&draw_, text); }

private:
    ZVDrawInfo draw_{};
};

/// What the tags ask for; -1 is free.
struct ExplicitSize {
    long width = -1, height = -1;
};

/// Sizes in characters for the gadget sizes small, medium and large; 0 leaves what was there.
struct CharMeasure {
    long columns, rows;
};

constexpr long MostDigits = 4096;
constexpr long FewestRows = 3;
constexpr long BarThickness = 16;
constexpr long SeparatorThickness = 5;
constexpr long ImageFrame = 4;  ///< of a button around its image, both sides together

}  // namespace

unsigned short GetItemFont(ZVItem const* item)
{
    if (item->flags & ZV_ITEMF_SMALL_FONT) return ZV_FONT_SMALL;
    if (item->flags & ZV_ITEMF_BOLD)
        return item->flags & ZV_ITEMF_ITALIC ? ZV_FONT_BOLD_ITALIC : ZV_FONT_BOLD;
    return item->flags & ZV_ITEMF_ITALIC ? ZV_FONT_ITALIC : ZV_FONT_INTERFACE;
}

/// The entry of a table for the sizes small, medium and large; null for the other sizes.
static CharMeasure const* Size_Of(CharMeasure const (&table)[3], ZVGadgetSize size)
{
    return size >= ZV_SIZE_SMALL && size <= ZV_SIZE_LARGE ? &table[size - ZV_SIZE_SMALL] : nullptr;
}

static long Standard_Width(ZVGadgetSize size)
{
    ZVGadgetSizes const& sizes = ZVEnv->style->gadgetSizes;
    switch (size) {
    case ZV_SIZE_DEFAULT:
    case ZV_SIZE_MEDIUM: return sizes.size3;
    case ZV_SIZE_TINY: return sizes.size1;
    case ZV_SIZE_SMALL: return sizes.size2;
    case ZV_SIZE_LARGE: return sizes.size4;
    case ZV_SIZE_XLARGE: return sizes.size5;
    case ZV_SIZE_XXLARGE: return sizes.size6;
    default: return 0;
    }
}

/// Applies a table of sizes in characters.
static void Take_Char_Size(GadgetMeasure& measure, CharMeasure const* chars, FontMeasure const& font)
{
    if (!chars) return;
    if (chars->columns) measure.width = chars->columns * font.Char_Width();
    if (chars->rows) measure.height = chars->rows * font.Char_Height();
}

GadgetMeasure Standard_Gadget_Size(ZVItem const& item)
{
    static constexpr CharMeasure listSizes[] = {{10, 5}, {15, 5}, {20, 5}};
    static constexpr CharMeasure acrossSizes[] = {{10, 0}, {15, 0}, {20, 0}};
    static constexpr CharMeasure downSizes[] = {{0, 5}, {0, 10}, {0, 15}};
    static constexpr CharMeasure boxSizes[] = {{40, 10}, {60, 20}, {80, 30}};
    static constexpr CharMeasure separatorSizes[] = {{0, 4}, {0, 10}, {0, 20}};

    FontMeasure const font(item);
    ZVGadgetSize const size = item.gadgetSize;
    GadgetMeasure measure{Standard_Width(size), ZVEnv->style->gadgetHeight};
    if (item.flags & ZV_ITEMF_SMALL_FONT) measure = {measure.width * 2 / 3, font.Char_Height() * 7 / 4 - 4};
    switch (item.declaredType) {
    case ZV_GAD_LIST:
        measure.height = 5 * font.Char_Height();
        Take_Char_Size(measure, Size_Of(listSizes, size), font);
        break;
    case ZV_GAD_MENU: measure = {BarThickness, BarThickness}; break;
    case ZV_GAD_HPROP:
        measure.height = BarThickness;
        Take_Char_Size(measure, Size_Of(acrossSizes, size), font);
        break;
    case ZV_GAD_VPROP:
        measure.width = BarThickness;
        Take_Char_Size(measure, Size_Of(downSizes, size), font);
        break;
    case ZV_GAD_TEXTBOX: Take_Char_Size(measure, Size_Of(boxSizes, size), font); break;
    case ZV_GAD_SEPARATOR:
        if (CharMeasure const* chars = Size_Of(separatorSizes, size)) {
            measure.width = SeparatorThickness;
            Take_Char_Size(measure, chars, font);
        }
        break;
    default: break;
    }
    return measure;
}

static long Digits_Width(FontMeasure const& font, long count)
{
    std::array<char, MostDigits + 1> digits;
    auto const end = digits.begin() + std::clamp(count, 0L, MostDigits);
    std::generate(digits.begin(), end,
                  [digit = 0]() mutable { return static_cast<char>('0' + digit++ % 10); });
    *end = 0;
    return font.Text_Width(digits.data());
}

static ExplicitSize Explicit_Size(ZVItem const& item, FontMeasure const& font)
{
    ExplicitSize size;
    if (!item.tags) return size;
    if (TagItem const* tag = Find_Item_Tag(item, ZV_ITEM_CHARS))
        size.width = Digits_Width(font, Tag_Number(*tag));
    if (TagItem const* tag = Find_Item_Tag(item, ZV_ITEM_WIDTH)) size.width = Tag_Number(*tag);
    if (TagItem const* tag = Find_Item_Tag(item, ZV_ITEM_HEIGHT)) size.height = Tag_Number(*tag);
    if (item.declaredType == ZV_GAD_LIST && item.kind == ZV_ITEM_GADGET)
        if (TagItem const* tag = Find_Item_Tag(item, ZV_ITEM_ROWS))
            size.height = std::max<long>(FewestRows, Tag_Number(*tag)) * font.Char_Height();
    return size;
}

static void Store_Size(ZVItem& item, GadgetMeasure const& measure)
{
    item.width = static_cast<int32_t>(measure.width);
    item.height = static_cast<int32_t>(measure.height);
}

/// A button with an image of its own is as large as that; a custom function has its say in any other case.
static void Set_Gadget_Size(ZVItem& item)
{
    bool const isImage = item.image && item.gadgetSize == ZV_SIZE_DEFAULT;
    if (isImage && (item.customFunc || item.declaredType <= ZV_GAD_CYCLE)) {
        Store_Size(item, {item.image->Width + ImageFrame, item.image->Height + ImageFrame});
        return;
    }
    Store_Size(item, Standard_Gadget_Size(item));
    if (item.customFunc) Send_Custom_Event(item, ZV_CUSTOM_SET_SIZE);
}

static GadgetMeasure Line_Size(ZVItem const& item, FontMeasure const& font)
{
    static constexpr CharMeasure lineSizes[] = {{5, 2}, {10, 5}, {15, 10}};
    ZVGadgetSize const size = item.gadgetSize == ZV_SIZE_DEFAULT ? ZV_SIZE_MEDIUM : item.gadgetSize;
    GadgetMeasure measure{};
    Take_Char_Size(measure, Size_Of(lineSizes, size), font);
    if (item.state == 1) measure.height = 1;
    if (item.state == 2) measure.width = 1;
    return measure;
}

static void Measure_Item(ZVItem& item)
{
    FontMeasure const font(item);
    switch (item.kind) {
    case ZV_ITEM_GADGET: Set_Gadget_Size(item); break;
    case ZV_ITEM_LABEL: Store_Size(item, {font.Text_Width(item.text) + 2, font.Char_Height()}); break;
    case ZV_ITEM_PICTURE:
        if (item.image) Store_Size(item, {item.image->Width, item.image->Height});
        break;
    default: Store_Size(item, Line_Size(item, font)); break;
    }
    if (item.kind != ZV_ITEM_GADGET && item.kind != ZV_ITEM_LINE) return;
    ExplicitSize const size = Explicit_Size(item, font);
    if (size.width != -1) item.width = static_cast<int32_t>(size.width);
    if (size.height != -1) item.height = static_cast<int32_t>(size.height);
}

bool Take_Natural_Size(ZVItem& item)
{
    int32_t const oldWidth = item.width, oldHeight = item.height;
    if (!Finds_Memory([&] { Measure_Item(item); })) {
        item.width = oldWidth;
        item.height = oldHeight;
        return false;
    }
    item.baseWidth = item.width;
    item.baseHeight = item.height;
    return true;
}

void Set_Item_Size(ZVItem* item)
{
    Take_Natural_Size(*item);
}

void GetGadgetSizeZV(ZVGadgetType type, ZVGadgetSize size, long* width, long* height)
{
    ZVItem item{};
    item.kind = ZV_ITEM_GADGET;
    item.type = item.declaredType = type;
    item.gadgetSize = size;
    GadgetMeasure const measure = Standard_Gadget_Size(item);
    if (width) *width = measure.width;
    if (height) *height = measure.height;
}

long GetGadgetWidthZV(ZVGadgetType type, ZVGadgetSize size)
{
    long width = 0;
    GetGadgetSizeZV(type, size, &width, nullptr);
    return width;
}

long GetGadgetHeightZV(ZVGadgetType type, ZVGadgetSize size)
{
    long height = 0;
    GetGadgetSizeZV(type, size, nullptr, &height);
    return height;
}
