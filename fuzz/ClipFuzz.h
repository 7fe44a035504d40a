// Reads bytes as a clip, through a file in memory, so that a whole format module runs over them.
#pragma once

#include <ZVLibInternal.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

/// A file without a name that holds one input after the other.
class FuzzFile {
public:
    FuzzFile() : descriptor_(memfd_create("input", 0)) {}
    ~FuzzFile() { close(descriptor_); }
    FuzzFile(FuzzFile const&) = delete;
    FuzzFile& operator=(FuzzFile const&) = delete;

    void Set(uint8_t const* data, std::size_t size) const
    {
        bool const isSet = ftruncate(descriptor_, 0) == 0 &&
                           pwrite(descriptor_, data, size, 0) == static_cast<ssize_t>(size);
        if (!isSet) std::abort();
    }
    std::string Spec() const { return "Root:\\proc\\self\\fd\\" + std::to_string(descriptor_); }

private:
    int descriptor_;
};

/// The module that gives its files this type, in a library that is brought up with the first call.
inline ZVFormatDesc* Fuzz_Module(uint32_t fileType)
{
    if (!ZVEnv) {
        setenv("KL_APP_DATA_DIR", "/nonexistent", 1);  // nothing is to be written
        if (!InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 1, 0)) std::abort();
        InitFormatModulesZV(nullptr);
    }
    for (Node* node = List_First(&ZVEnv->formats); node; node = List_Next(node)) {
        auto* desc = reinterpret_cast<ZVFormatDesc*>(node);
        if (desc->FileType == fileType) return desc;
    }
    std::abort();
}

inline void Fuzz_Frame(ZVClip* clip, long frame, long width, long height)
{
    std::unique_ptr<ZVBitmap, decltype([](ZVBitmap* bitmap) { FreeBitmapZV(bitmap); })> const bitmap{
        AllocBitmapZV(width, height, ZV_BITMAP_RGBA8, nullptr)};
    ZVRectT<long> rect;
    clip->Format->GetFrame(clip, bitmap.get(), frame, &rect, width, height, 0, nullptr, 0);
}

using FuzzClip = std::unique_ptr<ZVClip, decltype([](ZVClip* clip) { FreeClipZV(clip); })>;

/// The bytes as an open clip of the module; null when it refuses them.
inline FuzzClip Fuzz_Open(ZVFormatDesc* module, uint8_t const* data, std::size_t size)
{
    static FuzzFile const file;
    file.Set(data, size);
    FuzzClip clip{NewClipZV()};
    clip->Format = module;
    clip->FileName = CopyFileSpecZV(file.Spec().c_str());
    if (!module->Open(clip.get(), nullptr)) return nullptr;
    if (clip->Width < 1 || clip->Height < 1 || clip->RawFrames < 0) std::abort();
    return clip;
}

/// Whether pictures are worth reading: larger ones cost time and show nothing new.
inline bool Is_Fuzz_Size(ZVClip const* clip)
{
    constexpr long largestPicture = 1 << 16;  // pixels
    return clip->Width * clip->Height <= largestPicture;
}

inline void Fuzz_Close(ZVClip* clip)
{
    clip->Format->Close(clip);
    if (clip->ModuleData) std::abort();
}

/// Opens the bytes and reads frames of every kind: the first ones, the last, ones that are not there, and the
/// first one scaled.
/// @param largestExpansion  bytes of a picture that a byte of a file may stand for
inline void Fuzz_Clip(uint32_t fileType, uint8_t const* data, std::size_t size, long largestExpansion)
{
    static ZVFormatDesc* const module = Fuzz_Module(fileType);
    FuzzClip const clip = Fuzz_Open(module, data, size);
    if (!clip) return;
    long const width = clip->Width, height = clip->Height;
    if (width * height * 4 > static_cast<long>(size) * largestExpansion) std::abort();
    if (Is_Fuzz_Size(clip.get())) {
        for (long frame : {0L, 1L, 2L, 3L, clip->RawFrames - 1, clip->RawFrames, -1L})
            Fuzz_Frame(clip.get(), frame, width, height);
        Fuzz_Frame(clip.get(), 0, 7, 5);
    }
    Fuzz_Close(clip.get());
}
