// The entries of lists, cycles and menus.
#include "interface/ItemParts.h"

#include <string_view>
#include <utility>

namespace {
/// Entries in the making, which take the place of an item's when all are there.
class NewEntries {
public:
    NewEntries() { NewList(&list); }
    ~NewEntries() { Free_List(&list); }
    NewEntries(NewEntries const&) = delete;
    NewEntries& operator=(NewEntries const&) = delete;

    void Replace(List& old)
    {
        Free_List(&old);
        while (Node* node = RemHead(&list))
            AddTail(&old, node);
    }

    List list;
};
}  // namespace

bool Append_Entry(List& entries, char const* text, std::size_t length, uint32_t id)
{
    HeapBlock<Node> entry(New_Record<Node>());
    HeapBlock<char> name(entry ? static_cast<char*>(New_Block(length + 1)) : nullptr);
    if (!name) return false;
    std::memcpy(name.get(), text, length);
    entry->id = id;
    entry->name = name.release();
    AddTail(&entries, entry.release());
    return true;
}

bool Copy_Entries(ZVItem& item, List const* entries)
{
    NewEntries copies;
    if (entries)
        for (Node const& entry : Records<Node>(*entries)) {
            char const* const text = entry.name ? entry.name : "";
            if (!Append_Entry(copies.list, text, std::strlen(text), entry.id)) return false;
        }
    copies.Replace(item.entries);
    return true;
}

bool Read_Entries(ZVItem& item, char const* text, bool barEnds)
{
    NewEntries read;
    std::string_view rest = text ? text : "";
    if (barEnds) rest = rest.substr(0, rest.find('|'));
    char const* const separators = barEnds ? "," : ",|";
    for (uint32_t id = 1; !rest.empty(); ++id) {
        std::size_t const end = rest.find_first_of(separators);
        std::string_view entry = rest.substr(0, end);
        if (entry == "(-") entry = "_";
        if (!Append_Entry(read.list, entry.data(), entry.size(), id)) return false;
        if (end == rest.npos) break;
        rest.remove_prefix(end + 1);
        // A separator at the end of the text has an empty entry behind it.
        if (rest.empty() && !Append_Entry(read.list, "", 0, id + 1)) return false;
    }
    read.Replace(item.entries);
    return true;
}
