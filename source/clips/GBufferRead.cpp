// The channels of one moment of a clip: read by the module in the clip's size, then cropped and scaled into
// what the caller wants.
#include "FileOfFrame.h"
#include "FrameRead.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <optional>
#include <utility>

namespace {

constexpr int xValuesBit = 13;

/// Channels of our own.
struct OwnChannels : ZVGBufferArray {
    OwnChannels() = default;
    ~OwnChannels() { FreeGBufferArrayZV(this); }
    OwnChannels(OwnChannels const&) = delete;
    OwnChannels& operator=(OwnChannels const&) = delete;
};

bool Has_Size(ZVGBuffer const& buffer, int bit, long width, long height)
{
    return buffer.Width == width + (bit == xValuesBit) && buffer.Height == height;
}

// ---- fields -----------------------------------------------------------------------------------------------

void Copy_Row(ZVGBuffer& buffer, long from, long to)
{
    std::memcpy(buffer.Data + to * buffer.RowBytes, buffer.Data + from * buffer.RowBytes,
                static_cast<std::size_t>(buffer.RowBytes));
    ZVGBufferLayerData const& source = buffer.Layers[from];
    ZVGBufferLayerData& row = buffer.Layers[to];
    if (row.set_layer_recs(source.Records ? source.Count : 0) && row.Records)
        std::memcpy(row.Records, source.Records, std::size_t{row.Count} * row.Stride);
}

/// Puts the rows of the wanted field in the place of the other field's.
void Repeat_Field(ZVGBufferArray const& channels, WantedRows rows)
{
    if (rows == WantedRows::All) return;
    long const wanted = rows == WantedRows::Upper ? 0 : 1;
    for (ZVGBuffer* const buffer : channels.Buffers)
        for (long y = 0; buffer && y + 1 < buffer->Height; y += 2)
            Copy_Row(*buffer, y + wanted, y + 1 - wanted);
}

// ---- reading ----------------------------------------------------------------------------------------------

/// Has the module fill channels in the clip's size.
bool Read_Channels(ZVClip* clip, long frame, unsigned long mask, ZVGBufferArray& channels, WantedRows rows)
{
    std::optional<FileOfFrame> file;
    if (Is_Image_Sequence(clip)) {
        file.emplace(clip, frame);
        if (!file->Exists()) return false;
        frame = 0;
    }
    if (!clip->Format->GetGBuffer(clip, frame, mask, &channels, clip->Layer, nullptr, 0)) return false;
    Repeat_Field(channels, rows);
    return true;
}

/// The mask without the channels of the array that have another size.
unsigned long Fitting(unsigned long mask, ZVGBufferArray const& array, long width, long height)
{
    for (int bit = 0; bit < ZV_GBUFFER_CHANNELS; ++bit) {
        ZVGBuffer const* const buffer = array.Buffers[ZVGBufferArray::Slot(bit)];
        if (buffer && !Has_Size(*buffer, bit, width, height)) mask &= ~(1UL << bit);
    }
    return mask;
}

/// Calls `work` with each channel of the mask and the place of its result, which is made where there is none.
template <typename Work>
void For_Each_Channel(ZVGBufferArray const& from, ZVGBufferArray& to, unsigned long mask, long width,
                      long height, Work&& work)
{
    for (int bit = 0; bit < ZV_GBUFFER_CHANNELS; ++bit) {
        ZVGBuffer const* const source = from.Buffers[ZVGBufferArray::Slot(bit)];
        ZVGBuffer*& target = to.Buffers[ZVGBufferArray::Slot(bit)];
        if (!(mask & 1UL << bit) || !source) continue;
        if (!target) target = AllocGBufferZV(width + (bit == xValuesBit), height, source->Format);
        if (target && Has_Size(*target, bit, width, height)) work(bit, source, target);
    }
}

void Scale_Channels(ZVGBufferArray const& from, ZVGBufferArray& to, unsigned long mask, long width,
                    long height)
{
    ZVGBuffer const* const xValues = from[ZV_GBUFFER_X_VALUES];
    For_Each_Channel(from, to, mask, width, height, [=](int bit, ZVGBuffer const* source, ZVGBuffer* target) {
        if (bit == xValuesBit)
            ScaleGBufferXValsZV(source, target);
        else
            ScaleGBufferZV(source, target, xValues);
    });
}

void Crop_Channels(ZVGBufferArray const& from, ZVGBufferArray& to, unsigned long mask,
                   ZVRectT<long> const& rect)
{
    ZVGBuffer const* const xValues = from[ZV_GBUFFER_X_VALUES];
    auto const dx = static_cast<int>(-rect.x), dy = static_cast<int>(-rect.y);
    For_Each_Channel(
        from, to, mask, rect.width, rect.height, [=](int bit, ZVGBuffer const* source, ZVGBuffer* target) {
            if (bit == xValuesBit)
                CropGBufferXValsZV(source, target, dx, dy);
            else
                CropGBufferZV(source, target, dx, dy, xValues, DEFAULT_GB_VALUES[std::min(bit, xValuesBit)]);
        });
}

/// What the tags ask for.
struct Request {
    ZVRectT<long> rect;
    long width, height;

    Request(ZVClip const* clip, TagItem* tags) : width(clip->Width), height(clip->Height)
    {
        ZVRectT<long> const* part = nullptr;
        while (TagItem const* item = NextTagItem(&tags)) {
            switch (item->tag) {
            case ZV_GBUFFER_RECT: part = reinterpret_cast<ZVRectT<long> const*>(item->data); break;
            case ZV_GBUFFER_WIDTH: width = static_cast<long>(item->data); break;
            case ZV_GBUFFER_HEIGHT: height = static_cast<long>(item->data); break;
            default: break;
            }
        }
        rect = part ? *part : ZVRectT<long>{0, 0, width, height};
    }

    bool Is_Whole_Frame() const { return rect == ZVRectT<long>{0, 0, width, height}; }
    bool Is_Size_Of(ZVClip const* clip) const { return width == clip->Width && height == clip->Height; }

    /// Whether there is a result, and the rectangle touches the clip. Sizes are those of buffers, so that
    /// nothing below overflows.
    bool Is_Possible(ZVClip const* clip) const
    {
        auto const touches = [](long from, long size, long limit) {
            return size > 0 && size <= INT_MAX && from > -size && from < limit;
        };
        return width > 0 && height > 0 && touches(rect.x, rect.width, clip->Width) &&
               touches(rect.y, rect.height, clip->Height);
    }
};

bool Get_Channels(ZVClip* clip, long frame, unsigned long mask, ZVGBufferArray& array, WantedRows rows,
                  Request const& request)
{
    if (request.Is_Whole_Frame() && request.Is_Size_Of(clip))
        return Read_Channels(clip, frame, Fitting(mask, array, clip->Width, clip->Height), array, rows);
    OwnChannels whole;
    if (!Read_Channels(clip, frame, mask, whole, rows)) return false;
    if (request.Is_Whole_Frame()) {
        Scale_Channels(whole, array, mask, request.width, request.height);
    } else if (request.width == request.rect.width && request.height == request.rect.height) {
        Crop_Channels(whole, array, mask, request.rect);
    } else {
        OwnChannels part;
        Crop_Channels(whole, part, mask, request.rect);
        Scale_Channels(part, array, mask, request.width, request.height);
    }
    return true;
}

/// Drops the X values of an array unless they are wanted.
class XValuesGuest {
public:
    XValuesGuest(ZVGBufferArray& array, bool isWanted) : array_(array), isWanted_(isWanted) { Drop(); }
    ~XValuesGuest() { Drop(); }
    XValuesGuest(XValuesGuest const&) = delete;
    XValuesGuest& operator=(XValuesGuest const&) = delete;

private:
    void Drop()
    {
        if (!isWanted_) FreeGBufferZV(std::exchange(array_[ZV_GBUFFER_X_VALUES], nullptr));
    }

    ZVGBufferArray& array_;
    bool isWanted_;
};

}  // namespace

long GetGBuffersZV(ZVClip* clip, unsigned long mask, ZVGBufferArray* array, ZVTimeValue const* time,
                   ZVTimeValue const* duration, TagItem* tags)
{
    if (!clip || !array || !(mask & clip->GBufferMask)) return 0;
    mask &= clip->GBufferMask;
    ZVTimeValue const moment = time ? *time : ZVTimeValue{};
    ZVTimeValue const length = duration ? *duration : ZVTimeValue{1.0, clip->FrameRate};
    Request const request(clip, tags);
    long const frame = Get_Frame(clip, &moment);
    bool const isInside = frame >= 0 && frame < Get_ReadableFrames(clip);
    long const source = isInside ? Get_FrameMapping(clip, frame) : -1;  // an edited frame has pixels alone
    if (source < 0 || !request.Is_Possible(clip) || !clip->Format || !clip->Format->GetGBuffer) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    XValuesGuest const guest(*array, mask & ZV_GBUFFER_X_VALUES);
    if (Get_Channels(clip, source, mask | ZV_GBUFFER_X_VALUES, *array, Wanted_Rows(clip, moment, length),
                     request))
        return 1;
    SetError(ZV_ERR_CLIP);
    return 0;
}
