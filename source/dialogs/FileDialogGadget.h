// The custom gadgets of a file dialog: each has an object behind it that draws it and takes its events.
#pragma once

#include "ZVEvent.h"
#include "ZVItem.h"

class FileDialogGadget {
public:
    FileDialogGadget(FileDialogGadget const&) = delete;
    FileDialogGadget& operator=(FileDialogGadget const&) = delete;

    /// The function of the gadget, whose user data is the address of this part of the object. What there is
    /// no memory for does not show.
    static long Function(ZVCustomEvent* event);

protected:
    FileDialogGadget() = default;
    virtual ~FileDialogGadget() = default;

    virtual void Draw_All() = 0;  ///< In the size that it has by now.
    virtual void Take_Event(ZVCustomEvent* event) = 0;

    /// Rows that a turn of the wheel goes down.
    long Wheel_Rows(ZVCustomEvent const& turn);

    ZVItem* item_ = nullptr;  ///< from set-up to clean-up

private:
    long wheelRest_ = 0;  ///< of a fine wheel, less than a row
};
