// See PluginCall.h.
#include "PluginCall.h"

#include "PluginProperties.h"

#include "Locale/ZVLibStr.h"
#include "files/FileBytes.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int32_t ScreenResolution = 72 << 16;  // 16.16 pixels per inch

struct ResultText {
    short result;
    ZVStringID text;
};

constexpr ResultText Texts[] = {
    {errPlugInHostInsufficient, ZVSTR_PLUGIN_HOST},
    {formatCannotRead, ZVSTR_PLUGIN_READ},
    {eofErr, ZVSTR_PLUGIN_READ},
    {readErr, ZVSTR_PLUGIN_READ},
    {memFullErr, ZVSTR_PLUGIN_MEMORY},
    {vLckdErr, ZVSTR_PLUGIN_VOLUME_LOCKED},
    {fLckdErr, ZVSTR_PLUGIN_FILE_LOCKED},
    {fnfErr, ZVSTR_PLUGIN_NOT_FOUND},
    {ioErr, ZVSTR_PLUGIN_IO},
    {dskFulErr, ZVSTR_PLUGIN_DISK_FULL},
    {openErr, ZVSTR_PLUGIN_OPEN},
    {writErr, ZVSTR_PLUGIN_WRITE},
};

void Show_Result(short result)
{
    auto const* const found = std::ranges::find(Texts, result, &ResultText::result);
    if (found != std::end(Texts)) UserMessageZV(found->text);
}

/// Keeps the error number: a file without resources is none.
template <typename Open> std::unique_ptr<ZVResourceFile> Try_Resources(Open open)
{
    unsigned long const error = GetErrorZV();
    std::unique_ptr<ZVResourceFile> resources = open();
    SetError(error);
    return resources;
}

int16_t Short_Size(long size)
{
    return static_cast<int16_t>(std::clamp<long>(size, 0, INT16_MAX));
}

}  // namespace

PluginCall::PluginCall(ZVFormatDesc* format, ZVClip* clip)
    : format_(format), clip_(clip),
      entry_(reinterpret_cast<FormatPluginEntry>(LoadPluginZV(format->Plugin, 0)))
{
    record_.bufferProcs = &buffers_;
    record_.handleProcs = &handles_;
    Init_Callbacks(&record_, format->Plugin);
    record_.maxData = Max_Block();
    record_.imageMode = plugInModeRGBColor;
    record_.hostSig = PluginHostSignature;
    record_.hostModes = PluginModes;
    for (int16_t plane = 0; plane < 16; ++plane)
        record_.planeMap[plane] = plane;
    if (clip) record_.revertInfo = clip->VideoParams;
}

PluginCall::~PluginCall()
{
    Cleanup_Callbacks(&record_, format_->Plugin);
    if (entry_) PluginIdleZV(format_->Plugin, 0);
    unsigned long const error = GetErrorZV();
    file_.reset();
    bool const isEmpty = resources_ && resources_->Entries().empty();
    resources_.reset();
    if (newCompanion_ && isEmpty) DeleteFileZV(newCompanion_);
    FreeFileSpecZV(newCompanion_);
    SetError(error);  // of the operation; clearing up has none
    if (clip_) clip_->VideoParams = record_.revertInfo;
}

void PluginCall::Take_File(char const* spec)
{
    GetFSSpecZV(spec, &place_);
    record_.dataFork = file_->forkRef;
    record_.rsrcFork = resources_.get();
    record_.fileSpec = &place_;
    record_.minDataBytes = reinterpret_cast<long>(file_.get());
}

bool PluginCall::Open_File(char const* spec)
{
    file_.reset(OpenFileZV(spec, ZVFilePermRead, ZVFileFlagNone));
    if (!file_) return false;
    resources_ = Try_Resources([=] { return ZVResourceFile::Open(spec, ZVFilePermRead); });
    Take_File(spec);
    return true;
}

bool PluginCall::Create_File(char const* spec, uint32_t type, uint32_t creator)
{
    file_.reset(CreateFileZV(spec, ZVFilePermReadWrite, type, creator, ZVFileFlagNone));
    if (!file_) return false;
    resources_ = Try_Resources([=] { return ZVResourceFile::Open(spec, ZVFilePermReadWrite); });
    if (!resources_) {
        SpecText const companion = Companion_Spec(spec);
        bool const isNew = !FileExistsZV(companion.Text());
        resources_ = Try_Resources(
            [=] { return ZVResourceFile::Create(spec, ResourcePlace::Companion, type, creator); });
        if (resources_ && isNew) newCompanion_ = CopyFileSpecZV(companion.Text());
    }
    record_.maxData = Max_Block();
    Take_File(spec);
    return true;
}

bool PluginCall::Send(int selector)
{
    short result = 0;
    entry_(static_cast<short>(selector), &record_, &format_->CachedProperties, &result);
    if (result != 0) Fail(result);
    return result == 0;
}

void PluginCall::Fail(short result)
{
    if (result_ != 0) return;
    result_ = result;
    if (showsFailure_) Show_Result(result);
}

bool PluginCall::Save_Resources()
{
    return !resources_ || resources_->Save();
}

void Describe_Picture(FormatRecord& record, ZVClip const& clip, PlugInMode mode, long depth)
{
    auto const has = [&](PlugInMode wanted) { return (clip.Format->ImageModes >> wanted & 1) != 0; };
    record.imageMode = mode;
    record.imageSize = {Short_Size(clip.Height), Short_Size(clip.Width)};
    record.depth = static_cast<int16_t>(depth);
    record.imageHRes = record.imageVRes = ScreenResolution;
    record.planes = 3;
    if (clip.AlphaType == ZV_ALPHA_CHANNEL) {
        record.planes = 4;
    } else if (clip.AlphaType != ZV_ALPHA_NONE && (has(plugInModeGrayScale) || has(plugInModeIndexedColor))) {
        record.imageMode = has(plugInModeGrayScale) ? plugInModeGrayScale : plugInModeIndexedColor;
        record.planes = 1;
    }
}
