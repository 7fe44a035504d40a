// The small pictures of a file dialog, drawn by code in the pens, so that they fit both themes and any size.
#pragma once

#include "ZVDraw.h"

#include <cstdint>
#include <string_view>

enum class FileIcon : uint8_t {
    Folder,
    File,
    Picture,
    Movie,
    Sound,
    Home,
    Desktop,
    Documents,
    Computer,
    Volume
};

/// What a file is, by its extension.
FileIcon Icon_Of_File(std::string_view name);

/// Draws an icon into a square.
void Draw_File_Icon(ZVDrawInfo* draw, FileIcon icon, long x, long y, long size);
