// Requesters: small modal dialogs that state a message and wait for an answer. They are declared like any
// other palette, in the middle of whatever the caller is doing, and their display returns when they have been
// answered.
#include "interface/Interruption.h"

#include "Locale/ZVLibStr.h"
#include "foundation/Message.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int FirstRequester = 32600;  ///< palette id of one that no other modal palette is around

constexpr unsigned short FirstButton = 1, SecondButton = 2, Filler = 3;
constexpr unsigned short ScrollBox = 1000, ScrollBar = 1001;

constexpr long LineGap = 2;
constexpr long BoxWidth = 500, BoxHeight = 300;  ///< of the scrolling text, where the screen has room for it

constexpr unsigned short first = ZV_Position(ZV_POS_DEFAULT, ZV_POS_DEFAULT);
constexpr unsigned short below = ZV_Position(ZV_POS_DEFAULT, ZV_POS_AFTER);
constexpr unsigned short belowRight = ZV_Position(ZV_POS_ALIGN_END, ZV_POS_AFTER);
constexpr unsigned short before = ZV_Position(ZV_POS_BEFORE, ZV_POS_DEFAULT);
constexpr unsigned short after = ZV_Position(ZV_POS_AFTER, ZV_POS_DEFAULT);

// ---- the lines of a message -------------------------------------------------------------------------------

bool Is_Line_End(char c)
{
    return c == '\r' || c == '\n';
}

/// Takes a text apart into lines of a width that can be shown, and of a length that an item draws.
class MessageLines {
public:
    MessageLines(char const* text, long width) : rest_(text ? text : ""), width_(width) {}

    bool Next();  ///< False at the end.
    char const* Text() const { return line_; }
    long Width() const { return Text_Width(line_); }

private:
    bool Fits(std::size_t length);
    std::size_t Longest_Fit(std::size_t length);
    bool Is_Inside(std::size_t place) const { return (rest_[place] & 0xC0) == 0x80; }  ///< A character.

    char const* rest_;
    long width_;
    char line_[256] = "";
};

/// Makes that much of the rest the line.
bool MessageLines::Fits(std::size_t length)
{
    std::memcpy(line_, rest_, length);
    line_[length] = 0;
    return Width() <= width_;
}

/// The most whole characters of so many bytes that fit, at least one.
std::size_t MessageLines::Longest_Fit(std::size_t length)
{
    std::size_t fitting = 0, tooLong = length;
    while (fitting + 1 < tooLong) {
        std::size_t const middle = (fitting + tooLong) / 2;
        (Fits(middle) ? fitting : tooLong) = middle;
    }
    while (fitting > 0 && Is_Inside(fitting))
        --fitting;
    if (fitting == 0) do
            ++fitting;
        while (fitting < length && Is_Inside(fitting));
    return fitting;
}

bool MessageLines::Next()
{
    if (!*rest_) return false;
    std::size_t const whole = std::strcspn(rest_, "\r\n");
    std::size_t length = std::min(whole, sizeof line_ - 1);
    while (length > 0 && length < whole && Is_Inside(length))
        --length;
    if (length == whole && Fits(length)) {
        rest_ += length;
        if (Is_Line_End(*rest_)) ++rest_;
        return true;
    }
    std::size_t fitting = Fits(length) ? length : Longest_Fit(length);
    // The break is at the last blank that fits, if there is one; the blanks there go, and so does an end of
    // the line behind them.
    std::size_t end = fitting;
    while (end > 0 && rest_[end] != ' ')
        --end;
    while (end > 0 && rest_[end - 1] == ' ')
        --end;
    if (end > 0) fitting = end;
    Fits(fitting);
    rest_ += fitting;
    rest_ += std::strspn(rest_, " ");
    if (Is_Line_End(*rest_)) ++rest_;
    return true;
}

struct MessageExtent {
    long lines = 0, width = 0;
};

MessageExtent Measure(char const* text, long width)
{
    MessageExtent extent;
    for (MessageLines lines(text, width); lines.Next(); ++extent.lines)
        extent.width = std::max(extent.width, lines.Width());
    return extent;
}

// ---- the room on the screen -------------------------------------------------------------------------------

/// Inside the margins of a requester. Text takes two thirds of the width, behind which it is hard to read.
struct Room {
    Room()
    {
        ZVRectT<long> const area = Free_Area_At(ZVEnv->pointerX, ZVEnv->pointerY);
        long const margins = 2L * ZVEnv->style->paletteMargin;
        width = area.width - margins;
        height = area.height - margins;
    }

    long Text_Room() const { return width * 2 / 3; }

    /// Lines above the buttons and what else is so high.
    long Lines(long others) const
    {
        long const free = height - others - ZVEnv->style->groupGap - ZVEnv->style->gadgetHeight;
        return std::max(free / (Text_Height("") + LineGap), 1L);
    }

    long width, height;
};

// ---- building and running ---------------------------------------------------------------------------------

bool Are_Silenced()
{
    return ZVEnv && ZVEnv->errorMode & (ZV_ERRORMODE_YES | ZV_ERRORMODE_NO);
}

/// A text of the string table, which an application may not have.
char const* Text_Of(unsigned long id, char const* literal)
{
    char const* const text = GetStringZV(id);
    return *text ? text : literal;
}

char const* First_Text(char const* text)
{
    return text && *text ? text : Text_Of(ZVSTR_OK, "OK");
}

char const* Second_Text(char const* text)
{
    return text && *text ? text : Text_Of(ZVSTR_CANCEL, "Cancel");
}

/// Adds a text item for each line, as many as there is room for; when there are more, the last one says so.
void Add_Lines(char const* text, long width, long most)
{
    bool const areTooMany = Measure(text, width).lines > most;
    MessageLines lines(text, width);
    for (long line = 1; line <= most && lines.Next(); ++line) {
        short const reference = line == 1 ? 0 : -1;
        AddTextZV(static_cast<unsigned short>(line), line == 1 ? first : below, reference,
                  areTooMany && line == most ? "..." : lines.Text(), ZV_GAP_FIXED, LineGap, 0);
    }
}

void Add_Buttons(long twoButtons, char const* firstText, char const* secondText, bool isNarrow)
{
    AddGadgetZV(FirstButton, first, 0, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, firstText, nullptr);
    if (twoButtons) AddGadgetZV(SecondButton, after, -1, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, secondText, nullptr);
    if (!isNarrow) return;
    short const reference = twoButtons ? -2 : -1;
    AddGadgetZV(Filler, before, reference, ZV_GAD_CUSTOM, ZV_SIZE_DEFAULT, nullptr, ZV_ITEM_CUSTOM_FUNC,
                Dummy_Gad, ZV_ITEM_WIDTH, 2L * ZVEnv->style->gadgetSizes.size3, 0);
}

/// Shows the requester under construction until it has been answered; `requestResult` is 0 when the
/// application ends without an answer. False when it cannot be shown.
bool Run(ZVPalette& palette, void (*handler)(ZVEvent*))
{
    LivingPalette const watch(&palette);
    auto const id = static_cast<unsigned short>(FirstRequester + ZVEnv->modalDepth);
    if (!EndPaletteZV(id, nullptr, ZV_PAL_CALLBACK, handler, 0)) {
        Free_Palette(&palette);
        return false;
    }
    int32_t const former = std::exchange(ZVEnv->requestResult, 0);
    bool const isShown = DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_MODAL, ZV_PAL_FLAGS, ZV_PALF_PLAIN, 0);
    if (!isShown) ZVEnv->requestResult = former;
    if (watch.Is_There()) ClosePaletteZV(&palette);
    return isShown;
}

/// Declares a requester, which stops at the first error, and runs it. False, with the error set and nothing
/// half-made, when it cannot be had.
template <typename Declare> bool Run_Requester(void (*handler)(ZVEvent*), Declare declare)
{
    Interruption interruption;
    ZVPalette* const palette = InitPaletteZV();
    if (palette) declare();
    bool const isShown = palette && Run(*palette, handler);
    if (!isShown) interruption.Keep_Error();
    return isShown;
}

bool Ask(long twoButtons, char const* text, char const* firstText, char const* secondText)
{
    return Run_Requester(Req_Handler, [=] {
        Room const room;
        InitGroupZV();
        Add_Lines(text, room.Text_Room(), room.Lines(0));
        EndGroupZV(1, first, 0, nullptr, ZV_MARGIN_NONE, 0, 0);
        if (GetErrorZV() != ZV_ERR_NONE) return;
        InitGroupZV();
        long const width = Measure(text, room.Text_Room()).width;
        bool const isNarrow = width < 4 * GetGadgetWidthZV(ZV_GAD_BUTTON, ZV_SIZE_MEDIUM);
        Add_Buttons(twoButtons, First_Text(firstText), Second_Text(secondText), isNarrow);
        EndGroupZV(2, isNarrow ? below : belowRight, 1, nullptr, ZV_MARGIN_NONE, 0, 0);
    });
}

bool Show_Scrolling(char const* heading, char const* body)
{
    return Run_Requester(scrollTextReqHandler, [=] {
        Room const room;
        InitGroupZV();
        long const height = std::min(BoxHeight, room.height / 2);
        long const barWidth = GetGadgetWidthZV(ZV_GAD_VPROP, ZV_SIZE_LARGE);
        long const wanted = std::max(Measure(heading, room.Text_Room()).width, BoxWidth);
        long const width = std::min(wanted, room.width - barWidth);
        Add_Lines(heading, room.Text_Room(), room.Lines(height));
        AddGadgetZV(ScrollBox, below, -1, ZV_GAD_TEXTBOX, ZV_SIZE_DEFAULT, nullptr, ZV_ITEM_USER_DATA, body,
                    ZV_ITEM_LINKED, ScrollBar, ZV_ITEM_HEIGHT, height, ZV_ITEM_WIDTH, width, 0);
        AddGadgetZV(ScrollBar, after, -1, ZV_GAD_VPROP, ZV_SIZE_LARGE, nullptr, ZV_ITEM_HEIGHT, height,
                    ZV_GAP_FIXED, -1, 0);
        EndGroupZV(1, first, 0, nullptr, ZV_MARGIN_NONE, 0, 0);
        if (GetErrorZV() != ZV_ERR_NONE) return;
        InitGroupZV();
        Add_Buttons(0, First_Text(nullptr), nullptr, false);
        EndGroupZV(2, belowRight, 1, nullptr, ZV_MARGIN_NONE, 0, 0);
    });
}

// ---- answers ----------------------------------------------------------------------------------------------

unsigned long Gadget_Of(ZVEvent const& event)
{
    return event.type == ZV_EVENT_GADGET ? reinterpret_cast<ZVItem const*>(event.item)->node.id : 0;
}

/// The key that was pressed; 0 for other events, a release and a repeat.
uint32_t Key_Of(ZVEvent const& event)
{
    bool const isPress = !(event.modifiers & (ZV_MOD_REPEAT | ZV_MOD_KEY_UP));
    return event.type == ZV_EVENT_KEY && isPress ? event.key : 0;
}

bool Is_Cancel_Key(uint32_t key)
{
    return key == 'c' || key == ZV_KEY_ESCAPE;
}

bool Is_Accept_Key(uint32_t key)
{
    return key == 'o' || key == ZV_KEY_ENTER || key == ZV_KEY_RETURN;
}

/// Closes the requester that the event is for.
void Answer(ZVEvent& event, int32_t answer)
{
    ZVEnv->requestResult = answer;
    if (event.type == ZV_EVENT_KEY) event.result = 1;
    ClosePaletteZV(event.palette);
}

}  // namespace

bool Has_Interface()
{
    return ZVEnv && !ZVEnv->isStarting && Mac_Is_Interface_Thread();
}

long Dummy_Gad(ZVCustomEvent*)
{
    return 1;
}

void Req_Handler(ZVEvent* event)
{
    unsigned long const gadget = Gadget_Of(*event);
    uint32_t const key = Key_Of(*event);
    if (gadget == FirstButton || Is_Accept_Key(key)) Answer(*event, 1);
    if (gadget == SecondButton || Is_Cancel_Key(key)) Answer(*event, 0);
}

void scrollTextReqHandler(ZVEvent* event)
{
    unsigned long const gadget = Gadget_Of(*event);
    uint32_t const key = Key_Of(*event);
    // Lines of the box count from 1, positions of the bar from 0.
    if (gadget == ScrollBar)
        SetGadgetStateZV(ScrollBox, reinterpret_cast<ZVItem const*>(event->item)->state + 1.0);
    if (gadget == FirstButton || Is_Accept_Key(key) || key == ZV_KEY_ESCAPE) Answer(*event, 1);
}

long User_Req(long, long twoButtons, char const* text, char const* firstText, char const* secondText)
{
    if (Are_Silenced()) return !(ZVEnv->errorMode & ZV_ERRORMODE_NO);
    if (!Has_Interface()) {
        Write_Message(text);
        return 0;
    }
    if (!Ask(twoButtons, text, firstText, secondText)) Write_Message(text);
    return ZVEnv->requestResult;
}

void UserScrollMessageZV(char const* heading, char* body)
{
    if (Are_Silenced() || (Has_Interface() && Show_Scrolling(heading, body ? body : ""))) return;
    Write_Message(heading);
    Write_Message_Lines(body);
}
