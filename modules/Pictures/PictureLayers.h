// The layers of a picture file: parts of it, and channels of a part whose names share what stands before the
// last dot, as in "diffuse.R".
#pragma once

#include <array>
#include <string>
#include <vector>

/// One part of a file by its names; in OpenImageIO's words a subimage.
struct PicturePart {
    std::string name;  ///< empty for none
    std::vector<std::string> channels;
    int alphaChannel = -1;  ///< the one that the file calls alpha, where its name does not tell
};

/// What can be shown on its own: up to four channels of one part.
struct PictureLayer {
    std::string name;  ///< empty for the picture of a part without a name
    int part = 0;
    std::array<int, 4> channels{-1, -1, -1, -1};  ///< red, green, blue, alpha; grey has one for all colours

    bool HasAlpha() const { return channels[3] >= 0; }
    bool IsGrey() const { return channels[0] == channels[1] && channels[1] == channels[2]; }
};

struct PictureLayers {
    PictureLayer flat;                 ///< the picture without layers
    std::vector<PictureLayer> layers;  ///< those with names, in the order of the file
};

/// Takes a file apart. The flat picture is the first part's channels without a prefix, or its first layer; a
/// file of one part without names has no layers. Where there are several parts, all are layers.
/// @param hasComposite  the first part is a composite of the others and no layer
/// @param pageName      what parts without a name are called, with their number behind it
PictureLayers Find_Layers(std::vector<PicturePart> const& parts, bool hasComposite, char const* pageName);

/// The name in lower case, letters and digits alone, so that "object_ID" and "objectId" are one.
std::string Plain_Name(std::string const& name);
