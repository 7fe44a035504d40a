#include "clips/TestFormat.h"

#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

char moduleState;  // what ModuleData points at while a clip is open

template <typename Buffer> void Draw(Buffer& buffer, long picture, long layer, bool isOpaque)
{
    using Pixel = typename Buffer::PixelType;
    using Channel = typename Buffer::ChannelType;
    for (long y = 0; y < buffer.Height; ++y) {
        for (long x = 0; x < buffer.Width; ++x) {
            Channel value[4];
            for (int c = 0; c < 4; ++c) {
                unsigned long const max = Pixel::isFloat ? 65535 : Pixel::max;
                unsigned long const raw =
                    c == 3 && isOpaque ? max : Test_Channel(picture, layer, x, y, c, max);
                if constexpr (Pixel::isFloat)
                    value[c] = static_cast<float>(raw) / 65535.0f;
                else
                    value[c] = static_cast<Channel>(raw);
            }
            buffer.GetIterator(x, y)->SetRGBA(value[0], value[1], value[2], value[3]);
        }
    }
}

}  // namespace

unsigned long Test_Channel(long picture, long layer, long x, long y, int channel, unsigned long max)
{
    auto hash = static_cast<uint64_t>(picture + 1) * 0x9E3779B97F4A7C15u;
    for (long part : {layer, x, y, static_cast<long>(channel)})
        hash = (hash ^ (hash >> 29) ^ static_cast<uint64_t>(part)) * 0xBF58476D1CE4E5B9u;
    return (hash >> 32) % (max + 1);
}

void Draw_Test_Picture(ZVBitmap* bitmap, long picture, long layer, bool isOpaque)
{
    switch (bitmap->Type) {
    case ZV_BITMAP_RGBA8: return Draw(static_cast<ZVBufferRGBA8&>(*bitmap), picture, layer, isOpaque);
    case ZV_BITMAP_RGBA10: return Draw(static_cast<ZVBufferRGBA10&>(*bitmap), picture, layer, isOpaque);
    case ZV_BITMAP_RGBA12: return Draw(static_cast<ZVBufferRGBA12&>(*bitmap), picture, layer, isOpaque);
    case ZV_BITMAP_RGBA16: return Draw(static_cast<ZVBufferRGBA16&>(*bitmap), picture, layer, isOpaque);
    case ZV_BITMAP_RGBAFLOAT: return Draw(static_cast<ZVBufferRGBAFloat&>(*bitmap), picture, layer, isOpaque);
    default: std::abort();
    }
}

TestFormat::TestFormat(char const* extension, long props) : properties(props)
{
    std::string const name = std::string("x.") + extension;
    uint32_t const code = Extension_Code(name.c_str());
    desc = Make_Format_Desc({"Test", ZV_FourCC("Test"), ZV_BLANK_CODE, nullptr, 0, &code, code ? 1 : 0});
    desc->ModuleInfo = this;
    desc->Open = Open;
    desc->Close = Close;
    desc->Create = Create;
    desc->BeginIO = BeginIO;
    desc->EndIO = EndIO;
    desc->GetFrame = GetFrame;
    desc->AddFrame = AddFrame;
    desc->CanLoad = Standard_CanLoad;
    desc->GetImportProperties = [](ZVFormatDesc* d) { return Of(d).properties; };
    desc->GetExportProperties = [](ZVFormatDesc* d, ZVClip*) { return Of(d).properties; };
    desc->Cleanup = Cleanup;
    AddTail(&ZVEnv->formats, &desc->Node);
}

TestFormat::~TestFormat()
{
    if (!desc) return;
    Remove(&desc->Node);
    Free_Format_Mod(desc);
}

void TestFormat::Cleanup(ZVFormatDesc* d)
{
    Of(d).calls.emplace_back().entry = "Cleanup";
    Of(d).desc = nullptr;
}

TestCall& TestFormat::Note(char const* entry, ZVClip* clip)
{
    TestCall& call = calls.emplace_back();
    call.entry = entry;
    if (clip->FileName) call.fileName = clip->FileName;
    return call;
}

long TestFormat::Answer(char const* entry)
{
    if (throwing.contains(entry)) throw 1;
    if (!failing.contains(entry)) return 1;
    if (auto error = errors.find(entry); error != errors.end()) SetError(error->second);
    return 0;
}

long TestFormat::Count(std::string const& entry) const
{
    long count = 0;
    for (TestCall const& call : calls)
        count += call.entry == entry;
    return count;
}

TestCall const& TestFormat::Last(std::string const& entry) const
{
    for (std::size_t i = calls.size(); i-- > 0;)
        if (calls[i].entry == entry) return calls[i];
    std::abort();
}

void TestFormat::Complete_Pending()
{
    for (TestPending const& frame : std::exchange(pending, {}))
        frame.completion(frame.params, 1);
}

long TestFormat::Open(ZVClip* clip, TagItem*)
{
    TestFormat& self = Of(clip);
    self.Note("Open", clip);
    if (!self.Answer("Open")) return 0;
    clip->Width = self.width;
    clip->Height = self.height;
    clip->BitDepth = self.bitDepth;
    clip->RawFrames = self.frames;
    clip->Media = self.media;
    clip->AlphaType = self.alphaType;
    clip->AlphaPremultiplied = 0;
    clip->FieldOrder = self.fieldOrder;
    clip->Flags |= self.flags;
    if (self.rate > 0.0) clip->FileFrameRate = self.rate;
    if (self.pixelAspect > 0.0) clip->PixelAspect = self.pixelAspect;
    if (self.usesModuleData) clip->ModuleData = &moduleState;
    if (!List_Empty(&clip->Layers)) return 1;
    for (TestLayer const& layer : self.layers) {
        auto* node = static_cast<ZVClipLayer*>(AllocMemZV(sizeof(ZVClipLayer), ZV_MEM_CLEAR));
        AddName(&node->Node, layer.name);
        node->Width = layer.width;
        node->Height = layer.height;
        node->BitDepth = layer.bitDepth;
        node->AlphaType = layer.alphaType;
        AddTail(&clip->Layers, &node->Node);
    }
    return 1;
}

void TestFormat::Close(ZVClip* clip)
{
    Of(clip).Note("Close", clip);
    clip->ModuleData = nullptr;
}

long TestFormat::Create(ZVClip* clip, unsigned long createFlags)
{
    TestFormat& self = Of(clip);
    self.Note("Create", clip).argument = static_cast<long>(createFlags);
    if (!self.Answer("Create")) return 0;
    if (self.usesModuleData) clip->ModuleData = &moduleState;
    return 1;
}

long TestFormat::BeginIO(ZVClip* clip, long writing)
{
    Of(clip).Note("BeginIO", clip).argument = writing;
    return Of(clip).Answer("BeginIO");
}

long TestFormat::EndIO(ZVClip* clip, long writing)
{
    Of(clip).Note("EndIO", clip).argument = writing;
    return Of(clip).Answer("EndIO");
}

long TestFormat::GetFrame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* offset, long width,
                          long height, long layer, void* data, long dataSize)
{
    TestFormat& self = Of(clip);
    TestCall& call = self.Note("GetFrame", clip);
    call.frame = frame;
    call.layer = layer;
    call.rect = {offset->x, offset->y, width, height};
    call.bitmap = bitmap;
    call.type = bitmap->Type;
    if (data)
        call.data.assign(static_cast<unsigned char*>(data), static_cast<unsigned char*>(data) + dataSize);
    if (!self.Answer("GetFrame")) return 0;
    auto const shown = self.picture.find(frame);
    long const picture = shown == self.picture.end() ? frame : shown->second;
    if (!(self.properties & ZV_FORMAT_SELF_SCALE)) {
        Draw_Test_Picture(bitmap, picture, layer, self.isOpaque);
        return 1;
    }
    ZVBitmap* whole = AllocBitmapZV(clip->Width, clip->Height, bitmap->Type, "test");
    if (!whole) return 0;
    Draw_Test_Picture(whole, picture, layer, self.isOpaque);
    ZVRectT<long> const target{-offset->x, -offset->y, width, height};
    ScaleBitmapZV(whole, bitmap, nullptr, &target);
    FreeBitmapZV(whole);
    return 1;
}

long TestFormat::AddFrame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* region)
{
    TestFormat& self = Of(clip);
    TestCall& call = self.Note("AddFrame", clip);
    call.frame = frame;
    if (region) call.rect = *region;
    call.bitmap = bitmap;
    call.type = bitmap->Type;
    call.data.assign(bitmap->Pixels, bitmap->Pixels + bitmap->Size);
    return self.Answer("AddFrame");
}

long TestFormat::AddFrameAsync(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* region,
                               ZVFrameCompletion completion, ZVCompletionParams* params, long)
{
    TestFormat& self = Of(clip);
    long const answer = AddFrame(clip, bitmap, frame, region);
    self.calls.back().entry = "AddFrameAsync";
    self.pending.push_back({completion, params});
    if (self.completesAtOnce) self.Complete_Pending();
    return answer;
}

long TestFormat::GetFrameDataReference(ZVClip* clip, long frame, long layer, long long* offset, long* size,
                                       void** data)
{
    TestFormat& self = Of(clip);
    TestCall& call = self.Note("GetFrameDataReference", clip);
    call.frame = frame;
    call.layer = layer;
    *offset = 0;
    *size = self.dataSize;
    *data = self.dataBuffer;
    return self.Answer("GetFrameDataReference");
}

void TestFormat::Set_Options(char const* entry, ZVClip* clip, bool silent, ZVFormatParams*& params)
{
    Note(entry, clip).argument = silent;
    ZVFormatParams const block{options.data(), static_cast<long>(options.size())};
    FreeMemZV(params);
    params = options.empty() ? nullptr : Copy_Format_Params(&block);
}

void TestFormat::Options(ZVClip* clip, bool silent)
{
    Of(clip).Set_Options("Options", clip, silent, clip->VideoParams);
}

void TestFormat::AudioOptions(ZVClip* clip, bool silent)
{
    Of(clip).Set_Options("AudioOptions", clip, silent, clip->AudioParams);
}

long TestFormat::GetFrameData(ZVClip* clip, long frame, unsigned long what, void* buffer, long size)
{
    TestFormat& self = Of(clip);
    TestCall& call = self.Note("GetFrameData", clip);
    call.frame = frame;
    call.argument = static_cast<long>(what);
    if (!self.Answer("GetFrameData")) return 0;
    std::memset(buffer, static_cast<int>(frame), static_cast<std::size_t>(size));
    return 1;
}

void TestFormat::ConvertEndianOptions(ZVClip* clip)
{
    Of(clip).Note("ConvertEndianOptions", clip);
}
