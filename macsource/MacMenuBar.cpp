// Stands as a window of its own above all others, which never takes the keyboard from them. The root window
// begins below it. Of titles that find no room the last menus are gathered in one.
#include "MacMenuBar.h"

#include "MacInput.h"
#include "MacMenu.h"
#include "MacMenuPanel.h"
#include "MacWindow.h"
#include "ZVLibInternal.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <utility>
#include <vector>

static constexpr int TitleMargin = 9;  ///< beside the text of a title
static constexpr char HelpTitle[] = "Help";
static constexpr char UnnamedApplication[] = "Application";
static constexpr char MoreTitle[] = "\u00bb";  ///< of what finds no room

static constexpr unsigned long LitInk = 0x000000;

namespace {

struct Title {
    enum class Kind { Menu, Application, Help, More };
    Kind kind;
    ZVMenu* menu;  ///< of a plain one
    std::string text;
    int left = 0, right = 0;
};

struct MenuBar {
    explicit MenuBar(std::unique_ptr<HostWindow> made)
        : window(std::move(made)), port{window->Surface(), {}, nullptr, nullptr}
    {
    }

    std::unique_ptr<HostWindow> window;
    ZVPort port;
    int monitorTop = 0;  ///< of the monitor that it lies on
    std::vector<Title> titles;
    std::vector<ZVMenu*> more;  ///< menus of the title that stands for all without room
    bool isStale = true;        ///< the titles are no longer those of the tree
    int lit = NoTitle;
    bool isShown = true;
};
std::unique_ptr<MenuBar> bar;
bool areMenusDisabled = false;

// ---- titles -----------------------------------------------------------------------------------------------

/// Not when all its entries stand in the application or help menu.
bool Shows(ZVMenu const& menu)
{
    return List_Empty(&menu.submenus) || Has_Rows(menu);
}

std::vector<Title> Wanted_Titles()
{
    std::vector<Title> titles;
    if (!Rows_Of_Application_Menu().empty())
        titles.push_back(
            {Title::Kind::Application, nullptr, ZVEnv->appTitle ? ZVEnv->appTitle : UnnamedApplication});
    for (ZVMenu& menu : Records<ZVMenu>(ZVEnv->menus)) {
        bool const isElsewhere = Is_In_Application_Menu(&menu) || Is_In_Help_Menu(&menu);
        if (!isElsewhere && Shows(menu)) titles.push_back({Title::Kind::Menu, &menu, Make_MenuString(menu)});
    }
    if (!Rows_Of_Help_Menu().empty()) titles.push_back({Title::Kind::Help, nullptr, HelpTitle});
    return titles;
}

int Width_Of(Title const& title)
{
    FontChoice const font = title.menu ? Menu_Font(*title.menu) : FontChoice{};
    return static_cast<int>(Find_Font(font).Width(title.text)) + 2 * TitleMargin;
}

/// Takes plain titles off the end, from in front of the help menu, until the others fit with one that stands
/// for those.
void Gather_Rest(std::vector<Title>& titles, int room)
{
    int width = 0;
    for (Title const& title : titles)
        width += Width_Of(title);
    bar->more.clear();
    if (width <= room) return;
    Title rest{Title::Kind::More, nullptr, MoreTitle};
    width += Width_Of(rest);
    auto place = titles.end();
    while (width > room && place != titles.begin()) {
        --place;
        if (place->kind != Title::Kind::Menu) continue;
        width -= Width_Of(*place);
        bar->more.insert(bar->more.begin(), place->menu);
        place = titles.erase(place);
    }
    titles.insert(place, std::move(rest));
}

/// The titles as the tree has them now. Throws without memory, and tries again when it is asked again.
std::vector<Title>& Titles()
{
    if (!bar->isStale) return bar->titles;
    std::vector<Title> titles = Wanted_Titles();
    Gather_Rest(titles, bar->port.surface.Bounds().Width());
    int left = 0;
    for (Title& title : titles) {
        title.left = left;
        left = title.right = left + Width_Of(title);
    }
    bar->titles = std::move(titles);
    bar->isStale = false;
    if (bar->lit >= static_cast<int>(bar->titles.size())) bar->lit = NoTitle;
    return bar->titles;
}

Title const& Title_Of(int title)
{
    return Titles()[static_cast<std::size_t>(title)];
}

}  // namespace

HostWindow const* Menu_Bar_Window()
{
    return bar && bar->isShown ? bar->window.get() : nullptr;
}

bool Is_Menu_Bar_Enabled()
{
    return bar && !areMenusDisabled;
}

int Title_Count()
{
    return bar ? static_cast<int>(Titles().size()) : 0;
}

HostRect Title_Box(int title)
{
    HostRect const client = bar->window->Client();
    Title const& each = Title_Of(title);
    return {client.left + each.left, client.top, client.left + each.right, client.bottom};
}

int Title_At(int x, int y)
{
    for (int title = 0; title < Title_Count(); ++title)
        if (Title_Box(title).Contains(x, y)) return title;
    return NoTitle;
}

MenuRows Title_Rows(int title)
{
    Title const& each = Title_Of(title);
    switch (each.kind) {
    case Title::Kind::Application: return Rows_Of_Application_Menu();
    case Title::Kind::Help: return Rows_Of_Help_Menu();
    case Title::Kind::More: return Rows_Of_Menus(bar->more);
    default: return Rows_Of_Menu(*each.menu);
    }
}

bool Is_Title_Live(int title)
{
    ZVMenu const* const menu = Title_Of(title).menu;
    return !menu || (!Is_Dimmed(*menu) && Has_Rows(*menu));
}

// ---- drawing ----------------------------------------------------------------------------------------------

static void Draw_Title(Title const& title, bool isLit)
{
    ZVPort& port = bar->port;
    HostRect const box{title.left, 0, title.right, port.surface.Bounds().bottom - 1};
    if (isLit) port.surface.Fill(box, Pen_Color(ZV_PEN_MARKED));
    bool const isDimmed = areMenusDisabled || (title.menu && Is_Dimmed(*title.menu));
    uint32_t const plain = Pen_Color(ZV_PEN_TEXT), dimmed = Dimmed_Ink(plain, Pen_Color(ZV_PEN_FACE));
    uint32_t const ink = isLit ? Pen_Color(LitInk) : isDimmed ? dimmed : plain;
    TextFont const font = Find_Font(title.menu ? Menu_Font(*title.menu) : FontChoice{});
    font.Draw(port.surface, title.text, box.left + TitleMargin,
              MenuTextMargin + 1 + static_cast<int>(Find_Font({}).Ascent()), ink);
}

static void Draw_Titles()
{
    std::vector<Title> const& titles = Titles();
    HostRect const all = bar->port.surface.Bounds();
    bar->port.surface.Fill(all, Pen_Color(ZV_PEN_FACE));
    bar->port.surface.Fill(HostRect{0, 0, all.right, 1}, Pen_Color(ZV_PEN_LIGHT_EDGE));
    bar->port.surface.Fill(HostRect{0, all.bottom - 1, all.right, all.bottom}, Pen_Color(ZV_PEN_DARK_EDGE));
    for (int i = 0; i < static_cast<int>(titles.size()); ++i)
        Draw_Title(titles[static_cast<std::size_t>(i)], i == bar->lit);
}

void Draw_Menu_Bar()
{
    if (!bar) return;
    bar->port.isIncomplete = false;
    Paint(&bar->port, Draw_Titles);
}

void Present_Menu_Bar()
{
    if (!bar) return;
    if (bar->isStale || bar->port.isIncomplete) Draw_Menu_Bar();
    Present(*bar->window);
}

void Light_Title(int title)
{
    if (!bar || bar->lit == title) return;
    bar->lit = title;
    Draw_Menu_Bar();
}

void Mac_Hilite_Menu(ZVMenu const* menu)
{
    if (!bar) return;
    Guarded([=] {
        std::vector<Title> const& titles = Titles();
        auto const found =
            std::ranges::find_if(titles, [=](Title const& title) { return menu && title.menu == menu; });
        Light_Title(found == titles.end() ? NoTitle : static_cast<int>(found - titles.begin()));
    });
    Present_Menu_Bar();
}

// ---- making and taking down -------------------------------------------------------------------------------

long Menu_Bar_Height()
{
    // A desktop's own bar is above it, and covers what is there.
    return bar ? bar->window->Client().bottom - bar->monitorTop : 0;
}

/// Gives a window another place or size, as the user would. What is laid out anew runs callbacks.
static void Move_Window(ZVWindow& window, HostRect const& client)
{
    if (Paint(&window.sysWindow->port, [&] { window.sysWindow->host->Set_Client(client); }))
        Window_Bounds_Changed(window);
}

/// The root window fills what the bar leaves of a single monitor.
static void Fit_Root_Window(int oldTop)
{
    ZVWindow* const root = ZVEnv->rootWindow;
    if (!root || root->kind != ZV_KIND_ROOT || !root->sysWindow || ZVEnv->monitorCount != 1) return;
    HostRect client = root->sysWindow->host->Client();
    int const monitorTop = ZVEnv->monitors[0].top;
    if (client.top != monitorTop + oldTop) return;  // someone has put it elsewhere
    client.top = monitorTop + static_cast<int>(Menu_Bar_Height());
    Move_Window(*root, client);
}

int Way_Below_Menu_Bar(HostRect const& frame)
{
    if (!bar) return 0;
    HostRect const strip = bar->window->Client();
    return Intersection(frame, strip).IsEmpty() ? 0 : strip.bottom - frame.top;
}

static void Uncover_Windows()
{
    std::vector<std::pair<ZVWindow*, int>> covered;
    for (ZVWindow& window : All_Windows()) {
        if (!window.sysWindow || window.kind == ZV_KIND_ROOT) continue;
        ZVRectT<long> frame;
        GetWindowRectZV(&window, &frame);
        int const left = static_cast<int>(frame.x), top = static_cast<int>(frame.y);
        int const way = Way_Below_Menu_Bar(
            {left, top, left + static_cast<int>(frame.width), top + static_cast<int>(frame.height)});
        if (way) covered.emplace_back(&window, way);
    }
    for (auto const& [window, way] : covered) {
        if (!Is_Window(window) || !window->sysWindow) continue;
        HostRect const client = window->sysWindow->host->Client();
        Move_Window(*window, {client.left, client.top + way, client.right, client.bottom + way});
    }
}

/// Throws without memory for its window.
static void Open_Bar()
{
    HostMonitor const monitor = Display()->Monitors().front();
    HostRect strip = monitor.usable;
    strip.bottom = strip.top + static_cast<int>(Text_Height(nullptr)) + 2 * (MenuTextMargin + 1);
    std::unique_ptr<HostWindow> window = Display()->Make_Window(
        {.kind = HostWindowKind::Popup, .client = strip, .title = "Menu bar", .hasFrame = false});
    if (!window) return;
    window->Show();
    auto made = std::make_unique<MenuBar>(std::move(window));
    made->monitorTop = monitor.bounds.top;
    bar = std::move(made);
}

/// Whether there is a bar has to be what the menus ask for. Throws without memory.
static void Open_Or_Close_Bar()
{
    bool const isWanted = !Wanted_Titles().empty();
    if (!isWanted) bar = nullptr;
    if (isWanted && !bar) Open_Bar();
}

void Make_MenuBar()
{
    if (!Display()) return;
    Close_Menus();
    int const oldTop = static_cast<int>(Menu_Bar_Height());
    Guarded(Open_Or_Close_Bar);
    if (bar) {
        bar->isStale = true;
        bar->lit = NoTitle;
        Draw_Menu_Bar();
    }
    if (static_cast<int>(Menu_Bar_Height()) == oldTop) return;
    Fit_Root_Window(oldTop);
    Guarded(Uncover_Windows);
}

void Free_SysMenus()
{
    Close_Menus();
    if (!bar) return;
    int const oldTop = static_cast<int>(Menu_Bar_Height());
    bar = nullptr;
    Fit_Root_Window(oldTop);
}

void Show_Menu_Bar(bool isShown)
{
    if (!bar || bar->isShown == isShown) return;
    if (isShown)
        bar->window->Show();
    else
        bar->window->Hide();
    bar->isShown = isShown;
}

// ---- changes ----------------------------------------------------------------------------------------------

void Delete_Item(ZVMenu const* menu)
{
    Forget_Menu(*menu);
    if (bar && menu->node.next) bar->isStale = true;
}

void Update_Item_State(ZVMenu const* menu)
{
    if (bar && !menu->parent) bar->isStale = true;  // the text may have another width
    Guarded([=] { Update_Open_Menus(*menu); });
}

static void Set_Disabled(bool areDisabled)
{
    if (std::exchange(areMenusDisabled, areDisabled) != areDisabled) Draw_Menu_Bar();
}

void Disable_All_Menus()
{
    Close_Menus();
    Set_Disabled(true);
}

void Reenable_All_Menus()
{
    Set_Disabled(false);
}
