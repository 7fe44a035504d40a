// What an open ZVFont holds.
#pragma once

#include "ZVFont.h"
#include "host/Fonts.h"

#include <memory>

struct ZVTextStyle {
    std::unique_ptr<HostFont> font;  ///< never null
};
