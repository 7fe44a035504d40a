// A format module for the tests. The variable ZV_TEST_MODULE says how it behaves: "refuse" fails in the
// entry, "damage" does so after it has filled the descriptor, "silent" leaves GetImportProperties out, and
// "plain" leaves all out that a module may. What happens to it is noted in the clip or in its own export
// properties.
#include <ZVLib.h>

#include <cstdlib>
#include <cstring>

namespace {

bool Is(char const* behaviour)
{
    char const* const wanted = std::getenv("ZV_TEST_MODULE");
    return wanted && std::strcmp(wanted, behaviour) == 0;
}

long Test_Open(ZVClip* clip, TagItem*)
{
    clip->Width = 2;
    clip->Height = 1;
    clip->BitDepth = 8;
    clip->RawFrames = 1;
    clip->Media = ZV_MEDIA_VIDEO;
    return 1;
}

void Test_Close(ZVClip* clip)
{
    clip->User1 = 77;
}

long Test_Create(ZVClip*, unsigned long createFlags)
{
    return static_cast<long>(createFlags);
}

long Test_IO(ZVClip*, long)
{
    return 1;
}

long Test_GetFrame(ZVClip*, ZVBitmap* bitmap, long frame, ZVRectT<long>*, long, long, long, void*, long)
{
    std::memset(bitmap->Pixels, static_cast<int>(frame + 100), static_cast<std::size_t>(bitmap->Size));
    return 1;
}

long Test_AddFrame(ZVClip*, ZVBitmap*, long frame, ZVRectT<long>*)
{
    return frame;
}

long Test_GetFrameDataReference(ZVClip*, long frame, long layer, long long*, long*, void**)
{
    return frame - layer;
}

long Test_GetGBuffer(ZVClip*, long frame, unsigned long, ZVGBufferArray*, long, void*, long dataSize)
{
    return frame + dataSize;
}

void Test_Options(ZVClip* clip, bool silent)
{
    clip->User2 = silent ? 1 : 2;
}

long Test_CanLoad(ZVFormatDesc*, char const*, unsigned long, unsigned long, unsigned long)
{
    return 0;
}

long Test_GetImportProperties(ZVFormatDesc* desc)
{
    return desc->ReadExtensionCount == 1 ? ZV_FORMAT_READ : 0L;
}

long Test_GetExportProperties(ZVFormatDesc* desc, ZVClip* clip)
{
    return clip ? clip->User3 : desc->FileType;
}

long Test_GetFrameData(ZVClip*, long, unsigned long what, void*, long)
{
    return static_cast<long>(what);
}

void Test_Cleanup(ZVFormatDesc*)
{
    setenv("ZV_TEST_CLEANUP", "done", 1);
}

long Test_GetAudio(ZVClip*, void*, unsigned long first, unsigned long count)
{
    return static_cast<long>(first + count);
}

unsigned long Test_GetCodecFcc(ZVClip*)
{
    return ZV_FourCC("code");
}

template <typename T> T* Array_Of(T value, long& count)
{
    auto* const array = static_cast<T*>(AllocMemZV(sizeof(T), 0));
    *array = value;
    count = 1;
    return array;
}

long Fill(ZVFormatDesc* desc)
{
    auto const* const info = static_cast<ZVModuleInfo const*>(desc->ModuleInfo);
    if (Is("refuse") || info->Environment != ZVEnv || info->Reserved[6] != 0) return 0;
    AddName(&desc->Node, "Test");
    desc->FileType = ZV_FourCC("Test");
    desc->ReadTypes = Array_Of(ZVTypePair{ZV_FourCC("Test"), ZV_BLANK_CODE}, desc->ReadTypeCount);
    desc->ReadExtensions = Array_Of(ZV_FourCC("test"), desc->ReadExtensionCount);
    desc->Open = Test_Open;
    desc->GetFrame = Test_GetFrame;
    if (!Is("silent")) desc->GetImportProperties = Test_GetImportProperties;
    if (Is("damage")) return 0;
    if (Is("plain")) return 1;
    desc->Close = Test_Close;
    desc->Create = Test_Create;
    desc->BeginIO = desc->EndIO = Test_IO;
    desc->AddFrame = Test_AddFrame;
    desc->GetFrameDataReference = Test_GetFrameDataReference;
    desc->GetGBuffer = Test_GetGBuffer;
    desc->Options = desc->AudioOptions = Test_Options;
    desc->CanLoad = Test_CanLoad;
    desc->GetExportProperties = Test_GetExportProperties;
    desc->GetFrameData = Test_GetFrameData;
    desc->Cleanup = Test_Cleanup;
    desc->GetAudio = Test_GetAudio;
    desc->GetCodecFcc = Test_GetCodecFcc;
    return 1;
}

}  // namespace

ZV_FORMAT_MODULE(Fill)
