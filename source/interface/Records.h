// The records of the interface: walking their lists, and making them of blocks that may fail, since running
// out of memory is an answer here and no assertion.
#pragma once

#include "ZVLibInternal.h"
#include "foundation/HeapBlock.h"

#include <cstring>
#include <new>

/// A list as a range of the records that its nodes begin. A record may be freed once the walk is behind it.
template <typename Record> class Records {
public:
    explicit Records(List const& list) : first_(list.head) {}

    class Iterator {
    public:
        explicit Iterator(Node* node) : node_(node) {}
        Record& operator*() const { return *reinterpret_cast<Record*>(node_); }
        Iterator& operator++()
        {
            node_ = node_->next;
            return *this;
        }
        bool operator!=(std::nullptr_t) const { return node_->next != nullptr; }

    private:
        Node* node_;
    };
    Iterator begin() const { return Iterator(first_); }
    std::nullptr_t end() const { return nullptr; }

private:
    Node* first_;
};

inline Records<ZVGroup> Groups_Of(ZVPalette const& palette)
{
    return Records<ZVGroup>(palette.groups);
}
inline Records<ZVItem> Items_Of(ZVGroup const& group)
{
    return Records<ZVItem>(group.items);
}
inline Records<ZVPalette> Sub_Palettes_Of(ZVPalette const& palette)
{
    return Records<ZVPalette>(palette.subPalettes);
}
inline Records<ZVPalette> Palettes_Of(ZVWindow const& window)
{
    return Records<ZVPalette>(window.palettes);
}
inline Records<ZVWindow> All_Windows()
{
    return Records<ZVWindow>(ZVEnv->windows);
}

/// The first record of that id; null for an id of 0, which names nothing.
template <typename Record> Record* Find_Record(List const& list, unsigned long id)
{
    return id ? reinterpret_cast<Record*>(FindNodeID(&list, id)) : nullptr;
}

/// A zeroed block of `size` bytes; null with error 1 when memory runs out. Released by FreeMemZV.
inline void* New_Block(unsigned long size)
{
    void* const block = Alloc_Aligned(size, alignof(std::max_align_t));
    if (block)
        std::memset(block, 0, size);
    else
        SetError(ZV_ERR_MEMORY);
    return block;
}

template <typename Record> Record* New_Record()
{
    void* const block = New_Block(sizeof(Record));
    return block ? new (block) Record{} : nullptr;
}

/// Copies a text in place of an owned one; null is no text. False with error 1 and the old text kept when
/// memory runs out.
inline bool Replace_Text(char*& owned, char const* text)
{
    char* copy = nullptr;
    if (text) {
        copy = static_cast<char*>(New_Block(std::strlen(text) + 1));
        if (!copy) return false;
        std::strcpy(copy, text);
    }
    FreeMemZV(owned);
    owned = copy;
    return true;
}

/// The pairs of two lists in a flat list; null with error 1 when memory runs out.
inline TagItem* Join_Tags(TagItem* first, TagItem* second)
{
    unsigned long count = 1;
    for (TagItem* list : {first, second})
        while (NextTagItem(&list))
            ++count;
    auto* const joined = static_cast<TagItem*>(New_Block(count * sizeof(TagItem)));
    TagItem* out = joined;
    for (TagItem* list : {first, second})
        while (TagItem const* tag = NextTagItem(&list))
            if (out) *out++ = *tag;
    return joined;
}

/// CloneTagItems with an answer for a lack of memory, as above.
inline TagItem* Clone_Tags(TagItem* list)
{
    return Join_Tags(list, nullptr);
}

/// The numbers and pointers that a tag can hold.
inline int32_t Tag_Number(TagItem const& tag)
{
    return static_cast<int32_t>(tag.data);
}
template <typename Pointer> Pointer Tag_Pointer(TagItem const& tag)
{
    return reinterpret_cast<Pointer>(tag.data);
}

/// Of a text or, by an id other than 0, of the string table.
inline char const* Text_Of_Id(unsigned long id)
{
    return id ? GetStringZV(id) : nullptr;
}
