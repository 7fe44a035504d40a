// Closing and freeing palettes. A palette's own callbacks run while it goes, and may ask for the same again:
// its flag ZV_PALF_CLOSING makes that nothing.
#include "interface/ItemParts.h"
#include "interface/PaletteTree.h"

void End_Modal(ZVPalette& palette)
{
    for (ZVPalette** link = &ZVEnv->modalPalette; *link; link = &(*link)->nextModal) {
        if (*link != &palette) continue;
        *link = palette.nextModal;
        palette.nextModal = nullptr;
        ZVEnv->modalResult = 1;
        --ZVEnv->modalDepth;
        Mac_End_Modal_Loop(&palette);
        return;
    }
}

/// Clears every pointer of the environment to an item.
static void Forget_Item(ZVItem const& item)
{
    for (ZVItem** pointer :
         {&ZVEnv->trackedItem, &ZVEnv->tickItem, &ZVEnv->trackingItem, &ZVEnv->lastClickItem,
          &ZVEnv->focusedTextItem, &ZVEnv->focusedListItem, &ZVEnv->scheduledFocusItem})
        if (*pointer == &item) *pointer = nullptr;
}

static void Forget_Palette(ZVPalette& palette)
{
    for (ZVPalette** pointer : {&ZVEnv->mousePalette, &ZVEnv->activePalette, &ZVEnv->activeDocument,
                                &ZVEnv->pendingPalette, &ZVEnv->displayedPalette})
        if (*pointer == &palette) *pointer = nullptr;
    if (ZVEnv->buildingPalette == &palette) ZVEnv->buildingPalette = palette.parent;
    if (ZVEnv->currentGroup && ZVEnv->currentGroup->palette == &palette) ZVEnv->currentGroup = nullptr;
    End_Modal(palette);
    if (!palette.window) return;
    if (palette.window->activePalette == &palette) palette.window->activePalette = nullptr;
    for (Node* node = palette.window->hooks.head; node->next;) {
        Node* const next = node->next;
        if (reinterpret_cast<ZVEventHook*>(node)->palette == &palette) FreeNode(node);
        node = next;
    }
}

static void Free_Item(ZVItem& item)
{
    Clear_Dependencies(item);
    Destroy_SysItem(&item);
    if (item.customFunc) Send_Custom_Event(item, ZV_CUSTOM_CLEANUP);
    Forget_Item(item);
    FreeMemZV(item.tags);
    FreeMemZV(item.editText);
    Free_List(&item.entries);
    FreeNode(&item.node);
}

static void Free_Group(ZVGroup& group)
{
    Destroy_SysGroupFrame(&group);
    while (Node* item = List_First(&group.items))
        Free_Item(*reinterpret_cast<ZVItem*>(item));
    FreeMemZV(group.tags);
    FreeNode(&group.node);
}

/// Frees a tree whose palettes have had their last events.
static void Free_Tree(ZVPalette& palette)
{
    while (Node* sub = List_First(&palette.subPalettes))
        Free_Tree(*reinterpret_cast<ZVPalette*>(sub));
    {
        CurrentPalette const current(&palette);
        Forget_Palette(palette);
        while (Node* group = List_First(&palette.groups))
            Free_Group(*reinterpret_cast<ZVGroup*>(group));
        // A top-level palette under construction is on no list.
        if (palette.node.next) Remove(&palette.node);
    }
    FreeMemZV(palette.tags);
    FreeMemZV(palette.prefName);
    FreeMemZV(palette.node.name);
    FreeMemZV(&palette);
}

void Free_Closing_Palette(ZVPalette& palette)
{
    for (ZVPalette* each = &palette; each; each = Next_Below(&palette, each))
        each->flags |= ZV_PALF_CLOSING;
    // The events reach the sub-palettes too. A callback can take this one away with the palette around it.
    LivingPalette const watch(&palette);
    Do_Event(ZV_EVENT_DOC_DEACTIVATE, Tag_Word(&palette));
    if (!watch.Is_Known()) return;
    Do_Event(ZV_EVENT_CLEANUP, Tag_Word(&palette));
    if (watch.Is_Known()) Free_Tree(palette);
}

void Free_Palette(ZVPalette* palette)
{
    if (palette && !(palette->flags & ZV_PALF_CLOSING)) Free_Closing_Palette(*palette);
}

/// A palette of a window that is there to stay, or null.
static ZVPalette* First_Staying(ZVWindow const& window)
{
    for (ZVPalette& palette : Palettes_Of(window))
        if (!(palette.flags & ZV_PALF_CLOSING)) return &palette;
    return nullptr;
}

/// What is left of a window when a palette of it has been freed.
static void Tidy_Window(ZVWindow* window, bool wasPseudo)
{
    if (List_Empty(&window->palettes)) {
        if (window->sysWindow && !wasPseudo) Free_SysWindow(window);
        return;
    }
    ZVPalette* const next = First_Staying(*window);
    if (!window->activePalette && next) NewActivePalette(window, next, 0, 0, 1);
    if (Is_Window(window)) RenderTabs(window);
}

void ClosePaletteZV(ZVPalette* palette)
{
    if (!FindPaletteZV(palette) || (palette->flags & ZV_PALF_CLOSING)) return;
    Snapshot_WindowPrefs();
    palette->flags |= ZV_PALF_CLOSING;
    ZVWindow* const window = palette->window;
    if (window && window->sysWindow && window->activePalette == palette && palette->kind == ZV_KIND_FLOATER)
        Do_Event(ZV_EVENT_TAB_DEACTIVATE, Tag_Word(palette));
    End_Modal(*palette);
    bool const isTop = !palette->parent, wasPseudo = palette->flags & ZV_PALF_PSEUDO;
    Free_Closing_Palette(*palette);
    if (isTop && window && Is_Window(window)) Tidy_Window(window, wasPseudo);
}

void ClosePaletteZV(unsigned short id)
{
    ClosePaletteZV(FindPaletteZV(id));
}
