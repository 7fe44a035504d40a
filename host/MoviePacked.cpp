// See MoviePacked.h. The loops are compiled for the machine's widest registers as well.
#include "MoviePacked.h"

#include <cstring>
#include <utility>

#if defined(__x86_64__)
#define ZV_WIDE_TARGET [[gnu::target("avx2")]]
#endif

namespace {

constexpr int Opaque = -1;

/// Where the bytes of a pixel come from.
template <int... sources> struct Order {
    static constexpr int from[] = {sources...};
    static constexpr std::size_t outBytes = sizeof...(sources);
};

using Register = std::uint8_t __attribute__((vector_size(16)));

/// The place in a register, or in the opaque one behind it, of a byte of the pixels made of it.
template <typename Bytes, std::size_t inBytes> constexpr int Source(std::size_t byte)
{
    int const from = Bytes::from[byte % Bytes::outBytes];
    return from == Opaque ? 16 : static_cast<int>(byte / Bytes::outBytes * inBytes) + from;
}

template <typename Bytes, std::size_t inBytes, std::size_t... byte>
[[gnu::always_inline]] inline Register Shuffle(Register const& in, std::index_sequence<byte...>)
{
    Register const opaque = ~Register{};
    return __builtin_shufflevector(in, opaque, Source<Bytes, inBytes>(byte)...);
}

template <typename Bytes, std::size_t inBytes>
[[gnu::always_inline]] inline void Reorder(std::uint8_t const* in, std::uint8_t* out, int width)
{
    constexpr int step = sizeof(Register) / Bytes::outBytes;
    // A register is filled with more than the pixels of this step, which must be there.
    constexpr int margin = static_cast<int>((sizeof(Register) + inBytes - 1) / inBytes);
    int x = 0;
    for (; x + margin <= width; x += step, in += step * inBytes, out += sizeof(Register)) {
        Register pixels;
        std::memcpy(&pixels, in, sizeof pixels);
        pixels = Shuffle<Bytes, inBytes>(pixels, std::make_index_sequence<sizeof(Register)>());
        std::memcpy(out, &pixels, sizeof pixels);
    }
    for (; x < width; ++x, in += inBytes, out += Bytes::outBytes)
        for (std::size_t i = 0; i < Bytes::outBytes; ++i)
            out[i] = Bytes::from[i] == Opaque ? 0xFF : in[Bytes::from[i]];
}

using RowFunction = void (*)(std::uint8_t const* in, std::uint8_t* out, int width);

template <typename Bytes, std::size_t inBytes>
void Plain_Row(std::uint8_t const* in, std::uint8_t* out, int width)
{
    Reorder<Bytes, inBytes>(in, out, width);
}

#ifdef ZV_WIDE_TARGET
template <typename Bytes, std::size_t inBytes>
ZV_WIDE_TARGET void Wide_Row(std::uint8_t const* in, std::uint8_t* out, int width)
{
    Reorder<Bytes, inBytes>(in, out, width);
}
#endif

/// @param inBytes  bytes of a pixel of the picture
template <std::size_t inBytes, int... sources> RowFunction Row_Of()
{
#ifdef ZV_WIDE_TARGET
    static bool const isWide = __builtin_cpu_supports("avx2");
    if (isWide) return Wide_Row<Order<sources...>, inBytes>;
#endif
    return Plain_Row<Order<sources...>, inBytes>;
}

/// Null for a layout of another kind.
RowFunction Row_For(int format, HostPixels layout)
{
    if (layout == HostPixels::RGBA8) switch (format) {
        case AV_PIX_FMT_RGBA: return Row_Of<4, 0, 1, 2, 3>();
        case AV_PIX_FMT_ARGB: return Row_Of<4, 1, 2, 3, 0>();
        case AV_PIX_FMT_BGRA: return Row_Of<4, 2, 1, 0, 3>();
        case AV_PIX_FMT_ABGR: return Row_Of<4, 3, 2, 1, 0>();
        case AV_PIX_FMT_RGB0: return Row_Of<4, 0, 1, 2, Opaque>();
        case AV_PIX_FMT_0RGB: return Row_Of<4, 1, 2, 3, Opaque>();
        case AV_PIX_FMT_BGR0: return Row_Of<4, 2, 1, 0, Opaque>();
        case AV_PIX_FMT_0BGR: return Row_Of<4, 3, 2, 1, Opaque>();
        case AV_PIX_FMT_RGB24: return Row_Of<3, 0, 1, 2, Opaque>();
        case AV_PIX_FMT_BGR24: return Row_Of<3, 2, 1, 0, Opaque>();
        default: return nullptr;
        }
    switch (format) {
    case AV_PIX_FMT_RGBA64LE: return Row_Of<8, 0, 1, 2, 3, 4, 5, 6, 7>();
    case AV_PIX_FMT_RGBA64BE: return Row_Of<8, 1, 0, 3, 2, 5, 4, 7, 6>();
    case AV_PIX_FMT_RGB48LE: return Row_Of<6, 0, 1, 2, 3, 4, 5, Opaque, Opaque>();
    case AV_PIX_FMT_RGB48BE: return Row_Of<6, 1, 0, 3, 2, 5, 4, Opaque, Opaque>();
    default: return nullptr;
    }
}

}  // namespace

bool Packed_To_RGBA(AVFrame const& picture, void* pixels, std::size_t rowBytes, HostPixels layout,
                    MovieBands& bands)
{
    RowFunction const row = Row_For(picture.format, layout);
    if (!row) return false;
    bands.Run(picture.width, picture.height, [&](int top, int bottom, std::size_t) {
        for (int y = top; y < bottom; ++y)
            row(picture.data[0] + static_cast<std::ptrdiff_t>(y) * picture.linesize[0],
                static_cast<std::uint8_t*>(pixels) + static_cast<std::size_t>(y) * rowBytes, picture.width);
    });
    return true;
}
