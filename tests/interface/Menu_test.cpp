// The tree of menus, against a plain model of it, and what calls and choices do to its entries.
#include "FailingHeap.h"
#include "TestEnvironment.h"

#include <functional>
#include <memory>
#include <random>
#include <strings.h>
#include <vector>

namespace {

class Menus : public EnvironmentTest {
protected:
    Menus()
    {
        told.clear();
        ZVEnv->callback = [](ZVEvent* event) { Tell("application", event); };
    }

    static void Tell(std::string const& who, ZVEvent const* event)
    {
        told += who + " " + Event_Menu(event)->text + " " + std::to_string(event->key) + ";";
    }
    static std::string Told() { return std::exchange(told, {}); }

    /// "File[New Open[a b]] Edit[]": texts as they stand below a list.
    static std::string Drawn(List const& list)
    {
        std::string text;
        for (Node const* node = List_First(&list); node; node = List_Next(node)) {
            auto const* menu = reinterpret_cast<ZVMenu const*>(node);
            text += (text.empty() ? "" : " ") + std::string(menu->text);
            if (!List_Empty(&menu->submenus)) text += "[" + Drawn(menu->submenus) + "]";
        }
        return text;
    }
    static std::string Drawn() { return Drawn(ZVEnv->menus); }

    static std::string told;
};
std::string Menus::told;

/// Entry as the model has it.
struct Entry {
    unsigned id;
    std::string text;
    bool isChecked = false, isCheckable = false, isDisabled = false;
    std::vector<unsigned> set = {};
    Entry* parent = nullptr;
    std::vector<std::unique_ptr<Entry>> below = {};
};

/// A tree of entries that does what the library's is to do, one step at a time.
class Model {
public:
    Entry root{};

    Entry* Find(unsigned id)
    {
        return Find_If([=](Entry& entry) { return entry.id == id; });
    }
    Entry* Find_If(std::function<bool(Entry&)> const& is) { return Find_Below(root, is); }
    std::size_t Place_Of(Entry& entry)
    {
        auto& list = entry.parent->below;
        return static_cast<std::size_t>(
            std::find_if(list.begin(), list.end(), [&](auto& each) { return each.get() == &entry; }) -
            list.begin());
    }
    void Insert(Entry& parent, std::size_t place, Entry entry)
    {
        entry.parent = &parent;
        parent.below.insert(parent.below.begin() + static_cast<std::ptrdiff_t>(place),
                            std::make_unique<Entry>(std::move(entry)));
    }
    void Delete(Entry& entry)
    {
        auto& list = entry.parent->below;
        list.erase(list.begin() + static_cast<std::ptrdiff_t>(Place_Of(entry)));
    }
    void Check(Entry& entry, bool on)
    {
        if (!entry.isCheckable || (!on && !entry.set.empty())) return;
        entry.isChecked = on;
        for (unsigned const id : on ? entry.set : std::vector<unsigned>())
            Find_If([&](Entry& each) {
                if (each.id == id && &each != &entry) each.isChecked = false;
                return false;
            });
    }
    static void Sort(Entry& entry)
    {
        auto const name = [](auto& each) {
            std::string text = each->text;
            return text.ends_with("...") ? text.substr(0, text.size() - 3) : text;
        };
        std::sort(entry.below.begin(), entry.below.end(),
                  [&](auto& a, auto& b) { return strcasecmp(name(a).c_str(), name(b).c_str()) < 0; });
        for (auto& each : entry.below)
            Sort(*each);
    }

private:
    static Entry* Find_Below(Entry& entry, std::function<bool(Entry&)> const& is)
    {
        for (auto& each : entry.below) {
            if (is(*each)) return each.get();
            if (Entry* const found = Find_Below(*each, is)) return found;
        }
        return nullptr;
    }
};

/// Compares a list with what is below an entry of the model, links both ways included.
void Compare(Entry const& entry, List const& list, ZVMenu const* parent)
{
    Node const* node = List_First(&list);
    Node const* before = List_Head(&list);
    for (auto const& each : entry.below) {
        ASSERT_TRUE(node) << each->text;
        auto const& menu = *reinterpret_cast<ZVMenu const*>(node);
        ASSERT_EQ(menu.text, each->text);
        ASSERT_EQ(menu.node.id, each->id);
        ASSERT_EQ(menu.parent, parent);
        ASSERT_EQ(node->prev, before);
        ASSERT_EQ(static_cast<bool>(menu.flags & ZV_MENUF_CHECKED), each->isChecked) << each->text;
        ASSERT_EQ(static_cast<bool>(menu.flags & ZV_MENUF_DISABLED), each->isDisabled) << each->text;
        ASSERT_NO_FATAL_FAILURE(Compare(*each, menu.submenus, &menu));
        before = node;
        node = List_Next(node);
    }
    ASSERT_FALSE(node);
}

}  // namespace

TEST_F(Menus, AnyOrderOfCallsLeavesTheTreeThatAModelHas)
{
    std::mt19937 random(17);
    auto const pick = [&](unsigned count) { return static_cast<unsigned>(random() % count); };
    Model model;
    for (unsigned step = 0; step < 6000; ++step) {
        // Few enough ids that many are used twice; texts are all different.
        unsigned const id = 1 + pick(40), other = 1 + pick(40);
        Entry* const entry = model.Find(id);
        long const on = pick(2);
        switch (pick(9)) {
        case 0:
        case 1: {
            std::string const text =
                std::string(1, "bBcD"[pick(4)]) + std::to_string(step) + (on ? "..." : "");
            Entry added{.id = id, .text = text, .isCheckable = on != 0};
            unsigned long const place = ZV_MENU_AFTER + pick(4);  // the last is no place at all
            InsertMenuItemZV(static_cast<long>(id), text.c_str(), 0, place, other,
                             on ? ZV_MENU_CHECKABLE : ZV_TAG_IGNORE, 0);
            Entry* const reference = place <= ZV_MENU_UNDER ? model.Find(other) : nullptr;
            if (place == ZV_MENU_ENABLED || !reference)
                model.Insert(model.root, model.root.below.size(), std::move(added));
            else if (place == ZV_MENU_UNDER)
                model.Insert(*reference, reference->below.size(), std::move(added));
            else
                model.Insert(*reference->parent, model.Place_Of(*reference) + (place == ZV_MENU_AFTER),
                             std::move(added));
            break;
        }
        case 2:
            if (pick(3) == 0) break;
            DelMenuItemZV(static_cast<long>(id));
            if (entry) model.Delete(*entry);
            break;
        case 3:
            SelectMenuZV(static_cast<long>(id), on);
            if (entry) model.Check(*entry, on);
            break;
        case 4: {
            SetMenuExclusionZV(id, other);
            Entry* const second = model.Find(other);
            for (Entry* const member : {entry, second})
                if (member) member->set = {id, other};
            break;
        }
        case 5:
            EnableMenuZV(static_cast<long>(id), on);
            if (entry) entry->isDisabled = !on;
            break;
        case 6:
            SetMenuTextZV(static_cast<long>(id), ("&t" + std::to_string(step)).c_str());
            if (entry) entry->text = "t" + std::to_string(step);
            break;
        case 7:
            SortSubMenusZV(&ZVEnv->menus, id);
            if (entry) Model::Sort(*entry);
            break;
        default:
            Menu_Event(static_cast<short>(id), static_cast<short>(other % 4));
            if (Entry* chosen = entry) {
                if (other % 4 > entry->below.size()) break;
                if (other % 4) chosen = entry->below[other % 4 - 1].get();
                model.Check(*chosen, !chosen->isChecked);
            }
            break;
        }
        ASSERT_NO_FATAL_FAILURE(Compare(model.root, ZVEnv->menus, nullptr)) << "at step " << step;
        ZVMenu const* const found = FindMenuZV(other);
        Entry const* const expected = model.Find(other);
        ASSERT_EQ(found ? found->text : "", expected ? expected->text : "");
    }
}

TEST_F(Menus, TextsLoseTheirMarksAndAreFoundWithThem)
{
    struct Case {
        char const *given, *kept;
    };
    std::string const longText(4096, 'x');
    for (auto const& [given, kept] : {Case{"&Save", "Save"},
                                      {"R&&D", "R&D"},
                                      {"&", ""},
                                      {"a&&&b&", "a&b"},
                                      {"", ""},
                                      {nullptr, ""},
                                      {longText.c_str(), longText.c_str()}}) {
        InitMenuZV();
        EXPECT_STREQ(AddMenuItemZV(5, given, 0, nullptr)->text, kept);
        EXPECT_STREQ(EndMenuZV(1, given, nullptr)->text, kept);
        EXPECT_EQ(FindSubMenuZV(&ZVEnv->menus, 1, given), given ? FindMenuZV(5) : nullptr);
        ClearMenuBarZV();
    }
    InsertMenuItemZV(InsertMenuItemZV(7, "a", 0, nullptr), 8, "Save", 0, nullptr);
    EXPECT_TRUE(FindSubMenuZV(&ZVEnv->menus, 7, "s&AVE"));
    EXPECT_FALSE(FindSubMenuZV(&ZVEnv->menus, 8, "Save"));
}

TEST_F(Menus, IdsOfNoneAreTakenInTurnAndRound)
{
    ZVEnv->nextItemId = 32766;
    InitMenuZV();
    std::vector<unsigned> ids;
    for (int i = 0; i < 4; ++i)
        ids.push_back(AddMenuItemZV(0, "a", 0, nullptr)->node.id);
    ids.push_back(AddMenuItemZV(1002, "a", 0, nullptr)->node.id);
    ids.push_back(AddMenuItemZV(0, "a", 0, nullptr)->node.id);
    ids.push_back(AddMenuItemZV(5, "a", 0, ZV_MENU_NEW_ITEM_ID, 0, 0)->node.id);
    EXPECT_EQ(ids, (std::vector<unsigned>{32766, 32767, 1000, 1001, 1002, 1003, 1004}));
    SetBaseUniqueMenuID(232);
    EXPECT_EQ(EndMenuZV(0, "a", nullptr)->node.id, 232U);
    ids.clear();
    for (int i = 0; i < 3; ++i) {
        InitMenuZV();
        ids.push_back(EndMenuZV(0, "a", nullptr)->node.id);
    }
    EXPECT_EQ(ids, (std::vector<unsigned>{233, 234, 0})) << "none is left";
}

TEST_F(Menus, EntriesInTheApplicationAndHelpMenusDoNotCountInTheirOwn)
{
    InitMenuZV();
    AddMenuItemZV(11, "about", 0, ZV_MENU_ABOUT, 0, 0);
    AddMenuItemZV(12, "one", 0, 0);
    AddMenuItemZV(13, "help", 0, ZV_MENU_HELP, 0, 0);
    AddMenuItemZV(14, "more help", 0, ZV_MENU_HELP, 0, 0);
    AddMenuItemZV(15, "two", 0, ZV_MENU_QUIT, 0, 0);
    AddMenuItemZV(16, "more about", 0, ZV_MENU_ABOUT, 0, 0);
    EndMenuZV(1, "menu", nullptr);
    for (auto const& [id, position] :
         {std::pair(11, 1L), {12, 1}, {13, 1}, {14, 2}, {15, 2}, {16, 2}, {1, 1}}) {
        ZVMenu* found = nullptr;
        long place = 0;
        EXPECT_EQ(Find_MenuID(&ZVEnv->menus, id, &found, &place), 1);
        EXPECT_EQ(place, position) << id;
    }
    EXPECT_EQ(Find_MenuID(&ZVEnv->menus, 77, nullptr, nullptr), 0);
    struct Case {
        short menu, item;
        char const* told;
    };
    for (auto const& [menu, item, expected] : {Case{1, 1, "application one 0;"},
                                               {1, 2, "application two 0;"},
                                               {1, 3, ""},
                                               {1, 0, "application menu 0;"},
                                               {HelpMenuNumber, 2, "application more help 0;"},
                                               {HelpMenuNumber, 3, ""},
                                               {ApplicationMenuNumber, 1, "application about 0;"},
                                               {ApplicationMenuNumber, 0, ""},
                                               {9, 1, ""}}) {
        Menu_Event(menu, item);
        EXPECT_EQ(Told(), expected) << menu << " " << item;
    }
    EXPECT_EQ(Find_Special_Menu_Item(ZV_MENUF_QUIT), FindMenuZV(15));
    EnableMenusZV(1, 0);
    EXPECT_FALSE(FindMenuZV(11)->flags & ZV_MENUF_DISABLED);
    EXPECT_TRUE(FindMenuZV(15)->flags & ZV_MENUF_DISABLED);
}

TEST_F(Menus, AChoiceIsToldToTheNearestCallback)
{
    using Callback = void (*)(ZVEvent*);
    Callback const own = [](ZVEvent* event) { Tell("own", event); };
    Callback const outer = [](ZVEvent* event) { Tell("outer", event); };
    ZVKeySection section;
    section.callback = [](ZVEvent* event) { Tell("section", event); };
    ZVKeySection quiet;
    InitMenuZV();
    InitMenuZV();
    AddMenuItemZV(21, "a", 4, ZV_MENU_CALLBACK, own, 0);
    AddMenuItemZV(22, "b", 5, nullptr);
    EndMenuZV(2, "inner", nullptr);
    AddMenuItemZV(23, "c", 0, ZV_MENU_KEY_SECTION, &section, 0);
    EndMenuZV(1, "menu", ZV_MENU_CALLBACK, outer, 0);
    InsertMenuItemZV(24, "d", 0, ZV_MENU_KEY_SECTION, &section, 0);
    InsertMenuItemZV(25, "e", 0, ZV_MENU_KEY_SECTION, &quiet, 0);
    for (short id = 21; id <= 25; ++id)
        Menu_Event(id, 0);
    EXPECT_EQ(Told(), "own a 4;outer b 5;outer c 0;section d 0;application e 0;");
}

TEST_F(Menus, KeysBelongToTheNearestSectionAndStopAtADisabledEntry)
{
    unsigned short const first[] = {'a' | ZV_MOD_CONTROL, 1, 0, 'b', 2, 0, 0};
    unsigned short const second[] = {ZV_KEY_F1, 1, 0, 0};
    ZVKeySection general{.bindings = first}, special{.bindings = second};
    ZVEnv->keySection = &general;
    InitMenuZV();
    AddMenuItemZV(10, "a", 1, nullptr);
    AddMenuItemZV(11, "b", 1, ZV_MENU_KEY_SECTION, &special, 0);
    AddMenuItemZV(12, "c", 9, nullptr);
    EndMenuZV(1, "menu", nullptr);
    EXPECT_EQ(FindMenuZV(10)->key, 'a' | ZV_MOD_CONTROL);
    EXPECT_EQ(FindMenuZV(11)->key, ZV_KEY_F1);
    EXPECT_EQ(FindMenuZV(12)->key, 0);
    EXPECT_EQ(Find_ActionID(1, &general), FindMenuZV(10));
    EXPECT_EQ(Find_ActionID(1, &special), FindMenuZV(11));
    EXPECT_FALSE(Find_ActionID(0, &general) || Find_ActionID(2, &general));

    static int actions;
    actions = 0;
    ZVEnv->callback = [](ZVEvent* event) { actions += event->type == ZV_EVENT_ACTION; };
    ProcessKeyEventZV(&special, ZV_KEY_F1, 0);
    EXPECT_EQ(actions, 1);
    EnableMenuZV(1, 0);
    EXPECT_EQ(ProcessKeyEventZV(&special, ZV_KEY_F1, 0), 1) << "the key is taken";
    Process_Keys('a', ZV_MOD_CONTROL);
    EXPECT_EQ(actions, 1);
    Process_Keys('b', 0);
    EXPECT_EQ(actions, 2) << "no entry has the action";
    ZVEnv->keySection = nullptr;
}

TEST_F(Menus, PlacesAreThoseBesideTheNeighbour)
{
    ZVMenu* const file = InsertMenuItemZV(1, "File", 0, nullptr);
    InsertMenuItemZV(file, 10, "New", 0, nullptr);
    InsertMenuItemZV(11, "Old", 0, ZV_MENU_AFTER, 10, 0);
    InsertMenuItemZV(12, "First", 0, ZV_MENU_BEFORE, 10, 0);
    InsertMenuItemZV(13, "Sub", 0, ZV_MENU_UNDER, 12, 0);
    EXPECT_EQ(Drawn(), "File[First[Sub] New Old]");
    AddMenuItemZV(FindMenuZV(13), ZV_MENU_AFTER, 1, 0);
    EXPECT_EQ(Drawn(), "File[First New Old] Sub");
    EXPECT_EQ(FindMenuZV(13)->parent, nullptr);
    EXPECT_FALSE(AddMenuItemZV(file, ZV_MENU_BEFORE, 10, 0)) << "a place in itself";
    EXPECT_EQ(GetErrorZV(), static_cast<unsigned long>(ZV_ERR_NO_MENU));
    InitMenuZV();
    AddMenuItemZV(FindMenuZV(11), nullptr);
    AddMenuZV(file, nullptr);
    AddMenuZV(ZVEnv->currentMenu, ZV_MENU_ENABLED, 0, 0);
    EndMenuZV(2, "Edit", ZV_MENU_BEFORE, 1, 0);
    EXPECT_EQ(Drawn(), "Edit[Old First New Old First New] File[First New] Sub");
    EXPECT_EQ(GetErrorZV(), 0UL);

    InitMenuZV();
    AddMenuItemZV(30, "Cut", 0, nullptr);
    ZVMenu* const popUp = EndMenuZV(3, "Pop-up", ZV_MENU_POPUP, 0, ZV_MENU_AFTER, 1, 0);
    InsertMenuItemZV(popUp, 31, "Copy", 0, ZV_MENU_BEFORE, 30, 0);
    SelectMenuZV(popUp, 31, 1);
    EXPECT_EQ(Drawn(popUp->submenus), "Copy Cut");
    EXPECT_EQ(Drawn(), "Edit[Old First New Old First New] File[First New] Sub");
    EXPECT_FALSE(FindMenuZV(3) || FindMenuZV(30));
    Menu_Event(popUp, 3, 2);
    EXPECT_EQ(Told(), "application Cut 0;");
    DelMenuItemZV(popUp, 30);
    DelMenuZV(popUp);
}

TEST_F(Menus, CopiesTakeTheirMenusCallbackAlong)
{
    InitMenuZV();
    AddMenuItemZV(10, "a", 0, nullptr);
    InitMenuZV();
    AddMenuItemZV(11, "b", 3, ZV_MENU_CHECKABLE, 0, ZV_MENU_STYLE, ZV_MENUF_BOLD, 0);
    EndMenuZV(2, "sub", nullptr);
    ZVMenu* const menu = EndMenuZV(
        1, "menu", ZV_MENU_CALLBACK, +[](ZVEvent* event) { Tell("old", event); }, 0);
    SetMenuExclusionZV(menu, 10, 11);
    InitMenuZV();
    AddMenuZV(menu, nullptr);
    ZVMenu* const copy = EndMenuZV(3, "copy", nullptr);
    DelMenuZV(menu);
    EXPECT_EQ(Drawn(), "copy[a sub[b]]");
    Menu_Event(copy, 11, 0);
    EXPECT_EQ(Told(), "old b 3;");
    EXPECT_EQ(IsMenuSelectedZV(copy, 11), 1);
    SelectMenuZV(11, 0);
    EXPECT_EQ(IsMenuSelectedZV(11), 1) << "only another member takes the mark";
}

TEST_F(Menus, DeclarationsRunToTheirEndWhateverFails)
{
    EXPECT_FALSE(AddMenuItemZV(1, "a", 0, nullptr));
    EXPECT_EQ(GetErrorZV(), static_cast<unsigned long>(ZV_ERR_NO_MENU));
    EXPECT_FALSE(EndMenuZV(1, "a", nullptr));
    if (!FailingHeap::Is_Available()) GTEST_SKIP() << "the sanitizer has a heap of its own";
    bool isWhole = false;
    for (long after = 0; !isWhole; ++after) {
        ASSERT_LT(after, 100);
        FailingHeap const heap(after);
        InitMenuZV();
        AddMenuItemZV(10, "a", 0, nullptr);
        InitMenuZV();
        AddMenuItemZV(11, "b", 0, nullptr);
        EndMenuZV(2, "inner", nullptr);
        AddMenuItemZV(12, "c", 0, nullptr);
        isWhole = EndMenuZV(1, "outer", nullptr);
        FailingHeap::Recover();
        EXPECT_EQ(GetErrorZV(), isWhole ? 0UL : 1UL);
        EXPECT_EQ(Drawn(), isWhole ? "outer[a inner[b] c]" : "") << after;
        EXPECT_FALSE(ZVEnv->currentMenu);
    }
    ZVMenu* const outer = FindMenuZV(1);
    for (long after = 0; GetErrorZV() != 0 || after == 0; ++after) {
        ASSERT_LT(after, 100);
        InitMenuZV();
        {
            FailingHeap const heap(after);
            AddMenuZV(outer, nullptr);
            FailingHeap::Recover();
        }
        bool const isCopied = GetErrorZV() == 0;
        ASSERT_EQ(Drawn(ZVEnv->currentMenu->submenus), isCopied ? "a inner[b] c" : "") << after;
        EndMenuZV(5, "copy", nullptr);
        SetMenuExclusionZV(10, 11, 12);
        if (isCopied) break;
    }
}

TEST_F(Menus, ManyDeepAndOddMenusAreOnlyMenus)
{
    constexpr int deep = 3000;
    for (int i = 0; i < deep; ++i)
        InitMenuZV();
    for (int i = 0; i < 500; ++i)
        AddMenuItemZV(7, std::string(4096, '&').c_str(), 0, ZV_MENU_UNDER, 7, ZV_MENU_AFTER, 99, 0);
    for (int i = 0; i < deep; ++i)
        EndMenuZV(1, "deep", nullptr);
    ZVMenu* const top = FindMenuZV(1);
    SortSubMenusZV(top);
    EnableMenusZV(top, 0);
    InitMenuZV();
    AddMenuZV(top, nullptr);
    EXPECT_TRUE(EndMenuZV(2, "copy", nullptr));
    InitMenuZV();  // left open
}
