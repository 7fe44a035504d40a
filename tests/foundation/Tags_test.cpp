// Tag lists: the walk over control entries, and what is built upon it.
#include <ZVLib.h>

#include <gtest/gtest.h>
#include <string>
#include <vector>

static unsigned long Word(TagItem const* items)
{
    return Tag_Word(items);
}

/// The ordinary pairs as "tag=data ...", by NextTagItem.
static std::string Walk(TagItem* list)
{
    std::string pairs;
    TagItem* cursor = list;
    while (TagItem* item = NextTagItem(&cursor)) {
        EXPECT_EQ(cursor, item + 1) << "the cursor stands behind the pair";
        if (!pairs.empty()) pairs += ' ';
        pairs += std::to_string(item->tag);
        pairs += '=';
        pairs += std::to_string(item->data);
    }
    TagItem* const end = cursor;
    EXPECT_EQ(NextTagItem(&cursor), nullptr);
    EXPECT_EQ(cursor, end) << "the cursor stays at the end";
    return pairs;
}

TEST(Tags, ControlEntriesSteerTheWalk)
{
    TagItem more[] = {{700, 7}, {0, 0}};
    TagItem chained[] = {{600, 6}, {3, Word(more)}};
    struct {
        char const* why;
        std::vector<TagItem> list;
        char const* pairs;
    } rows[] = {
        {"an end alone", {{0, 0}}, ""},
        {"pairs in order, a repeated tag included",
         {{500, 1}, {501, 2}, {500, 3}, {0, 0}},
         "500=1 501=2 500=3"},
        {"ignored at the start and straight to the end", {{1, 500}, {0, 0}}, ""},
        {"skip of none passes over itself only", {{2, 0}, {500, 1}, {0, 0}}, "500=1"},
        {"skip covers other control entries", {{2, 2}, {0, 0}, {3, 0}, {500, 1}, {0, 0}}, "500=1"},
        {"more at the start", {{3, Word(chained)}}, "600=6 700=7"},
        {"more behind a pair", {{500, 1}, {3, Word(more)}}, "500=1 700=7"},
        {"more with null ends the list", {{500, 1}, {3, 0}, {501, 2}, {0, 0}}, "500=1"},
    };
    for (auto& row : rows) {
        EXPECT_EQ(Walk(row.list.data()), row.pairs) << row.why;
        TagItem* const clone = CloneTagItems(row.list.data());
        EXPECT_EQ(Walk(clone), row.pairs) << row.why << ", cloned";
        for (TagItem const* item = clone; item->tag; ++item)
            EXPECT_GT(item->tag, ZV_TAG_MORE) << row.why << ", cloned flat";
        FreeMemZV(clone);
    }
}

TEST(Tags, NullListsHoldNothing)
{
    TagItem* cursor = nullptr;
    EXPECT_TRUE(!NextTagItem(nullptr) && !NextTagItem(&cursor));
    EXPECT_TRUE(!FindTagItem(500, nullptr) && !FindTagDone(nullptr));
    TagItem* const clone = CloneTagItems(nullptr);
    EXPECT_EQ(clone->tag, ZV_TAG_END);
    FreeMemZV(clone);
}

TEST(Tags, FindTakesTheFirstPairThatCounts)
{
    TagItem more[] = {{502, 9}, {0, 0}};
    TagItem list[] = {{2, 1}, {501, 1}, {1, 0}, {501, 2}, {501, 3}, {3, Word(more)}};
    EXPECT_EQ(FindTagItem(501, list), &list[3]);
    EXPECT_EQ(FindTagItem(502, list), &more[0]);
    EXPECT_EQ(FindTagItem(ZV_TAG_IGNORE, list), nullptr) << "control entries are not ordinary";
    EXPECT_EQ(FindTagItem(503, list), nullptr);
}

TEST(Tags, TheEndEntryIsFoundForChaining)
{
    TagItem tail[] = {{600, 6}, {0, 0}};
    TagItem more[] = {{1, 0}, {700, 7}, {0, 0}};
    TagItem list[] = {{500, 1}, {2, 1}, {0, 0}, {3, Word(more)}};
    TagItem* const end = FindTagDone(list);
    ASSERT_EQ(end, &more[2]);
    *end = {ZV_TAG_MORE, Word(tail)};
    EXPECT_EQ(Walk(list), "500=1 700=7 600=6");
    TagItem open[] = {{500, 1}, {3, 0}};
    EXPECT_EQ(FindTagDone(open), nullptr);
}

TEST(Tags, ArgumentsBecomeWordsOfTheirOwnSign)
{
    int value = 0;
    enum Small : uint8_t { Entry = 200 };
    auto items = Tag_Array(500u, -1, 501, &value, 502L, nullptr, 503, Entry, 504, true, 0);
    EXPECT_EQ(items[0].data, static_cast<unsigned long>(-1L));
    EXPECT_EQ(items[1].data, reinterpret_cast<unsigned long>(&value));
    EXPECT_EQ(Walk(items.data() + 2), "502=0 503=200 504=1");
    EXPECT_EQ(Walk(Tag_Array(0).data()), "");
    EXPECT_EQ(Walk(Tag_Array(0, 5, 6, 7).data()), "") << "an end entry ends the list wherever it stands";
}
