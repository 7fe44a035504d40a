// G-buffers: per-pixel data that a rendered image carries beside its colour, such as depth, ids, coverage and
// velocity, one ZVGBuffer for each channel. A G-buffer is deep: behind the front sample of each pixel a row
// keeps any number of further samples, and the X values of the set tell which of them belong to which pixel.
// Null buffers are accepted everywhere and do nothing. A buffer belongs to one thread at a time.
#pragma once

#include "ZVBitmap.h"
#include "ZVTags.h"
#include "ZVTime.h"

/// Storage of one sample.
enum GBufferFormat : uint8_t {
    GB_FORMAT_BYTE = 0,
    GB_FORMAT_SHORT = 1,
    GB_FORMAT_LONG = 2,  ///< 32 bits
    GB_FORMAT_FLOAT = 3,
    GB_FORMAT_RGB = 4,     ///< three bytes
    GB_FORMAT_LONG2 = 5,   ///< two of 32 bits
    GB_FORMAT_FLOAT2 = 6,  ///< two floats
    GB_FORMAT_RGBA = 7     ///< four bytes
};
inline constexpr int ZV_GBUFFER_FORMATS = 8;

/// Bytes of a sample, by format.
extern ZV_API int32_t const GBufferFormatStride[ZV_GBUFFER_FORMATS];

/// Channels, as bits of a mask. Behind each stands its format.
enum ZVGBufferChannel : unsigned long {
    ZV_GBUFFER_Z = 0x0001,         ///< depth; float
    ZV_GBUFFER_MAT = 0x0002,       ///< material id; byte
    ZV_GBUFFER_OBJ = 0x0004,       ///< object id; short
    ZV_GBUFFER_UV = 0x0008,        ///< texture coordinates; two floats
    ZV_GBUFFER_NORMAL = 0x0010,    ///< four bytes
    ZV_GBUFFER_REALPIX = 0x0020,   ///< red, green, blue and the exponent they share; four bytes
    ZV_GBUFFER_COV = 0x0040,       ///< coverage, 255 for all of the pixel; byte
    ZV_GBUFFER_BG = 0x0080,        ///< background colour; three bytes
    ZV_GBUFFER_RENDERID = 0x0100,  ///< render id; short
    ZV_GBUFFER_COL = 0x0200,       ///< colour; three bytes
    ZV_GBUFFER_TRANS = 0x0400,     ///< transparency of each colour, 255 for clear; three bytes
    ZV_GBUFFER_VEL = 0x0800,       ///< velocity; two floats
    ZV_GBUFFER_WEIGHT = 0x1000,    ///< weight of each colour; three bytes
    ZV_GBUFFER_X_VALUES = 0x2000,  ///< which samples belong to which pixel; short, one sample wider
    ZV_GBUFFER_MASK = 0x4000       ///< short
};
inline constexpr int ZV_GBUFFER_CHANNELS = 15;

/// The further samples of one row.
struct ZVGBufferLayerData {
    uint32_t Count;          ///< samples at Records
    uint32_t Stride;         ///< bytes of a sample
    unsigned char* Records;  ///< owned, from AllocMemZV; null without samples

    /// Gives the row so many samples, uninitialised; with the present count the samples stay.
    /// @return  false when there is no memory, with error 1 and the row without samples
    ZV_API bool set_layer_recs(unsigned long count);
};

/// One channel. All members are set when it is made; code outside the library writes through Data and
/// Records.
struct ZV_API ZVGBuffer {
    /// Data is uninitialised and no row has samples. Throws ZVBadAlloc when there is no memory, and for a
    /// size or format that AllocGBufferZV refuses.
    ZVGBuffer(long width, long height, GBufferFormat format);
    ~ZVGBuffer();
    ZVGBuffer(ZVGBuffer const&) = delete;
    ZVGBuffer& operator=(ZVGBuffer const&) = delete;

    int32_t Width = 0;   ///< samples
    int32_t Height = 0;  ///< samples
    int32_t Stride = 0;  ///< bytes of a sample
    int32_t RowBytes = 0;
    GBufferFormat Format = GB_FORMAT_BYTE;
    unsigned char* Data = nullptr;  ///< the front plane, Height rows of RowBytes bytes; owned
    int32_t DataSize = 0;
    /// One for each row; owned. The word of 32 bits directly in front of the first one is their number.
    ZVGBufferLayerData* Layers = nullptr;
    double Reserved1 = 0.0;
    double Reserved2 = 0.0;
    int32_t Reserved3 = 0;
};

/// The channels that travel together, any of which may be null.
///
/// In each row of the X values, element x is the index of pixel x's first further sample and element x + 1
/// the index behind its last, in that row's Records of every other channel. Element 0 is 0 and the last one
/// the number of samples in the row.
struct ZVGBufferArray {
    ZVGBuffer* Buffers[ZV_GBUFFER_CHANNELS] = {};  ///< owned by who owns the array; by slot

    /// Place of the channel with this bit number. The last two are crossed over.
    static constexpr int Slot(int bit) { return bit == 13 ? 14 : bit == 14 ? 13 : bit; }

    /// The channel of a mask with one bit.
    constexpr ZVGBuffer*& operator[](ZVGBufferChannel channel) { return Buffers[Slot(Bit(channel))]; }
    constexpr ZVGBuffer* operator[](ZVGBufferChannel channel) const { return Buffers[Slot(Bit(channel))]; }

private:
    static constexpr int Bit(ZVGBufferChannel channel)
    {
        return std::countr_zero(static_cast<unsigned long>(channel));
    }
};

/// The samples that stand for nothing, by channel.
inline constexpr float _DEFAULT_Z_VAL = -1e30f;
inline constexpr uint8_t _DEFAULT_MAT_VAL = 0;
inline constexpr uint16_t _DEFAULT_OBJ_VAL = 0;
inline constexpr float _DEFAULT_UV_VAL[2] = {};
inline constexpr uint8_t _DEFAULT_NORMAL_VAL[4] = {};
inline constexpr uint8_t _DEFAULT_REALPIX_VAL[4] = {};
inline constexpr uint8_t _DEFAULT_COV_VAL = 0;
inline constexpr uint8_t _DEFAULT_BG_VAL[3] = {};
inline constexpr uint16_t _DEFAULT_RENDERID_VAL = 0xFFFF;
inline constexpr uint8_t _DEFAULT_COL_VAL[3] = {};
inline constexpr uint8_t _DEFAULT_TRANS_VAL[3] = {};
inline constexpr float _DEFAULT_VEL_VAL[2] = {};
inline constexpr uint8_t _DEFAULT_WEIGHT_VAL[3] = {};
inline constexpr uint16_t _DEFAULT_MASK_VAL = 0;

/// The same as bytes: entry i for the channel with bit number i, entry 13 for MASK.
extern ZV_API unsigned char const DEFAULT_GB_VALUES[14][8];

/// What GETGLAYERADR gives for a sample that is not there: zeros, with room for a sample of any format.
extern ZV_API uint8_t gUByteDummy[8];
extern ZV_API uint16_t gUShortDummy[4];
extern ZV_API int32_t gLongDummy[2];
extern ZV_API float gFloatDummy[2];

/// Address of a zero sample of the format.
ZV_API void* GBuffer_Dummy(GBufferFormat format);

/// Address of further sample n of row y, or of a zero sample, which must not be written to, when there is
/// none. `n` counts through the row; the X values tell where a pixel begins.
inline void* GETGLAYERADR(ZVGBuffer* buffer, int n, int y)
{
    if (buffer->Layers && static_cast<uint32_t>(y) < static_cast<uint32_t>(buffer->Height)) {
        ZVGBufferLayerData const& row = buffer->Layers[y];
        if (static_cast<uint32_t>(n) < row.Count && row.Records)
            return row.Records + static_cast<size_t>(n) * static_cast<size_t>(buffer->Stride);
    }
    return GBuffer_Dummy(buffer->Format);
}
inline void const* GETGLAYERADR(ZVGBuffer const* buffer, int n, int y)
{
    return GETGLAYERADR(const_cast<ZVGBuffer*>(buffer), n, y);
}

/// A buffer on the heap, as the constructor makes it.
/// @return  null with error 1 when there is no memory, for a negative size, for a front plane that does not
///          fit 31 bits of bytes, and for a format that does not exist
ZV_API ZVGBuffer* AllocGBufferZV(long width, long height, GBufferFormat format);
ZV_API void FreeGBufferZV(ZVGBuffer* buffer);
ZV_API void FreeGBufferArrayZV(ZVGBufferArray* array);  ///< Frees all channels; the array is then empty.

// ---- copy, crop, scale, clear -----------------------------------------------------------------------------
//
// Source and destination are different buffers of one format, or nothing happens. A row that has fewer
// samples than the X values say, and X values that fall or are of another shape than their plane (as high,
// one sample wider, GB_FORMAT_SHORT), never lead outside the row: what is not there is left out. Where memory
// runs out the error number is 1, and the row in question has no samples.

/// All of a buffer, its shape included. Without memory for the shape the destination is left empty.
ZV_API void CopyGBufferZV(ZVGBuffer const* src, ZVGBuffer* dst);

/// Puts the source with its top left corner at (dx, dy) of the destination, which keeps its size. What it
/// does not cover becomes `fill`, one sample; rows outside have no further samples.
/// @param xValues  of the source; null leaves the further samples of the destination as they are
ZV_API void CropGBufferZV(ZVGBuffer const* src, ZVGBuffer* dst, int dx, int dy, ZVGBuffer const* xValues,
                          unsigned char const* fill);

/// The X values that go with it, from those of the source.
ZV_API void CropGBufferXValsZV(ZVGBuffer const* src, ZVGBuffer* dst, int dx, int dy);

/// Point sampling as that of ScaleBitmapZV: a pixel takes the one under its top left corner, with all its
/// samples. Without X values the further samples of the destination stay as they are.
ZV_API void ScaleGBufferZV(ZVGBuffer const* src, ZVGBuffer* dst, ZVGBuffer const* xValues);

/// The X values that go with it. A row of more than 65535 samples ends there.
ZV_API void ScaleGBufferXValsZV(ZVGBuffer const* src, ZVGBuffer* dst);

/// Fills the channels of the mask with their defaults. ZV_GBUFFER_X_VALUES in the mask, or an array without X
/// values, drops their further samples; otherwise each row gets as many as the X values say. X values and
/// MASK stay as they are.
ZV_API void ClearGBuffersZV(ZVGBufferArray* array, unsigned long mask);

// ---- reading and extraction -------------------------------------------------------------------------------

/// Tags of GetGBuffersZV.
enum ZVGBufferTag : unsigned long {
    ZV_GBUFFER_RECT = 12288,   ///< ZVRectT<long>*: the part of the frame; from 0, 0 in the result's size
    ZV_GBUFFER_WIDTH = 12289,  ///< of the result; the clip's
    ZV_GBUFFER_HEIGHT = 12290  ///< of the result; the clip's
};

/// Reads the channels of one moment of a clip, as far as the clip has them (ZVClip::GBufferMask). Null
/// channels of the array are made; a channel that is there is filled when its size fits, else passed over.
/// @param duration  of the picture wanted; from 1.02 fields on a whole frame. Null for none.
/// @return  1, or 0: a rectangle outside the clip, a time past its end, a module without G-buffers, a missing
///          file of a sequence
ZV_API long GetGBuffersZV(ZVClip* clip, unsigned long mask, ZVGBufferArray* array, ZVTimeValue const* time,
                          ZVTimeValue const* duration, TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest>
long GetGBuffersZV(ZVClip* clip, unsigned long mask, ZVGBufferArray* array, ZVTimeValue const* time,
                   ZVTimeValue const* duration, Key first, Rest... rest)
{
    return GetGBuffersZV(clip, mask, array, time, duration, Tag_Array(first, rest...).data());
}

/// Rebuilds a picture, and channels, from the samples of one object, material or render pass, or from all
/// others. An object that covers a pixel in part leaves it with the object's own colour and its coverage as
/// alpha.
/// @param src        RGBA picture that belongs to the channels; with `dst` null no picture is made
/// @param dst        same size and type as `src`; pixels outside `rect` stay
/// @param id         wanted id, as 16 bits
/// @param idChannel  ZV_GBUFFER_MAT, ZV_GBUFFER_OBJ or ZV_GBUFFER_RENDERID
/// @param input      the frame's channels with their X values
/// @param mode       1 keeps the samples of the id, any other value removes them
/// @param rect       area, cut at the edges of picture and channels
/// @param output     channels to fill with the samples kept, or null; sizes and formats as in `input`
/// @param mask       channels of `output` wanted
/// @return  1; 0 for another idChannel, and when the channel is missing: `dst` is then a copy of `src`
ZV_API long ExtractGBufferLayerZV(ZVBitmap const* src, ZVBitmap* dst, short id, unsigned long idChannel,
                                  ZVGBufferArray const& input, long mode, ZVRectT<long> const& rect,
                                  ZVGBufferArray* output, unsigned long mask);
