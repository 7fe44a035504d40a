// The text box: a text of several lines that is only shown, broken at blanks where a line does not fit. Where
// lines begin and end is worked out when the text or the width changes, and looked up for drawing.
#include "PressGadget.h"
#include "ZVControl.h"
#include "interface/ItemParts.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <string_view>
#include <utility>

namespace {

/// A line as a part of the text.
struct TextLine {
    uint32_t start, length;
};

/// Of a text box, in its item's `object` from its declaration to its end.
struct TextBoxState {
    char* Text;          ///< owned; null for none
    int32_t Length;      ///< bytes
    int32_t LineHeight;  ///< pixels
    int32_t VisibleLines;
    TextLine* Lines;     ///< owned, `maxInt` of them
    int32_t LinesWidth;  ///< the item's width for which they were worked out
};

constexpr long lineGap = 2;  ///< between lines, part of LineHeight
constexpr long textLeft = 7, textTop = 4;
constexpr long textMargins = 22;           ///< what lines leave free of the width
constexpr std::size_t longestLine = 1023;  ///< bytes that a line of several words may have
constexpr std::size_t longestDrawn = 255;  ///< bytes that are drawn in one go
constexpr double shade = 0.85;

TextBoxState* State_Of(ZVItem const* item)
{
    bool const isBox = item && item->kind == ZV_ITEM_GADGET && item->type == ZV_GAD_TEXTBOX;
    return isBox ? static_cast<TextBoxState*>(item->object) : nullptr;
}

/// As many bytes of the text, at most `most`, as are whole characters.
std::string_view Whole_Characters(std::string_view text, std::size_t most)
{
    if (text.size() <= most) return text;
    std::size_t length = most;
    while (length > 0 && (text[length] & 0xC0) == 0x80)
        --length;
    return text.substr(0, length ? length : most);
}

// ---- lines ------------------------------------------------------------------------------------------------

bool Is_Too_Wide(std::string_view line, long limit)
{
    if (line.size() > longestLine) return true;
    char measured[longestLine + 1];
    measured[line.copy(measured, longestLine)] = 0;
    return GetTextWidthZV(nullptr, measured) > limit;
}

bool Ends_Line(char character)
{
    return character == '\r' || character == '\n';
}

/// Takes the first line off a text that is not empty, with the break behind it. A line ends at a break of the
/// text, or at the last blank before it would be wider than the limit. A word that is wider on its own stays
/// whole.
std::string_view Take_Line(std::string_view& text, long limit)
{
    std::size_t end = 0, blank = std::string_view::npos;
    for (;;) {
        end = std::min(text.find_first_of(" \r\n", end), text.size());
        bool const isTooWide = Is_Too_Wide(text.substr(0, end), limit);
        if (isTooWide && blank != std::string_view::npos) end = blank;
        if (isTooWide || end == text.size() || Ends_Line(text[end])) break;
        blank = end++;
    }
    std::string_view const line = text.substr(0, end);
    text.remove_prefix(end);
    if (text.starts_with(' '))
        text.remove_prefix(1);
    else
        for (char const character : {'\r', '\n'})
            if (text.starts_with(character)) text.remove_prefix(1);
    return line;
}

/// Breaks a text into lines. One pass counts them, a second one keeps them.
/// @param lines  as many are kept
/// @return  all lines; -1 with error 1 when there was no memory to measure them
long Break_Text(std::string_view text, long width, std::span<TextLine> lines)
{
    char const* const start = text.data();
    std::size_t count = 0;
    bool const isMeasured = Finds_Memory([&] {
        for (; !text.empty(); ++count) {
            std::string_view const line = Take_Line(text, width - textMargins);
            if (count < lines.size())
                lines[count] = {static_cast<uint32_t>(line.data() - start),
                                static_cast<uint32_t>(line.size())};
        }
    });
    return isMeasured ? static_cast<long>(count) : -1;
}

/// Gives a box a text, and its lines. False with error 1 and everything as it was when memory runs out.
bool Set_Text(ZVItem& item, TextBoxState& state, char const* text)
{
    std::string_view const whole = text;
    long const count = Break_Text(whole, item.width, {});
    if (count < 0) return false;
    auto const room = static_cast<std::size_t>(count);
    HeapBlock<TextLine> lines(static_cast<TextLine*>(New_Block(room * sizeof(TextLine) + 1)));
    if (!lines || Break_Text(whole, item.width, {lines.get(), room}) < 0) return false;
    if (text != state.Text && !Replace_Text(state.Text, text)) return false;
    FreeMemZV(state.Lines);
    state.Lines = lines.release();
    state.LinesWidth = item.width;
    state.Length = static_cast<int32_t>(whole.size());
    item.maxInt = static_cast<int32_t>(count);
    return true;
}

// ---- the gadget that scrolls ------------------------------------------------------------------------------

/// Null without one.
ZVItem* Linked_To(ZVItem const& item)
{
    ZVItem* const linked = FindItem2ZV(item.group->palette, static_cast<unsigned short>(item.linkedItem));
    return linked && linked->kind == ZV_ITEM_GADGET && Is_Prop(linked->type) ? linked : nullptr;
}

/// Gives the linked gadget the number of lines, and a position among them.
void Set_Linked(ZVItem const& item, int32_t position)
{
    ZVItem* const linked = Linked_To(item);
    if (!linked) return;
    linked->minInt = 0;
    linked->maxInt = item.maxInt;
    linked->page = State_Of(&item)->VisibleLines;
    linked->state = std::clamp(position, 0, std::max(linked->maxInt - linked->page, 0));
    UpdateGadgetZV(linked);
}

/// The wheel over the text turns the linked gadget, whose event then scrolls the text.
void Turn_Linked(ZVCustomEvent* event)
{
    ZVItem* const linked = Linked_To(*event->item);
    if (!linked || !linked->customFunc) return;
    event->item = linked;
    linked->customFunc(event);
}

/// The position that shows what is in view now: lines count from 1, positions from 0.
int32_t Position_Of(ZVItem const& item)
{
    return std::max(item.state - 1, 0);
}

// ---- drawing ----------------------------------------------------------------------------------------------

void Draw_Line(ZVDrawInfo* draw, std::string_view line, long y, long right)
{
    for (long x = textLeft; !line.empty() && x < right;) {
        std::string_view const part = Whole_Characters(line, longestDrawn);
        char drawn[longestDrawn + 1];
        drawn[part.copy(drawn, longestDrawn)] = 0;
        DrawTextZV(draw, drawn, x, y);
        line.remove_prefix(part.size());
        if (!line.empty()) x += GetTextWidthZV(draw, drawn);
    }
}

void Draw(ZVItem* item, bool isWhole, bool isDisabled)
{
    TextBoxState const* const state = State_Of(item);
    DrawContext const context(DrawBeginZV(item));
    ZVDrawInfo* const draw = context.get();
    if (!draw || !state) return;
    unsigned long const face = ShadeColorZV(ZV_PEN_PALETTE, shade);
    SetPenZV(draw, face);
    FillRectZV(draw, 2, 2, item->width - 3, item->height - 3);
    if (isWhole) DrawIShineBorderZV(draw, 0, 0, item->width, item->height);
    SetClipRectZV(draw, 2, 2, item->width - 5, item->height - 5);
    SetPenZV(draw, Shown_Color(ZV_PEN_TEXT, isDisabled));
    SetBGPenZV(draw, face);
    int32_t const first = Position_Of(*item);
    int32_t const last = state->Lines ? std::min(item->maxInt, first + state->VisibleLines) : 0;
    for (int32_t i = first; i < last; ++i) {
        TextLine const line = state->Lines[i];
        Draw_Line(draw, {state->Text + line.start, line.length},
                  long{state->LineHeight} * (i - first) + textTop, item->width);
    }
}

// ---- events -----------------------------------------------------------------------------------------------

long Set_Up(ZVItem& item)
{
    auto* const state = New_Record<TextBoxState>();
    if (!state) return 0;
    state->LineHeight = static_cast<int32_t>(GetAveCharHeightZV(nullptr) + lineGap);
    item.object = state;
    auto const* const text = reinterpret_cast<char const*>(item.userData);
    // The width is not known yet: lines are broken when the box comes on screen.
    return !text || Replace_Text(state->Text, text);
}

bool Has_Lines(ZVItem const& item, TextBoxState const& state)
{
    return state.Lines && state.LinesWidth == item.width;
}

void Create(ZVItem& item, TextBoxState& state)
{
    state.VisibleLines = std::max((item.height - static_cast<int32_t>(textTop)) / state.LineHeight, 0);
    if (!Has_Lines(item, state)) Set_Text(item, state, state.Text ? state.Text : "");
    item.state = std::min(item.state, item.maxInt);
    Set_Linked(item, Position_Of(item));
}

/// Lines that found no memory may find it now.
void Draw_Whole(ZVItem* item, bool isDisabled)
{
    TextBoxState* const state = State_Of(item);
    if (state && !Has_Lines(*item, *state)) Create(*item, *state);
    Draw(item, true, isDisabled);
}

void Clean_Up(ZVItem& item)
{
    if (TextBoxState const* state = State_Of(&item)) {
        FreeMemZV(state->Text);
        FreeMemZV(state->Lines);
    }
    FreeMemZV(std::exchange(item.object, nullptr));
}

}  // namespace

long TextBoxCustomFunc(ZVCustomEvent* event)
{
    ZVItem* const item = event->item;
    switch (event->type) {
    case ZV_CUSTOM_SETUP: return Set_Up(*item);
    case ZV_CUSTOM_CREATE:
        if (TextBoxState* state = State_Of(item)) Create(*item, *state);
        break;
    case ZV_CUSTOM_CLEANUP: Clean_Up(*item); break;
    case ZV_CUSTOM_DRAW: Draw_Whole(item, Is_Disabled(*item)); break;
    case ZV_CUSTOM_DRAW_DISABLED: Draw_Whole(item, true); break;
    case ZV_CUSTOM_DRAW_STATE: Draw(item, false, Is_Disabled(*item)); break;
    case ZV_CUSTOM_WHEEL: Turn_Linked(event); break;
    default: break;
    }
    return 1;
}

long SetTextBoxGadgetState_internal(ZVItem* item, char const* text)
{
    TextBoxState* const state = State_Of(item);
    if (!state || !text || std::strcmp(state->Text ? state->Text : "", text) == 0) return 0;
    return Set_Text(*item, *state, text);
}

void SetTextBoxGadgetStateZV(ZVItem* item, char const* text)
{
    if (!SetTextBoxGadgetState_internal(item, text)) return;
    LivingPalette const palette(item->group->palette);
    SetGadgetStateZV(item, 0);
    if (!palette.Is_There()) return;
    UpdateGadgetZV(item);
    Set_Linked(*item, 0);
}

void SetTextBoxGadgetStateZV(unsigned long id, char const* text)
{
    SetTextBoxGadgetStateZV(FindItemZV(static_cast<unsigned short>(id)), text);
}
