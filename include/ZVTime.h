// Times in a clip.
#pragma once

#include "ZVBase.h"

/// A time in seconds as a fraction; a Scale of 0 means time 0.
struct ZVTimeValue {
    double Value = 0.0;
    double Scale = 0.0;
};

/// Which field of a frame comes first in time. Even rows belong to the upper field, odd rows to the lower.
enum FieldOrder : uint8_t { ZV_FIELDS_NONE = 0, ZV_FIELDS_UPPER_FIRST = 1, ZV_FIELDS_LOWER_FIRST = 2 };
