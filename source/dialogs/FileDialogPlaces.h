// The places of a file dialog, a custom gadget: the user's folders and the file systems. It
// reports a place that was pressed.
#pragma once

#include "FileDialogGadget.h"
#include "FileDialogIcons.h"

#include <string>
#include <vector>

struct FilePlace {
    FileIcon icon;
    std::string name;
    std::string spec;  ///< with a closing separator
};

class FilePlaces : public FileDialogGadget {
public:
    FilePlaces();

    static std::string Home();  ///< Spec of the user's folder, of the root when that cannot be had.

    long Natural_Width() const;
    void Mark(std::string const& spec);  ///< The place where the dialog is, if it is one.
    void Show_Keyboard(bool hasKeyboard);
    bool Key(unsigned code);  ///< Up and down. False for others.
    FilePlace const* Marked() const;

private:
    void Add(FileIcon icon, std::string name, std::string spec);
    void Add_User_Places();
    void Set_Marked(long place);
    void Draw_All() override;
    void Take_Event(ZVCustomEvent* event) override;
    long Page() const;
    long Last_Top() const;
    void Press(ZVCustomEvent* event);
    void Turn_Wheel(ZVCustomEvent const& event);

    std::vector<FilePlace> places_;
    long marked_ = -1;
    long top_ = 0;  ///< first place in view
    bool hasKeyboard_ = false;
};
