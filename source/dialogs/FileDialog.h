// The file dialog: a modal palette in which the user walks through directories and picks what he wants.
#pragma once

#include "FileDialogListing.h"
#include "FileDialogPath.h"
#include "FileDialogPlaces.h"
#include "FileDialogRows.h"

#include "interface/PaletteTree.h"

#include <optional>
#include <string>

enum class FileDialogMode : uint8_t { Open, Save, Directory };

/// What is asked for.
struct FileQuestion {
    FileDialogMode mode = FileDialogMode::Open;
    std::string start;  ///< spec of the directory to start in, or empty
    std::string name;   ///< that is offered
    std::string title;  ///< empty for the usual one
    ZVFileRequest kinds{};
};

class FileDialog {
public:
    explicit FileDialog(FileQuestion& question);
    FileDialog(FileDialog const&) = delete;
    FileDialog& operator=(FileDialog const&) = delete;

    /// Shows the dialog until it has been answered. False when it could not be shown, with the error number
    /// set.
    bool Run();

    /// The spec that was chosen; empty when the user cancelled.
    std::string const& Answer() const { return answer_; }

private:
    enum class Keyboard : uint8_t { Name, Places, List };

    // FileDialog.cpp: the palette and its events
    bool Declare();
    void Add_Path_Group();
    void Add_List_Groups();
    bool Add_Field_Group();
    void Add_Button_Group(bool hasFields);
    void Add_Kinds(std::vector<std::string> const& names, unsigned short position, short reference,
                   long width);
    long Show(ZVPalette* palette);
    static void Callback(ZVEvent* event);
    void On_Event(ZVEvent& event);
    void On_Gadget(ZVItem const& item, uint32_t report);
    bool On_Key(ZVEvent const& event);
    void On_Tick();
    bool Is_There() const { return watch_ && watch_->Is_There(); }

    // FileDialogWalk.cpp: where the dialog is, and what is selected
    bool Is_Wanted(FileEntry const& entry) const;
    void Go_To(std::string spec, std::string selected = {});
    void Go_Up();
    void Read_Again(std::string selected = {});
    void Select_Expected();
    void Selection_Changed();
    void Update_Buttons();
    void Set_Keyboard(Keyboard keyboard);
    void Mark_Keyboard(Keyboard keyboard);
    void Step_Keyboard(bool isBack);

    // FileDialogAnswer.cpp: what is chosen
    void Accept();
    void Accept_By_Key();
    void Open_Selected();
    void Take_File(FileEntry const& entry);
    void Take_Directory();
    bool Can_Take(std::string const& spec);
    void Save_As(std::string const& text);
    bool May_Replace(std::string const& spec);
    void Make_Folder();
    std::string Typed_Name() const;
    std::string Spec_Of_Typed(std::string const& text) const;
    void Tell(unsigned long messageId, std::string const& name);
    void Finish(std::string answer);

    FileQuestion& question_;
    FileListing listing_;
    FileRows rows_;
    FilePlaces places_;
    FilePath path_;
    ZVPalette* palette_ = nullptr;
    std::optional<LivingPalette> watch_;
    std::string spec_;      ///< of the directory that is shown, with a closing separator
    std::string expected_;  ///< name that is selected when it has been read
    std::string answer_;
    Keyboard keyboard_;
    bool selectsStem_;        ///< of the name that is offered, when it has got the focus
    bool hasFailed_ = false;  ///< for want of memory
};

/// The nearest directory that is there, from a spec up, with a closing separator; empty when there is none.
std::string Existing_Directory(std::string spec);

/// Asks for the name of a new folder; empty when the user cancelled.
std::string Ask_Folder_Name();

namespace FileDialogIds {
enum : unsigned short { Path = 1, Up, NewFolder, Places, Rows, Bar, Name, Kinds, Hidden, Cancel, Accept };
}
