// A format module for the tests. The variable ZV_TEST_MODULE says how it behaves: "refuse" fails in the
// entry, "damage" does so after it has filled the descriptor, "silent" leaves GetImportProperties out, and
// "plain" leaves all out that a module may. Its entries answer by their arguments, so that a test sees
// whether these arrived.
#include <ZVLib.h>

#include <cstdlib>
#include <cstring>

namespace {

bool Is(char const* behaviour)
{
    char const* const wanted = std::getenv("ZV_TEST_MODULE");
    return wanted && std::strcmp(wanted, behaviour) == 0;
}

template <typename T> T* Array_Of(T value, long& count)
{
    auto* const array = static_cast<T*>(AllocMemZV(sizeof(T), 0));
    *array = value;
    count = 1;
    return array;
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

long Test_GetFrame(ZVClip*, ZVBitmap* bitmap, long frame, ZVRectT<long>*, long, long, long, void*, long)
{
    std::memset(bitmap->Pixels, static_cast<int>(frame + 100), static_cast<std::size_t>(bitmap->Size));
    return 1;
}

void Fill_In_The_Rest(ZVFormatDesc* desc)
{
    desc->Close = [](ZVClip* clip) { clip->User1 = 77; };
    desc->Create = [](ZVClip*, unsigned long flags) { return static_cast<long>(flags); };
    desc->BeginIO = desc->EndIO = [](ZVClip*, long) { return 1L; };
    desc->AddFrame = [](ZVClip*, ZVBitmap*, long frame, ZVRectT<long>*) { return frame; };
    desc->GetFrameDataReference = [](ZVClip*, long frame, long layer, long long*, long*, void**) {
        return frame - layer;
    };
    desc->GetGBuffer = [](ZVClip*, long frame, unsigned long, ZVGBufferArray*, long, void*, long size) {
        return frame + size;
    };
    desc->Options = desc->AudioOptions = [](ZVClip* clip, bool silent) { clip->User2 = silent ? 1 : 2; };
    desc->CanLoad = [](ZVFormatDesc*, char const*, unsigned long, unsigned long, unsigned long) {
        return 0L;
    };
    desc->GetExportProperties = [](ZVFormatDesc* own, ZVClip* clip) {
        return clip ? clip->User3 : static_cast<long>(own->FileType);
    };
    desc->GetFrameData = [](ZVClip*, long, unsigned long what, void*, long) {
        return static_cast<long>(what);
    };
    desc->Cleanup = [](ZVFormatDesc*) { setenv("ZV_TEST_CLEANUP", "done", 1); };
    desc->GetAudio = [](ZVClip*, void*, unsigned long first, unsigned long count) {
        return static_cast<long>(first + count);
    };
    desc->GetCodecFcc = [](ZVClip*) { return static_cast<unsigned long>(ZV_FourCC("code")); };
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
    if (!Is("silent"))
        desc->GetImportProperties = [](ZVFormatDesc*) { return static_cast<long>(ZV_FORMAT_READ); };
    if (!Is("plain")) Fill_In_The_Rest(desc);
    return !Is("damage");
}

}  // namespace

ZV_FORMAT_MODULE(Fill)
