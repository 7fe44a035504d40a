#include "DesktopTest.h"

#include <utility>

std::vector<std::string> DesktopTest::log;
std::function<void(ZVEvent&)> DesktopTest::onEvent;
std::function<void(ZVCustomEvent const&)> DesktopTest::onGadget;

DesktopTest::DesktopTest()
{
    log.clear();
    onEvent = nullptr;
    onGadget = nullptr;
    setenv("ZV_HOST", "headless", 1);
    setenv("KL_APP_DATA_DIR", scratch_.Path().c_str(), 1);
    if (!InitZV(ApplicationCallback, nullptr, nullptr, nullptr, nullptr))
        throw std::runtime_error("InitZV failed");
}

DesktopTest::~DesktopTest()
{
    onEvent = nullptr;
    onGadget = nullptr;
    CleanUpZV();
    unsetenv("KL_APP_DATA_DIR");
    unsetenv("ZV_HOST");
}

static void Note(std::vector<std::string>& log, std::string who, unsigned type, unsigned long modifiers)
{
    who += ":" + std::to_string(type);
    log.push_back(modifiers ? who + "/" + std::to_string(modifiers) : who);
}

uint32_t DesktopTest::Pixel(long x, long y, ZVWindow* window)
{
    auto* const picture = static_cast<ZVBufferRGBA8*>(HeadlessPictureZV(window));
    auto const& pixel = *picture->GetIterator(x, y);
    auto const color = static_cast<uint32_t>(pixel.Red() << 16 | pixel.Green() << 8 | pixel.Blue());
    FreeBitmapZV(picture);
    return color;
}

void DesktopTest::Callback(ZVEvent* event)
{
    bool const isQuiet = event->type == ZV_EVENT_TICK || event->type == ZV_EVENT_MOUSE_MOVE ||
                         event->type == ZV_EVENT_SETUP || event->type == ZV_EVENT_TAB_ACTIVATE;
    std::string const who = event->palette ? std::to_string(event->palette->node.id) : "A";
    if (!isQuiet) Note(log, who, event->type, event->modifiers);
    if (onEvent) onEvent(*event);
}

void DesktopTest::ApplicationCallback(ZVEvent* event)
{
    Callback(event);
}

long DesktopTest::Function(ZVCustomEvent* event)
{
    std::string const who = "G" + std::to_string(event->item->group->palette->node.id);
    if (event->type == ZV_CUSTOM_WHEEL) {
        log.push_back(who + ":wheel " + std::to_string(event->deltaX) + " " + std::to_string(event->deltaY));
    } else if (event->type == ZV_CUSTOM_MOUSE_UP || event->type == ZV_CUSTOM_MOUSE_DOWN ||
               event->type == ZV_CUSTOM_MENU) {
        Note(log, who, event->type, event->modifiers);
    }
    if (onGadget) onGadget(*event);
    return 1;
}

ZVPalette* DesktopTest::Show(unsigned short id, ZVKind kind, long x, long y, std::vector<TagItem> tags,
                             bool hasField)
{
    constexpr unsigned short below = ZV_Position(ZV_POS_ALIGN_START, ZV_POS_AFTER);
    ZVPalette* const palette = InitPaletteZV();
    InitGroupZV();
    AddGadgetZV(1, 0, 0, ZV_GAD_CUSTOM, ZV_SIZE_CUSTOM, "", ZV_ITEM_WIDTH, 60, ZV_ITEM_HEIGHT, 20,
                ZV_ITEM_CUSTOM_FUNC, Function, 0);
    if (hasField) AddGadgetZV(2, below, -1, ZV_GAD_STRING, ZV_SIZE_LARGE, "", nullptr);
    EndGroupZV(1, 0, 0, "", ZV_GRP_AUTO_SIZE, 1, 0);
    EndPaletteZV(id, "palette", ZV_PAL_CALLBACK, Callback, 0);
    for (TagItem const& tag : std::initializer_list<TagItem>{{ZV_PAL_KIND, kind},
                                                             {ZV_MARGIN_ALL, 30},
                                                             {ZV_PAL_WINDOW_X, static_cast<unsigned long>(x)},
                                                             {ZV_PAL_WINDOW_Y, static_cast<unsigned long>(y)},
                                                             {}})
        tags.push_back(tag);
    DisplayPaletteZV(tags.data());
    return palette;
}

void DesktopTest::Script_Move(ZVPalette* palette, ZVItem* item)
{
    long x = palette->window->left + 4, y = palette->window->top + palette->y + 4;
    if (item) {
        GetItemScreenPosZV(item, &x, &y);
        x += item->width / 2;
        y += item->height / 2;
    }
    HeadlessMoveZV(x, y);
}

void DesktopTest::Script_Click(ZVPalette* palette, ZVItem* item, unsigned long button)
{
    Script_Move(palette, item);
    HeadlessPressZV(button);
    HeadlessReleaseZV(button);
}

Strings DesktopTest::Log()
{
    return std::exchange(log, {});
}
