// Tag lists: one walk that resolves the control entries, and what is built upon it.
#include "ZVTags.h"

#include "ZVMemory.h"

/// The first ordinary pair at or behind `item`, or null at the end of the list.
static TagItem* Next_Ordinary(TagItem* item)
{
    while (item) {
        switch (item->tag) {
        case ZV_TAG_END: return nullptr;
        case ZV_TAG_IGNORE: ++item; break;
        case ZV_TAG_SKIP: item += item->data + 1; break;
        case ZV_TAG_MORE: item = reinterpret_cast<TagItem*>(item->data); break;
        default: return item;
        }
    }
    return nullptr;
}

TagItem* NextTagItem(TagItem** cursor)
{
    if (!cursor) return nullptr;
    TagItem* item = Next_Ordinary(*cursor);
    if (item) *cursor = item + 1;
    return item;
}

TagItem* FindTagItem(unsigned long tag, TagItem* list)
{
    while (TagItem* item = NextTagItem(&list))
        if (item->tag == tag) return item;
    return nullptr;
}

TagItem* FindTagDone(TagItem* list)
{
    while (list && list->tag != ZV_TAG_END) {
        switch (list->tag) {
        case ZV_TAG_SKIP: list += list->data + 1; break;
        case ZV_TAG_MORE: list = reinterpret_cast<TagItem*>(list->data); break;
        default: ++list; break;
        }
    }
    return list;
}

TagItem* CloneTagItems(TagItem* list)
{
    unsigned long count = 0;
    for (TagItem* cursor = list; NextTagItem(&cursor);)
        ++count;
    auto* clone = static_cast<TagItem*>(AllocMemZV((count + 1) * sizeof(TagItem), ZV_MEM_CLEAR));
    TagItem* out = clone;
    while (TagItem* item = NextTagItem(&list))
        *out++ = *item;
    return clone;
}
