// A text field on screen: what it shows of its item, and how it looks. What the user does to it is in
// MacTextFieldInput.cpp.
#include "MacTextField.h"

#include "MacFrame.h"
#include "MacItem.h"
#include "MacWindow.h"
#include "ZVLibInternal.h"
#include "interface/ItemParts.h"
#include "interface/Layout.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <string>
#include <utility>

/// Ticks of a half of the caret's blinking: half a second.
static constexpr uint32_t BlinkTicks = 30;

static FontChoice Font_Of(ZVItem const& item)
{
    return {GetItemFont(&item), nullptr};
}

static bool Is_Password(ZVItem const& item)
{
    return item.tags && Find_Item_Tag(item, ZV_ITEM_PASSWORD);
}

TextField::TextField(ZVItem& item)
    : item_(item), view_(TextLook(Font_Of(item), Is_Password(item)), item.type == ZV_GAD_EDITOR)
{
    Show_State();
}

TextField::~TextField()
{
    if (hasFocus_) Release_Keyboard();
}

ZVNativeItem* Make_Text_Field(ZVItem& item)
{
    return new TextField(item);
}

TextField* Text_Field_Of(ZVItem const* item)
{
    return item ? dynamic_cast<TextField*>(item->native) : nullptr;
}

HostRect TextField::Bounds() const
{
    return Area_Of(item_);
}

// ---- the item's state -------------------------------------------------------------------------------------

/// A number as it is shown, with a dot whatever the locale is.
static std::string Float_Text(double value)
{
    // The longest finite number has 309 digits ahead of the dot.
    std::array<char, 320> text;
    auto const [end, error] =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 2);
    return error == std::errc() ? std::string(text.data(), end) : std::string();
}

static std::string State_Text(ZVItem const& item)
{
    switch (item.type) {
    case ZV_GAD_INTEGER: return std::to_string(item.state);
    case ZV_GAD_FLOAT: return Float_Text(item.realValue);
    default: return item.editText ? item.editText : "";
    }
}

/// The number that a text begins with, 0 when it begins with none. Beyond the type's range it is its limit.
template <typename Number> static Number Leading_Number(std::string_view text)
{
    bool const isNegative = text.starts_with('-');
    if (text.starts_with('+')) text.remove_prefix(1);
    Number value{};
    auto const result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc::result_out_of_range) return value;
    return isNegative ? std::numeric_limits<Number>::lowest() : std::numeric_limits<Number>::max();
}

void TextField::Store_Text()
{
    std::string const& text = view_.buffer.Text();
    switch (item_.type) {
    case ZV_GAD_INTEGER:
        item_.state = Leading_Number<int32_t>(text);
        item_.realValue = item_.state;
        break;
    case ZV_GAD_FLOAT:
        item_.realValue = Leading_Number<double>(text);
        item_.state = To_Whole(item_.realValue);
        break;
    default: Store_Edit_Text(item_, text.c_str()); break;
    }
}

void TextField::Show_State()
{
    std::string const text = State_Text(item_);
    TextBuffer& buffer = view_.buffer;
    if (text == buffer.Text()) return;
    bool const isAllSelected = !buffer.Text().empty() && buffer.Selected() == buffer.Text();
    buffer.Set_Text(text);
    if (!hasFocus_)
        buffer.Select(0, 0);
    else if (isAllSelected)
        buffer.Select_All();
    Show_Change();
}

// ---- looks ------------------------------------------------------------------------------------------------

TextColors TextField::Colors() const
{
    uint32_t const paper = Pen_Color(ZV_PEN_TEXT_FIELD, Is_Disabled()), ink = Pen_Color(ZV_PEN_TEXT);
    return {.paper = paper,
            .ink = Is_Disabled() ? Dimmed_Ink(ink, paper) : ink,
            .marked = Pen_Color(ZV_PEN_MARKED),
            .markedInk = 0};
}

void TextField::Draw()
{
    if (isBehind_) Show_Change();
    view_.Place(Bounds());
    view_.isActive = hasFocus_ && !Is_Disabled();
    ZVPort* const port = Port_Of(item_);
    if (!port || Bounds().IsEmpty()) return;
    (Is_Disabled() ? FrameRect3DInv : FrameRect3D)(*port, Bounds());
    view_.Draw(*port, view_.Inside(), Colors());
}

void TextField::Redraw(HostRect const& area)
{
    if (area.IsEmpty()) return;
    if (ZVPort* const port = Port_Of(item_)) view_.Draw(*port, area, Colors());
}

/// Shows what has become of the text and the selection, with the caret lit.
void TextField::Show_Change()
{
    blinkStart_ = Mac_Tick_Count();
    bool const wasOn = std::exchange(view_.isCaretOn, true);
    isBehind_ = !Paint(Port_Of(item_), [&] {
        view_.Place(Bounds());
        Redraw(view_.Update());
        if (!wasOn) Redraw(view_.Caret_Rect());
        Place_Input_Method();
    });
}

void TextField::Blink()
{
    bool const isOn = (Mac_Tick_Count() - blinkStart_) / BlinkTicks % 2 == 0;
    if (std::exchange(view_.isCaretOn, isOn) == isOn) return;
    view_.Place(Bounds());
    Redraw(view_.Caret_Rect());
}

// ---- focus ------------------------------------------------------------------------------------------------

static HostWindow* Host_Of(ZVItem const& item)
{
    ZVWindow const* const window = GetParentSysWindow(item.group->palette, nullptr, nullptr);
    return window && window->sysWindow ? window->sysWindow->host.get() : nullptr;
}

/// The input method shows its lists beside the caret.
void TextField::Place_Input_Method()
{
    HostRect const caret = view_.Caret_Rect();
    if (!hasFocus_ || caret == inputPlace_) return;
    inputPlace_ = caret;
    if (HostWindow* const host = Host_Of(item_)) host->Start_Text(caret);
}

void TextField::Release_Keyboard()
{
    hasFocus_ = false;
    inputPlace_ = {};
    if (HostWindow* const host = Host_Of(item_)) host->Stop_Text();
}

void TextField::Set_Focus(bool hasFocus)
{
    if (hasFocus == hasFocus_) return;
    if (hasFocus) {
        hasFocus_ = true;
    } else {
        Release_Keyboard();
        // What an input method has not finished is not the field's yet.
        view_.buffer.Compose("", 0);
        if (Mouse_Holder() == this) Hold_Mouse(nullptr);
    }
    view_.isActive = hasFocus && !Is_Disabled();
    Show_Change();
}

// ---- lines and selection ----------------------------------------------------------------------------------

void TextField::Get_Properties(ZVTextEditorProperties& properties)
{
    view_.Place(Bounds());
    TextRange const selection = view_.buffer.Selection();
    properties = {.lineCount = static_cast<int32_t>(view_.Line_Count()),
                  .firstVisibleLine = static_cast<int32_t>(view_.First_Line()),
                  .visibleLines = static_cast<int32_t>(view_.Visible_Lines()),
                  .selectionStart = static_cast<int32_t>(selection.start),
                  .selectionEnd = static_cast<int32_t>(selection.end),
                  .caretOffset = static_cast<int32_t>(view_.buffer.Caret())};
}

void TextField::Set_Properties(ZVTextEditorProperties const& properties)
{
    auto const offset = [](int32_t value) { return static_cast<std::size_t>(std::max(value, 0)); };
    std::size_t start = offset(properties.selectionStart), end = offset(properties.selectionEnd);
    if (offset(properties.caretOffset) == start) std::swap(start, end);
    view_.buffer.Select(start, end);
    Show_Change();
    view_.Scroll_To_Line(properties.firstVisibleLine);
    Redraw(view_.Inside());
    Place_Input_Method();
}
