// The platform's part of start and end.
#include "MacText.h"
#include "ZVLibInternal.h"
#include "foundation/Style.h"

/// The first version of the system numbering from which all rules of a modern system hold.
static constexpr uint32_t ModernSystem = 0x1000;

static constexpr int32_t DefaultScript = 3;

static char const noInterface[] = "ZVLib: this build has no interface; start it with ZV_INIT_NO_GUI";

static void Store_App_Title()
{
    TagItem const* tag = FindTagItem(ZV_INIT_APP_TITLE, ZVEnv->initTags);
    auto const* title = tag ? reinterpret_cast<char const*>(tag->data) : nullptr;
    ZVEnv->appTitle = title && *title ? AllocString(title) : nullptr;
}

/// The monitor of ZV_INIT_MONITOR, or the first one when there is none of that number.
static ZVMonitor const& Chosen_Monitor()
{
    TagItem const* tag = FindTagItem(ZV_INIT_MONITOR, ZVEnv->initTags);
    bool const exists = tag && tag->data < static_cast<unsigned long>(ZVEnv->monitorCount);
    return ZVEnv->monitors[exists ? tag->data : 0];
}

long Init_OS(long)
{
    Store_App_Title();
    ZVEnv->systemVersion = ModernSystem;
    Set_Memory_Limits(OS_Total_Memory());
    ZVEnv->scriptCode = DefaultScript;
    if (!FindTagItem(ZV_INIT_NO_GUI, ZVEnv->initTags)) {
        // The display, its cursors and menus, the root window, event handlers and timers start here.
        SetErrorString(noInterface);
        return 0;
    }
    TagItem const* tag = FindTagItem(ZV_INIT_FONT_SIZE, ZVEnv->initTags);
    long const fontSize = tag ? static_cast<long>(tag->data) : 0;
    Set_Metrics(*ZVEnv->style, Chosen_Monitor().width, tag ? &fontSize : nullptr);
    return 1;
}

void Cleanup_OS()
{
    Close_Fonts();
}
