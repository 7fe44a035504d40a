// Modules of the library's own kind. Between start and the first clip that touches its format a module is not
// loaded: its descriptor holds stubs, which load it and hand the call on.
#include "ZVLibInternal.h"
#include "ZVModule.h"

#include "formats/FormatModule.h"
#include "foundation/HeapBlock.h"

#include <cstring>
#include <utility>

namespace {

constexpr unsigned long ModuleFlags = ZV_PLUGIN_CODE | ZV_PLUGIN_IFM | ZV_PLUGIN_MODULE;

/// What ModuleInfo of all modules points to.
ZVModuleInfo IFMInfo;

/// The bytes of a descriptor's entries, which stand together at its end.
struct Entries {
    static constexpr std::size_t Start = offsetof(ZVFormatDesc, Open);
    unsigned char bytes[sizeof(ZVFormatDesc) - Start] = {};

    void Take(ZVFormatDesc const* desc)
    {
        std::memcpy(bytes, reinterpret_cast<unsigned char const*>(desc) + Start, sizeof bytes);
    }
    void Put(ZVFormatDesc* desc) const
    {
        std::memcpy(reinterpret_cast<unsigned char*>(desc) + Start, bytes, sizeof bytes);
    }
};

template <typename T> void Drop(T*& block)
{
    FreeMemZV(std::exchange(block, nullptr));
}

/// Frees what the module makes anew at each load.
void Drop_Arrays(ZVFormatDesc* desc)
{
    Drop(desc->ReadTypes);
    Drop(desc->FilterTypes);
    Drop(desc->ReadExtensions);
    Drop(desc->FilterExtensions);
    Drop(desc->DefaultVideoParams);
    Drop(desc->DefaultAudioParams);
    desc->ReadTypeCount = desc->FilterTypeCount = 0;
    desc->ReadExtensionCount = desc->FilterExtensionCount = 0;
}

/// Calls a stub's entry once the module has put its own in the descriptor.
template <auto Entry, typename... Args> auto Forward(ZVFormatDesc* desc, Args... args)
{
    using Result = decltype((desc->*Entry)(args...));
    if (!Load_IFM(desc) || !(desc->*Entry)) return Result();
    return (desc->*Entry)(args...);
}

long IFM_Open(ZVClip* clip, TagItem* tags)
{
    return Forward<&ZVFormatDesc::Open>(clip->Format, clip, tags);
}

void IFM_Close(ZVClip* clip)
{
    Forward<&ZVFormatDesc::Close>(clip->Format, clip);
}

long IFM_Create(ZVClip* clip, unsigned long createFlags)
{
    return Forward<&ZVFormatDesc::Create>(clip->Format, clip, createFlags);
}

long IFM_BeginIO(ZVClip* clip, long writing)
{
    return Forward<&ZVFormatDesc::BeginIO>(clip->Format, clip, writing);
}

long IFM_EndIO(ZVClip* clip, long writing)
{
    return Forward<&ZVFormatDesc::EndIO>(clip->Format, clip, writing);
}

long IFM_GetFrame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* sourceOffset, long width,
                  long height, long layer, void* data, long dataSize)
{
    return Forward<&ZVFormatDesc::GetFrame>(clip->Format, clip, bitmap, frame, sourceOffset, width, height,
                                            layer, data, dataSize);
}

long IFM_AddFrame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* region)
{
    return Forward<&ZVFormatDesc::AddFrame>(clip->Format, clip, bitmap, frame, region);
}

long IFM_GetFrameDataReference(ZVClip* clip, long frame, long layer, long long* offset, long* size,
                               void** data)
{
    return Forward<&ZVFormatDesc::GetFrameDataReference>(clip->Format, clip, frame, layer, offset, size,
                                                         data);
}

long IFM_GetGBuffer(ZVClip* clip, long frame, unsigned long mask, ZVGBufferArray* buffers, long layer,
                    void* data, long dataSize)
{
    return Forward<&ZVFormatDesc::GetGBuffer>(clip->Format, clip, frame, mask, buffers, layer, data,
                                              dataSize);
}

void IFM_Options(ZVClip* clip, bool silent)
{
    Forward<&ZVFormatDesc::Options>(clip->Format, clip, silent);
}

void IFM_AudioOptions(ZVClip* clip, bool silent)
{
    Forward<&ZVFormatDesc::AudioOptions>(clip->Format, clip, silent);
}

void IFM_About(ZVFormatDesc* desc)
{
    Forward<&ZVFormatDesc::About>(desc, desc);
}

/// Asked for every file of a file dialog, so the module stays where it is.
long IFM_CanLoad(ZVFormatDesc* desc, char const* spec, unsigned long creator, unsigned long type,
                 unsigned long extension)
{
    return Standard_CanLoad(desc, spec, creator, type, extension);
}

long IFM_GetImportProperties(ZVFormatDesc* desc)
{
    return desc->CachedProperties;
}

long IFM_GetExportProperties(ZVFormatDesc* desc, ZVClip* clip)
{
    return Forward<&ZVFormatDesc::GetExportProperties>(clip ? clip->Format : desc, desc, clip);
}

long IFM_GetFrameData(ZVClip* clip, long frame, unsigned long what, void* buffer, long size)
{
    return Forward<&ZVFormatDesc::GetFrameData>(clip->Format, clip, frame, what, buffer, size);
}

void IFM_Cleanup(ZVFormatDesc* desc)
{
    Forward<&ZVFormatDesc::Cleanup>(desc, desc);
}

long IFM_GetAudio(ZVClip* clip, void* samples, unsigned long first, unsigned long count)
{
    return Forward<&ZVFormatDesc::GetAudio>(clip->Format, clip, samples, first, count);
}

long IFM_AddAudio(ZVClip* clip, void* samples, unsigned long count)
{
    return Forward<&ZVFormatDesc::AddAudio>(clip->Format, clip, samples, count);
}

void IFM_ConvertEndianOptions(ZVClip* clip)
{
    Forward<&ZVFormatDesc::ConvertEndianOptions>(clip->Format, clip);
}

unsigned long IFM_GetCodecFcc(ZVClip* clip)
{
    return Forward<&ZVFormatDesc::GetCodecFcc>(clip->Format, clip);
}

long IFM_AddFrameAsync(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* region,
                       ZVFrameCompletion completion, ZVCompletionParams* record, long reserved)
{
    return Forward<&ZVFormatDesc::AddFrameAsync>(clip->Format, clip, bitmap, frame, region, completion,
                                                 record, reserved);
}

template <typename Entry> void Put_Stub(Entry& entry, Entry stub)
{
    if (entry) entry = stub;
}

/// What the module offers stays visible with no code loaded: an entry that is null stays null.
void Put_Stubs(ZVFormatDesc* desc)
{
    Put_Stub(desc->Open, &IFM_Open);
    Put_Stub(desc->Close, &IFM_Close);
    Put_Stub(desc->Create, &IFM_Create);
    Put_Stub(desc->BeginIO, &IFM_BeginIO);
    Put_Stub(desc->EndIO, &IFM_EndIO);
    Put_Stub(desc->GetFrame, &IFM_GetFrame);
    Put_Stub(desc->AddFrame, &IFM_AddFrame);
    Put_Stub(desc->GetFrameDataReference, &IFM_GetFrameDataReference);
    Put_Stub(desc->GetGBuffer, &IFM_GetGBuffer);
    Put_Stub(desc->Options, &IFM_Options);
    Put_Stub(desc->AudioOptions, &IFM_AudioOptions);
    Put_Stub(desc->About, &IFM_About);
    Put_Stub(desc->CanLoad, &IFM_CanLoad);
    Put_Stub(desc->GetImportProperties, &IFM_GetImportProperties);
    Put_Stub(desc->GetExportProperties, &IFM_GetExportProperties);
    Put_Stub(desc->GetFrameData, &IFM_GetFrameData);
    Put_Stub(desc->Cleanup, &IFM_Cleanup);
    Put_Stub(desc->GetAudio, &IFM_GetAudio);
    Put_Stub(desc->AddAudio, &IFM_AddAudio);
    Put_Stub(desc->ConvertEndianOptions, &IFM_ConvertEndianOptions);
    Put_Stub(desc->GetCodecFcc, &IFM_GetCodecFcc);
    Put_Stub(desc->AddFrameAsync, &IFM_AddFrameAsync);
}

/// Lets the module's entry fill the descriptor. It starts without entries, so that none of an earlier load is
/// left where the module offers nothing any more.
bool Fill(ZVFormatDesc* desc)
{
    auto const entry = reinterpret_cast<ZVModuleEntry>(LoadPluginZV(desc->Plugin, 0));
    if (!entry) return false;
    Entries stubs;
    stubs.Take(desc);
    Entries().Put(desc);
    if (entry(desc) && desc->GetImportProperties) {
        desc->CachedProperties = desc->GetImportProperties(desc);
        return true;
    }
    Drop_Arrays(desc);
    stubs.Put(desc);
    PluginIdleZV(desc->Plugin, 1);
    return false;
}

}  // namespace

unsigned long GetModuleLayoutZV()
{
    return Module_Layout();
}

long Load_IFM(ZVFormatDesc* desc)
{
    if (!desc || !desc->Plugin) return 0;
    IFMInfo.Environment = ZVEnv;
    desc->ModuleInfo = &IFMInfo;
    Drop_Arrays(desc);
    // Every node of the list has a name, so the old one comes back when the module fails.
    HeapBlock<char> name(std::exchange(desc->Node.name, nullptr));
    if (Fill(desc)) return 1;
    FreeMemZV(std::exchange(desc->Node.name, name.release()));
    return 0;
}

void Unload_IFM(ZVFormatDesc* desc)
{
    if (!desc || !desc->Plugin) return;
    PluginIdleZV(desc->Plugin, 1);
    Put_Stubs(desc);
}

long Init_IFM(char const* spec, ZVScanDesc* scan)
{
    if (!spec || !ZVEnv) return 0;
    auto* const desc = static_cast<ZVFormatDesc*>(AllocMemZV(sizeof(ZVFormatDesc), ZV_MEM_CLEAR));
    if (!desc) return 0;
    desc->Plugin = static_cast<ZVPlugin*>(AllocMemZV(sizeof(ZVPlugin), ZV_MEM_CLEAR));
    if (desc->Plugin) {
        desc->Plugin->FileSpec = CopyFileSpecZV(spec);
        desc->Plugin->Flags |= ModuleFlags;
    }
    if (!desc->Plugin || !desc->Plugin->FileSpec || !Load_IFM(desc)) {
        Free_Format_Mod(desc);
        return 0;
    }
    Unload_IFM(desc);
    if (!desc->Node.name) AddName(&desc->Node, "");
    Insert_Loaded_Format(desc);
    Show_Scan_Progress(scan, desc->Node.name, "");
    return 1;
}
