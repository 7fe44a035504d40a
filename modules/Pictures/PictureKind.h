// The kinds of picture files that the module knows, and what each of them holds.
#pragma once

#include <ZVLib.h>

#include <array>
#include <span>
#include <string_view>

/// How a kind stores alpha.
enum class AlphaRule {
    None,
    Straight,
    Premultiplied,
    Marked  ///< the file tells
};

struct PictureKind {
    char const* name;                    ///< OpenImageIO's name of the format
    uint32_t fileType;                   ///< type code of created files
    std::array<uint32_t, 3> extensions;  ///< codes, 0 behind the last
    AlphaRule alpha;
    std::array<int, 5> depths;  ///< bits of a channel that are written, rising, 0 behind the last
};

std::span<PictureKind const> All_Kinds();

/// The kind with an extension code; null when there is none.
PictureKind const* Kind_Of_Extension(uint32_t extension);

/// The kind of a file by its first bytes, whatever its name says. Only Targa files, which begin with nothing
/// to know them by, go by the extension.
PictureKind const* Kind_Of_File(std::string_view head, uint32_t extension);

/// The first bytes that this takes.
inline constexpr std::size_t KindHeadSize = 8;

/// The smallest depth of the kind that holds that many bits, or its greatest one; 0 for a kind that is only
/// read.
int Stored_Depth(PictureKind const& kind, long depth);
