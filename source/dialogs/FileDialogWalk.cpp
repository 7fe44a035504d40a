// Where a file dialog is, what is selected in it, and which of its parts has the keyboard.
#include "FileDialog.h"

#include "FileDialogText.h"

#include <climits>
#include <utility>

namespace {

/// The directory around one, of which the spec ends with a separator; empty for that of a volume.
std::string Parent_Of(std::string const& spec)
{
    std::size_t const separator = spec.size() < 2 ? spec.npos : spec.rfind('\\', spec.size() - 2);
    return separator == spec.npos ? std::string() : spec.substr(0, separator + 1);
}

}  // namespace

std::string Existing_Directory(std::string spec)
{
    while (!spec.empty()) {
        FSSpec place;
        char spelled[ZV_SPEC_SIZE];
        if (GetFSSpecZV(spec.c_str(), &place) == 0 && GetDOSPathZV(spelled, &place) == 0) {
            if (std::string_view(spelled).ends_with('\\')) return spelled;
        }
        spec = Parent_Of(spec);
    }
    return spec;
}

void FileDialog::Go_To(std::string spec, std::string selected)
{
    std::string directory = Existing_Directory(spec);
    if (directory.empty()) directory = FilePlaces::Home();
    char native[PATH_MAX];
    if (!OS_Native_Path(directory.c_str(), native, sizeof native)) return;
    spec_ = std::move(directory);
    expected_ = std::move(selected);
    std::string path = native;
    if (!path.ends_with('/')) path += '/';
    listing_.Open(path);
    rows_.Show_New_Listing();
    path_.Show(spec_);
    places_.Mark(spec_);
    Select_Expected();
    Update_Buttons();
}

/// The directory that was left is selected.
void FileDialog::Go_Up()
{
    std::string const parent = Parent_Of(spec_);
    if (!parent.empty()) Go_To(parent, spec_.substr(parent.size(), spec_.size() - parent.size() - 1));
}

void FileDialog::Read_Again(std::string selected)
{
    Go_To(spec_, std::move(selected));
}

/// An expected name can still be on its way in.
void FileDialog::Select_Expected()
{
    if (expected_.empty()) return;
    long const row = listing_.Row_Of_Name(expected_);
    if (row < 0) return;
    expected_.clear();
    rows_.Select_Row(row);
}

/// A file that is selected offers its name.
void FileDialog::Selection_Changed()
{
    expected_.clear();
    long const row = rows_.Selected_Row();
    if (question_.mode == FileDialogMode::Save && row >= 0 && !listing_.Row(row).isDirectory)
        SetTextGadgetStateZV(FileDialogIds::Name, Shown_Name(listing_.Row(row).name).c_str());
    Update_Buttons();
}

void FileDialog::Update_Buttons()
{
    FileReading const state = listing_.State();
    bool const isReadable = state == FileReading::Running || state == FileReading::Done;
    bool isReady = isReadable;
    if (question_.mode == FileDialogMode::Open) isReady = rows_.Selected_Row() >= 0;
    auto const enable = [this](unsigned short id, bool isEnabled) {
        ZVItem* const item = FindItem2ZV(palette_, id);
        bool const wasEnabled = item && !(item->flags & ZV_ITEMF_DISABLED);
        if (item && wasEnabled != isEnabled) ItemEnabledZV(item, isEnabled);
    };
    enable(FileDialogIds::Accept, isReady);
    enable(FileDialogIds::NewFolder, isReadable);
    enable(FileDialogIds::Up, !Parent_Of(spec_).empty());
}

// ---- the keyboard -----------------------------------------------------------------------------------------

void FileDialog::Mark_Keyboard(Keyboard keyboard)
{
    keyboard_ = keyboard;
    rows_.Show_Keyboard(keyboard == Keyboard::List);
    places_.Show_Keyboard(keyboard == Keyboard::Places);
}

void FileDialog::Set_Keyboard(Keyboard keyboard)
{
    if (keyboard == Keyboard::Name)
        Activate_First_Gadget(palette_);
    else
        Mac_Drop_Focus(ZV_MOD_RELEASE);
    // Behind the report of a field that has lost the focus, which marks itself.
    Mark_Keyboard(keyboard);
}

/// Round name, places and list, as far as the dialog has them.
void FileDialog::Step_Keyboard(bool isBack)
{
    bool const hasName = question_.mode == FileDialogMode::Save;
    int const first = hasName ? 0 : 1, count = hasName ? 3 : 2;
    int const place = static_cast<int>(keyboard_) - first;
    Set_Keyboard(static_cast<Keyboard>(first + (place + (isBack ? count - 1 : 1)) % count));
}
