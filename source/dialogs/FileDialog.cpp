// See FileDialog.h. What is here declares the palette and deals its events out.
#include "FileDialog.h"

#include "FileDialogDraw.h"
#include "FileDialogKinds.h"

#include "Locale/ZVLibStr.h"
#include "interface/Interruption.h"

#include <algorithm>
#include <new>
#include <utility>

namespace {

constexpr unsigned short FirstPlace = ZV_Position(ZV_POS_DEFAULT, ZV_POS_DEFAULT);
constexpr unsigned short BelowPlace = ZV_Position(ZV_POS_ALIGN_START, ZV_POS_AFTER);
constexpr unsigned short BesidePlace = ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START);

enum Group : short { PathGroup = 1, PlacesGroup, ListGroup, FieldGroup, ButtonGroup };

constexpr long Gap = 8;

/// Rows and characters of the list: the fewest, and those of a new window.
constexpr long LeastRows = 8, UsualRows = 24;
constexpr long LeastColumns = 52, UsualColumns = 100;

long List_Height(long rows)
{
    return (rows + 1) * File_Row_Height() + 5;
}

bool showsHidden = false;  // as the user left it

}  // namespace

FileDialog::FileDialog(FileQuestion& question)
    : question_(question), listing_([this](FileEntry const& entry) { return Is_Wanted(entry); }),
      rows_(listing_, FileDialogIds::Bar),
      keyboard_(question.mode == FileDialogMode::Save ? Keyboard::Name : Keyboard::List),
      selectsStem_(question.mode == FileDialogMode::Save)
{
    rows_.Show_Keyboard(keyboard_ == Keyboard::List);
}

bool FileDialog::Is_Wanted(FileEntry const& entry) const
{
    if (entry.isHidden && !showsHidden) return false;
    if (entry.isDirectory || question_.mode == FileDialogMode::Save) return true;
    std::string const spec = spec_ + entry.name;
    return question_.mode == FileDialogMode::Open &&
           Is_File_Shown(&question_.kinds, spec.c_str(), entry.creator, entry.type);
}

// ---- the palette ------------------------------------------------------------------------------------------

void FileDialog::Add_Path_Group()
{
    InitGroupZV();
    AddGadgetZV(FileDialogIds::Path, FirstPlace, 0, ZV_GAD_CUSTOM, ZV_SIZE_CUSTOM, nullptr,
                ZV_ITEM_CUSTOM_FUNC, FileDialogGadget::Function, ZV_ITEM_USER_DATA,
                static_cast<FileDialogGadget*>(&path_), ZV_ITEM_WIDTH, 200, ZV_ITEM_HEIGHT,
                ZVEnv->style->gadgetHeight, ZV_ITEM_GROW_WIDTH, 100, 0);
    AddGadgetZV(FileDialogIds::Up, BesidePlace, -1, ZV_GAD_BUTTON, ZV_SIZE_SMALL, ZVSTR_DIALOG_UP,
                ZV_GAP_WIDE, 1, 0);
    if (question_.mode != FileDialogMode::Open)
        AddGadgetZV(FileDialogIds::NewFolder, BesidePlace, -1, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM,
                    ZVSTR_DIALOG_NEW_FOLDER, ZV_GAP_WIDE, 1, 0);
    EndGroupZV(PathGroup, FirstPlace, 0, nullptr, ZV_GRP_FULL_WIDTH, 1, ZV_MARGIN_NONE, 1, 0);
}

void FileDialog::Add_List_Groups()
{
    long const height = List_Height(LeastRows);
    InitGroupZV();
    AddGadgetZV(FileDialogIds::Places, FirstPlace, 0, ZV_GAD_CUSTOM, ZV_SIZE_CUSTOM, nullptr,
                ZV_ITEM_CUSTOM_FUNC, FileDialogGadget::Function, ZV_ITEM_USER_DATA,
                static_cast<FileDialogGadget*>(&places_), ZV_ITEM_WIDTH, places_.Natural_Width(),
                ZV_ITEM_HEIGHT, height, ZV_ITEM_GROW_HEIGHT, 100, 0);
    EndGroupZV(PlacesGroup, BelowPlace, PathGroup, nullptr, ZV_GRP_GROW_HEIGHT, 100, ZV_MARGIN_NONE, 1,
               ZV_GAP_FIXED, Gap, 0);
    InitGroupZV();
    AddGadgetZV(FileDialogIds::Rows, FirstPlace, 0, ZV_GAD_CUSTOM, ZV_SIZE_CUSTOM, nullptr,
                ZV_ITEM_CUSTOM_FUNC, FileDialogGadget::Function, ZV_ITEM_USER_DATA,
                static_cast<FileDialogGadget*>(&rows_), ZV_ITEM_WIDTH,
                LeastColumns * GetAveCharWidthZV(nullptr), ZV_ITEM_HEIGHT, height, ZV_ITEM_GROW_WIDTH, 100,
                ZV_ITEM_GROW_HEIGHT, 100, 0);
    AddGadgetZV(FileDialogIds::Bar, BesidePlace, -1, ZV_GAD_VPROP, ZV_SIZE_DEFAULT, nullptr, ZV_ITEM_MIN, 0,
                ZV_ITEM_MAX, 0, ZV_ITEM_HEIGHT, height, ZV_ITEM_GROW_HEIGHT, 100, ZV_GAP_FIXED, -1, 0);
    EndGroupZV(ListGroup, BesidePlace, PlacesGroup, nullptr, ZV_GRP_GROW_WIDTH, 100, ZV_GRP_GROW_HEIGHT, 100,
               ZV_MARGIN_NONE, 1, ZV_GAP_FIXED, Gap, 0);
}

/// Ids of entries are their numbers.
void FileDialog::Add_Kinds(std::vector<std::string> const& names, unsigned short position, short reference,
                           long width)
{
    std::vector<Node> nodes(names.size());
    List entries;
    NewList(&entries);
    for (std::size_t i = 0; i < names.size(); ++i) {
        nodes[i].name = const_cast<char*>(names[i].c_str());
        nodes[i].id = static_cast<uint32_t>(i + 1);
        AddTail(&entries, &nodes[i]);
    }
    bool const isSaving = question_.mode == FileDialogMode::Save;
    AddGadgetZV(FileDialogIds::Kinds, position, reference, ZV_GAD_CYCLE, ZV_SIZE_CUSTOM,
                isSaving ? ZVSTR_SAVE_FORMAT : ZVSTR_DIALOG_KINDS, ZV_ITEM_ENTRIES, &entries, ZV_ITEM_WIDTH,
                width, ZV_ITEM_HEIGHT, ZVEnv->style->gadgetHeight, ZV_ITEM_GROW_WIDTH, 100, 0);
    SetGadgetStateZV(FileDialogIds::Kinds, question_.kinds.Current);
}

/// False when the question needs none.
bool FileDialog::Add_Field_Group()
{
    bool const isSaving = question_.mode == FileDialogMode::Save;
    std::vector<std::string> const kinds = File_Kind_Names(question_.kinds);
    if (!isSaving && kinds.empty()) return false;
    long const width = 24 * GetAveCharWidthZV(nullptr);
    InitGroupZV();
    if (isSaving) {
        AddGadgetZV(FileDialogIds::Name, FirstPlace, 0, ZV_GAD_STRING, ZV_SIZE_CUSTOM, ZVSTR_DIALOG_NAME,
                    ZV_ITEM_MAX_CHARS, ZV_SPEC_SIZE - 1, ZV_ITEM_WIDTH, width, ZV_ITEM_HEIGHT,
                    ZVEnv->style->gadgetHeight, ZV_ITEM_GROW_WIDTH, 100, 0);
        SetTextGadgetStateZV(FileDialogIds::Name, question_.name.c_str());
    }
    if (!kinds.empty())
        Add_Kinds(kinds, isSaving ? BelowPlace : FirstPlace, isSaving ? FileDialogIds::Name : 0, width);
    EndGroupZV(FieldGroup, BelowPlace, PlacesGroup, nullptr, ZV_GRP_FULL_WIDTH, 1, ZV_MARGIN_NONE, 1,
               ZV_GAP_FIXED, Gap, 0);
    return true;
}

void FileDialog::Add_Button_Group(bool hasFields)
{
    static constexpr unsigned long labels[] = {ZVSTR_DIALOG_OPEN, ZVSTR_DIALOG_SAVE, ZVSTR_DIALOG_CHOOSE};
    InitGroupZV();
    AddGadgetZV(FileDialogIds::Hidden, FirstPlace, 0, ZV_GAD_CHECK, ZV_SIZE_LARGE, ZVSTR_DIALOG_HIDDEN,
                nullptr);
    SetGadgetStateZV(FileDialogIds::Hidden, showsHidden);
    AddGadgetZV(FileDialogIds::Cancel, BesidePlace, -1, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, ZVSTR_CANCEL,
                ZV_GAP_NORMAL_FLEX, 1, 0);
    AddGadgetZV(FileDialogIds::Accept, BesidePlace, -1, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM,
                labels[static_cast<int>(question_.mode)], ZV_ITEM_FONT_BOLD, 1, ZV_GAP_WIDE, 1, 0);
    EndGroupZV(ButtonGroup, BelowPlace, hasFields ? FieldGroup : PlacesGroup, nullptr, ZV_GRP_FULL_WIDTH, 1,
               ZV_MARGIN_NONE, 1, ZV_GAP_FIXED, Gap, 0);
}

/// As large as is useful, where the screen has room for it.
long FileDialog::Show(ZVPalette* palette)
{
    static constexpr unsigned long titles[] = {ZVSTR_DIALOG_OPEN, ZVSTR_DIALOG_SAVE, ZVSTR_DIALOG_DIRECTORY};
    char const* const title = question_.title.empty() ? GetStringZV(titles[static_cast<int>(question_.mode)])
                                                      : question_.title.c_str();
    ZVRectT<long> screen;
    GetScreenRectZV(&screen);
    long const width = places_.Natural_Width() + UsualColumns * GetAveCharWidthZV(nullptr);
    long const height = List_Height(UsualRows) + 5L * ZVEnv->style->gadgetHeight;
    palette_ = palette;
    palette->object = this;
    if (!EndPaletteZV(0, title, ZV_PAL_CALLBACK, Callback, 0)) return 0;
    watch_.emplace(palette);
    return DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_MODAL, ZV_PAL_FLAGS,
                            ZV_PALF_SIZE_BOTH | ZV_PALF_NO_GROW_AREA, ZV_PAL_PREF_NAME, "File Dialog",
                            ZV_PAL_SUGGEST_WIDTH, std::min(width, screen.width * 9 / 10),
                            ZV_PAL_SUGGEST_HEIGHT, std::min(height, screen.height * 8 / 10), 0);
}

/// False without memory.
bool FileDialog::Declare()
try {
    Add_Path_Group();
    Add_List_Groups();
    Add_Button_Group(Add_Field_Group());
    return true;
} catch (std::bad_alloc const&) {
    hasFailed_ = true;
    return false;
}

bool FileDialog::Run()
{
    Interruption interruption;
    ZVPalette* const palette = InitPaletteZV();
    bool isShown = false;
    if (palette && Declare())
        isShown = Show(palette);
    else if (palette)
        Free_Palette(palette);
    // The end of the application ends the loop too.
    if (Is_There()) ClosePaletteZV(palette);
    if (hasFailed_) SetError(ZV_ERR_MEMORY);
    if (!isShown || hasFailed_) interruption.Keep_Error();
    return isShown && !hasFailed_;
}

// ---- events -----------------------------------------------------------------------------------------------

void FileDialog::Callback(ZVEvent* event)
{
    if (!event->palette) return;
    auto& self = *static_cast<FileDialog*>(event->palette->object);
    if (event->palette->flags & ZV_PALF_CLOSING) return;
    try {
        self.On_Event(*event);
    } catch (std::bad_alloc const&) {
        self.hasFailed_ = true;
        if (self.Is_There()) ClosePaletteZV(self.palette_);
    }
}

void FileDialog::On_Event(ZVEvent& event)
{
    switch (event.type) {
    case ZV_EVENT_SETUP: Go_To(question_.start, question_.name); break;
    case ZV_EVENT_TICK: On_Tick(); break;
    case ZV_EVENT_GADGET: On_Gadget(*Event_Item(&event), event.modifiers); break;
    case ZV_EVENT_KEY:
        if (!(event.modifiers & ZV_MOD_KEY_UP)) event.result = On_Key(event);
        break;
    default: break;
    }
}

void FileDialog::On_Gadget(ZVItem const& item, uint32_t report)
{
    switch (item.node.id) {
    case FileDialogIds::Path: Go_To(path_.Pressed()); break;
    case FileDialogIds::Up: Go_Up(); break;
    case FileDialogIds::NewFolder: Make_Folder(); break;
    case FileDialogIds::Places:
        Set_Keyboard(Keyboard::Places);
        if (FilePlace const* const place = places_.Marked()) Go_To(place->spec);
        break;
    case FileDialogIds::Rows:
        if (report & ZV_MOD_PRESS) Set_Keyboard(Keyboard::List);
        if (rows_.Take_Opening())
            Open_Selected();
        else
            Selection_Changed();
        break;
    case FileDialogIds::Bar: rows_.Show_From(item.state); break;
    case FileDialogIds::Name: Mark_Keyboard(Keyboard::Name); break;
    case FileDialogIds::Kinds:
        if (item.state == question_.kinds.Current) break;
        Choose_File_Kind(&question_.kinds, item.state);
        listing_.Filter_Again();
        rows_.Show_Listing();
        Update_Buttons();
        break;
    case FileDialogIds::Hidden:
        showsHidden = item.state;
        listing_.Filter_Again();
        rows_.Show_Listing();
        Update_Buttons();
        break;
    case FileDialogIds::Cancel: Finish({}); break;
    case FileDialogIds::Accept: Accept(); break;
    default: break;
    }
}

/// True when the key is one of the dialog's.
bool FileDialog::On_Key(ZVEvent const& event)
{
    constexpr uint32_t commands = ZV_MOD_CONTROL | ZV_MOD_ALT | ZV_MOD_COMMAND;
    if (event.modifiers & commands) {
        bool const isUp = event.modifiers & ZV_MOD_ALT && event.key == ZV_KEY_UP;
        if (isUp) Go_Up();
        return isUp;
    }
    switch (event.key) {
    case ZV_KEY_ESCAPE: Finish({}); return true;
    case ZV_KEY_RETURN:
    case ZV_KEY_ENTER:
        if (!(event.modifiers & ZV_MOD_REPEAT)) Accept_By_Key();
        return true;
    case ZV_KEY_TAB: Step_Keyboard(event.modifiers & ZV_MOD_SHIFT); return true;
    case ZV_KEY_BACKSPACE: Go_Up(); return true;
    default: break;
    }
    if (keyboard_ == Keyboard::Places && places_.Key(event.key)) return true;
    // The name has its keys before they come here; it has lost the focus to a button.
    if (keyboard_ != Keyboard::List) Set_Keyboard(Keyboard::List);
    if (!rows_.Key(event.key, event.item)) return false;
    Selection_Changed();
    return true;
}

void FileDialog::On_Tick()
{
    ZVItem* const name = FindItem2ZV(palette_, FileDialogIds::Name);
    if (name && ZVEnv->focusedTextItem == name) {
        Mark_Keyboard(Keyboard::Name);
        std::size_t const dot = question_.name.rfind('.');
        if (std::exchange(selectsStem_, false) && dot != question_.name.npos &&
            question_.name == name->editText) {
            ZVTextEditorProperties properties{};
            properties.selectionEnd = properties.caretOffset = static_cast<int32_t>(dot);
            SetTextEditorPropertiesZV(name, &properties);
        }
    }
    if (!listing_.Is_Busy() || !listing_.Advance()) return;
    rows_.Show_Listing();
    Select_Expected();
    Update_Buttons();
}
