// Callbacks may close any palette, that of the walk that calls them included. These guards tell by pointer
// what is still there, and follow nothing that is gone.
#pragma once

#include "ZVEnvironment.h"
#include "ZVPalette.h"

/// Tells whether a palette outlived the calls made since. One that is in no window yet, as while it is
/// declared, cannot be closed and always does.
class PaletteWatch {
public:
    explicit PaletteWatch(ZVPalette* palette)
        : palette_(palette), isInWindow_(palette && FindPaletteZV(palette))
    {
    }

    bool Is_There() const { return palette_ && (!isInWindow_ || FindPaletteZV(palette_)); }

    /// The palette; null when it is gone.
    ZVPalette* Palette() const { return Is_There() ? palette_ : nullptr; }

private:
    ZVPalette* palette_;
    bool isInWindow_;
};

/// Gives the current palette back in the end; none when that has been closed.
class CurrentPaletteGuard {
public:
    CurrentPaletteGuard() : remembered_(ZVEnv->currentPalette) {}
    ~CurrentPaletteGuard() { ZVEnv->currentPalette = remembered_.Palette(); }
    CurrentPaletteGuard(CurrentPaletteGuard const&) = delete;
    CurrentPaletteGuard& operator=(CurrentPaletteGuard const&) = delete;

private:
    PaletteWatch remembered_;
};

/// The node to go on with after a call made for `node`, which may have taken nodes out: the one behind it,
/// or, when it is gone itself, the one that followed it before.
inline Node* Next_After_Call(List const* list, Node const* node, Node* followed)
{
    bool isFollowedThere = false;
    for (Node* each = List_First(list); each; each = List_Next(each)) {
        if (each == node) return List_Next(each);
        isFollowedThere |= each == followed;
    }
    return isFollowedThere ? followed : nullptr;
}
