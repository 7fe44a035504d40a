// The interface while memory runs out, at each allocation of a scene in turn: what cannot be had is told of
// or made up for later, nothing is lost and nothing half-made, and afterwards the scene is what it always
// was. Fonts are open by then: fontconfig and HarfBuzz do not look whether they get the memory for what they
// read first.
#include "FailingHeap.h"
#include "TestEnvironment.h"

#include <ZVHeadless.h>
#include <ZVKey.h>

#include <functional>
#include <vector>

namespace {

struct Scene {
    std::function<void()> begin;  ///< with memory
    std::function<bool()> play;   ///< without; false when it has told of an error
    std::function<void()> end;    ///< with memory again
};

/// So that many pictures of it are quick.
class SmallDesktop : public testing::Test {
protected:
    SmallDesktop()
    {
        setenv("ZV_HOST", "headless", 1);
        setenv("ZV_HEADLESS_SIZE", "800x600", 1);
        setenv("KL_APP_DATA_DIR", scratch_.Path().c_str(), 1);
        if (!InitZV(On_Event, nullptr, nullptr, nullptr, nullptr)) throw std::runtime_error("InitZV failed");
    }
    ~SmallDesktop() override
    {
        CleanUpZV();
        for (char const* name : {"ZV_HOST", "ZV_HEADLESS_SIZE", "KL_APP_DATA_DIR"})
            unsetenv(name);
    }

    using Pixels = std::vector<uint32_t>;

    /// What the desktop shows.
    static Pixels Picture()
    {
        HeadlessRunZV(0);
        auto* const picture = static_cast<ZVBufferRGBA8*>(HeadlessPictureZV(nullptr));
        Pixels pixels(static_cast<std::size_t>(picture->Width * picture->Height));
        std::memcpy(pixels.data(), picture->GetIterator(0, 0), pixels.size() * sizeof(uint32_t));
        FreeBitmapZV(picture);
        return pixels;
    }

    static void Play_Without_Memory(Scene const& scene);

private:
    /// What never ends without memory ends with it.
    static void On_Event(ZVEvent* event)
    {
        if (event->type == ZV_EVENT_TICK && ++ticks_ > 100) FailingHeap::Recover();
    }

    static Pixels Play(Scene const& scene)
    {
        SetError(ZV_ERR_NONE);
        scene.begin();
        EXPECT_TRUE(scene.play());
        Pixels picture = Picture();
        scene.end();
        return picture;
    }

    static inline int ticks_ = 0;
    ScratchDir scratch_;
};

void SmallDesktop::Play_Without_Memory(Scene const& scene)
{
    if (!FailingHeap::Is_Available()) GTEST_SKIP() << "the heap belongs to a sanitizer";
    Play(scene);
    Pixels const wanted = Play(scene);
    for (long const most : {LONG_MAX, 1L}) {
        long failures = 1;
        for (long after = 0; failures > 0; ++after) {
            SCOPED_TRACE(std::to_string(after) + (most == 1 ? " and only that" : " and all that follow"));
            ASSERT_LT(after, 10000);
            long const blocks = FailingHeap::Blocks();
            SetError(ZV_ERR_NONE);
            scene.begin();
            bool isPlayed = false;
            {
                ticks_ = 0;
                FailingHeap const heap(after, most);
                isPlayed = scene.play();
                failures = heap.Failures();
            }
            if (isPlayed) {
                EXPECT_TRUE(Picture() == wanted) << "neither told nor made up for";
            } else {
                EXPECT_EQ(GetErrorZV(), ZV_ERR_MEMORY);
                HeadlessRunZV(0);
            }
            scene.end();
            EXPECT_EQ(FailingHeap::Blocks(), blocks);
            if (after % 16 == 0) {
                EXPECT_TRUE(Play(scene) == wanted) << "something has stayed behind";
            }
            if (HasFailure()) return;
        }
    }
}

// ---- palettes ---------------------------------------------------------------------------------------------

constexpr unsigned short PaletteId = 7, PictureId = 30;
constexpr unsigned short Below = ZV_Position(ZV_POS_ALIGN_START, ZV_POS_AFTER);
constexpr unsigned short Beside = ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START);

/// A gadget that draws by all there is.
long Draw_Everything(ZVCustomEvent* event)
{
    if (event->type != ZV_CUSTOM_DRAW && event->type != ZV_CUSTOM_DRAW_STATE) return 1;
    ZVDrawInfo* const draw = DrawBeginZV(event->item);
    long const shift = event->item->state;
    long const corners[] = {60, 5, 95, 10 + shift, 70, 45};
    ZVRGB const color{0x8000, 0, 0, 1};
    SetClipRectZV(draw, 0, 0, event->item->width, event->item->height);
    EraseRectZV(draw, 0, 0, 200, 200);
    DrawRectZV(draw, 1, 1, 50, 20 + shift);
    FillEllipseZV(draw, 5, 5, 40, 15 + shift);
    DrawEllipseZV(draw, 5, 20, 40 + shift, 45);
    DrawLineZV(draw, 0, 0, 99, 49 - shift);
    FillPolygonZV(draw, 3, corners);
    DrawPolygonZV(draw, 3, corners);
    DrawShineBorderZV(draw, 80, 30, 15 + shift, 15);
    WritePixelZV(draw, 90, 3 + shift, &color);
    SetTextTransparencyZV(draw, 1);
    char const text[] = {'a', static_cast<char>('a' + shift), 0};
    long x = 0, y = 0;
    CenterTextZV(draw, text, 0, 0, 100, 50, &x, &y);
    DrawTextZV(draw, text, x, y);
    DrawEndZV(draw);
    return 1;
}

/// One of each gadget, or only the first ones. False when one cannot be had.
bool Add_Gadgets(bool isWhole)
{
    constexpr unsigned short few = 3;
    static constexpr struct {
        ZVGadgetType type;
        short beside;  ///< begins a column beside that gadget
        long width, height;
    } gadgets[] = {{ZV_GAD_BUTTON, 0, 150, 20},   {ZV_GAD_TOGGLE, 0, 150, 20},  {ZV_GAD_CHECK, 0, 150, 20},
                   {ZV_GAD_RADIO, 0, 150, 20},    {ZV_GAD_LABEL, 0, 150, 20},   {ZV_GAD_CYCLE, 0, 150, 20},
                   {ZV_GAD_MENU, 0, 16, 16},      {ZV_GAD_SLIDER, 0, 150, 20},  {ZV_GAD_HPROP, 0, 150, 16},
                   {ZV_GAD_STRING, 1, 150, 20},   {ZV_GAD_INTEGER, 0, 150, 20}, {ZV_GAD_FLOAT, 0, 150, 20},
                   {ZV_GAD_EDITOR, 0, 150, 60},   {ZV_GAD_LIST, 0, 150, 60},    {ZV_GAD_VPROP, 0, 16, 60},
                   {ZV_GAD_TEXTBOX, 10, 150, 60}, {ZV_GAD_SEPARATOR, 0, 5, 30}, {ZV_GAD_CUSTOM, 0, 100, 50}};
    unsigned short id = 0;
    for (auto const& gadget : gadgets) {
        if (!isWhole && id == few) break;
        bool const isPicture = gadget.type == ZV_GAD_CUSTOM;
        ZVItem const* const item = AddGadgetZV(
            isPicture ? PictureId : ++id, gadget.beside ? Beside : Below, gadget.beside ? gadget.beside : -1,
            gadget.type, ZV_SIZE_MEDIUM, "Gadget", ZV_ITEM_WIDTH, gadget.width, ZV_ITEM_HEIGHT, gadget.height,
            ZV_ITEM_OFFSET_X, gadget.beside ? 70 : 0, ZV_ITEM_ENTRIES_CSV, "one,two,three,four,five",
            gadget.type == ZV_GAD_TEXTBOX ? ZV_ITEM_USER_DATA : ZV_ITEM_FLAG_20000, "Some words that wrap.",
            isPicture ? ZV_ITEM_CUSTOM_FUNC : ZV_ITEM_FLAG_20000, Draw_Everything, 0);
        if (!item) return false;
    }
    return AddTextZV(0, Below, -1, "A text", nullptr) && AddLineZV(0, Below, -1, ZV_SIZE_LARGE, 1, nullptr);
}

/// Declares a palette up to its display, of all gadgets or of a few. False, with nothing left, when that
/// cannot be.
bool Declare(bool isWhole)
{
    ZVPalette* const palette = InitPaletteZV();
    if (!palette) return false;
    InitGroupZV();
    bool const isDeclared = GetErrorZV() == ZV_ERR_NONE && Add_Gadgets(isWhole);
    EndGroupZV(1, 0, 0, "Group", ZV_GRP_BORDER, 1, ZV_MARGIN_ALL, 10, 0);
    if (EndPaletteZV(PaletteId, "Memory", nullptr) && isDeclared) return true;
    Free_Palette(palette);
    ZVEnv->buildingPalette = nullptr;
    return false;
}

bool Show(ZVKind kind, unsigned long flags = 0, bool isWhole = false)
{
    if (!Declare(isWhole) || !DisplayPaletteZV(ZV_PAL_KIND, kind, ZV_PAL_FLAGS, flags, 0)) return false;
    HeadlessRunZV(100);
    return true;
}

void Close()
{
    ClosePaletteZV(PaletteId);
    HeadlessRunZV(0);
    EXPECT_FALSE(ZVEnv->buildingPalette);
    EXPECT_EQ(List_Entries(&ZVEnv->windows), 0);
}

TEST_F(SmallDesktop, APaletteIsShownOrTellsThatItCannotBe)
{
    constexpr unsigned long bars = ZV_PALF_HSCROLL | ZV_PALF_VSCROLL;
    Play_Without_Memory({[] {}, [] { return Show(ZV_KIND_DOCUMENT, bars, true); }, Close});
}

TEST_F(SmallDesktop, AFloaterIsShownWithItsTab)
{
    Play_Without_Memory({[] {}, [] { return Show(ZV_KIND_FLOATER); }, Close});
}

TEST_F(SmallDesktop, AResizedPaletteGetsItsSizeOnceThereIsMemory)
{
    Play_Without_Memory({[] { Show(ZV_KIND_DOCUMENT, 0, true); },
                         [] {
                             ResizePaletteZV(FindPaletteZV(PaletteId), 700, 500);
                             HeadlessRunZV(0);
                             return true;
                         },
                         Close});
}

TEST_F(SmallDesktop, AnotherFormOfAWindowIsHadOnceThereIsMemory)
{
    Play_Without_Memory({[] { Show(ZV_KIND_FIXED); },
                         [] {
                             ZVPalette* const palette = FindPaletteZV(PaletteId);
                             palette->flags |= ZV_PALF_SIZE_BOTH;
                             RebuildPaletteZV(palette);
                             HeadlessRunZV(0);
                             return true;
                         },
                         Close});
}

TEST_F(SmallDesktop, AChangeIsDrawnOnceThereIsMemory)
{
    Play_Without_Memory({[] { Show(ZV_KIND_DOCUMENT, 0, true); },
                         [] {
                             SetGadgetStateZV(PictureId, 4.0);
                             HeadlessRunZV(0);
                             return true;
                         },
                         Close});
}

// ---- menus ------------------------------------------------------------------------------------------------

bool Make_Menus()
{
    InitMenuZV();
    AddMenuItemZV(10, "Open", 0, nullptr);
    AddMenuItemZV(0, "-", 0, nullptr);
    InitMenuZV();
    AddMenuItemZV(21, "Checked", 0, ZV_MENU_CHECKED, 1, 0);
    AddMenuItemZV(22, "Disabled", 0, ZV_MENU_ENABLED, 0, 0);
    EndMenuZV(2, "Deep", nullptr);
    ZVMenu const* const menu = EndMenuZV(1, "File", nullptr);
    MakeMenuBarZV();
    return menu && GetErrorZV() == ZV_ERR_NONE;
}

void Drop_Menus()
{
    for (int i = 0; i < 4; ++i)
        HeadlessKeyZV(ZV_KEY_ESCAPE);
    HeadlessRunZV(0);
    DelMenuZV(1);
    MakeMenuBarZV();
    EXPECT_EQ(Menu_Bar_Height(), 0);
}

TEST_F(SmallDesktop, AMenuBarIsThereOrTellsThatItCannotBe)
{
    Play_Without_Memory({[] {}, Make_Menus, Drop_Menus});
}

TEST_F(SmallDesktop, MenusOpenOrTellThatTheyCannot)
{
    constexpr unsigned long f10 = ZV_KEY_F1 + 9;
    for (bool const byKey : {false, true}) {
        SCOPED_TRACE(byKey ? "by key" : "by press");
        Play_Without_Memory(
            {[byKey] {
                 Show(ZV_KIND_DOCUMENT);
                 Make_Menus();
                 HeadlessRunZV(0);
                 HeadlessPauseZV(1000);
                 if (byKey)
                     HeadlessKeyZV(f10);
                 else
                     HeadlessClickZV(20, 5, ZV_HEADLESS_LEFT);
                 for (unsigned long key : {ZV_KEY_DOWN, ZV_KEY_DOWN, ZV_KEY_RIGHT, ZV_KEY_DOWN})
                     HeadlessKeyZV(key);
             },
             [] {
                 HeadlessRunZV(0);
                 return GetErrorZV() == ZV_ERR_NONE;
             },
             [] {
                 Drop_Menus();
                 Close();
             }});
    }
}

}  // namespace
