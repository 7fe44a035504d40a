// From a key to the action that it is bound to, and on to whoever takes actions.
#include "KeyFile.h"
#include "MenuTree.h"

#include "ZVLibInternal.h"

/// The modifiers that bindings tell apart.
static constexpr uint32_t bindingBits = ZV_MOD_CONTROL | ZV_MOD_SHIFT | ZV_MOD_ALT | ZV_MOD_COMMAND;

long Binding_Key(long key, unsigned long modifiers)
{
    return key | static_cast<long>(modifiers & bindingBits);
}

long Action_Of_Key(ZVKeySection const& section, long key)
{
    unsigned short const* binding = section.bindings;
    for (; binding && binding[BoundKey]; binding += BindingSize)
        if (binding[BoundKey] == key && binding[BoundAction]) return binding[BoundAction];
    return 0;
}

long Find_Key(ZVKeySection const* section, long action)
{
    unsigned short const* binding = section ? section->bindings : nullptr;
    for (; binding && binding[BoundKey]; binding += BindingSize)
        if (binding[BoundAction] == action) return binding[BoundKey];
    return 0;
}

namespace {

struct Hit {
    ZVKeySection const* section = nullptr;
    long action = 0;
};

Hit Find_In_Chain(ZVKeySection const* section, long key)
{
    for (; section; section = section->next)
        if (long const action = Action_Of_Key(*section, key)) return {section, action};
    return {};
}

/// The menu entry of an action, whose title in the bar is lit while its event is on its way.
class ActionMenu {
public:
    ActionMenu(long action, ZVKeySection const& section) : menu_(Find_ActionID(action, &section)) {}
    ~ActionMenu()
    {
        if (isLit_) Mac_Hilite_Menu(nullptr);
    }
    ActionMenu(ActionMenu const&) = delete;
    ActionMenu& operator=(ActionMenu const&) = delete;

    /// With a menu around it everything in it is disabled.
    bool Is_Disabled() const
    {
        for (ZVMenu const* menu = menu_; menu; menu = menu->parent)
            if (menu->flags & ZV_MENUF_DISABLED) return true;
        return false;
    }
    void Light()
    {
        isLit_ = menu_;
        if (menu_) Mac_Hilite_Menu(&Top_Of(*menu_));
    }

private:
    ZVMenu const* menu_;  ///< or null; not followed once the event is on its way
    bool isLit_ = false;
};

/// A section's own callback in the place of the application's, for the time of an action.
class SectionCallback {
public:
    explicit SectionCallback(ZVKeySection const& section) : saved_(ZVEnv->callback)
    {
        if (section.callback) ZVEnv->callback = section.callback;
    }
    ~SectionCallback() { ZVEnv->callback = saved_; }
    SectionCallback(SectionCallback const&) = delete;
    SectionCallback& operator=(SectionCallback const&) = delete;

private:
    void (*saved_)(ZVEvent*);
};

}  // namespace

/// Sends the action, unless its menu item is disabled: then the key is taken and nothing happens.
static void Send_Action(Hit hit)
{
    ActionMenu menu(hit.action, *hit.section);
    if (menu.Is_Disabled()) return;
    menu.Light();
    SectionCallback const callback(*hit.section);
    Do_Event(ZV_EVENT_ACTION, static_cast<unsigned long>(hit.action));
}

long GetKeyActionZV(ZVKeySection const* section, long key, unsigned long modifiers)
{
    return Find_In_Chain(section, Binding_Key(key, modifiers)).action;
}

long ProcessKeyEventZV(ZVKeySection* section, long key, unsigned long modifiers)
{
    if (modifiers & ZV_MOD_KEY_UP) return 0;
    Hit const hit = Find_In_Chain(section, Binding_Key(key, modifiers));
    if (!hit.action) return 0;
    Send_Action(hit);
    return 1;
}

void Process_Keys(long key, unsigned long modifiers)
{
    if (modifiers & ZV_MOD_KEY_UP) return;
    // What lies behind a modal palette is out of reach, its keys included.
    ZVPalette const* const modal = ZVEnv->modalPalette;
    ZVKeySection const* const section = modal ? modal->keySection : ZVEnv->keySection;
    long const action = section ? Action_Of_Key(*section, Binding_Key(key, modifiers)) : 0;
    if (action)
        Send_Action({section, action});
    else
        Mac_Menu_Key(key, modifiers);
}
