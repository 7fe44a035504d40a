// The tree of menus: walking it, and making, placing and freeing its entries.
#pragma once

#include "interface/Records.h"

#include "ZVMenu.h"

/// The entry behind this one in depth-first order; null behind the last one below `owner`.
ZVMenu* Next_In_Tree(ZVMenu const* menu, ZVMenu const* owner);

/// A list of entries with all that is below them, depth-first. Entries must not be moved or freed meanwhile.
class MenuTree {
public:
    explicit MenuTree(List const& list)
        : first_(reinterpret_cast<ZVMenu*>(List_First(&list))), owner_(first_ ? first_->parent : nullptr)
    {
    }

    class Iterator {
    public:
        Iterator(ZVMenu* menu, ZVMenu const* owner) : menu_(menu), owner_(owner) {}
        ZVMenu& operator*() const { return *menu_; }
        Iterator& operator++()
        {
            menu_ = Next_In_Tree(menu_, owner_);
            return *this;
        }
        bool operator!=(std::nullptr_t) const { return menu_ != nullptr; }

    private:
        ZVMenu* menu_;
        ZVMenu const* owner_;
    };
    Iterator begin() const { return Iterator(first_, owner_); }
    std::nullptr_t end() const { return nullptr; }

private:
    ZVMenu* first_;
    ZVMenu const* owner_;
};

inline Records<ZVMenu> Entries_Of(ZVMenu const& menu)
{
    return Records<ZVMenu>(menu.submenus);
}

/// The menu of the top level, or the pop-up menu, that an entry is in.
ZVMenu const& Top_Of(ZVMenu const& menu);

/// Whether an entry is another one or lies below it.
bool Is_Within(ZVMenu const* menu, ZVMenu const* other);

/// The first entry of that id below a menu, else the menu itself; in the bar for null. Null when there is
/// none.
ZVMenu* Find_Menu(ZVMenu* menu, long id);

/// Copies a text without its accelerator marks: "&" goes, and the character behind it stays.
/// @param out  as large as the text
void Strip_Marks(char const* text, char* out);

/// Takes a text over, without its marks; null is an empty one. False with error 1 and the old one kept.
bool Take_Menu_Text(ZVMenu& menu, char const* text);

/// On no list, with a text. Null with error 1.
ZVMenu* New_Menu(char const* text);

void Link_Menu(ZVMenu& menu, ZVMenu* parent);  ///< At the end of the list of the parent, null the top level.
void Unlink_Menu(ZVMenu& menu);                ///< Nothing for one on no list.

/// Frees an entry with all below it.
void Free_Menu(ZVMenu* menu);
