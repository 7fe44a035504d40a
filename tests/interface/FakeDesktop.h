// A desktop of records in place of the real one: windows and items come and go without being drawn, and what
// the interface asks for and sends is written down.
#pragma once

#include <ZVLibInternal.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

struct FakeDesktop {
    static FakeDesktop& Get();
    static void Reset() { Get() = {}; }

    /// "26 of 7" for each event 26 to the palette with id 7, "make 3" and "destroy 3" for items on screen.
    std::vector<std::string> log;
    std::function<void(ZVPalette*)> modalLoop;  ///< what happens while a modal palette runs
    bool hasWindows = true;                     ///< whether windows can be had

    void Note(std::string const& what, unsigned long id) { log.push_back(what + std::to_string(id)); }
    long Count(std::string const& line) const { return std::count(log.begin(), log.end(), line); }
};
