// A number for the layout of records that separately built code shares with the library.
#pragma once

#include <initializer_list>

/// Follows from the sizes of the records and the places of their parts, in this order. Put a number of your
/// own first, and count it up for changes that no measure shows.
consteval unsigned long Layout_Number(std::initializer_list<unsigned long> measures)
{
    unsigned long layout = 0xCBF29CE484222325;  // the offset and the prime of the 64-bit FNV-1a hash
    for (unsigned long measure : measures)
        layout = (layout ^ measure) * 0x100000001B3;
    return layout;
}
