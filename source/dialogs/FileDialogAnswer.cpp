// What the user of a file dialog chooses: files to open, names to save under, and directories, new ones too.
#include "FileDialog.h"

#include "FileDialogKinds.h"
#include "FileDialogText.h"

#include "Locale/ZVLibStr.h"

#include <climits>
#include <utility>

namespace {

/// Bytes that a name may have in a file system.
constexpr std::size_t LongestName = 255;

std::string Name_Of(std::string_view spec)
{
    return Shown_Name(spec.substr(spec.find_last_of(":\\") + 1));
}

}  // namespace

void FileDialog::Finish(std::string answer)
{
    answer_ = std::move(answer);
    ClosePaletteZV(palette_);
}

void FileDialog::Tell(unsigned long messageId, std::string const& name)
{
    UserMessageZV(messageId, name.c_str());
}

void FileDialog::Accept()
{
    switch (question_.mode) {
    case FileDialogMode::Open: Open_Selected(); break;
    case FileDialogMode::Save:
        if (Typed_Name().empty())
            Open_Selected();
        else
            Save_As(Typed_Name());
        break;
    case FileDialogMode::Directory: Take_Directory(); break;
    }
}

/// Return does what its place stands for: it opens what is selected in a list, and accepts a name.
void FileDialog::Accept_By_Key()
{
    if (keyboard_ == Keyboard::Places) {
        if (FilePlace const* const place = places_.Marked()) Go_To(place->spec);
    } else if (keyboard_ == Keyboard::List && rows_.Selected_Row() >= 0) {
        Open_Selected();
    } else if (question_.mode != FileDialogMode::Open) {
        Accept();
    }
}

/// Goes into a directory; a file is chosen.
void FileDialog::Open_Selected()
{
    long const row = rows_.Selected_Row();
    if (row < 0) return;
    FileEntry const entry = listing_.Row(row);
    if (!entry.isDirectory) {
        Take_File(entry);
        return;
    }
    std::string const spec = spec_ + entry.name + '\\';
    if (Can_Take(spec)) Go_To(spec);
}

/// Whether a spec has the room that specs have, and what it names is still there. The user is told otherwise,
/// and shown what is there by now.
bool FileDialog::Can_Take(std::string const& spec)
{
    bool const isTooLong = spec.size() >= static_cast<std::size_t>(ZV_SPEC_SIZE);
    if (!isTooLong && FileExistsZV(spec.c_str())) return true;
    std::string_view named = spec;
    if (named.ends_with('\\')) named.remove_suffix(1);
    Tell(isTooLong ? ZVSTR_DIALOG_BAD_NAME : ZVSTR_DIALOG_NOT_THERE, Name_Of(named));
    if (!isTooLong && Is_There()) Read_Again();
    return false;
}

void FileDialog::Take_File(FileEntry const& entry)
{
    if (question_.mode == FileDialogMode::Save) {
        Save_As(Shown_Name(entry.name));
        return;
    }
    std::string const spec = spec_ + entry.name;
    if (Can_Take(spec)) Finish(spec);
}

/// The directory that is selected, or the one that is shown.
void FileDialog::Take_Directory()
{
    long const row = rows_.Selected_Row();
    std::string const spec = row < 0 ? spec_ : spec_ + listing_.Row(row).name + '\\';
    if (Can_Take(spec)) Finish(spec);
}

// ---- names ------------------------------------------------------------------------------------------------

std::string FileDialog::Typed_Name() const
{
    ZVItem const* const item = FindItem2ZV(palette_, FileDialogIds::Name);
    return item ? item->editText : "";
}

/// What is typed is a name in the directory that is shown, or a native path from there or from the root.
/// Empty when it is too long for a spec. An existing directory has a closing separator.
std::string FileDialog::Spec_Of_Typed(std::string const& text) const
{
    FSSpec place;
    char native[PATH_MAX], spec[ZV_SPEC_SIZE];
    if (!OS_Native_Path(spec_.c_str(), native, sizeof native)) return {};
    std::string const path = text.starts_with('/') ? text : std::string(native) + '/' + text;
    if (path.size() >= sizeof place.path || path.size() - path.rfind('/') - 1 > LongestName) return {};
    path.copy(place.path, path.size());
    place.path[path.size()] = 0;
    return GetDOSPathZV(spec, &place) == 0 ? spec : "";
}

bool FileDialog::May_Replace(std::string const& spec)
{
    if (!FileExistsZV(spec.c_str())) return true;
    bool const isWanted =
        AskUser2ZV(ZVSTR_DIALOG_REPLACE_YES, ZVSTR_CANCEL, ZVSTR_DIALOG_REPLACE, Name_Of(spec).c_str());
    return isWanted && Is_There();
}

void FileDialog::Save_As(std::string const& text)
{
    std::string spec = Spec_Of_Typed(text);
    std::string const extension = File_Kind_Extension(question_.kinds);
    bool const isDirectory = spec.ends_with('\\') && FileExistsZV(spec.c_str());
    bool const hasExtension = text.find('.', text.rfind('/') + 1) != text.npos;
    if (!isDirectory && !hasExtension && !extension.empty()) spec = Spec_Of_Typed(text + '.' + extension);
    char directory[ZV_SPEC_SIZE];
    bool const hasFolder = GetPathZV(spec.c_str(), directory) && FileExistsZV(directory);
    if (isDirectory) {
        SetTextGadgetStateZV(FileDialogIds::Name, "");
        Go_To(spec);
    } else if (spec.empty()) {
        Tell(ZVSTR_DIALOG_BAD_NAME, text);
    } else if (!hasFolder || spec.ends_with('\\')) {
        Tell(ZVSTR_DIALOG_NO_FOLDER, text);
    } else if (May_Replace(spec)) {
        Finish(spec);
    }
    // The name is the user's to change.
    if (Is_There()) Set_Keyboard(Keyboard::Name);
}

void FileDialog::Make_Folder()
{
    std::string const name = Ask_Folder_Name();
    if (name.empty() || !Is_There()) return;
    std::string spec = Spec_Of_Typed(name);
    bool const isMade = !spec.empty() && CreateDirZV(spec.c_str());
    if (!isMade) Tell(ZVSTR_DIALOG_NO_CREATE, name);
    if (!Is_There()) return;
    if (spec.ends_with('\\')) spec.pop_back();
    Read_Again(isMade ? spec.substr(spec.rfind('\\') + 1) : std::string());
}
