// Moving one field between pictures: the rows of a bitmap that make up a field, or all rows of a bitmap that
// holds nothing else. Row 0 belongs to the upper field.
#pragma once

#include "ZVBitmap.h"

#include <algorithm>
#include <cstring>

enum class Field { Upper, Lower };

constexpr Field Other_Field(Field field)
{
    return field == Field::Upper ? Field::Lower : Field::Upper;
}

/// Rows of equal length at equal distance.
struct FieldRows {
    unsigned char* first;
    std::ptrdiff_t distance;  ///< bytes from one row to the next
    std::size_t rowBytes;
    long count;

    unsigned char* Row(long i) const { return first + i * distance; }
};

inline FieldRows Rows_Of_Field(ZVBitmap& frame, Field field)
{
    long const top = field == Field::Lower;
    return {frame.Pixels + top * frame.RowBytes, 2L * frame.RowBytes,
            static_cast<std::size_t>(frame.RowBytes), (frame.Height + 1 - top) / 2};
}

inline FieldRows All_Rows(ZVBitmap& field)
{
    return {field.Pixels, field.RowBytes, static_cast<std::size_t>(field.RowBytes), field.Height};
}

/// Copies as many rows, and as much of each, as both sides have.
inline void Copy_Rows(FieldRows const& from, FieldRows const& to)
{
    std::size_t const bytes = std::min(from.rowBytes, to.rowBytes);
    for (long i = 0; i < std::min(from.count, to.count); ++i)
        std::memcpy(to.Row(i), from.Row(i), bytes);
}

inline void Swap_Rows(FieldRows const& a, FieldRows const& b)
{
    std::size_t const bytes = std::min(a.rowBytes, b.rowBytes);
    for (long i = 0; i < std::min(a.count, b.count); ++i)
        std::swap_ranges(a.Row(i), a.Row(i) + bytes, b.Row(i));
}
