// Every form of requester, each behind a button of a palette, which tells what the last one has answered.
#include "Gallery.h"

#include <cstdio>
#include <optional>
#include <string>
#include <utility>

namespace {

constexpr unsigned short first = ZV_Position(ZV_POS_DEFAULT, ZV_POS_DEFAULT);
constexpr unsigned short below = ZV_Position(ZV_POS_ALIGN_START, ZV_POS_AFTER);

char const* Name_Of(long answer)
{
    return answer ? "the first button" : "the second button";
}

void Tell_Answer(long answer)
{
    Show_Result(RequestAnswer, Name_Of(answer));
}

/// A question that comes up at the next tick, in front of another one that waits for its answer.
struct Inner {
    bool isWanted = false;
    std::optional<long> answer = {};
};
Inner inner;

void Ask_Inner()
{
    if (std::exchange(inner.isWanted, false)) inner.answer = AskUserZV("Is this one in front?");
}

void Ask_Nested()
{
    inner = {.isWanted = true};
    long const outer =
        AskUserZV("Another question comes up in front of this one.\n\n\n\n\n\nHas it been answered?");
    inner.isWanted = false;
    std::string told = Name_Of(outer);
    if (inner.answer) told = std::string(Name_Of(*inner.answer)) + " inside, " + told;
    Show_Result(RequestAnswer, told.c_str());
}

void Show_Long_Text()
{
    std::string text;
    for (int line = 1; line <= 60; ++line)
        text += "Line " + std::to_string(line) + " of a text that is longer than its box.\n";
    UserScrollMessageZV("Here is a long text.\nReturn and Escape close it too.", text.data());
}

void Show_Wide_Message()
{
    std::string text = "A line that no screen has room for is broken at its blanks:";
    for (int word = 1; word <= 150; ++word)
        text += " word" + std::to_string(word);
    UserMessageZV("%s", text.c_str());
}

void On_Requesters(ZVEvent* event)
{
    Tell(event);
    if (event->type == ZV_EVENT_TICK) Ask_Inner();
    if (event->type != ZV_EVENT_GADGET) return;
    switch (Event_Item(event)->node.id) {
    case RequestMessage: UserMessageZV("The file \"%s\" has been saved.", "Untitled"); break;
    case RequestStop: StopAlertZV("The disk is full.\r\nNothing has been saved."); break;
    case RequestQuestion: Tell_Answer(AskUserZV("Do you want to go on?\nThis cannot be undone.")); break;
    case RequestButtons: Tell_Answer(AskUser2ZV("Save", "Discard", "\"%s\" has changed.", "Untitled")); break;
    case RequestNested: Ask_Nested(); break;
    case RequestAgain:
        if (AskUserZV("Shall another one be asked from here?"))
            Tell_Answer(AskUserZV("This is the other one.\nThere are no more of them."));
        break;
    case RequestWide: Show_Wide_Message(); break;
    case RequestLongText: Show_Long_Text(); break;
    default: break;
    }
}

}  // namespace

void Show_Requesters_Palette()
{
    struct {
        unsigned short id;
        char const* label;
    } static constexpr buttons[] = {
        {RequestMessage, "Message"}, {RequestStop, "Stop alert"},    {RequestQuestion, "Question"},
        {RequestButtons, "Buttons"}, {RequestAgain, "Again"},        {RequestNested, "Nested"},
        {RequestWide, "Wide text"},  {RequestLongText, "Long text"},
    };
    if (FindPaletteZV(RequestersPalette)) {
        ActivatePaletteZV(RequestersPalette, 1);
        return;
    }
    InitPaletteZV();
    InitGroupZV();
    for (auto const& button : buttons)
        AddGadgetZV(button.id, button.id == RequestMessage ? first : below, -1, ZV_GAD_BUTTON, ZV_SIZE_LARGE,
                    button.label, 0, 0);
    EndGroupZV(1, first, 0, "Requesters", ZV_GRP_BORDER, 1, 0);
    InitGroupZV();
    AddGadgetZV(RequestAnswer, first, 0, ZV_GAD_STRING, ZV_SIZE_MEDIUM, nullptr, ZV_ITEM_GROW_WIDTH, 100, 0);
    EndGroupZV(2, below, 1, "", ZV_MARGIN_NONE, 0, ZV_GRP_FULL_WIDTH, 0, 0);
    EndPaletteZV(RequestersPalette, "Requesters", ZV_PAL_CALLBACK, On_Requesters, 0);
    DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_FIXED, ZV_PAL_RELATIVE_TO, ToolsPalette, ZV_PAL_POSITION,
                     ZV_Position(ZV_POS_ALIGN_START, ZV_POS_AFTER), 0);
}
