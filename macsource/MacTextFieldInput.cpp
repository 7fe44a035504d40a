// What the user does to a text field: mouse, keys, clipboard, input method.
#include "MacTextField.h"

#include "MacWindow.h"
#include "ZVLibInternal.h"
#include "interface/Layout.h"

#include <algorithm>
#include <cstdlib>
#include <string>

/// A press farther from the one before is the first of its own.
static constexpr int PressReach = 4;

/// Between two steps of a text beside which the mouse is held: a twentieth of a second.
static constexpr uint32_t ScrollTicks = 3;

/// Digits and sign of the longest whole number.
static constexpr std::size_t LongestInteger = 11;

// ---- mouse ------------------------------------------------------------------------------------------------

/// The first press places the caret, the second takes a word, the third the line, and a fourth begins anew.
void TextField::Count_Press(int x, int y)
{
    uint32_t const now = Mac_Tick_Count();
    bool const isNear = std::abs(x - pressX_) <= PressReach && std::abs(y - pressY_) <= PressReach;
    bool const isQuick = now - pressTime_ <= static_cast<uint32_t>(Mac_Double_Click_Time());
    pressCount_ = isNear && isQuick && pressCount_ < 3 ? pressCount_ + 1 : 1;
    pressX_ = x;
    pressY_ = y;
    pressTime_ = now;
}

/// What the present press takes together.
TextRange TextField::Unit_At(std::size_t offset) const
{
    std::string const& text = view_.buffer.Text();
    if (pressCount_ < 2) return {offset, offset};
    // The words of a password are nobody's to see.
    if (!view_.Is_Multi_Line() && (pressCount_ > 2 || view_.Is_Password())) return {0, text.size()};
    return pressCount_ == 2 ? Word_At(text, offset) : view_.Line_At(offset);
}

void TextField::Press(int x, int y, bool reports)
{
    view_.buffer.Compose("", 0);
    Show_Change();
    Count_Press(x, y);
    reportsRelease_ = reports;
    TextBuffer& buffer = view_.buffer;
    pressed_ = Unit_At(view_.Place_Near(x, y).at);
    if (pressCount_ == 1 && ZVEnv->modifiers & ZV_MOD_SHIFT) pressed_ = {buffer.Anchor(), buffer.Anchor()};
    Hold_Mouse(this);
    Select_To(x, y);
}

/// Selects from what the press took to the point in the window, in units of the press.
void TextField::Select_To(int x, int y)
{
    TextPlace const place = view_.Place_Near(x, y);
    TextRange const unit = Unit_At(place.at);
    bool const isBack = unit.start < pressed_.start;
    std::size_t const caret = isBack ? unit.start : std::max(unit.end, pressed_.end);
    view_.Select(isBack ? pressed_.end : pressed_.start, caret == place.at ? place : TextPlace{caret});
    Show_Change();
}

ZVPlace TextField::In_Window(long x, long y) const
{
    return ZVPlace{x, y} - Place_On_Screen(System_Window_Of(item_.group->palette->window));
}

void TextField::Track(long x, long y)
{
    auto const [localX, localY] = In_Window(x, y);
    auto const pointX = static_cast<int>(localX), pointY = static_cast<int>(localY);
    if (!view_.Inside().Contains(pointX, pointY)) {
        // The text moves while the mouse is held beside it, slowly enough to be read.
        uint32_t const now = Mac_Tick_Count();
        if (now - scrollTime_ < ScrollTicks) return;
        scrollTime_ = now;
    }
    Select_To(pointX, pointY);
}

void TextField::Finish(long x, long y)
{
    auto const [localX, localY] = In_Window(x, y);
    Select_To(static_cast<int>(localX), static_cast<int>(localY));
    // Last, since whoever gets it may take the field away.
    if (reportsRelease_) Do_Event(ZV_EVENT_GADGET, Tag_Word(&item_));
}

// ---- keys -------------------------------------------------------------------------------------------------

void TextField::Select_All()
{
    view_.buffer.Select_All();
    Show_Change();
}

/// Up and down in one line mean its ends, and so do steps by words in a password, whose words are nobody's to
/// see.
unsigned TextField::Effective_Key(unsigned code, bool byWord) const
{
    bool const isLine = !view_.Is_Multi_Line(), isHidden = view_.Is_Password() && byWord;
    if ((isLine && code == ZV_KEY_UP) || (isHidden && code == ZV_KEY_LEFT)) return ZV_KEY_HOME;
    if ((isLine && code == ZV_KEY_DOWN) || (isHidden && code == ZV_KEY_RIGHT)) return ZV_KEY_END;
    return code;
}

/// Where a step to the side leads. Without Shift it closes a selection at that side of it. Words are passed
/// as they are read, which is to the left in a line that runs from right to left.
TextPlace TextField::Side_Step(bool isRight, bool extends, bool byWord) const
{
    std::string const& text = view_.buffer.Text();
    std::size_t const caret = view_.buffer.Caret();
    bool const isForward = isRight == (view_.Caret_Direction() == HostDirection::LeftToRight);
    if (byWord && isForward) return {Next_Word_End(text, caret)};
    if (byWord) return {Previous_Word_Start(text, caret), true};
    bool const closes = !view_.buffer.Selection().IsEmpty() && !extends;
    return closes ? view_.Selection_End(isRight) : view_.Side_Step(isRight);
}

void TextField::Move(unsigned code, bool extends, bool byWord)
{
    view_.buffer.Compose("", 0);
    Show_Change();
    switch (Effective_Key(code, byWord)) {
    case ZV_KEY_LEFT: view_.Move_To(Side_Step(false, extends, byWord), extends); break;
    case ZV_KEY_RIGHT: view_.Move_To(Side_Step(true, extends, byWord), extends); break;
    case ZV_KEY_UP: view_.Move_By_Lines(-1, extends); break;
    case ZV_KEY_DOWN: view_.Move_By_Lines(1, extends); break;
    case ZV_KEY_HOME:
    case ZV_KEY_PAGE_UP: view_.Move_To({}, extends); break;
    case ZV_KEY_END:
    case ZV_KEY_PAGE_DOWN: view_.Move_To({view_.buffer.Text().size(), true}, extends); break;
    default: break;
    }
    Show_Change();
}

bool TextField::Erase(bool isBehind)
{
    TextBuffer& buffer = view_.buffer;
    buffer.Compose("", 0);
    bool const hasChanged = isBehind ? buffer.Erase_Behind() : buffer.Erase_Before();
    Show_Change();
    return hasChanged;
}

bool TextField::Undo()
{
    bool const hasChanged = view_.buffer.Undo();
    if (!hasChanged) Display()->Beep();
    Show_Change();
    return hasChanged;
}

// ---- text that comes in -----------------------------------------------------------------------------------

std::size_t TextField::Capacity() const
{
    if (item_.type != ZV_GAD_INTEGER) return static_cast<std::size_t>(std::max(item_.maxChars, 0));
    // The upper limit of the number is in the place of the capacity, unless the capacity was given.
    TagItem const* const tag = item_.tags ? Find_Item_Tag(item_, ZV_ITEM_MAX_CHARS) : nullptr;
    return tag ? static_cast<std::size_t>(std::max(static_cast<int32_t>(tag->data), 0)) : LongestInteger;
}

static bool Is_Integer(std::string_view text)
{
    if (text.starts_with('-')) text.remove_prefix(1);
    return text.find_first_not_of("0123456789") == text.npos;
}

/// Whether the field's type allows a text.
bool TextField::Accepts(std::string const& text) const
{
    if (item_.type == ZV_GAD_INTEGER) return Is_Integer(text);
    return item_.type != ZV_GAD_FLOAT || text.find_first_not_of("0123456789-.+eE") == text.npos;
}

/// Lines end with a line feed; in a field of one line they go on behind a blank. Other control characters but
/// tabs have no place in a text.
static std::string Cleaned(std::string_view text, bool isMultiLine)
{
    std::string clean;
    clean.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char const byte = text[i];
        bool const isPair = byte == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        if (isPair) continue;
        if (Is_Line_Break(byte))
            clean += isMultiLine ? '\n' : ' ';
        else if (byte == '\t')
            clean += isMultiLine ? '\t' : ' ';
        else if (static_cast<unsigned char>(byte) >= ' ' && byte != '\x7F')
            clean += byte;
    }
    return clean;
}

/// Puts a text in place of the selection, as a whole or not at all.
bool TextField::Insert(std::string_view text, bool isTyped)
{
    TextBuffer& buffer = view_.buffer;
    buffer.Compose("", 0);
    bool const isNumber = item_.type == ZV_GAD_INTEGER || item_.type == ZV_GAD_FLOAT;
    std::string const clean = isNumber ? std::string(text) : Cleaned(text, view_.Is_Multi_Line());
    std::string const result = buffer.With(clean);
    // A state that is longer than the field takes may still be shortened.
    bool const isTooLong = result.size() > std::max(Capacity(), buffer.Text().size());
    bool const isTaken = !clean.empty() && !isTooLong && Accepts(result);
    if (isTaken)
        buffer.Insert(clean, isTyped);
    else if (!text.empty())
        Display()->Beep();
    Show_Change();
    return isTaken;
}

bool TextField::Type(std::string_view text)
{
    return Insert(text, true);
}

bool TextField::Paste()
{
    return Insert(Display()->Clipboard(), false);
}

void TextField::Copy() const
{
    std::string_view const selected = view_.buffer.Selected();
    if (selected.empty()) return;
    if (view_.Is_Password())
        Display()->Beep();
    else
        Display()->Set_Clipboard(std::string(selected));
}

bool TextField::Cut()
{
    Copy();
    if (view_.buffer.Selected().empty() || view_.Is_Password()) return false;
    return Erase(false);
}

void TextField::Compose(std::string_view text, int caret)
{
    std::string const clean = Cleaned(text, false);
    view_.buffer.Compose(clean, Characters_Size(clean, caret));
    Show_Change();
}
