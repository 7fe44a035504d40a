// The way of a key: to the focused text field or list, and what they leave as event 1.
#include "MacFocus.h"
#include "MacList.h"
#include "MacTextField.h"
#include "ZVLibInternal.h"
#include "host/Characters.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <optional>
#include <string>

namespace {

/// A key with what is held beside it.
struct KeyStroke {
    explicit KeyStroke(unsigned long key)
        : character(static_cast<char32_t>(key >> 16 & 0xFFFF)), code(static_cast<unsigned>(key & 0xFFFF))
    {
    }

    bool Has(uint32_t modifiers) const { return ZVEnv->modifiers & modifiers; }

    char32_t character;
    unsigned code;
};

}  // namespace

/// The focused field's text has changed: it is the item's state at once, and the application sees each
/// keystroke.
static void Report_Text(ZVItem& item)
{
    Text_Field_Of(&item)->Store_Text();
    Send_Gadget_Event(item, ZV_MOD_CHANGE);
}

/// The focused field; null when nothing, a list, or a field that has been disabled since has the focus.
static TextField* Focused_Field()
{
    ZVItem const* const item = ZVEnv->focusedTextItem;
    return item && !(item->flags & ZV_ITEMF_DISABLED) ? Text_Field_Of(item) : nullptr;
}

/// Not a control character, as the keys have that type nothing.
static bool Is_Typed(char32_t character)
{
    return character >= ' ' && character != 0x7F;
}

// ---- text fields ------------------------------------------------------------------------------------------

/// Copy, cut, paste, select all, undo. Nothing for another key, else whether the text has changed.
static std::optional<bool> Do_Command(TextField& field, KeyStroke const& key)
{
    if (key.Has(ZV_MOD_SHIFT | ZV_MOD_ALT)) return std::nullopt;
    switch (key.code) {
    case 'c': field.Copy(); return false;
    case 'x': return field.Cut();
    case 'v': return field.Paste();
    case 'a': field.Select_All(); return false;
    case 'z': return field.Undo();
    default: return std::nullopt;
    }
}

static bool Is_Caret_Key(unsigned code)
{
    return (code >= ZV_KEY_LEFT && code <= ZV_KEY_DOWN) || code == ZV_KEY_HOME || code == ZV_KEY_END ||
           code == ZV_KEY_PAGE_UP || code == ZV_KEY_PAGE_DOWN;
}

/// Keys that move the caret or change the text. Nothing for another key, else whether the text has changed.
static std::optional<bool> Edit(TextField& field, KeyStroke const& key, bool isEntered)
{
    if (Is_Caret_Key(key.code)) {
        field.Move(key.code, key.Has(ZV_MOD_SHIFT), key.Has(ZV_MOD_CONTROL));
        return false;
    }
    switch (key.code) {
    case ZV_KEY_BACKSPACE: return field.Erase(false);
    case ZV_KEY_DELETE: return field.Erase(true);
    // Only fields of several lines see these here.
    case ZV_KEY_RETURN:
    case ZV_KEY_ENTER: return field.Type("\n");
    case ZV_KEY_TAB: return field.Type("\t");
    default: break;
    }
    if (!Is_Typed(key.character)) return std::nullopt;
    return !isEntered && field.Type(Utf8_Of(key.character));
}

/// True when the field has taken the key.
static bool Text_Key(ZVItem& item, KeyStroke const& key, bool isEntered)
{
    TextField& field = *Text_Field_Of(&item);
    // Control stands for Command in a text field, and moves the caret by words.
    bool const isCommand = key.Has(ZV_MOD_COMMAND) || (key.Has(ZV_MOD_CONTROL) && !Is_Caret_Key(key.code));
    std::optional<bool> const hasChanged = isCommand ? Do_Command(field, key) : Edit(field, key, isEntered);
    if (hasChanged.value_or(false)) Report_Text(item);
    return hasChanged.has_value();
}

/// Return in a field of one line takes the focus away. True unless the key goes on, as it does in a modal
/// palette, where it may stand for the default button.
static bool Commit_Key(ZVItem& item)
{
    ZVPalette* const palette = Root_Of(item.group->palette);
    LivingPalette const watch(palette);
    Mac_Drop_Focus(ZV_MOD_RELEASE);
    return !watch.Is_There() || palette->kind != ZV_KIND_MODAL;
}

// ---- lists ------------------------------------------------------------------------------------------------

/// Up and Down select rows. True for any arrow.
static bool List_Key(ZVItem& item, KeyStroke const& key)
{
    if (key.code < ZV_KEY_LEFT || key.code > ZV_KEY_DOWN) return false;
    if (key.code < ZV_KEY_UP) return true;
    ListBox& list = *List_Of(item);
    int const last = list.Row_Count() - 1, old = list.Selected_Row();
    bool const isDown = key.code == ZV_KEY_DOWN, isFar = key.Has(ZV_MOD_COMMAND);
    int row = isDown ? std::min(old + 1, last) : std::max(old - 1, 0);
    if (isFar) row = isDown ? last : 0;
    if (last < 0 || row == old) return true;
    list.Select_Row(row);
    item.state = row + 1;
    Send_Gadget_Event(item, ZV_MOD_RELEASE);
    return true;
}

// ---- all keys ---------------------------------------------------------------------------------------------

/// True when the focused field or list has taken the key.
static bool Focus_Key(KeyStroke const& key, bool isEntered)
{
    ZVItem* const item = ZVEnv->focusedTextItem;
    TextField* const field = Focused_Field();
    ZVItem* const listItem = ZVEnv->focusedListItem;
    if (!(field && field->Is_Multi_Line())) {
        if (key.code == ZV_KEY_TAB && (item || listItem)) {
            if (key.Has(ZV_MOD_SHIFT) ? Tab_to_Prev_Gad() : Tab_to_Next_Gad()) return true;
            // A pop-up or dialog with a single field may know where else to go.
            uint32_t const kind = Root_Of((listItem ? listItem : item)->group->palette)->kind;
            return kind != ZV_KIND_TRANSIENT && kind != ZV_KIND_MODAL;
        }
        if (field && (key.code == ZV_KEY_RETURN || key.code == ZV_KEY_ENTER)) return Commit_Key(*item);
    }
    if (field && Text_Key(*item, key, isEntered)) return true;
    bool const hasList = listItem && List_Of(*listItem) && !(listItem->flags & ZV_ITEMF_DISABLED);
    return !field && hasList && List_Key(*listItem, key);
}

void Handle_KeyStroke(unsigned long key, long isEntered)
{
    if (!Focus_Key(KeyStroke(key), isEntered != 0)) Do_Event(ZV_EVENT_KEY, key);
}

void Enter_Text(std::string_view utf8)
{
    TextField* const field = Focused_Field();
    if (field && field->Type(utf8)) Report_Text(*ZVEnv->focusedTextItem);
}

void Compose_Text(std::string_view utf8, int caret)
{
    if (TextField* const field = Focused_Field()) field->Compose(utf8, caret);
}
