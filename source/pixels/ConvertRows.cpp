// Row converters. Each format either is a flat array of channels, on which the vectorised loops work, or is
// unpacked into one and packed from one, some pixels at a time through a buffer that stays in the first-level
// cache.
#include "ConvertRows.h"

#include "VectorTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pixels/ConvertRows.cpp"
#include <hwy/foreach_target.h>

#include "ChannelRows-inl.h"
#include "RowFormats-inl.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <type_traits>

HWY_BEFORE_NAMESPACE();
namespace Rows {
namespace HWY_NAMESPACE {

/// Pixels that go through the buffers at a time.
constexpr long stagePixels = 256;

/// Unpacks what is packed, converts what differs in depth, packs again; only between the steps a buffer is
/// needed.
template <typename From, typename To> void Convert_Stage(void const* source, void* target, long count)
{
    constexpr bool isSameDepth = From::bits == To::bits;
    alignas(64) typename From::Channel unpacked[stagePixels * 4];
    alignas(64) typename To::Channel converted[stagePixels * 4];
    if constexpr (From::isPacked) {
        void* const channels = isSameDepth && !To::isPacked ? target : unpacked;
        From::Unpack(source, channels, count);
        source = channels;
    }
    if constexpr (!isSameDepth) {
        void* const channels = To::isPacked ? converted : target;
        Convert_Channels<From, To>(source, channels, count * 4);
        source = channels;
    }
    if constexpr (To::isPacked) To::Pack(source, target, count);
}

template <typename From, typename To> void Convert_Row(void const* source, void* target, long count)
{
    constexpr bool isCopy = std::is_same_v<From, To> && !To::isNative;
    if constexpr (isCopy) {
        std::memcpy(target, source, static_cast<std::size_t>(count * To::packSize));
    } else if constexpr (!From::isPacked && !To::isPacked) {
        Convert_Channels<From, To>(source, target, count * 4);
    } else {
        auto const* const from = static_cast<unsigned char const*>(source);
        auto* const to = static_cast<unsigned char*>(target);
        long done = 0;
#if ZV_HAS_VECTORS
        if constexpr (!From::isNative && !To::isNative && To::bits < 32)
            done = Convert_Pairs<From, To>(from, to, count);
#endif
        for (; done < count; done += stagePixels)
            Convert_Stage<From, To>(from + done * From::packSize, to + done * To::packSize,
                                    std::min(stagePixels, count - done));
    }
}

template <typename From> constexpr std::array<ZVRowConverter, ROW_NATIVE32> Converters_From()
{
    return {Convert_Row<From, FormatRGBA8>,     Convert_Row<From, FormatRGBA10>,
            Convert_Row<From, FormatRGBA12>,    Convert_Row<From, FormatRGBA16>,
            Convert_Row<From, FormatRGBAFloat>, Convert_Row<From, FormatNative16>,
            Convert_Row<From, FormatNative24>,  Convert_Row<From, FormatNative32>};
}

ZVRowConverter Find_Converter(ZVRowFormat from, ZVRowFormat to)
{
    static constexpr std::array table = {
        Converters_From<FormatRGBA8>(),     Converters_From<FormatRGBA10>(),
        Converters_From<FormatRGBA12>(),    Converters_From<FormatRGBA16>(),
        Converters_From<FormatRGBAFloat>(), Converters_From<FormatNative16>(),
        Converters_From<FormatNative24>(),  Converters_From<FormatNative32>()};
    return table[from - 1U][to - 1U];
}

}  // namespace HWY_NAMESPACE
}  // namespace Rows
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace Rows {
HWY_EXPORT(Find_Converter);
}

ZVRowConverter Get_Row_Converter(ZVRowFormat from, ZVRowFormat to)
{
    using namespace Rows;
    if (from == ROW_NONE || to == ROW_NONE) return nullptr;
    return HWY_DYNAMIC_DISPATCH(Find_Converter)(from, to);
}

ZVRowFormat Row_Format(ZVBitmapType type)
{
    return type <= ZV_BITMAP_RGBAFLOAT ? static_cast<ZVRowFormat>(type) : ROW_NONE;
}

ZVRowFormat Row_Format(ZVNativeBitmap const& bitmap)
{
    // A record filled in by hand may call pixels of four bytes 24 bits deep.
    bool const isDeep = bitmap.Depth == 24 || bitmap.Depth == 32;
    if (bitmap.Depth == 16 && bitmap.PackSize == 2) return ROW_NATIVE16;
    if (isDeep && bitmap.PackSize == 3) return ROW_NATIVE24;
    if (isDeep && bitmap.PackSize == 4) return ROW_NATIVE32;
    return ROW_NONE;
}

long Row_Pack_Size(ZVRowFormat format)
{
    static constexpr long sizes[] = {0, 4, 5, 6, 8, 16, 2, 3, 4};
    return sizes[format];
}

#endif
