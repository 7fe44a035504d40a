// A picture file that is open for reading: its kind, its parts and its layers. Nothing of it is believed
// before its sizes have been checked.
#pragma once

#include "PictureKind.h"
#include "PictureLayers.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>

#include <memory>

/// Native path of a file spec; empty with error 12 when there is none.
std::string Native_Path(char const* spec);

class PictureFile {
public:
    /// Null with the error number set: the file cannot be read, is none of the kinds, damaged, or of a size
    /// that it cannot hold.
    static std::unique_ptr<PictureFile> Open(char const* spec);

    PictureKind const& Kind() const { return *kind_; }
    PictureLayers const& Layers() const { return layers_; }

    /// The layer that a clip shows: of that name, or else with that number from 1; the flat picture for 0.
    PictureLayer const& Layer(long number, char const* name) const;

    /// What a part says of itself. It stays as long as the file.
    OIIO::ImageSpec const& Spec(PictureLayer const& layer) const
    {
        return specs_[static_cast<std::size_t>(layer.part)];
    }
    OIIO::ImageSpec const& Spec(int part) const { return specs_[static_cast<std::size_t>(part)]; }
    int Parts() const { return static_cast<int>(specs_.size()); }

    /// Bits of a channel of the layer: 8, 10, 12, 16 or 32.
    long Depth(PictureLayer const& layer) const;

    /// Whether the colours of the layer are mixed with black by its alpha.
    bool IsPremultiplied(PictureLayer const& layer) const;

    /// The area that the layer shows, in the coordinates of its pixels.
    ZVRectT<long> Frame(PictureLayer const& layer) const;

    OIIO::ImageInput& Input() { return *input_; }

private:
    bool Read_Parts(int64_t fileBytes);

    PictureKind const* kind_ = nullptr;
    std::unique_ptr<OIIO::Filesystem::IOProxy> proxy_;
    std::unique_ptr<OIIO::ImageInput> input_;
    std::vector<OIIO::ImageSpec> specs_;
    PictureLayers layers_;
};
