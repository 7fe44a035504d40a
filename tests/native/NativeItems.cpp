#include "NativeItems.h"

#include "host/Fonts.h"

uint32_t ticks;

uint32_t Mac_Tick_Count()
{
    return ticks;
}

ZVNativeItem* Make_Text_Field(ZVItem&)
{
    return nullptr;
}

// ---- the font ---------------------------------------------------------------------------------------------

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
    double Advance(std::span<uint32_t const> characters) override
    {
        return 6.0 * static_cast<double>(characters.size());
    }
    std::vector<HostPathStep> Outline(uint32_t) override { return {}; }
};

struct BlockFonts : HostFonts {
    std::unique_ptr<HostFont> Open(HostFontRequest const&) override { return std::make_unique<BlockFont>(); }
    std::span<HostFontFace const> Faces() override { return {}; }
    std::unique_ptr<HostFont> Open(HostFontFace const&, double, bool, bool) override { return nullptr; }
};

std::string calls;

void Note(std::string const& entry)
{
    calls += (calls.empty() ? "" : " ") + entry;
    if (NativeItems::onCall) NativeItems::onCall(entry);
}

}  // namespace

std::unique_ptr<HostFonts> Make_Host_Fonts()
{
    return std::make_unique<BlockFonts>();
}

// ---- the fixture ------------------------------------------------------------------------------------------

std::function<void(std::string const& entry)> NativeItems::onCall;

NativeItems::NativeItems()
{
    setenv("KL_APP_DATA_DIR", Path().c_str(), 1);
    setenv("ZV_HOST", "headless", 1);
    if (!InitZV(On_Event, nullptr, nullptr, nullptr, nullptr)) throw std::runtime_error("InitZV failed");
    SetStylePenZV(ZV_PEN_PALETTE, paper);
    SetStylePenZV(ZV_PEN_TEXT, ink);
    ticks = 1000;
    palette = InitPaletteZV();
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

ZVPalette* NativeItems::Show()
{
    TagItem tags[] = {{ZV_PAL_KIND, ZV_KIND_FIXED}, {}};
    EXPECT_TRUE(DisplayPaletteZV(tags));
    SetCurrentPaletteZV(palette);
    return palette;
}

uint32_t NativeItems::At(int x, int y) const
{
    uint32_t color = 0xBAD00000;
    Mac_Window_Port(palette->window)->surface.Read(x, y, color);
    return color;
}

bool NativeItems::Is_Filled(HostRect const& rect, uint32_t color) const
{
    for (int y = rect.top; y < rect.bottom; ++y)
        for (int x = rect.left; x < rect.right; ++x)
            if (At(x, y) != color) return false;
    return true;
}

std::string NativeItems::Log()
{
    return std::exchange(calls, {});
}

void NativeItems::On_Event(ZVEvent* event)
{
    if (event->type != ZV_EVENT_GADGET) return;
    uint32_t const bits = ZV_MOD_PRESS | ZV_MOD_CHANGE | ZV_MOD_RELEASE;
    Note("E" + std::to_string(Event_Item(event)->node.id) + "." + std::to_string(event->modifiers & bits));
}

long NativeItems::On_Custom(ZVCustomEvent* event)
{
    bool const isOfScreen = event->type >= ZV_CUSTOM_CREATE && event->type <= ZV_CUSTOM_DRAW_DISABLED &&
                            event->type != ZV_CUSTOM_CLEANUP;
    if (isOfScreen) Note("C" + std::to_string(event->item->node.id) + ":" + std::to_string(event->type));
    return 1;
}
