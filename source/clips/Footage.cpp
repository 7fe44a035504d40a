// The common video and film frame sizes, with what a clip of such a size most likely is.
#include "ZVFootage.h"

#include "ZVString.h"

#include <cstring>

static ZVFootagePreset const gFootagePresets[] = {
    {179, 1, 640, 480, 1.0, 29.97, ZV_FIELDS_UPPER_FIRST},
    {180, 2, 648, 486, 1.0, 29.97, ZV_FIELDS_UPPER_FIRST},
    {181, 14, 720, 480, 0.9, 29.97, ZV_FIELDS_LOWER_FIRST},
    {182, 4, 720, 486, 0.9, 29.97, ZV_FIELDS_LOWER_FIRST},
    {183, 19, 720, 486, 1.2, 29.97, ZV_FIELDS_LOWER_FIRST},
    {184, 3, 768, 576, 1.0, 25.0, ZV_FIELDS_UPPER_FIRST},
    {185, 15, 720, 576, 1.0666666, 25.0, ZV_FIELDS_LOWER_FIRST},
    {186, 5, 720, 576, 1.0666666, 25.0, ZV_FIELDS_UPPER_FIRST},
    {187, 20, 720, 576, 1.422, 25.0, ZV_FIELDS_UPPER_FIRST},
    {188, 8, 1280, 720, 1.0, 30.0, ZV_FIELDS_NONE},
    {189, 9, 1920, 1080, 1.0, 24.0, ZV_FIELDS_NONE},
    {194, 18, 2048, 1556, 1.0, 24.0, ZV_FIELDS_NONE},
    {191, 16, 3656, 2664, 1.0, 24.0, ZV_FIELDS_NONE},
    {192, 17, 1828, 1332, 1.0, 24.0, ZV_FIELDS_NONE},
    {190, 10, 1828, 1556, 2.0, 24.0, ZV_FIELDS_NONE},
    {193, 11, 640, 480, 1.0, 25.0, ZV_FIELDS_NONE},  // the answer for a size that no row fits
};
static constexpr long presetCount = sizeof gFootagePresets / sizeof *gFootagePresets;

static bool Is_Near(long value, long expected)
{
    auto const middle = static_cast<double>(expected);
    return static_cast<double>(value) >= 0.97 * middle && static_cast<double>(value) <= 1.03 * middle;
}

static bool Fits(ZVFootagePreset const& row, long width, long height)
{
    if (width == row.Width && height == row.Height) return true;
    if (row.Type == 10 && width == row.Width && height == row.Height + 20) return true;
    return width > 1023 && Is_Near(width, row.Width) && Is_Near(height, row.Height);
}

long NumFootagePresetsZV()
{
    return presetCount;
}

ZVFootagePreset const* FindFootagePresetsZV(long type)
{
    for (ZVFootagePreset const& row : gFootagePresets)
        if (row.Type == static_cast<unsigned long>(type)) return &row;
    return nullptr;
}

long FindFootagePresetsZV(long width, long height, unsigned long* type, char* name, double* frameRate,
                          double* pixelAspect, FieldOrder* fieldOrder)
{
    long index = 0;
    while (index < presetCount && !Fits(gFootagePresets[index], width, height))
        ++index;
    bool const isFound = index < presetCount;
    ZVFootagePreset const& row = gFootagePresets[isFound ? index : presetCount - 1];
    if (type) *type = row.Type;
    if (name) std::strcpy(name, GetStringZV(row.Name));
    if (frameRate) *frameRate = row.FrameRate;
    if (pixelAspect) *pixelAspect = row.PixelAspect;
    if (fieldOrder) *fieldOrder = row.FieldOrder;
    return isFound;
}
