// A dependency of a gadget, as it stands on the item's list.
#pragma once

#include "ZVLibInternal.h"

/// A list of tags that several dependencies can hold: the last one frees it.
struct SharedTags {
    unsigned long holders;
    TagItem* Tags() { return reinterpret_cast<TagItem*>(this + 1); }
};

/// On ZVItem::dependencies.
struct ZVDependency {
    MinNode node;
    uint32_t shared;  ///< non-zero when another one was the first to hold the list
    SharedTags* list;
};

/// A list of `count` pairs with room for the end, without holders. Null with error 1 when memory runs out.
SharedTags* New_Shared_Tags(unsigned long count);
void Release_Tags(SharedTags* list);  ///< One holder less; null is accepted.

/// Appends a dependency that holds the list. False with error 1 when memory runs out.
bool Append_Dependency(ZVItem& item, SharedTags* list, bool isShared);

/// Copies the value of one gadget to another by what both of them keep.
void Copy_Gadget_Value(ZVItem const& source, ZVItem& target);
