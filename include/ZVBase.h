// What every header of the library stands on: export macro, colour word, four-character codes and the names
// of the records that other families define.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(ZV_BUILDING_LIBRARY)
#define ZV_API __attribute__((visibility("default")))
#else
#define ZV_API
#endif

/// Packed colour 0xAARRGGBB with straight alpha. Every colour argument takes such a word or a pen id from
/// 0xFF000001 to 0xFF000011, which GetColorZV resolves.
using ZVLONGCOLOR = uint32_t;

/// A four-character code such as 'Film': the first character stands in the highest byte.
constexpr uint32_t ZV_FourCC(char const (&text)[5])
{
    return static_cast<uint32_t>(static_cast<unsigned char>(text[0])) << 24 |
           static_cast<uint32_t>(static_cast<unsigned char>(text[1])) << 16 |
           static_cast<uint32_t>(static_cast<unsigned char>(text[2])) << 8 |
           static_cast<uint32_t>(static_cast<unsigned char>(text[3]));
}

/// Four blanks: a file type or creator that is not set, and the one that matches any other.
inline constexpr uint32_t ZV_BLANK_CODE = 0x20202020;

struct ZVEnvironment;
struct ZVStyle;
struct ZVStringTable;
struct ZVKeySection;
struct ZVEvent;
struct ZVWindow;
struct ZVSysWindow;
struct ZVPalette;
struct ZVGroup;
struct ZVItem;
struct ZVMenu;
struct ZVDrawInfo;
struct ZVPort;
struct ZVPlugin;
struct ZVGBufferArray;
struct ZVFileInfo;
struct ZVFormatDesc;
struct ZVClip;
class ZVBitmap;
struct ZVNativeBitmap;
