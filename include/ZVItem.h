// Items: the leaves of the interface. Gadgets, texts, images and lines share one record and are declared
// inside an open group. A gadget's state is kept as a whole number, a real one or a text, so that calls reach
// it without knowing the gadget. Gadgets can be wired to one another by dependencies: a condition on one,
// with actions on others. Calls by id act on the current palette; unknown ids and null items are passed over.
// Main thread only.
#pragma once

#include "ZVBitmap.h"
#include "ZVLayout.h"
#include "ZVList.h"
#include "ZVTags.h"

struct ZVCustomEvent;
struct ZVNativeItem;  ///< what the desktop layer keeps for an item on screen

/// Kinds of items.
enum ZVItemKind : uint8_t { ZV_ITEM_GADGET = 1, ZV_ITEM_LABEL = 2, ZV_ITEM_PICTURE = 3, ZV_ITEM_LINE = 4 };

/// Types of gadgets, with the state they keep.
enum ZVGadgetType : uint8_t {
    ZV_GAD_BUTTON = 0,
    ZV_GAD_TOGGLE = 1,    ///< `state` 0 or 1
    ZV_GAD_CHECK = 2,     ///< `state` 0 or 1
    ZV_GAD_RADIO = 3,     ///< `state` 0 or 1
    ZV_GAD_CYCLE = 4,     ///< `state` entry id; a custom gadget once it is made
    ZV_GAD_STRING = 5,    ///< `editText`
    ZV_GAD_INTEGER = 6,   ///< `state`
    ZV_GAD_FLOAT = 7,     ///< `realValue`, and `state` truncated
    ZV_GAD_LIST = 8,      ///< `state` selected row, counted from 1; 0 for none
    ZV_GAD_SLIDER = 9,    ///< `realValue` and `state`
    ZV_GAD_MENU = 10,     ///< `state`; a custom gadget once it is made
    ZV_GAD_HPROP = 13,    ///< `state` between the limits; made of three custom gadgets
    ZV_GAD_VPROP = 14,    ///< the same
    ZV_GAD_CUSTOM = 15,   ///< `state`, `realValue`; of the function of ZV_ITEM_CUSTOM_FUNC
    ZV_GAD_TEXTBOX = 16,  ///< `state`
    ZV_GAD_SEPARATOR = 17,
    ZV_GAD_LABEL = 18,
    ZV_GAD_EDITOR = 19  ///< `editText`, of several lines
};

/// Standard widths of gadgets, of the style's gadgetSizes.
enum ZVGadgetSize : uint8_t {
    ZV_SIZE_DEFAULT = 0,  ///< size3
    ZV_SIZE_TINY = 1,     ///< size1
    ZV_SIZE_SMALL = 2,    ///< size2
    ZV_SIZE_MEDIUM = 3,   ///< size3
    ZV_SIZE_LARGE = 4,    ///< size4
    ZV_SIZE_XLARGE = 5,   ///< size5
    ZV_SIZE_XXLARGE = 6,  ///< size6
    ZV_SIZE_CUSTOM = 7    ///< of ZV_ITEM_WIDTH and ZV_ITEM_HEIGHT or the custom function
};

/// Flags of an item.
enum ZVItemFlag : uint32_t {
    ZV_ITEMF_DISABLED = 0x00000001,
    ZV_ITEMF_HIDDEN = 0x00000002,
    ZV_ITEMF_MOVED = 0x00000004,             ///< by the last layout
    ZV_ITEMF_EXCLUSIVE = 0x00000008,         ///< member of an exclusion set
    ZV_ITEMF_ENTRIES_CHANGED = 0x00000010,   ///< the gadget must take its entries again
    ZV_ITEMF_MOUSE_INSIDE = 0x00000020,      ///< custom event 111 is owed
    ZV_ITEMF_ATTACHED = 0x00000040,          ///< a label attached to another item
    ZV_ITEMF_ON_TOP = 0x00000080,            ///< made after all others of the group
    ZV_ITEMF_GROW_WIDTH = 0x00000100,        ///< takes a percentage of the group's free width
    ZV_ITEMF_GROW_HEIGHT = 0x00000200,       ///< takes a percentage of the group's free height
    ZV_ITEMF_IGNORE_IF_HIDDEN = 0x00000400,  ///< takes no room while hidden
    ZV_ITEMF_MARKED = 0x00000800,            ///< of MarkItemZV
    ZV_ITEMF_SMALL_FONT = 0x00001000,
    ZV_ITEMF_PROP = 0x00002000,   ///< track or arrow of a proportional gadget, once it has been on screen
    ZV_ITEMF_TICKS = 0x00004000,  ///< wants custom event 113 at each tick
    ZV_ITEMF_BOLD = 0x00008000,
    ZV_ITEMF_ITALIC = 0x00010000,
    ZV_ITEMF_USER = 0x00020000  ///< of tag 834
};

/// The flags of an item that is out of the layout.
inline constexpr uint32_t ZV_ITEMF_OUT = ZV_ITEMF_HIDDEN | ZV_ITEMF_IGNORE_IF_HIDDEN;

/// Tags of items, beside the gap tags of ZVLayout.h. (G) gadgets only; (M) ModifyItemZV takes it as well;
/// (MO) ModifyItemZV alone.
enum ZVItemTag : unsigned long {
    ZV_ITEM_CHARS = 768,             ///< long, G: width of so many digits
    ZV_ITEM_ROWS_HINT = 769,         ///< long, G: text rows, for the custom function at its event 114
    ZV_ITEM_WIDTH = 770,             ///< long, G
    ZV_ITEM_HEIGHT = 771,            ///< long, G
    ZV_ITEM_OFFSET_X = 772,          ///< 16 bits, M: added to the position
    ZV_ITEM_OFFSET_Y = 773,          ///< 16 bits, M
    ZV_ITEM_ID = 774,                ///< M: takes the place of the argument, as the next five do
    ZV_ITEM_POSITION = 775,          ///< M
    ZV_ITEM_REFERENCE = 776,         ///< M
    ZV_ITEM_TYPE = 777,              ///< G
    ZV_ITEM_SIZE = 778,              ///< G
    ZV_ITEM_TEXT = 779,              ///< char const*, G M: label
    ZV_ITEM_TEXT_ID = 780,           ///< string id, G M
    ZV_ITEM_MAX_CHARS = 781,         ///< long, G: bytes that a text may have
    ZV_ITEM_ROWS = 782,              ///< long, G: rows of a list, most rows of a cycle's; at least 3
    ZV_ITEM_MIN = 783,               ///< long, G M: both lower limits
    ZV_ITEM_MAX = 784,               ///< long, G M: both upper limits
    ZV_ITEM_MIN_REAL = 785,          ///< double const*, G M: both, the whole one truncated
    ZV_ITEM_MAX_REAL = 786,          ///< double const*, G M
    ZV_ITEM_ENTRIES = 787,           ///< List*, G M: entries copied with their ids, in place of all
    ZV_ITEM_ENTRIES_CSV = 788,       ///< char const*, G M: "one,two,three", ids from 1; "(-" is a separator
    ZV_ITEM_ENTRIES_CSV_ID = 789,    ///< string id, G M
    ZV_ITEM_IMAGE = 791,             ///< icon id, G
    ZV_ITEM_IMAGE_OFF = 792,         ///< icon id, G
    ZV_ITEM_CALLBACK = 795,          ///< void (*)(ZVEvent*), G
    ZV_ITEM_CUSTOM_FUNC = 796,       ///< long (*)(ZVCustomEvent*), G
    ZV_ITEM_CURSOR = 797,            ///< cursor code, M
    ZV_ITEM_USER_DATA = 798,         ///< one word, M
    ZV_ITEM_MOMENTARY = 799,         ///< G: a toggle or radio keeps its state on a click; data ignored
    ZV_ITEM_ON_TOP = 800,            ///< G: data ignored
    ZV_ITEM_LABEL_TAGS = 801,        ///< G: the rest of the list belongs to the attached label; data ignored
    ZV_ITEM_PROP_PAGE = 802,         ///< G M: part of the range that a proportional gadget shows
    ZV_ITEM_IGNORE_IF_HIDDEN = 803,  ///< data ignored
    ZV_ITEM_GROW_WIDTH = 804,        ///< percentage of the group's free width
    ZV_ITEM_GROW_HEIGHT = 805,
    ZV_ITEM_REMOVE_ENTRY = 806,         ///< entry id, MO
    ZV_ITEM_ADD_ENTRY = 807,            ///< char const*, MO
    ZV_ITEM_ADD_ENTRY_ID = 808,         ///< string id, MO
    ZV_ITEM_SELECTED = 809,             ///< one word, G M: `selected`, the ZVMenu* of a menu gadget
    ZV_ITEM_SMALL_FONT = 810,           ///< G: data ignored
    ZV_ITEM_MIN_WIDTH = 811,            ///< long, G
    ZV_ITEM_MIN_HEIGHT = 812,           ///< long, G
    ZV_ITEM_LINKED = 813,               ///< item id, G M
    ZV_ITEM_PROP_STEP = 814,            ///< G M: amount of one arrow press
    ZV_ITEM_PROP_TRACK = 815,           ///< G: a proportional gadget has a marker; data ignored
    ZV_ITEM_EXTRA = 816,                ///< G M: stored for the gadget; value of that marker
    ZV_ITEM_IMAGE_COLOR = 818,          ///< colour, G: of a button's image
    ZV_ITEM_BOLD = 819,                 ///< G: data ignored
    ZV_ITEM_CENTER_TEXT = 820,          ///< texts: lines up with gadgets beside it; data ignored
    ZV_ITEM_COLOR = 821,                ///< colour or pen, G: of the on state
    ZV_ITEM_TRACK_VALUE = 822,          ///< G
    ZV_ITEM_TOOLTIP = 823,              ///< char const*, M: stays the caller's
    ZV_ITEM_TOOLTIP_ID = 824,           ///< string id, M; 0 does nothing
    ZV_ITEM_ENABLE_ENTRY = 825,         ///< entry id, MO: as EnableCycleGadEntry
    ZV_ITEM_DISABLE_ENTRY = 826,        ///< entry id, MO
    ZV_ITEM_ENABLE_ALL_ENTRIES = 827,   ///< MO: data ignored
    ZV_ITEM_DISABLE_ALL_ENTRIES = 828,  ///< MO: data ignored
    ZV_ITEM_PASSWORD = 829,             ///< G: a text field shows placeholders; data ignored
    ZV_ITEM_TEXT_LEFT = 830,            ///< G: text at the left, 6 inside; data ignored
    ZV_ITEM_TEXT_RIGHT = 831,           ///< G: text at the right, 2 inside; data ignored
    ZV_ITEM_FONT_BOLD = 832,            ///< G: data ignored
    ZV_ITEM_FONT_ITALIC = 833,          ///< G: data ignored
    ZV_ITEM_FLAG_20000 = 834,           ///< G: ZV_ITEMF_USER; data ignored
    ZV_ITEM_ORDER = 835                 ///< 16 bits, G M: `order`
};

/// A gadget, text, image or line. On its group's list, which owns it.
struct ZVItem {
    Node node;                    ///< id: of the item, 16 bits
    uint8_t kind;                 ///< ZVItemKind
    uint16_t position;            ///< position code
    uint16_t reference;           ///< id of the item beside which it stands
    int32_t x, y, width, height;  ///< relative to the group's inner area
    int32_t minWidth, minHeight;
    int32_t baseWidth, baseHeight;  ///< before any growth
    int16_t offsetX, offsetY;       ///< added to the position
    uint16_t order;
    ZVGadgetSize gadgetSize;
    uint32_t flags;          ///< ZVItemFlag
    char* text;              ///< label, the node's name
    List entries;            ///< of a list, cycle or menu: Nodes with text and id
    unsigned long selected;  ///< of tag 809; a menu gadget's ZVMenu*
    TagItem* tags;           ///< clone, or null
    List dependencies;       ///< ZVDependency
    uint16_t cursor;
    ZVGadgetType type;
    double realValue;
    char* editText;  ///< state of types 5 and 19: maxChars + 1 bytes
    int32_t state;
    int32_t minInt;
    union {
        int32_t maxInt;
        int32_t maxChars;  ///< types 5, 7 and 19: bytes that the text may have
    };
    double minReal, maxReal;
    ZVGroup* group;
    void (*callback)(ZVEvent*);
    long (*customFunc)(ZVCustomEvent*);
    unsigned long userData;
    unsigned long linkedItem;  ///< id of a related gadget, or what the gadget's function takes it for
    void* object;              ///< of the class layer or the custom function
    uint32_t trackingValue;
    ZVItem* beforeLink;  ///< the labels attached on each side
    ZVItem* afterLink;
    ZVItem* aboveLink;
    ZVItem* belowLink;
    ZVRectT<int32_t> oldRect;       ///< absolute, of the last layout
    uint32_t pressed;               ///< armed; of the custom function
    int32_t dragWidth, dragHeight;  ///< added to a growing item's size; a separator moves them
    uint32_t extra;                 ///< of tag 816; the marker of a proportional gadget
    int32_t Page;                   ///< of a proportional gadget: the part of its range in view
    int32_t LineStep;               ///< and the amount of one arrow press
    uint32_t MarkDrag;              ///< and that its marker is being dragged
    ZVBitmap* image;                ///< an icon, which belongs to the library
    ZVBitmap* imageOff;             ///< the icon of the on state
    uint32_t imageColor, hasImageColor;
    char const* toolTip;        ///< not owned
    ZVNativeItem* native;       ///< not null while the item is on screen
    ZVGadgetType declaredType;  ///< `type` before a cycle or menu became a custom gadget
};

/// Adds a gadget to the open group. Types that show their label beside them get it as an attached text.
/// @param id         0 takes the first free one from 32767 down
/// @param reference  id of the item beside which it stands; below 0 it counts back, labels not counted, so
///                   that -1 is the item before
/// @param label      copied; null for none
/// @return  owned by the group; null with error 4 without an open group, with error 1 without memory
ZV_API ZVItem* AddGadgetZV(unsigned short id, unsigned short position, short reference, ZVGadgetType type,
                           ZVGadgetSize size, char const* label, TagItem* tags);
ZV_API ZVItem* AddGadgetZV(unsigned short id, unsigned short position, short reference, ZVGadgetType type,
                           ZVGadgetSize size, unsigned long labelId, TagItem* tags);
template <ZVLabel Label, ZVTagKey Key, ZVTagValue... Rest>
ZVItem* AddGadgetZV(unsigned short id, unsigned short position, short reference, ZVGadgetType type,
                    ZVGadgetSize size, Label label, Key first, Rest... rest)
{
    return AddGadgetZV(id, position, reference, type, size, Label_Word(label),
                       Tag_Array(first, rest...).data());
}

/// Adds a text; null for a null one. An id of 65534 makes it, or an image or line, a label of the reference,
/// on the side that the position tells.
ZV_API ZVItem* AddTextZV(unsigned short id, unsigned short position, short reference, char const* text,
                         TagItem* tags);
ZV_API ZVItem* AddTextZV(unsigned short id, unsigned short position, short reference, unsigned long textId,
                         TagItem* tags);
template <ZVLabel Text, ZVTagKey Key, ZVTagValue... Rest>
ZVItem* AddTextZV(unsigned short id, unsigned short position, short reference, Text text, Key first,
                  Rest... rest)
{
    return AddTextZV(id, position, reference, Label_Word(text), Tag_Array(first, rest...).data());
}
inline constexpr unsigned short ZV_LABEL_ID = 65534;

/// Adds an image by its icon id.
ZV_API ZVItem* AddImageZV(unsigned short id, unsigned short position, short reference, unsigned short image,
                          TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest>
ZVItem* AddImageZV(unsigned short id, unsigned short position, short reference, unsigned short image,
                   Key first, Rest... rest)
{
    return AddImageZV(id, position, reference, image, Tag_Array(first, rest...).data());
}

/// Adds a line: style 1 is horizontal, 2 vertical, 0 a bar by the size's measure.
ZV_API ZVItem* AddLineZV(unsigned short id, unsigned short position, short reference, ZVGadgetSize size,
                         unsigned long style, TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest>
ZVItem* AddLineZV(unsigned short id, unsigned short position, short reference, ZVGadgetSize size,
                  unsigned long style, Key first, Rest... rest)
{
    return AddLineZV(id, position, reference, size, style, Tag_Array(first, rest...).data());
}

/// Changes a gadget; other kinds are passed over. What shows is drawn again.
ZV_API void ModifyItemZV(ZVItem* item, TagItem* tags);
ZV_API void ModifyItemZV(unsigned short id, TagItem* tags);
template <typename Item, ZVTagKey Key, ZVTagValue... Rest>
void ModifyItemZV(Item item, Key first, Rest... rest)
{
    if constexpr (ZVTagKey<Item>)
        ModifyItemZV(static_cast<unsigned short>(item), Tag_Array(first, rest...).data());
    else
        ModifyItemZV(item, Tag_Array(first, rest...).data());
}

/// The first item of that id in the current palette, or in a given one; null when there is none.
ZV_API ZVItem* FindItemZV(unsigned short id);
ZV_API ZVItem* FindItem2ZV(ZVPalette* palette, unsigned short id);

/// Sets a gadget's state; on a change it is drawn again and its dependencies run.
ZV_API void SetGadgetStateZV(ZVItem* item, double value);
ZV_API void SetGadgetStateZV(unsigned long id, double value);

/// Sets the text of a string or editor gadget, cut at its capacity.
ZV_API void SetTextGadgetStateZV(unsigned long id, char const* text);
ZV_API void SetTextGadgetStateZV(unsigned long id, unsigned long textId);

/// The state as one word: `state`, or a pointer to `editText` or to `realValue`, as the type keeps it; 0 for
/// a gadget without state or an unknown id.
ZV_API unsigned long GetGadgetStateZV(unsigned long id);

/// Range, displayed range and decimals of a slider.
ZV_API void SetupSliderZV(unsigned long id, double min, double max, double displayMin, double displayMax,
                          char decimals);

/// Shows, hides, enables or disables an item with the labels attached to it.
ZV_API void ItemVisibleZV(ZVItem* item, long visible);
ZV_API void ItemVisibleZV(unsigned short id, long visible);
ZV_API void ItemEnabledZV(ZVItem* item, long enabled);
ZV_API void ItemEnabledZV(unsigned short id, long enabled);

/// Marks an item, or takes its mark away; the second call shows it exactly when it is marked.
ZV_API void MarkItemZV(ZVItem* item, long marked);
ZV_API void MarkItemZV(unsigned short id, long marked);
ZV_API void ItemVisibleIfMarkedZV(unsigned short id);

/// What the custom function or class keeps for the item: its user data.
ZV_API void* GetCustomStructZV(ZVItem const* item);
ZV_API void* GetCustomStructZV(unsigned short id);

/// Marks an entry of a cycle as disabled, or no longer: it is shown in dimmed italics, and can be chosen all
/// the same. Only the first 256 entries can be marked. An id of 0 stands for all of them. Nothing for other
/// gadgets.
ZV_API void EnableCycleGadEntry(ZVItem* item, unsigned long entryId, long enable);

/// Position of the item's corner on the screen.
ZV_API void GetItemScreenPosZV(ZVItem const* item, long* x, long* y);

/// The standard size of a gadget, without making one.
ZV_API long GetGadgetWidthZV(ZVGadgetType type, ZVGadgetSize size);
ZV_API long GetGadgetHeightZV(ZVGadgetType type, ZVGadgetSize size);
ZV_API void GetGadgetSizeZV(ZVGadgetType type, ZVGadgetSize size, long* width, long* height);

/// The item takes the focus at the next opportunity.
ZV_API void ScheduleItemForFocusZV(ZVItem* item);

/// Brings the screen in line with a gadget's state.
ZV_API void UpdateGadgetZV(ZVItem* item);
ZV_API void UpdateGadgetZV(unsigned short id);

/// Lines, view and selection of a string or editor gadget; offsets are bytes.
struct ZVTextEditorProperties {
    int32_t lineCount;         ///< at least 1
    int32_t firstVisibleLine;  ///< counted from 0
    int32_t visibleLines;      ///< lines whose start lies in the view
    int32_t selectionStart, selectionEnd;
    int32_t caretOffset;
};
ZV_API void GetTextEditorPropertiesZV(ZVItem const* item, ZVTextEditorProperties* properties);
ZV_API void GetTextEditorPropertiesZV(unsigned short id, ZVTextEditorProperties* properties);

/// Sets the selection and scrolls to firstVisibleLine; the counts are not read.
ZV_API void SetTextEditorPropertiesZV(ZVItem* item, ZVTextEditorProperties const* properties);
ZV_API void SetTextEditorPropertiesZV(unsigned short id, ZVTextEditorProperties const* properties);

// ---- dependencies -----------------------------------------------------------------------------------------

/// Keys of a dependency's list: first one condition, then actions, then the end. `v` is the gadget's state,
/// `d` the data as an unsigned number; for a float gadget the real value, and `d` a number as text.
enum ZVDependencyTag : unsigned long {
    ZV_DEP_ON = 1024,       ///< the state is not 0
    ZV_DEP_OFF = 1025,      ///< it is 0
    ZV_DEP_ENABLED = 1026,  ///< the gadget is enabled
    ZV_DEP_DISABLED = 1027,
    ZV_DEP_EQUAL = 1028,  ///< v == d
    ZV_DEP_NOT_EQUAL = 1029,
    ZV_DEP_LESS = 1030,
    ZV_DEP_GREATER = 1031,
    ZV_DEP_LESS_EQUAL = 1032,
    ZV_DEP_GREATER_EQUAL = 1033,
    ZV_DEP_MOUSE_DOWN = 1034,  ///< the gadget was pressed
    ZV_DEP_MOUSE_UP = 1035,
    ZV_DEP_MOUSE_MOVE = 1036,
    ZV_DEP_ALWAYS = 1037,
    ZV_DEP_SET_ON = 1038,   ///< item id, as to SHOW: state 1, and its dependencies run if it changed
    ZV_DEP_SET_OFF = 1039,  ///< state 0 likewise; the gadget itself stays
    ZV_DEP_DISABLE = 1040,
    ZV_DEP_ENABLE = 1041,
    ZV_DEP_HIDE = 1042,
    ZV_DEP_SHOW = 1043,
    ZV_DEP_HIDE_GROUP = 1044,  ///< group id
    ZV_DEP_SHOW_GROUP = 1045,  ///< group id
    ZV_DEP_COPY_VALUE = 1046   ///< item id: takes the gadget's value over; its dependencies do not run
};

/// Adds a dependency to a gadget of the current palette. The list is cloned; it is read as an array, without
/// control tags.
ZV_API void AddGadgetDependencyZV(unsigned short id, TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest>
void AddGadgetDependencyZV(unsigned short id, Key first, Rest... rest)
{
    AddGadgetDependencyZV(id, Tag_Array(first, rest...).data());
}

/// Removes all dependencies whose list begins with these pairs. An empty list removes nothing.
ZV_API void RemoveGadgetDependencyZV(unsigned short id, TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest>
void RemoveGadgetDependencyZV(unsigned short id, Key first, Rest... rest)
{
    RemoveGadgetDependencyZV(id, Tag_Array(first, rest...).data());
}

ZV_API void ClearGadgetDependenciesZV(unsigned short id);

/// Makes the gadgets exclude one another: when one turns on, the others turn off.
ZV_API void SetItemExclusionRangeZV(unsigned long first, unsigned long last);
ZV_API void Set_Item_Exclusion(unsigned long const* ids);  ///< ended by 0
template <ZVTagKey... Ids> void SetItemExclusionZV(Ids... ids)
{
    unsigned long const list[] = {Tag_Word(ids)..., 0};
    Set_Item_Exclusion(list);
}

/// Two gadgets whose values follow one another.
ZV_API void SetSliderLinkZV(unsigned long a, unsigned long b);
