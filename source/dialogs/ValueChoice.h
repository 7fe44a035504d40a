// A value with a list of usual ones beside it.
#pragma once

#include "ModalDialog.h"

#include <span>

/// Frame rates that are offered by string ZVSTR_SEQUENCE_RATES.
inline constexpr double CommonRates[] = {10, 15, 24, 25, 29.97, 30, 60};

/// A cycle whose entries are usual values, and a last one for all others, kept in step with the gadget that
/// holds the value.
struct ValueChoice {
    unsigned short cycle, value;  ///< ids
    std::span<double const> usual;

    void Show(double shown) const;
    void On_Cycle() const;  ///< An entry has been picked.
    void On_Value() const;  ///< A value has been typed.
};
