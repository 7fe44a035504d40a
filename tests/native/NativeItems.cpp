// What stands in for the desktop: its clock, its fonts, and text fields, of which there are none.
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

namespace {

struct BlockFont : HostFont {
    HostTextRun run;
    HostMask block{0, -6, 4, 6, std::vector<unsigned char>(24, 255)};

    HostFontMetrics Metrics() const override { return {8, 2, 0, 6}; }
    HostTextRun const& Shape(std::string_view text, HostDirection) override
    {
        run = {};
        for (char byte : text)
            if ((byte & 0xC0) != 0x80) run.glyphs.push_back({0, std::exchange(run.width, run.width + 6), 0});
        return run;
    }
    HostMask const& Glyph_Image(uint32_t) override { return block; }
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
