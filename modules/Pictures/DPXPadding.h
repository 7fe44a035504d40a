// Rows of DPX files begin at whole 32-bit words. OpenImageIO goes by the header's field for the bytes behind
// a row, which most writers leave at 0, and so loses its place in rows of other lengths.
#pragma once

#include <OpenImageIO/filesystem.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>

inline constexpr std::size_t DPXHeadSize = 1024;

/// Bytes behind each row of the file that its header does not tell of, from its first bytes and its length.
/// 0 for a file without, and for one that is no DPX file.
uint32_t DPX_Row_Padding(std::span<uint8_t const> head, int64_t fileBytes);

/// The file with a header that tells of them; null when it needs none.
std::unique_ptr<OIIO::Filesystem::IOProxy> Mend_DPX_Padding(std::string const& path);
