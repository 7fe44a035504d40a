// Tag lists: arrays of key and value pairs that carry every optional argument. A reader takes the tags it
// knows and passes over the others, so that one list can be handed down through several layers. Whoever makes
// a list owns it; a call that keeps one clones it.
#pragma once

#include "ZVBase.h"

#include <array>
#include <cassert>
#include <concepts>
#include <type_traits>

struct TagItem {
    unsigned long tag = 0;   ///< 0 to 3 steer the walk (below), the rest belong to their owners
    unsigned long data = 0;  ///< a number, a flag or a pointer; as wide as a pointer
};

inline constexpr unsigned long ZV_TAG_END = 0;     ///< ends the list
inline constexpr unsigned long ZV_TAG_IGNORE = 1;  ///< this pair counts for nothing
inline constexpr unsigned long ZV_TAG_SKIP = 2;    ///< passes over `data` pairs behind this one
inline constexpr unsigned long ZV_TAG_MORE = 3;    ///< goes on in the array at `data`; null ends the list

/// The next ordinary pair; the cursor moves behind it, and stays where it is at the end of the list.
/// @return  null at the end, or at once when the cursor or what it points to is null
ZV_API TagItem* NextTagItem(TagItem** cursor);

/// The first ordinary pair with that key, or null. A null list holds nothing.
ZV_API TagItem* FindTagItem(unsigned long tag, TagItem* list);

/// The pair with key 0 that ends the list, behind all skip and more entries; overwrite it with a more entry
/// to chain another list. Null for a null list and when a more entry with null ends it.
ZV_API TagItem* FindTagDone(TagItem* list);

/// A flat copy without control entries but the end; of a null list, the end alone. Free it with FreeMemZV.
/// @return  null when memory runs out
ZV_API TagItem* CloneTagItems(TagItem* list);

/// What the twins with variable arguments take as a key, and as a value. A floating-point value does not
/// compile: its tags take a pointer to a double.
template <typename T>
concept ZVTagKey = std::integral<T> || std::is_enum_v<T>;
template <typename T>
concept ZVTagValue = ZVTagKey<T> || std::is_pointer_v<T> || std::is_null_pointer_v<T>;

/// One word of a tag list, extended by the sign of the argument's own type.
template <ZVTagValue T> unsigned long Tag_Word(T value)
{
    if constexpr (std::is_null_pointer_v<T>)
        return 0;
    else if constexpr (std::is_pointer_v<T>)
        return reinterpret_cast<unsigned long>(value);
    else
        return static_cast<unsigned long>(value);
}

/// The pairs up to a key of 0, closed by an end entry. A lone last word can only be the closing 0 of a list
/// written by hand.
template <ZVTagValue... Args> auto Tag_Array(Args... args)
{
    constexpr std::size_t count = sizeof...(Args) / 2;
    unsigned long const words[] = {Tag_Word(args)...};
    assert(sizeof...(Args) % 2 == 0 || words[2 * count] == 0);
    std::array<TagItem, count + 1> items{};
    for (std::size_t i = 0; i < count; ++i)
        items[i] = {words[2 * i], words[2 * i + 1]};
    return items;
}

/// What calls take as a text: a text, or the id of one in the string table; 0 and null are no text.
template <typename T>
concept ZVLabel = ZVTagKey<T> || std::is_convertible_v<T, char const*>;

/// A text, or the word of a string id, as the sister with the tag list takes it.
template <ZVLabel T> auto Label_Word(T label)
{
    if constexpr (ZVTagKey<T>)
        return Tag_Word(label);
    else
        return static_cast<char const*>(label);
}
