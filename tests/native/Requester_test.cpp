// Requesters on the desktop in memory: what they are made of, how they are answered, and from where they can
// be opened.
#include "native/DesktopTest.h"

#include "FailingHeap.h"

#include <utility>

namespace {

using Steps = std::vector<std::function<void(ZVPalette*)>>;

class Requesters : public DesktopTest {
protected:
    /// At each tick with a requester open the next step is taken, with the one on top.
    static void Take_Steps(Steps steps)
    {
        onEvent = [steps = std::move(steps), place = std::size_t{0}](ZVEvent& event) mutable {
            bool const isTick = event.type == ZV_EVENT_TICK && !event.palette && ZVEnv->modalPalette;
            if (isTick && place < steps.size()) steps[place++](ZVEnv->modalPalette);
        };
    }

    static ZVItem* Button(ZVPalette* palette, unsigned short id)
    {
        auto* const group = reinterpret_cast<ZVGroup*>(List_Entry(&palette->groups, 1));
        return reinterpret_cast<ZVItem*>(FindNodeID(&group->items, id));
    }

    static std::vector<ZVItem*> Lines(ZVPalette* palette)
    {
        std::vector<ZVItem*> lines;
        auto* const group = reinterpret_cast<ZVGroup*>(palette->groups.head);
        for (Node* node = group->items.head; node->next; node = node->next)
            if (auto* item = reinterpret_cast<ZVItem*>(node); item->kind == ZV_ITEM_LABEL)
                lines.push_back(item);
        return lines;
    }

    static std::function<void(ZVPalette*)> Press(unsigned short button)
    {
        return [button](ZVPalette* palette) { Script_Click(palette, Button(palette, button)); };
    }
    static std::function<void(ZVPalette*)> Key(unsigned long code)
    {
        return [code](ZVPalette*) { HeadlessKeyZV(code); };
    }
};

TEST_F(Requesters, AreMadeOfLinesAndButtons)
{
    std::string const wide(120, 'w');
    struct {
        char const* why;
        std::string text;
        std::vector<std::string> lines;
        bool isQuestion, hasFiller;
    } const rows[] = {
        {"one line", "Hello", {"Hello"}, false, true},
        {"a question", "Really?", {"Really?"}, true, true},
        {"two lines", "Line one\nLine two", {"Line one", "Line two"}, false, true},
        {"CR and LF end a line each", "Line one\r\nLine two", {"Line one", "", "Line two"}, false, true},
        {"the last end opens none", "One\n", {"One"}, true, true},
        {"nothing", "", {}, false, true},
        {"wider than four buttons", "wide\n" + wide.substr(0, 60), {"wide", wide.substr(0, 60)}, true, false},
    };
    for (auto const& row : rows) {
        Take_Steps({[&row](ZVPalette* palette) {
            EXPECT_EQ(palette->node.id, 32600U);
            EXPECT_EQ(palette->kind, ZV_KIND_MODAL);
            EXPECT_TRUE(palette->flags & ZV_PALF_PLAIN);
            EXPECT_EQ(palette->title, nullptr);
            std::vector<std::string> lines;
            for (ZVItem const* line : Lines(palette)) {
                lines.push_back(line->text);
                EXPECT_EQ(line->node.id, lines.size());
            }
            EXPECT_EQ(lines, row.lines) << row.why;
            EXPECT_STREQ(Button(palette, 1)->text, row.isQuestion ? "Do" : "OK") << row.why;
            EXPECT_EQ(Button(palette, 2) != nullptr, row.isQuestion) << row.why;
            ZVItem const* const filler = Button(palette, 3);
            EXPECT_EQ(filler != nullptr, row.hasFiller) << row.why;
            ZVItem const* const first = Button(palette, 1);
            if (filler) {
                EXPECT_EQ(filler->width, 2 * ZVEnv->style->gadgetSizes.size3);
                EXPECT_LT(filler->x, first->x);
            } else {
                ZVGroup const *const buttons = first->group, *const text = reinterpret_cast<ZVGroup*>(
                                                                 palette->groups.head);
                EXPECT_EQ(buttons->x + buttons->width, text->x + text->width) << "at the right edge";
            }
            HeadlessKeyZV(ZV_KEY_ESCAPE);
        }});
        if (row.isQuestion)
            AskUser2ZV("Do", nullptr, "%s", row.text.c_str());
        else
            UserMessageZV("%s", row.text.c_str());
        EXPECT_EQ(List_Entries(&ZVEnv->windows), 0) << row.why;
    }
}

TEST_F(Requesters, FitTheScreen)
{
    std::string words, lines;
    for (int i = 0; i < 200; ++i) {
        words += "w\303\266rd" + std::to_string(i) + " ";
        lines += std::to_string(i) + "\n";
    }
    struct {
        char const* why;
        std::string text;
        char const* last;
    } const rows[] = {{"many words", words, "w\303\266rd199 "},
                      {"a word without end", std::string(2000, 'x'), nullptr},
                      {"narrow letters", std::string(2000, 'i') + "\nend", "end"},
                      {"many lines", lines, "..."}};
    for (auto const& row : rows) {
        Take_Steps({[&row](ZVPalette* palette) {
            ZVWindow const& window = *palette->window;
            EXPECT_LT(window.width, 1600) << row.why;
            EXPECT_LE(window.height, 1200) << row.why;
            EXPECT_GE(window.top, 0) << row.why;
            auto const items = Lines(palette);
            EXPECT_GT(items.size(), 1U) << row.why;
            std::string shown;
            for (ZVItem const* item : items) {
                shown += item->text;
                EXPECT_LT(std::strlen(item->text), 256U) << "as much as is drawn: " << row.why;
            }
            std::string const end = row.last ? row.last : std::string(2000, 'x');
            EXPECT_TRUE(shown.ends_with(end)) << row.why;
            HeadlessKeyZV('c');
        }});
        UserMessageZV("%s", row.text.c_str());
    }
}

TEST_F(Requesters, AreAnsweredByButtonsAndKeys)
{
    struct {
        std::function<void(ZVPalette*)> step;
        long answer;
    } const rows[] = {{Press(1), 1},
                      {Press(2), 0},
                      {Key('o'), 1},
                      {Key(ZV_KEY_RETURN), 1},
                      {Key(ZV_KEY_ENTER), 1},
                      {Key('c'), 0},
                      {Key(ZV_KEY_ESCAPE), 0},
                      {[](ZVPalette* palette) { ClosePaletteZV(palette); }, 0},
                      {[](ZVPalette*) { ExitZV(); }, 0},
                      {Press(1), 1}};
    int place = 0;
    for (auto const& row : rows) {
        Take_Steps({Key('x'), row.step});
        ZVEnv->requestResult = 1;
        EXPECT_EQ(AskUserZV("Question"), row.answer) << place++;
        EXPECT_EQ(ZVEnv->modalDepth, 0);
        EXPECT_EQ(List_Entries(&ZVEnv->windows), 0);
    }
    Take_Steps({Key('c')});
    UserMessageZV("With one button");
    EXPECT_EQ(ZVEnv->requestResult, 0);
}

TEST_F(Requesters, ReleasesAndRepeatsAnswerNothing)
{
    Show(1, ZV_KIND_DOCUMENT, 100, 100);
    ZVEvent event{};
    event.type = ZV_EVENT_KEY;
    event.palette = FindPaletteZV(1);
    event.key = 'o';
    for (uint32_t bits : {ZV_MOD_REPEAT, ZV_MOD_KEY_UP}) {
        event.modifiers = bits;
        Req_Handler(&event);
        scrollTextReqHandler(&event);
        EXPECT_EQ(event.result, 0U);
    }
    EXPECT_TRUE(FindPaletteZV(1));
    event.modifiers = 0;
    Req_Handler(&event);
    EXPECT_EQ(event.result, 1U);
    EXPECT_FALSE(FindPaletteZV(1));
}

TEST_F(Requesters, NestFromTicksAndFromOneAnother)
{
    long inner = -1;
    Take_Steps({[&inner](ZVPalette* outer) {
                    EXPECT_EQ(outer->node.id, 32600U);
                    inner = AskUserZV("Inner");
                    EXPECT_EQ(ZVEnv->modalPalette, outer);
                },
                [](ZVPalette* palette) {
                    EXPECT_EQ(palette->node.id, 32601U);
                    Script_Click(FindPaletteZV(32600), Button(FindPaletteZV(32600), 1));
                    HeadlessKeyZV('c');
                },
                Key('o')});
    EXPECT_EQ(AskUserZV("Outer\n\n\n\n\n\n\n"), 1) << "its button lies lower";
    EXPECT_EQ(inner, 0);
}

TEST_F(Requesters, LeaveTheirCallerAsItWas)
{
    ZVPalette* const shown = Show(1, ZV_KIND_DOCUMENT, 100, 100);
    SetCurrentPaletteZV(shown);
    ZVPalette* const building = InitPaletteZV();
    ZVGroup* const group = InitGroupZV();
    SetError(ZV_ERR_CLIP);
    BusyZV();
    BusyZV();
    Take_Steps({[](ZVPalette* palette) {
        EXPECT_EQ(ZVEnv->busyLevel, 0);
        EXPECT_EQ(ZVEnv->cursor, ZV_CURSOR_ARROW);
        EXPECT_EQ(palette->parent, nullptr);
        HeadlessKeyZV('o');
    }});
    EXPECT_EQ(AskUserZV("In the middle"), 1);
    EXPECT_EQ(ZVEnv->busyLevel, 2);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_CLIP);
    EXPECT_EQ(ZVEnv->buildingPalette, building);
    EXPECT_EQ(ZVEnv->currentPalette, building);
    EXPECT_EQ(ZVEnv->currentGroup, group);
    EXPECT_EQ(ZVEnv->lastPaletteId, 1);
    SetError(ZV_ERR_NONE);
    NotBusyZV();
    NotBusyZV();
    EndGroupZV(1, 0, 0, "", nullptr);
    EndPaletteZV(2, "", nullptr);
    ASSERT_TRUE(DisplayPaletteZV(nullptr));
    EXPECT_EQ(FindPaletteZV(2), building);
}

TEST_F(Requesters, TheErrorModeKeepsThemAway)
{
    onEvent = [](ZVEvent&) { ADD_FAILURE() << "an event"; };
    for (auto const& [mode, answer] : std::vector<std::pair<unsigned long, long>>{{1, 1}, {2, 0}, {3, 0}}) {
        SetErrorModeZV(mode);
        EXPECT_EQ(AskUserZV("Question"), answer) << mode;
        UserMessageZV("Message");
        UserScrollMessageZV("Heading", nullptr);
    }
}

TEST_F(Requesters, WithoutMemoryTheMessageGoesToStandardError)
{
    if (!FailingHeap::Is_Available()) GTEST_SKIP();
    Take_Steps({Key('o')});
    ASSERT_EQ(AskUserZV("Fonts are there from now on"), 1);
    // One that shows all the same is answered.
    onEvent = [](ZVEvent const& event) {
        if (event.type != ZV_EVENT_TICK || !ZVEnv->modalPalette) return;
        FailingHeap::Recover();
        HeadlessKeyZV('o');
    };
    testing::internal::CaptureStderr();
    long after = 0;
    auto const fails = [&after] {
        ZVEnv->requestResult = 7;
        FailingHeap const heap(after);
        return AskUserZV("No memory") == 7 && GetErrorZV() == ZV_ERR_MEMORY && !ZVEnv->buildingPalette;
    };
    while (fails())
        ++after;
    EXPECT_GT(after, 10) << "allocations, each with what the result held";
    EXPECT_NE(testing::internal::GetCapturedStderr().find("No memory\n"), std::string::npos);
}

TEST_F(Requesters, ALongTextScrolls)
{
    std::string body;
    for (int i = 0; i < 100; ++i)
        body += "Line " + std::to_string(i) + "\n";
    Take_Steps({[](ZVPalette* palette) {
                    EXPECT_EQ(Lines(palette).size(), 1U);
                    ZVItem const* const box = FindItem2ZV(palette, 1000);
                    ZVItem* const bar = FindItem2ZV(palette, 1001);
                    EXPECT_EQ(box->width, 500);
                    EXPECT_EQ(box->height, 300);
                    EXPECT_EQ(bar->x, box->x + box->width - 1) << "they touch";
                    EXPECT_EQ(bar->y + bar->height / 2, box->y + 150) << "between its arrows";
                    bar->state = 30;
                    Do_Event(ZV_EVENT_GADGET, Tag_Word(bar));
                    EXPECT_EQ(box->state, 31) << "the text follows the bar, with lines counted from 1";
                },
                Press(1)});
    UserScrollMessageZV("Heading", body.data());
    EXPECT_EQ(List_Entries(&ZVEnv->windows), 0);
    for (unsigned long key : {static_cast<unsigned long>('o'), static_cast<unsigned long>(ZV_KEY_ESCAPE)}) {
        Take_Steps({Key(key)});
        UserScrollMessageZV("Heading", body.data());
    }
}

}  // namespace
