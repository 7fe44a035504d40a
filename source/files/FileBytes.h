// Bytes at places of an open file, all of them or none; and the companion that a file may have.
#pragma once

#include "SpecText.h"

#include "ZVFile.h"

/// Reads `size` bytes from `offset` on. False when they do not all lie before `end`, which must not exceed
/// the length of the file.
bool Read_Bytes(ZVFileInfo* file, int64_t end, int64_t offset, void* destination, int64_t size);

/// False with the error number of the file layer.
bool Write_Bytes(ZVFileInfo* file, int64_t offset, void const* source, int64_t size);

/// Copies bytes of one file to another, or within one where the places do not overlap.
bool Copy_Bytes(ZVFileInfo* from, int64_t fromOffset, ZVFileInfo* to, int64_t toOffset, int64_t size);

/// The spec of the file ._name beside a file.
SpecText Companion_Spec(char const* spec);
