// Modal dialogs that are opened by calls of the library, and what a user does in them.
#pragma once

#include "DesktopTest.h"

#include <ZVKey.h>

#include <deque>

class DialogTest : public DesktopTest {
protected:
    DialogTest();
    ~DialogTest() override;

    /// What is done in the dialogs that open from now on, one after the other.
    static void Expect_Dialogs(std::initializer_list<std::function<void()>> users);

    /// How many of them have not opened.
    static std::size_t Missing() { return users_.size(); }

    /// Does steps in the dialog on top, separated by bars: "5=12" types a text into gadget 5, "10:PNG" picks
    /// an entry of a cycle, "14~1.5" drags a slider to a value, and "2!" clicks.
    static void Do(std::string_view steps);

    static ZVItem* Item(unsigned id)
    {
        return FindItem2ZV(ZVEnv->modalPalette, static_cast<unsigned short>(id));
    }
    static bool Is_Enabled(unsigned id) { return !(Item(id)->flags & ZV_ITEMF_DISABLED); }
    static void Click(unsigned id);
    static void Press(unsigned long key, unsigned long modifiers = 0);

private:
    static void Meet_Dialog();
    static void Type(unsigned id, std::string const& text);
    static void Pick(unsigned id, std::string const& entry);
    static void Drag(unsigned id, double value);

    static std::deque<std::function<void()>> users_;
    static uint32_t met_;  ///< serial of the dialog that a user has been let at last
};
