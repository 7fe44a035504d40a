// Following the user through open menus. Each menu but the first was opened from the selected row of the one
// before.
#include "MacMenu.h"

#include "MacInput.h"
#include "MacKeys.h"
#include "MacMenuBar.h"
#include "MacMenuPanel.h"
#include "MacNativeItem.h"
#include "MacWindow.h"
#include "ZVKey.h"
#include "ZVLibInternal.h"
#include "foundation/Guard.h"
#include "interface/MenuTree.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <utility>
#include <vector>

// On the way from a row to its open submenu the mouse may cross others, as long as it gets on: so many
// milliseconds after its last movement the row it rests on counts.
static constexpr uint64_t CrossingPatience = 300;

/// Pixels above and below the submenu that count as on the way.
static constexpr int CrossingSlack = 6;

/// A press that opens a menu and is let go at once, near where it was, leaves it open for a click.
static constexpr int ClickSlack = 4;
static constexpr uint64_t ClickMilliseconds = 300;

/// Pixels for each timer step over an arrow.
static constexpr int ScrollStep = 8;

/// F10, by which people open and close the menu bar on this desktop.
static constexpr unsigned BarKey = ZV_KEY_F1 + 9;

namespace {

/// A call that waits for a choice, on the stack; they nest.
struct WaitingCall {
    WaitingCall() : outer(innermost) { innermost = this; }
    ~WaitingCall() { innermost = outer; }
    WaitingCall(WaitingCall const&) = delete;
    WaitingCall& operator=(WaitingCall const&) = delete;

    ZVMenu* chosen = nullptr;
    bool isDone = false;
    WaitingCall* outer;
    static WaitingCall* innermost;
};
WaitingCall* WaitingCall::innermost;

struct Point {
    int x, y;

    bool operator==(Point const&) const = default;
};

/// The menus that are open. What ends them, as Finish does, destroys the record.
class OpenMenus {
public:
    OpenMenus(WaitingCall* waiting, Point at, bool isHeld)
        : call(waiting), isHeld_(isHeld), mouse_(at), pressedAt_(at), openedAt_(Display()->Milliseconds()),
          leftAt_(at)
    {
    }

    WaitingCall* const call;  ///< who waits for the choice; null for the bar

    bool Open(MenuRows rows, MenuSpot const& spot);  ///< False when it cannot be shown.
    void Open_Title(int title);
    void Open_Title_By_Key(int title);  ///< With its first entry selected.

    void Press(Point at);
    void Release(Point at);
    void Move(Point at);
    void Rest(Point at);
    void Turn_Wheel(Point at, double notches);
    void Key(unsigned code, char32_t character);

    void Update(ZVMenu const& menu);
    void Draw();
    void Present();

private:
    using Index = std::size_t;
    static constexpr Index NoPanel = static_cast<Index>(-1);

    Index Panel_At(Point at) const;
    int Other_Title_At(Point at) const;
    void Close_Behind(Index panel) { panels_.resize(panel + 1); }
    void Open_Below(Index panel);
    void Take_Row(Index panel, Point at);
    void Follow(Point at);
    bool Is_On_The_Way(Index panel, Point at) const;

    MenuPanel& Last() { return *panels_.back(); }
    void Select_By_Key(int row);
    void Choose_By_Key();
    void Go_Right();
    void Go_Left();
    void Go_To_Title(int step);
    void Find_Letter(char32_t character);

    std::vector<std::unique_ptr<MenuPanel>> panels_;
    int title_ = NoTitle;
    bool isHeld_;                 ///< a button is down
    bool isFirstPress_ = true;    ///< it is the one that has opened the menu
    bool hasMoved_ = false;       ///< the mouse has left the place of the press
    std::optional<Point> mouse_;  ///< where it was last; unknown when a key has opened the menu
    Point pressedAt_;
    uint64_t openedAt_;
    Point leftAt_;                ///< where the mouse was last on the row whose submenu is open
    uint64_t crossingSince_ = 0;  ///< its last movement on the way to a submenu; 0 when it is on none
};
std::unique_ptr<OpenMenus> menus;

/// The key that a menu was told of last, up to its release. That and its repeats belong to the menu although
/// it may be closed by then.
std::optional<HostKey> heldKey;

/// Closes all menus. The choice goes to who waits for it, or else to the application.
void Finish(ZVMenu* chosen)
{
    if (!menus) return;
    WaitingCall* const call = menus->call;
    menus = nullptr;
    if (call) {
        call->chosen = chosen;
        call->isDone = true;
        return;
    }
    // The title stays lit while the event is on its way.
    if (chosen) {
        Present_Windows();
        Choose_Menu(chosen);
    }
    Light_Title(NoTitle);
}

// ---- opening ----------------------------------------------------------------------------------------------

bool OpenMenus::Open(MenuRows rows, MenuSpot const& spot)
{
    if (rows.empty()) return false;
    auto panel = std::make_unique<MenuPanel>(std::move(rows), spot);
    if (!panel->Is_Made()) return false;
    panels_.push_back(std::move(panel));
    return true;
}

void OpenMenus::Open_Title(int title)
{
    panels_.clear();
    crossingSince_ = 0;
    title_ = title;
    Light_Title(title);
    if (Is_Title_Live(title)) Open(Title_Rows(title), {MenuSpot::Side::Below, Title_Box(title)});
}

/// The submenu of a panel's selected row, when it has one.
void OpenMenus::Open_Below(Index panel)
{
    int const row = panels_[panel]->Selected();
    if (panels_[panel]->Opens(row))
        Open(Rows_Of_Menu(*panels_[panel]->Menu_Of(row)),
             {MenuSpot::Side::Beside, panels_[panel]->Row_Box(row)});
}

// ---- the mouse --------------------------------------------------------------------------------------------

/// Submenus lie in front of what they were opened from.
OpenMenus::Index OpenMenus::Panel_At(Point at) const
{
    for (Index i = panels_.size(); i-- > 0;)
        if (panels_[i]->Bounds().Contains(at.x, at.y)) return i;
    return NoPanel;
}

/// A title of the bar that is not the one that is open.
int OpenMenus::Other_Title_At(Point at) const
{
    int const title = title_ == NoTitle ? NoTitle : Title_At(at.x, at.y);
    return title == title_ ? NoTitle : title;
}

/// In the triangle between where the mouse has left the row and the near edge of its submenu.
bool OpenMenus::Is_On_The_Way(Index panel, Point at) const
{
    if (panel + 1 >= panels_.size()) return false;
    HostRect const target = panels_[panel + 1]->Bounds();
    bool const isRight = target.left + target.right > 2 * leftAt_.x;
    int const way = (isRight ? target.left : target.right - 1) - leftAt_.x, gone = at.x - leftAt_.x;
    if (way == 0 || gone == 0 || (gone > 0) != (way > 0)) return false;
    double const share = static_cast<double>(gone) / way;
    double const top = leftAt_.y + share * (target.top - CrossingSlack - leftAt_.y);
    double const bottom = leftAt_.y + share * (target.bottom + CrossingSlack - leftAt_.y);
    return share <= 1 && at.y >= top && at.y <= bottom;
}

/// Selects the row under the mouse and opens its submenu.
void OpenMenus::Take_Row(Index panel, Point at)
{
    crossingSince_ = 0;
    leftAt_ = at;
    MenuPanel& each = *panels_[panel];
    int const row = each.Row_At(at.x, at.y), live = each.Is_Live(row) ? row : MenuPanel::None;
    if (live != MenuPanel::None && live == each.Selected()) {
        // Back from its submenu, which stays, or for the first time over one that a key has selected.
        if (panel + 1 < panels_.size()) {
            Close_Behind(panel + 1);
            panels_[panel + 1]->Select(MenuPanel::None);
        } else {
            Open_Below(panel);
        }
        return;
    }
    Close_Behind(panel);
    each.Select(live);
    Open_Below(panel);
}

void OpenMenus::Follow(Point at)
{
    Index const panel = Panel_At(at);
    if (panel != NoPanel)
        Take_Row(panel, at);
    else if (int const title = Other_Title_At(at); title != NoTitle)
        Open_Title(title);
    else if (!panels_.empty())
        Last().Select(MenuPanel::None);
}

void OpenMenus::Move(Point at)
{
    // That a menu has opened under a resting mouse is no movement of the mouse.
    std::optional<Point> const last = std::exchange(mouse_, at);
    if (!last || *last == at) return;
    if (std::abs(at.x - pressedAt_.x) > ClickSlack || std::abs(at.y - pressedAt_.y) > ClickSlack)
        hasMoved_ = true;
    Index const panel = Panel_At(at);
    // What lies between two panels is on the way too.
    Index const from = panel == NoPanel && panels_.size() > 1 ? panels_.size() - 2 : panel;
    bool const isElsewhere =
        panel == NoPanel || panels_[panel]->Row_At(at.x, at.y) != panels_[panel]->Selected();
    if (from != NoPanel && isElsewhere && Is_On_The_Way(from, at)) {
        crossingSince_ = Display()->Milliseconds();
        return;
    }
    crossingSince_ = 0;
    Follow(at);
}

void OpenMenus::Rest(Point at)
{
    uint64_t const now = Display()->Milliseconds();
    if (crossingSince_ != 0 && now - crossingSince_ >= CrossingPatience) {
        crossingSince_ = 0;
        Follow(at);
    }
    Index const panel = Panel_At(at);
    int const arrow = panel == NoPanel ? 0 : panels_[panel]->Arrow_At(at.x, at.y);
    if (arrow == 0 || !panels_[panel]->Scroll(arrow * ScrollStep)) return;
    Close_Behind(panel);
    panels_[panel]->Select(MenuPanel::None);
}

void OpenMenus::Press(Point at)
{
    isHeld_ = true;
    isFirstPress_ = hasMoved_ = false;
    pressedAt_ = at;
    crossingSince_ = 0;
    if (Panel_At(at) == NoPanel && Other_Title_At(at) == NoTitle)
        Finish(nullptr);
    else
        Follow(at);
}

void OpenMenus::Release(Point at)
{
    if (!std::exchange(isHeld_, false)) return;
    bool const isClick =
        isFirstPress_ && !hasMoved_ && Display()->Milliseconds() - openedAt_ < ClickMilliseconds;
    Index const panel = Panel_At(at);
    if (panel != NoPanel) {
        int const row = panels_[panel]->Row_At(at.x, at.y);
        if (!isClick && panels_[panel]->Is_Live(row) && !panels_[panel]->Opens(row))
            Finish(panels_[panel]->Menu_Of(row));
        return;
    }
    bool const isOnTitle = title_ != NoTitle && Title_At(at.x, at.y) == title_;
    if (hasMoved_ && !isOnTitle) Finish(nullptr);
}

void OpenMenus::Turn_Wheel(Point at, double notches)
{
    Index const panel = Panel_At(at);
    if (panel == NoPanel) return;
    auto const rows =
        static_cast<double>(GetWheelScrollLinesZV() * (Text_Height(nullptr) + 2 * MenuTextMargin));
    if (!panels_[panel]->Scroll(static_cast<int>(std::lround(-notches * rows)))) return;
    Close_Behind(panel);
    panels_[panel]->Select(MenuPanel::None);
    Follow(at);
}

// ---- keys -------------------------------------------------------------------------------------------------

void OpenMenus::Select_By_Key(int row)
{
    if (row == MenuPanel::None) return;
    Last().Reveal(row);
    Last().Select(row);
}

void OpenMenus::Choose_By_Key()
{
    int const row = Last().Selected();
    if (Last().Opens(row))
        Go_Right();
    else if (Last().Is_Live(row))
        Finish(Last().Menu_Of(row));
}

void OpenMenus::Open_Title_By_Key(int title)
{
    mouse_.reset();
    Open_Title(title);
    if (!panels_.empty()) Select_By_Key(Last().Next_Live(MenuPanel::None, 1));
}

void OpenMenus::Go_To_Title(int step)
{
    int const count = Title_Count();
    if (title_ != NoTitle && count != 0) Open_Title_By_Key((title_ + step + count) % count);
}

void OpenMenus::Go_Right()
{
    std::size_t const depth = panels_.size();
    Open_Below(depth - 1);
    if (panels_.size() > depth)
        Select_By_Key(Last().Next_Live(MenuPanel::None, 1));
    else
        Go_To_Title(1);
}

void OpenMenus::Go_Left()
{
    if (panels_.size() > 1)
        panels_.pop_back();
    else
        Go_To_Title(-1);
}

/// The next entry that begins with a character, from the selected one on and round.
void OpenMenus::Find_Letter(char32_t character)
{
    if (character <= ' ' || character >= 0x7F) return;
    int const wanted = std::tolower(static_cast<int>(character));
    int row = Last().Selected();
    for (int tried = 0; tried < Last().Row_Count(); ++tried) {
        row = Last().Next_Live(row, 1);
        if (row == MenuPanel::None) return;
        auto const first = static_cast<unsigned char>(Last().Menu_Of(row)->text[0]);
        if (std::tolower(first) != wanted) continue;
        Select_By_Key(row);
        return;
    }
}

bool Is_Choosing_Key(unsigned code)
{
    return code == ZV_KEY_RETURN || code == ZV_KEY_ENTER || code == ' ';
}

void OpenMenus::Key(unsigned code, char32_t character)
{
    crossingSince_ = 0;
    if (panels_.empty()) {
        // Of a title that does not open.
        if (code == ZV_KEY_ESCAPE) Finish(nullptr);
        if (code == ZV_KEY_LEFT || code == ZV_KEY_RIGHT) Go_To_Title(code == ZV_KEY_LEFT ? -1 : 1);
        return;
    }
    if (panels_.size() > 1 && Last().Selected() == MenuPanel::None) {
        // The mouse has opened it, and nobody has gone there yet.
        if (code == ZV_KEY_RIGHT || Is_Choosing_Key(code)) {
            Select_By_Key(Last().Next_Live(MenuPanel::None, 1));
            return;
        }
        panels_.pop_back();
        if (code == ZV_KEY_LEFT || code == ZV_KEY_ESCAPE) return;
    }
    if (Is_Choosing_Key(code)) {
        Choose_By_Key();
        return;
    }
    int const row = Last().Selected();
    switch (code) {
    case ZV_KEY_DOWN: Select_By_Key(Last().Next_Live(row, 1)); break;
    case ZV_KEY_UP: Select_By_Key(Last().Next_Live(row, -1)); break;
    case ZV_KEY_HOME: Select_By_Key(Last().Next_Live(MenuPanel::None, 1)); break;
    case ZV_KEY_END: Select_By_Key(Last().Next_Live(MenuPanel::None, -1)); break;
    case ZV_KEY_RIGHT: Go_Right(); break;
    case ZV_KEY_LEFT: Go_Left(); break;
    case ZV_KEY_ESCAPE:
        if (panels_.size() > 1)
            panels_.pop_back();
        else
            Finish(nullptr);
        break;
    default: Find_Letter(character); break;
    }
}

// ---- showing ----------------------------------------------------------------------------------------------

void OpenMenus::Update(ZVMenu const& menu)
{
    for (auto const& panel : panels_)
        panel->Update(menu);
}

void OpenMenus::Draw()
{
    for (auto const& panel : panels_)
        panel->Draw();
}

void OpenMenus::Present()
{
    for (auto const& panel : panels_)
        panel->Present();
}

}  // namespace

bool Is_Menu_Open()
{
    return menus != nullptr;
}

void Close_Menus()
{
    Finish(nullptr);
}

void Forget_Menu(ZVMenu const& menu)
{
    // Any part of the tree may be what an open menu shows.
    Close_Menus();
    for (WaitingCall* call = WaitingCall::innermost; call; call = call->outer)
        if (Is_Within(call->chosen, &menu)) call->chosen = nullptr;
}

void Update_Open_Menus(ZVMenu const& menu)
{
    if (menus) menus->Update(menu);
}

void Draw_Menus()
{
    Draw_Menu_Bar();
    if (menus) menus->Draw();
}

void Present_Menus()
{
    Present_Menu_Bar();
    if (menus) menus->Present();
}

// ---- input ------------------------------------------------------------------------------------------------

/// Opens a title's menu; without memory none is open.
static void Open_From_Bar(void (OpenMenus::*open)(int), int title, Point at, bool isHeld)
{
    bool const isOpen = Guarded([&] {
        menus = std::make_unique<OpenMenus>(nullptr, at, isHeld);
        (*menus.*open)(title);
        return true;
    });
    if (!isOpen) Close_Menus();
}

bool Press_Menu_Bar(HostEvent const& event)
{
    HostWindow const* const window = Menu_Bar_Window();
    if (!window || event.window != window) return false;
    if (event.button == HostButton::Middle) return true;
    if (!Is_Menu_Bar_Enabled()) {
        Display()->Beep();
        return true;
    }
    ZVEnv->modifiers |= ZV_MOD_BUTTON;
    Take_Mouse_Point(event);
    Begin_Press(nullptr);
    Do_Event(ZV_EVENT_MENU_INIT, 0);
    ZVEnv->modifiers &= ~uint32_t{ZV_MOD_BUTTON};
    // Whoever was told may have changed the menus, or have shown something that has taken the release.
    if (!Is_Menu_Bar_Enabled() || !Display()->Is_Button_Down()) return true;
    int const title = Title_At(event.x, event.y);
    if (title == NoTitle) return true;
    Open_From_Bar(&OpenMenus::Open_Title, title, {event.x, event.y}, true);
    return true;
}

/// The bar is there, nothing is open, and the release of a button that is held would not go to a menu.
static bool Can_Open_By_Key()
{
    return !menus && Menu_Bar_Window() && Is_Menu_Bar_Enabled() && !Display()->Is_Button_Down();
}

void Mac_Menu_Key(long key, unsigned long modifiers)
{
    constexpr unsigned long others =
        ZV_MOD_CONTROL | ZV_MOD_SHIFT | ZV_MOD_ALT | ZV_MOD_COMMAND | ZV_MOD_REPEAT;
    if (key != BarKey || modifiers & others || !Can_Open_By_Key()) return;
    Close_Pop_Ups(nullptr);
    Do_Event(ZV_EVENT_MENU_INIT, 0);
    int title = 0;
    while (title < Title_Count() && !Is_Title_Live(title))
        ++title;
    if (title == Title_Count() || !Can_Open_By_Key()) return;
    Point pointer{};
    Display()->Pointer(pointer.x, pointer.y);
    Open_From_Bar(&OpenMenus::Open_Title_By_Key, title, pointer, false);
}

/// The key that opens the bar closes all menus again.
static void Take_Menu_Key(HostEvent const& event)
{
    heldKey = event.key;
    auto const code = static_cast<unsigned>(Key_Of(event) & 0xFFFF);
    if (code != BarKey)
        menus->Key(code, event.character);
    else if (!event.isRepeat)
        Finish(nullptr);
}

bool Take_Menu_Input(HostEvent const& event)
{
    if (event.type == HostEventType::KeyUp && heldKey == event.key) {
        heldKey.reset();
        return true;
    }
    if (event.type == HostEventType::KeyDown && heldKey == event.key && !menus) {
        if (event.isRepeat) return true;
        heldKey.reset();  // nobody has seen its release
    }
    if (!menus) return false;
    Point const at{event.x, event.y};
    switch (event.type) {
    case HostEventType::MouseMove: menus->Move(at); return true;
    case HostEventType::MouseDown: menus->Press(at); return true;
    case HostEventType::MouseUp: menus->Release(at); return true;
    case HostEventType::Wheel: menus->Turn_Wheel(at, event.wheelY); return true;
    case HostEventType::KeyDown: Take_Menu_Key(event); return true;
    case HostEventType::KeyUp:
    case HostEventType::Text:
    case HostEventType::Composition: return true;
    default: return false;
    }
}

void Menu_Tick()
{
    int x = 0, y = 0;
    Display()->Pointer(x, y);
    menus->Rest({x, y});
}

ZVMenu* Make_Popup_Menu(ZVMenu* menu, long x, long y)
{
    if (!Display() || !menu || ZVEnv->exitRequested) return nullptr;
    Close_Menus();
    End_Press();
    WaitingCall call;
    Point pointer{};
    Display()->Pointer(pointer.x, pointer.y);
    int const left = static_cast<int>(std::clamp<long>(x, INT16_MIN, INT16_MAX));
    int const top = static_cast<int>(std::clamp<long>(y, INT16_MIN, INT16_MAX));
    bool const isOpen = Guarded([&] {
        auto opened = std::make_unique<OpenMenus>(&call, pointer, Display()->Is_Button_Down());
        if (!opened->Open(Rows_Of_Menu(*menu), {MenuSpot::Side::At, {left, top, left, top}})) return false;
        menus = std::move(opened);
        return true;
    });
    if (!isOpen) return nullptr;
    Run_While([&call] { return !call.isDone; });
    // ExitZV ends all loops.
    if (menus && menus->call == &call) Close_Menus();
    return call.chosen;
}
