// The desktop as the interface sees it, for tests: what is asked of it is noted, and its loops run what the
// test tells.
#pragma once

#include <ZVLibInternal.h>

#include <functional>
#include <string>
#include <vector>

struct FakeDesktop {
    uint32_t tickCount = 1000;  ///< 1/60 seconds
    uint32_t keyboard = 0;
    std::vector<uint16_t> cursors;
    std::vector<std::string> calls;  ///< "drop focus", "modal loop", ...
    ZVPort* port = nullptr;          ///< of all windows
    std::function<void()> modalLoop, applicationLoop;
};
extern FakeDesktop desktop;
