// Dependencies between gadgets: keeping them, and running them when a gadget has changed.
#include "interface/Dependency.h"

#include "interface/ItemParts.h"
#include "interface/PaletteTree.h"

#include <cstdlib>

SharedTags* New_Shared_Tags(unsigned long count)
{
    return static_cast<SharedTags*>(New_Block(sizeof(SharedTags) + (count + 1) * sizeof(TagItem)));
}

void Release_Tags(SharedTags* list)
{
    if (list && --list->holders == 0) FreeMemZV(list);
}

bool Append_Dependency(ZVItem& item, SharedTags* list, bool isShared)
{
    auto* const dependency = New_Record<ZVDependency>();
    if (!dependency) return false;
    dependency->shared = isShared;
    dependency->list = list;
    ++list->holders;
    AddTail(&item.dependencies, &dependency->node);
    return true;
}

static ZVDependency* First_Dependency(ZVItem const& item)
{
    return reinterpret_cast<ZVDependency*>(List_First(&item.dependencies));
}

static ZVDependency* Next_Dependency(ZVDependency const* dependency)
{
    auto* const next = reinterpret_cast<ZVDependency*>(dependency->node.next);
    return next->node.next ? next : nullptr;
}

static void Free_Dependency(ZVDependency* dependency)
{
    Release_Tags(dependency->list);
    FreeNode(&dependency->node);
}

void Clear_Dependencies(ZVItem& item)
{
    while (ZVDependency* dependency = First_Dependency(item))
        Free_Dependency(dependency);
}

/// Pairs of a list that is read as an array.
static unsigned long Count_Pairs(TagItem const* tags)
{
    unsigned long count = 0;
    while (tags && tags[count].tag != ZV_TAG_END)
        ++count;
    return count;
}

void AddGadgetDependencyZV(unsigned short id, TagItem* tags)
{
    ZVItem* const item = FindItemZV(id);
    if (!item) return;
    unsigned long const count = Count_Pairs(tags);
    SharedTags* const list = New_Shared_Tags(count);
    if (!list) return;
    for (unsigned long i = 0; i < count; ++i)
        list->Tags()[i] = tags[i];
    if (!Append_Dependency(*item, list, false)) FreeMemZV(list);
}

void RemoveGadgetDependencyZV(unsigned short id, TagItem* tags)
{
    ZVItem* const item = FindItemZV(id);
    unsigned long const count = Count_Pairs(tags);
    if (!item || count == 0) return;
    for (ZVDependency* dependency = First_Dependency(*item); dependency;) {
        ZVDependency* const next = Next_Dependency(dependency);
        unsigned long same = 0;
        for (TagItem const* own = dependency->list->Tags(); same < count; ++same, ++own)
            if (own->tag != tags[same].tag || own->data != tags[same].data) break;
        if (same == count) Free_Dependency(dependency);
        dependency = next;
    }
}

void ClearGadgetDependenciesZV(unsigned short id)
{
    if (ZVItem* item = FindItemZV(id)) Clear_Dependencies(*item);
}

void SetSliderLinkZV(unsigned long a, unsigned long b)
{
    auto const follow = [](unsigned long from, unsigned long to) {
        AddGadgetDependencyZV(static_cast<unsigned short>(from), ZV_DEP_ALWAYS, 0, ZV_DEP_COPY_VALUE, to);
    };
    follow(a, b);
    follow(b, a);
}

// ---- running ----------------------------------------------------------------------------------------------

namespace {
/// One run through the dependencies of a gadget.
struct DependencyRun {
    ZVItem& item;
    LivingPalette palette;
    uint32_t reports;      ///< what the gadget just did
    double operand = 0.0;  ///< of the condition; a float gadget's condition without text takes the last one

    bool Is_True(TagItem const& condition);
};

/// Holds a list while its actions run: one of them may remove the dependency.
class HeldTags {
public:
    explicit HeldTags(SharedTags* list) : list_(list) { ++list->holders; }
    ~HeldTags() { Release_Tags(list_); }
    HeldTags(HeldTags const&) = delete;
    HeldTags& operator=(HeldTags const&) = delete;

private:
    SharedTags* list_;
};
}  // namespace

bool DependencyRun::Is_True(TagItem const& condition)
{
    bool const isFloat = item.type == ZV_GAD_FLOAT;
    double const value = isFloat ? item.realValue : item.state;
    if (!isFloat)
        operand = static_cast<uint32_t>(condition.data);
    else if (condition.tag >= ZV_DEP_EQUAL && condition.tag <= ZV_DEP_GREATER_EQUAL && condition.data)
        operand = std::atof(Tag_Pointer<char const*>(condition));
    switch (condition.tag) {
    case ZV_DEP_ON: return item.state != 0;
    case ZV_DEP_OFF: return item.state == 0;
    case ZV_DEP_ENABLED: return !(item.flags & ZV_ITEMF_DISABLED);
    case ZV_DEP_DISABLED: return item.flags & ZV_ITEMF_DISABLED;
    case ZV_DEP_EQUAL: return value == operand;
    case ZV_DEP_NOT_EQUAL: return value != operand;
    case ZV_DEP_LESS: return value < operand;
    case ZV_DEP_GREATER: return value > operand;
    case ZV_DEP_LESS_EQUAL: return value <= operand;
    case ZV_DEP_GREATER_EQUAL: return value >= operand;
    case ZV_DEP_MOUSE_DOWN: return reports & ZV_MOD_PRESS;
    case ZV_DEP_MOUSE_UP: return reports & ZV_MOD_RELEASE;
    case ZV_DEP_MOUSE_MOVE: return reports & ZV_MOD_CHANGE;
    case ZV_DEP_ALWAYS: return true;
    default: return false;
    }
}

/// Gives a target another on or off state, and passes that on.
static void Switch(ZVItem& target, int32_t state)
{
    if ((target.state != 0) == (state != 0)) return;
    target.state = state;
    LivingPalette const palette(target.group->palette);
    UpdateGadgetZV(&target);
    if (palette.Is_There()) Process_Dependencies(&target);
}

static void Act_On_Item(ZVItem& source, ZVItem& target, unsigned long action)
{
    switch (action) {
    case ZV_DEP_SET_ON: Switch(target, 1); break;
    case ZV_DEP_SET_OFF:
        if (&target != &source) Switch(target, 0);
        break;
    case ZV_DEP_DISABLE: ItemEnabledZV(&target, 0); break;
    case ZV_DEP_ENABLE: ItemEnabledZV(&target, 1); break;
    case ZV_DEP_HIDE: ItemVisibleZV(&target, 0); break;
    case ZV_DEP_SHOW: ItemVisibleZV(&target, 1); break;
    case ZV_DEP_COPY_VALUE:
        Copy_Gadget_Value(source, target);
        UpdateGadgetZV(&target);
        break;
    default: break;
    }
}

static void Act_On_Group(ZVGroup& target, unsigned long action)
{
    if (action == ZV_DEP_HIDE_GROUP) GroupVisibleZV(&target, 0);
    if (action == ZV_DEP_SHOW_GROUP) GroupVisibleZV(&target, 1);
}

/// Runs one dependency. False when the palette was closed on the way.
static bool Run(DependencyRun& run, SharedTags* list)
{
    HeldTags const held(list);
    TagItem const* tag = list->Tags();
    if (tag->tag == ZV_TAG_END || !run.Is_True(*tag)) return true;
    for (++tag; tag->tag != ZV_TAG_END; ++tag) {
        ZVPalette* const palette = run.item.group->palette;
        if (ZVItem* target = FindItem2ZV(palette, static_cast<unsigned short>(tag->data)))
            Act_On_Item(run.item, *target, tag->tag);
        if (!run.palette.Is_There()) return false;
        if (ZVGroup* target = Find_Record<ZVGroup>(palette->groups, tag->data))
            Act_On_Group(*target, tag->tag);
        if (!run.palette.Is_There()) return false;
    }
    return true;
}

void Process_Dependencies(ZVItem* item)
{
    if (!item || item->kind != ZV_ITEM_GADGET || List_Empty(&item->dependencies)) return;
    constexpr uint32_t reports = ZV_MOD_PRESS | ZV_MOD_CHANGE | ZV_MOD_RELEASE;
    DependencyRun run{*item, LivingPalette(item->group->palette), ZVEnv->modifiers & reports};
    // By position, as an action may change the list.
    for (long i = 0; Node* node = List_Entry(&item->dependencies, i); ++i)
        if (!Run(run, reinterpret_cast<ZVDependency*>(node)->list)) return;
}
