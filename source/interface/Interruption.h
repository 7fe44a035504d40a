// What a modal palette that the library opens by itself interrupts: it can be asked for at any moment.
#pragma once

#include "interface/PaletteTree.h"

#include <optional>

/// Sets aside what the caller has under way (the current palette, what is under construction, the busy
/// cursor, the pending error), and brings it back.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(Interruption const&) = delete;
    Interruption& operator=(Interruption const&) = delete;

    void Keep_Error() { error_ = GetErrorZV(); }  ///< The present one stays, in place of the caller's.

private:
    static std::optional<LivingPalette> Watch(ZVPalette* palette);

    CurrentPalette current_;
    std::optional<LivingPalette> groupOwner_;
    ZVGroup* group_;
    ZVPalette* building_;
    int32_t lastPaletteId_, busyLevel_;
    unsigned long error_;
};
