// Where a file dialog is, a custom gadget: the directories down to the present one, each of which can be
// pressed to go there. It reports a directory that was pressed.
#pragma once

#include "FileDialogGadget.h"

#include "ZVDraw.h"

#include <string>
#include <vector>

class FilePath : public FileDialogGadget {
public:
    void Show(std::string const& spec);  ///< Of a directory, with a closing separator.
    std::string Pressed() const;         ///< Spec of the directory of the report.

private:
    struct Part {
        std::string name;
        std::string spec;
        long left = 0, right = 0;  ///< as drawn; nothing when there is no room for it
    };

    void Choose_Font(ZVDrawInfo* draw, std::size_t part) const;
    long Natural_Width(ZVDrawInfo* draw, std::size_t part) const;
    void Place_Parts(ZVDrawInfo* draw);
    long Part_At(long x) const;  ///< -1 for none
    void Draw_All() override;
    void Take_Event(ZVCustomEvent* event) override;
    void Follow(long part);
    void Release(ZVCustomEvent* event);

    std::vector<Part> parts_;
    long hovered_ = -1, pressed_ = -1;
};
