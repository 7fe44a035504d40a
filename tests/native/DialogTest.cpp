#include "DialogTest.h"

#include <utility>

std::deque<std::function<void()>> DialogTest::users_;
uint32_t DialogTest::met_;

DialogTest::DialogTest()
{
    met_ = 0;
    onEvent = [](ZVEvent const& event) {
        if (event.type == ZV_EVENT_TICK && !event.palette) Meet_Dialog();
    };
}

DialogTest::~DialogTest()
{
    EXPECT_EQ(Missing(), 0U) << "dialogs that did not open";
    users_.clear();
}

void DialogTest::Expect_Dialogs(std::initializer_list<std::function<void()>> users)
{
    users_.assign(users);
}

/// Lets the next user at a dialog that has not met one. Nobody else would close it.
void DialogTest::Meet_Dialog()
{
    ZVPalette* const dialog = ZVEnv->modalPalette;
    if (!dialog || dialog->serial <= met_) return;
    met_ = dialog->serial;
    if (users_.empty()) {
        ADD_FAILURE() << "a dialog opened: " << dialog->title;
    } else {
        auto const user = std::move(users_.front());
        users_.pop_front();
        user();
    }
    if (FindPaletteZV(dialog)) {
        ADD_FAILURE() << "a dialog stayed open";
        ClosePaletteZV(dialog);
    }
}

void DialogTest::Click(unsigned id)
{
    DesktopTest::Click(ZVEnv->modalPalette, Item(id));
}

void DialogTest::Press(unsigned long key, unsigned long modifiers)
{
    HeadlessHoldZV(modifiers);
    HeadlessKeyZV(key);
    HeadlessHoldZV(0);
    HeadlessRunZV(0);
}

void DialogTest::Type(unsigned id, std::string const& text)
{
    Click(id);
    Press('a', ZV_MOD_CONTROL);
    HeadlessTypeZV(text.c_str());
    HeadlessRunZV(0);
    Press(ZV_KEY_TAB);
}

void DialogTest::Pick(unsigned id, std::string const& entry)
{
    ZVItem* const item = Item(id);
    for (Node const* node = List_First(&item->entries); node; node = List_Next(node)) {
        if (entry != node->name) continue;
        SetGadgetStateZV(item, static_cast<double>(node->id));
        Do_Event(ZV_EVENT_GADGET, Tag_Word(item));
        return;
    }
    ADD_FAILURE() << "no entry " << entry << " in " << id;
}

void DialogTest::Drag(unsigned id, double value)
{
    SetGadgetStateZV(Item(id), value);
    Do_Event(ZV_EVENT_GADGET, Tag_Word(Item(id)));
}

void DialogTest::Do(std::string_view steps)
{
    while (!steps.empty()) {
        std::string const step(steps.substr(0, steps.find('|')));
        steps.remove_prefix(std::min(steps.size(), step.size() + 1));
        std::size_t length = 0;
        auto const id = static_cast<unsigned>(std::stoul(step, &length));
        std::string const value = step.substr(length + 1);
        switch (step[length]) {
        case '=': Type(id, value); break;
        case ':': Pick(id, value); break;
        case '~': Drag(id, std::stod(value)); break;
        default: Click(id); break;
        }
    }
}
