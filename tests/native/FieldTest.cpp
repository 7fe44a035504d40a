#include "FieldTest.h"

#include <algorithm>
#include <iterator>

Strings FieldTest::events;
std::function<void(ZVEvent const&)> FieldTest::onGadgetEvent, FieldTest::onKey;

FieldTest::FieldTest()
{
    events.clear();
    onGadgetEvent = onKey = nullptr;
    onEvent = Note_Event;
}

void FieldTest::Note_Event(ZVEvent const& event)
{
    if (event.type == ZV_EVENT_KEY && !(event.modifiers & ZV_MOD_KEY_UP)) {
        events.push_back("key " + std::to_string(event.key));
        if (onKey) onKey(event);
    }
    if (event.type != ZV_EVENT_GADGET) return;
    char const* const what = event.modifiers & ZV_MOD_PRESS     ? "press "
                             : event.modifiers & ZV_MOD_CHANGE  ? "change "
                             : event.modifiers & ZV_MOD_RELEASE ? "release "
                                                                : "gadget ";
    events.push_back(what + std::to_string(Event_Item(&event)->node.id));
    if (onGadgetEvent) onGadgetEvent(event);
}

ZVPalette* FieldTest::Show(std::function<void()> add)
{
    ZVPalette* const palette = InitPaletteZV();
    add();
    EndPaletteZV(PaletteId, "Fields", nullptr);
    EXPECT_EQ(DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_FLOATER, 0), 1);
    HeadlessRunZV(0);
    events.clear();
    return palette;
}

void FieldTest::Show_Field(ZVGadgetType type, char const* text, std::vector<TagItem> tags)
{
    ZVPalette* const palette = Show([&] {
        InitGroupZV();
        tags.push_back({});
        AddGadgetZV(1, 0, 0, type, ZV_SIZE_XXLARGE, "", tags.data());
        if (type == ZV_GAD_STRING || type == ZV_GAD_EDITOR) SetTextGadgetStateZV(1, text);
        EndGroupZV(1, 0, 0, "", nullptr);
    });
    Activate_First_Gadget(palette);
    EXPECT_EQ(Focus(), 1);
}

void FieldTest::Add_Group(short id, std::vector<std::pair<unsigned short, ZVGadgetType>> const& gadgets)
{
    constexpr unsigned short below = ZV_Position(ZV_POS_ALIGN_START, ZV_POS_AFTER);
    InitGroupZV();
    for (auto const& [gadget, type] : gadgets)
        AddGadgetZV(gadget, below, -1, type, ZV_SIZE_LARGE, "", ZV_ITEM_ENTRIES_CSV, "one,two,three", 0);
    EndGroupZV(id, below, -1, "", nullptr);
}

void FieldTest::Play(std::string_view keys)
{
    static constexpr std::string_view named[] = {"Left",   "Right",  "Up",       "Down", "Help",
                                                 "Delete", "Back",   "Enter",    "Home", "End",
                                                 "Tab",    "PageUp", "PageDown", "Esc",  "Return"};
    auto const modifier = [](char letter) {
        return letter == 'S' ? ZV_MOD_SHIFT : letter == 'C' ? ZV_MOD_CONTROL : ZV_MOD_COMMAND;
    };
    while (!keys.empty()) {
        if (keys[0] != '<') {
            std::size_t const end = std::min(keys.find('<'), keys.size());
            HeadlessTypeZV(std::string(keys.substr(0, end)).c_str());
            keys.remove_prefix(end);
            continue;
        }
        std::string_view key = keys.substr(1, keys.find('>') - 1);
        keys.remove_prefix(key.size() + 2);
        unsigned long held = 0;
        for (; key.size() > 2 && key[1] == '-'; key.remove_prefix(2))
            held |= modifier(key[0]);
        HeadlessHoldZV(held);
        auto const index = std::ranges::find(named, key) - std::begin(named);
        HeadlessKeyZV(static_cast<unsigned long>(key.size() == 1 ? key[0] : ZV_KEY_LEFT + index));
        HeadlessHoldZV(0);
    }
    HeadlessRunZV(0);
}

ZVRectT<long> FieldTest::Place(unsigned long id)
{
    ZVItem const* const item = Item(id);
    ZVRectT<long> place{0, 0, item->width, item->height};
    GetItemScreenPosZV(item, &place.x, &place.y);
    return place;
}

void FieldTest::Click(unsigned long id, long x, long y)
{
    ZVRectT<long> const place = Place(id);
    HeadlessClickZV(place.x + x, place.y + y, ZV_HEADLESS_LEFT);
    HeadlessRunZV(0);
}

std::string FieldTest::Marked_Text()
{
    ZVTextEditorProperties const now = Properties();
    auto const start = static_cast<std::size_t>(now.selectionStart),
               end = static_cast<std::size_t>(now.selectionEnd);
    std::string text = Text();
    return start == end ? text.insert(start, "|") : text.insert(end, "]").insert(start, "[");
}

ZVTextEditorProperties FieldTest::Properties(unsigned long id)
{
    ZVTextEditorProperties properties{};
    GetTextEditorPropertiesZV(Item(id), &properties);
    return properties;
}

long FieldTest::Caret_X()
{
    // What the dark half of its blinking takes away.
    HeadlessRunZV(600);
    Picture const one(1);
    HeadlessRunZV(500);
    Picture const other(1);
    for (long i = 0; i < one.width * one.height; ++i)
        if (one.At(i % one.width, i / one.width) != other.At(i % one.width, i / one.width))
            return i % one.width;
    return -1;
}

unsigned short FieldTest::Focus()
{
    ZVItem const* const item = ZVEnv->focusedTextItem ? ZVEnv->focusedTextItem : ZVEnv->focusedListItem;
    return item ? static_cast<unsigned short>(item->node.id) : 0;
}

FieldTest::Picture::Picture(unsigned long id)
{
    ZVWindow* const window = Item(id)->group->palette->window;
    ZVRectT<long> const place = Place(id);
    width = place.width;
    height = place.height;
    ZVBitmap* const shown = HeadlessPictureZV(window);
    long const left = place.x - window->left, top = place.y - window->top;
    for (long y = top; y < top + height; ++y)
        for (long x = left; x < left + width; ++x) {
            auto const* const pixel = static_cast<ZVBufferRGBA8*>(shown)->GetIterator(x, y);
            pixels.push_back(static_cast<uint32_t>(pixel->Red() << 16 | pixel->Green() << 8 | pixel->Blue()));
        }
    FreeBitmapZV(shown);
}
