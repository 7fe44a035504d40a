#include "NativeItems.h"

#include "host/Fonts.h"

uint32_t ticks;
uint32_t Mac_Tick_Count()
{
    return ticks;
}

namespace {
struct BlockFont : HostFont {
    HostTextRun run;
    HostMask block{0, -6, 4, 6, std::vector<unsigned char>(24, 255)}, blank{};

    HostFontMetrics Metrics() const override { return {8, 2, 0, 6}; }
    HostTextRun const& Shape(std::string_view text) override
    {
        run = {};
        for (char byte : text) {
            if ((byte & 0xC0) == 0x80) continue;
            run.glyphs.push_back({static_cast<unsigned char>(byte), run.width, 0});
            run.width += 6;
        }
        return run;
    }
    HostMask const& Glyph_Image(uint32_t glyph) override { return glyph == ' ' ? blank : block; }
    double Advance(std::span<uint32_t const>) override { return 0; }
    std::vector<HostPathStep> Outline(uint32_t) override { return {}; }
};

struct BlockFonts : HostFonts {
    std::unique_ptr<HostFont> Open(HostFontRequest const&) override { return std::make_unique<BlockFont>(); }
    std::span<HostFontFace const> Faces() override { return {}; }
    std::unique_ptr<HostFont> Open(HostFontFace const&, double, bool, bool) override { return nullptr; }
};
}  // namespace

std::unique_ptr<HostFonts> Make_Host_Fonts()
{
    return std::make_unique<BlockFonts>();
}

std::function<void(std::string const& entry)> NativeItems::onCall;
static std::string calls;

NativeItems::NativeItems()
{
    setenv("KL_APP_DATA_DIR", Path().c_str(), 1);
    setenv("ZV_HOST", "headless", 1);
    if (!InitZV(On_Event, nullptr, nullptr, nullptr, nullptr)) throw std::runtime_error("InitZV failed");
    SetStylePenZV(ZV_PEN_PALETTE, paper);
    SetStylePenZV(ZV_PEN_TEXT, ink);
    ticks = 1000;
    palette = InitPaletteZV();
    InitGroupZV();
}

NativeItems::~NativeItems()
{
    onCall = nullptr;
    CleanUpZV();
    Close_Fonts();
    unsetenv("ZV_HOST");
    unsetenv("KL_APP_DATA_DIR");
    Log();
}

void NativeItems::Show(char const* title)
{
    TagItem border[] = {{ZV_GRP_BORDER, 0}, {}}, tags[] = {{ZV_PAL_KIND, ZV_KIND_FIXED}, {}};
    EndGroupZV(1, 0, 0, title, title ? border : nullptr);
    ASSERT_TRUE(DisplayPaletteZV(tags));
    SetCurrentPaletteZV(palette);
}

bool NativeItems::Is_Filled(HostRect const& rect, uint32_t color) const
{
    uint32_t found = 0;
    for (int y = rect.top; y < rect.bottom; ++y)
        for (int x = rect.left; x < rect.right; ++x)
            if (!Port().surface.Read(x, y, found) || found != color) return false;
    return true;
}

std::string NativeItems::Log()
{
    return std::exchange(calls, {});
}

static void Note(std::string const& entry)
{
    calls += (calls.empty() ? "" : " ") + entry;
    if (NativeItems::onCall) NativeItems::onCall(entry);
}

void NativeItems::On_Event(ZVEvent* event)
{
    uint32_t const bits = event->modifiers & (ZV_MOD_PRESS | ZV_MOD_CHANGE | ZV_MOD_RELEASE);
    if (event->type == ZV_EVENT_GADGET)
        Note("E" + std::to_string(Event_Item(event)->node.id) + "." + std::to_string(bits));
}

long NativeItems::On_Custom(ZVCustomEvent* event)
{
    if (event->type > ZV_CUSTOM_SETUP && event->type <= ZV_CUSTOM_DRAW_DISABLED &&
        event->type != ZV_CUSTOM_CLEANUP)
        Note("C" + std::to_string(event->item->node.id) + ":" + std::to_string(event->type));
    return 1;
}
