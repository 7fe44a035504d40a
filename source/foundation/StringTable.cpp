// The process-wide string table: looking texts up by their ids, and taking in string files. A file is parsed
// and the new arrays are complete before the table is touched.
#include "ZVString.h"

#include "Locale/ZVLibStr.h"
#include "ZVLibInternal.h"
#include "foundation/HeapBlock.h"
#include "foundation/StringFile.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>
#include <unordered_set>

namespace {
struct FileText {
    HeapBlock<char> block;
    std::size_t size = 0;
    std::string_view View() const { return {block.get(), size}; }
};

/// The parts of a table under construction.
struct NewTable {
    HeapBlock<uint32_t> ids;
    HeapBlock<char*> texts;
    HeapBlock<ZVStringBlock> block;
    std::size_t count = 0;
    std::size_t textBytes = 0;
};
}  // namespace

static constexpr std::size_t MaxSize = std::numeric_limits<int32_t>::max();

/// A block whose absence only fails the load, where AllocMemZV would fail an assertion.
template <typename T> static bool Allocate(HeapBlock<T>& block, std::size_t size)
{
    block.reset(static_cast<T*>(Alloc_Aligned(size, alignof(T))));
    if (!block) SetError(ZV_ERR_MEMORY);
    return block != nullptr;
}

static bool Read_File(char const* name, FileText& text)
{
    std::unique_ptr<char, Released_By<FreeFileSpecZV>> const spec(Find_Library_File(name));
    if (!spec) return false;
    std::unique_ptr<ZVFileInfo, Released_By<CloseFileZV>> const file(
        OpenFileZV(spec.get(), ZVFilePermReadLarge, ZVFileFlagNone));
    if (!file) return false;

    int64_t const length = GetFileLengthZV(file.get());
    if (length < 0 || length > static_cast<int64_t>(MaxSize)) {
        SetError(ZV_ERR_IO);
        return false;
    }
    text.size = static_cast<std::size_t>(length);
    if (!Allocate(text.block, text.size + 1)) return false;
    // A file that became shorter meanwhile ends at a zero byte.
    std::memset(text.block.get(), 0, text.size + 1);
    return text.size == 0 || ReadFileZV(file.get(), text.block.get(), text.size);
}

/// Reads a string file and its header into entries. Failures are shown, with the error number set.
static bool Read_Entries(char const* name, FileText& file, std::vector<StringEntry>& entries)
{
    if (!Read_File(name, file)) {
        UserMessageZV(ZVSTR_STRING_FILE, name);
        return false;
    }
    std::vector<StringFault> faults;
    std::string headerName;
    FileText header;
    StringSymbols symbols;
    bool isGood = Find_String_Header(file.View(), headerName, faults);
    if (isGood && !Read_File(headerName.c_str(), header)) {
        UserMessageZV("Can't find include file '%s'!", headerName.c_str());
        return false;
    }
    isGood = isGood && Parse_String_Header(header.View(), symbols, faults) &&
             Parse_String_Entries(file.View(), symbols, entries, faults);
    if (!isGood) SetError(ZV_ERR_IO);
    for (StringFault const& fault : faults)
        UserMessageZV(fault.message, fault.name.c_str());
    return isGood;
}

static void Report_Used_ID(StringEntry const& entry)
{
    char text[256];
    std::snprintf(text, sizeof text, "The ID '%d', defined by '%.*s', is already in use!",
                  static_cast<int>(entry.id), static_cast<int>(entry.name.size()), entry.name.data());
    User_Req(0, 0, text, "OK", nullptr);
}

/// Room for a text of that length: a zero byte closes it, a second one makes its size even.
static std::size_t Padded_Size(std::size_t length)
{
    return (length + 2) & ~std::size_t{1};
}

/// Makes the arrays of old and new entries together, sorted by id.
static bool Build_Table(ZVStringTable const& old, std::vector<StringEntry> const& entries, NewTable& table)
{
    auto const oldCount = static_cast<std::size_t>(old.count);
    std::size_t newBytes = 0;
    for (StringEntry const& entry : entries)
        newBytes += Padded_Size(Resolve_Escapes(entry.quoted, nullptr));
    table.count = oldCount + entries.size();
    table.textBytes = static_cast<std::size_t>(old.textBytes) + newBytes;
    if (table.count > MaxSize || table.textBytes > MaxSize) {
        SetError(ZV_ERR_MEMORY);
        return false;
    }
    if (!Allocate(table.ids, table.count * sizeof(uint32_t)) ||
        !Allocate(table.texts, table.count * sizeof(char*)) ||
        !Allocate(table.block, sizeof(ZVStringBlock) + newBytes))
        return false;

    uint32_t* ids = std::copy_n(old.ids, oldCount, table.ids.get());
    char** texts = std::copy_n(old.texts, oldCount, table.texts.get());
    std::unordered_set<uint32_t> newIDs;
    table.block->next = nullptr;
    char* text = table.block->Text();
    for (StringEntry const& entry : entries) {
        if (std::binary_search(old.ids, old.ids + oldCount, entry.id) || !newIDs.insert(entry.id).second)
            Report_Used_ID(entry);
        *ids++ = entry.id;
        *texts++ = text;
        std::size_t const length = Resolve_Escapes(entry.quoted, text);
        std::size_t const size = Padded_Size(length);
        std::memset(text + length, 0, size - length);
        text += size;
    }
    ZVStringTable sorted{static_cast<int32_t>(table.count), 0, table.ids.get(), table.texts.get(), nullptr};
    SortStringTable(&sorted, 0, sorted.count - 1);
    return true;
}

/// Puts the new parts in place of the old ones; nothing here can fail.
static void Replace_Table(ZVStringTable& table, NewTable& parts)
{
    FreeMemZV(table.ids);
    FreeMemZV(table.texts);
    table.count = static_cast<int32_t>(parts.count);
    table.textBytes = static_cast<int32_t>(parts.textBytes);
    table.ids = parts.ids.release();
    table.texts = parts.texts.release();
    ZVStringBlock** link = &table.blocks;
    while (*link)
        link = &(*link)->next;
    *link = parts.block.release();
}

static bool Load_String_File(char const* name)
{
    FileText file;
    std::vector<StringEntry> entries;
    if (!Read_Entries(name, file, entries)) return false;

    HeapBlock<ZVStringTable> firstTable;
    if (!ZVEnv->stringTable) {
        if (!Allocate(firstTable, sizeof(ZVStringTable))) return false;
        *firstTable = {};
    }
    ZVStringTable& table = firstTable ? *firstTable : *ZVEnv->stringTable;
    NewTable parts;
    if (!Build_Table(table, entries, parts)) return false;
    Add_Node(&ZVEnv->stringFiles, name);
    Replace_Table(table, parts);
    if (firstTable) ZVEnv->stringTable = firstTable.release();
    return true;
}

long AppendStringFileZV(char const* name)
{
    if (!name) return 1;
    if (!ZVEnv) return 0;
    if (Find_Name(&ZVEnv->stringFiles, name)) return 1;
    try {
        return Load_String_File(name);
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return 0;
    }
}

char* GetStringZV(unsigned long id)
{
    static char empty[1] = "";
    ZVStringTable const* table = ZVEnv ? ZVEnv->stringTable : nullptr;
    if (!table) return empty;
    auto const wanted = static_cast<uint32_t>(id);
    uint32_t* const end = table->ids + table->count;
    uint32_t* const found = std::lower_bound(table->ids, end, wanted);
    return found != end && *found == wanted ? table->texts[found - table->ids] : empty;
}

void FreeStringTable(ZVStringTable* table)
{
    if (table) {
        while (ZVStringBlock* block = table->blocks) {
            table->blocks = block->next;
            FreeMemZV(block);
        }
        FreeMemZV(table->ids);
        FreeMemZV(table->texts);
        if (ZVEnv && ZVEnv->stringTable == table) ZVEnv->stringTable = nullptr;
        FreeMemZV(table);
    }
    if (ZVEnv) Free_List(&ZVEnv->stringFiles);
}

void SortStringTable(ZVStringTable* table, long left, long right)
{
    uint32_t* const ids = table->ids;
    while (left < right) {
        uint32_t const pivot = ids[left + (right - left) / 2];
        long i = left, j = right;
        while (i <= j) {
            while (ids[i] < pivot)
                ++i;
            while (ids[j] > pivot)
                --j;
            if (i > j) break;
            std::swap(ids[i], ids[j]);
            std::swap(table->texts[i], table->texts[j]);
            ++i;
            --j;
        }
        // The recursion takes the shorter part, so its depth stays logarithmic whatever the order of the ids.
        if (j - left < right - i) {
            SortStringTable(table, left, j);
            left = i;
        } else {
            SortStringTable(table, i, right);
            right = j;
        }
    }
}
