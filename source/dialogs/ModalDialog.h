// What the dialogs share: a modal palette that asks for settings, with buttons that confirm and give up.
#pragma once

#include "ZVLibInternal.h"

#include <functional>
#include <new>

/// Palettes as dialogs place their items: the first one of a group, one below or beside another, and a text
/// that belongs to the gadget on its right.
inline constexpr unsigned short FirstPlace = ZV_Position(ZV_POS_DEFAULT, ZV_POS_DEFAULT);
inline constexpr unsigned short BelowPlace = ZV_Position(ZV_POS_DEFAULT, ZV_POS_AFTER);
inline constexpr unsigned short BesidePlace = ZV_Position(ZV_POS_AFTER, ZV_POS_DEFAULT);
inline constexpr unsigned short LabelPlace = ZV_Position(ZV_POS_BEFORE, ZV_POS_ALIGN_CENTER);
inline constexpr unsigned short UnitPlace = ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_CENTER);

/// Present value of a number or slider, and state of any gadget, of the current palette.
double Value_Of(unsigned short id);
int32_t State_Of(unsigned short id);

/// Shows a modal palette whose groups `declare` adds, and waits until it has been closed. The caller's
/// current palette, what it has under construction and the level of the busy cursor are as they were
/// afterwards.
/// @param object  of the palette, for the callback
/// @return  false, with the error number set, when it could not be shown
bool Run_Modal_Palette(unsigned long titleId, void (*callback)(ZVEvent*), void* object,
                       std::function<void()> const& declare);

enum class DialogAnswer {
    Failed,     ///< it could not be shown; the error number tells why
    Cancelled,  ///< given up or closed, and when the application ends
    Confirmed
};

/// A dialog is a class of its own: it declares its gadgets, keeps them consistent, and takes what they hold
/// when it is confirmed. Ids of 17 and above are taken.
class ModalDialog {
public:
    static constexpr unsigned short ConfirmId = 17, CancelId = 18;

    ModalDialog() = default;
    virtual ~ModalDialog() = default;
    ModalDialog(ModalDialog const&) = delete;
    ModalDialog& operator=(ModalDialog const&) = delete;

    /// Shows the dialog and waits, as Run_Modal_Palette does.
    DialogAnswer Run(unsigned long titleId, void (*callback)(ZVEvent*) = Handle);

    /// The callback: passes an event on to the dialog that it is for.
    static void Handle(ZVEvent* event);

protected:
    /// Declares the groups, in an open palette; the buttons are put below the last one.
    virtual void Add_Groups() = 0;

    /// A gadget has changed.
    /// @param report  ZV_MOD_PRESS, ZV_MOD_CHANGE or ZV_MOD_RELEASE
    virtual void On_Gadget(unsigned short id, uint32_t report) = 0;

    /// Reads the gadgets: the user has confirmed.
    virtual void Take_Settings() = 0;

private:
    void On_Event(ZVEvent& event);
    void Finish(ZVPalette* palette, bool isConfirmed);

    bool isConfirmed_ = false;
};

/// Makes a dialog of a choice and runs it. True when the choice holds what the user has confirmed.
template <typename Dialog, typename Choice> bool Ask_By(Choice& choice, unsigned long titleId)
{
    try {
        return Dialog(choice).Run(titleId) == DialogAnswer::Confirmed;
    } catch (std::bad_alloc const&) {  // of the codecs that it offers
        SetError(ZV_ERR_MEMORY);
        return false;
    }
}
