// Lists: linking and looking up, wrapped walks, and sorting with its promised order of comparisons.
#include <ZVLib.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <ranges>
#include <string>
#include <vector>

/// The nodes from the head on, after a look at every link in both directions.
static std::vector<Node*> Nodes(List const& list)
{
    EXPECT_EQ(list.tail, nullptr);
    std::vector<Node*> forward, backward;
    for (Node* node = list.head; node->next; node = node->next) {
        EXPECT_EQ(node->prev->next, node);
        EXPECT_EQ(node->next->prev, node);
        forward.push_back(node);
    }
    for (Node* node = list.tailPred; node->prev; node = node->prev)
        backward.push_back(node);
    EXPECT_TRUE(std::ranges::equal(forward, backward | std::views::reverse));
    EXPECT_EQ(List_Entries(&list), static_cast<long>(forward.size()));
    EXPECT_EQ(List_Empty(&list) != 0, forward.empty());
    return forward;
}

static std::string Names(List const& list)
{
    std::string names;
    for (Node const* node : Nodes(list))
        names += std::string(names.empty() ? "" : " ") + (node->name ? node->name : "-");
    return names;
}

namespace {
/// A list that frees its nodes.
struct OwnList : List {
    OwnList() { NewList(this); }
    explicit OwnList(std::vector<char const*> const& names) : OwnList()
    {
        for (char const* name : names)
            Add_Node(this, name);
    }
    OwnList(OwnList const&) = delete;
    OwnList& operator=(OwnList const&) = delete;
    ~OwnList() { Free_List(this); }
};

struct Parent {
    Node node;
    long other = 0;
    List children;
};
}  // namespace

TEST(List, RandomOperationsAgreeWithAVectorOfNodes)
{
    std::mt19937 random(20);
    List list;
    NewList(&list);
    std::vector<Node> pool(40);
    std::vector<Node*> linked, unlinked;
    for (Node& node : pool)
        unlinked.push_back(&node);
    auto const pick = [&random](std::size_t count) { return random() % count; };

    for (int step = 0; step < 5000; ++step) {
        bool const links = linked.empty() || (!unlinked.empty() && random() % 2);
        std::size_t const at = linked.empty() ? 0 : pick(linked.size());
        auto const place = linked.begin() + static_cast<long>(at);
        if (links) {
            Node* const node = unlinked.back();
            unlinked.pop_back();
            std::size_t where = 0;
            switch (linked.empty() ? pick(4) : pick(6)) {
            case 0: AddHead(&list, node); break;
            case 1: AddTail(&list, node), where = linked.size(); break;
            case 2: Insert(&list, node, nullptr); break;
            case 3: InsertBefore(&list, node, nullptr), where = linked.size(); break;
            case 4: Insert(&list, node, *place), where = at + 1; break;
            default: InsertBefore(&list, node, *place), where = at; break;
            }
            linked.insert(linked.begin() + static_cast<long>(where), node);
        } else {
            switch (pick(3)) {
            case 0:
                unlinked.push_back(RemHead(&list));
                ASSERT_EQ(unlinked.back(), linked.front());
                linked.erase(linked.begin());
                break;
            case 1:
                unlinked.push_back(RemTail(&list));
                ASSERT_EQ(unlinked.back(), linked.back());
                linked.pop_back();
                break;
            default:
                unlinked.push_back(*place);
                Remove(*place);
                ASSERT_EQ(unlinked.back()->next, nullptr);
                ASSERT_EQ(GetList(unlinked.back()), nullptr);
                linked.erase(place);
                break;
            }
        }
        ASSERT_EQ(Nodes(list), linked) << "step " << step;
        if (linked.empty()) continue;
        std::size_t const position = pick(linked.size());
        Node* const node = linked[position];
        EXPECT_EQ(List_Entry(&list, static_cast<long>(position)), node);
        EXPECT_EQ(Entry_Pos(&list, node), static_cast<long>(position) + 1);
        EXPECT_EQ(GetList(node), &list);
        EXPECT_EQ(NextNodeWrap(node), linked[(position + 1) % linked.size()]);
        EXPECT_EQ(PrevNodeWrap(node), linked[(position + linked.size() - 1) % linked.size()]);
    }
}

TEST(List, PositionsOutsideAreClampedOrNull)
{
    std::pair<long, char const*> const rows[] = {
        {-5, "x a b"}, {0, "x a b"}, {1, "a x b"}, {2, "a b x"}, {9, "a b x"}};
    for (auto const& [position, names] : rows) {
        OwnList list({"a", "b"});
        Insert_Node(&list, "x", position);
        EXPECT_EQ(Names(list), names) << position;
    }
    OwnList list;
    EXPECT_EQ(RemHead(&list), nullptr);
    EXPECT_EQ(RemTail(&list), nullptr);
    EXPECT_EQ(List_First(&list), nullptr);
    Insert_Node(&list, "x", 3);
    for (long outside : {-1L, 1L, 1L << 40})
        EXPECT_EQ(List_Entry(&list, outside), nullptr) << outside;
    Node stranger;
    EXPECT_EQ(Entry_Pos(&list, &stranger), 2);
}

TEST(List, TheFirstOfSeveralMatchesIsFound)
{
    OwnList list({"one", "Two", "TWO", "three"});
    list.head->id = 7;
    list.tailPred->id = 0xFFFFFFFF;
    Node* const two = List_Entry(&list, 1);
    EXPECT_EQ(Find_Name(&list, "two"), two);
    EXPECT_EQ(Find_Index(&list, "tWo"), 1);
    EXPECT_EQ(Find_Name(&list, "tw"), nullptr);
    EXPECT_EQ(Find_Index(&list, "tw"), -1);
    EXPECT_EQ(FindNodeID(&list, 0), two);
    EXPECT_EQ(Find_IndexID(&list, 7), 0);
    EXPECT_EQ(Find_IndexID(&list, static_cast<unsigned long>(-1)), 3) << "-1 as a 32-bit id";
    EXPECT_EQ(Find_IndexID(&list, 8), -1);
}

TEST(List, NamesAreOwnCopies)
{
    OwnList list;
    char text[] = "first";
    Node* const node = Add_Node(&list, text);
    text[0] = 'x';
    EXPECT_STREQ(node->name, "first");
    EXPECT_STREQ(AddName(node, node->name + 1), "irst") << "a part of the old name";
    EXPECT_EQ(AddName(node, nullptr), nullptr);
    FreeNode(Add_Node(&list, nullptr));
    EXPECT_EQ(Names(list), "-");
    Free_List(&list);
    EXPECT_EQ(Names(list), "") << "freed, and ready for use";
}

TEST(List, TheWalkOverChildrenGoesRoundAndStepsOverEmptyParents)
{
    // Each digit is a parent with that many children.
    for (std::string const shape : {"1", "3", "01", "10", "0203", "2000", "0001", "30102"}) {
        List parents;
        NewList(&parents);
        std::vector<Parent> family(shape.size());
        std::vector<Node> children(9);
        std::vector<Node*> order;
        for (std::size_t i = 0; i < shape.size(); ++i) {
            AddTail(&parents, &family[i].node);
            NewList(&family[i].children);
            for (char count = shape[i]; count > '0'; --count) {
                order.push_back(&children[order.size()]);
                AddTail(&family[i].children, order.back());
            }
        }
        long const offset =
            reinterpret_cast<char*>(&family[0].children) - reinterpret_cast<char*>(&family[0]);
        for (std::size_t i = 0; i < order.size(); ++i) {
            Node* const next = order[(i + 1) % order.size()];
            EXPECT_EQ(NextNodeListWrap(order[i], offset), next) << shape << " child " << i;
            EXPECT_EQ(PrevNodeListWrap(next, offset), order[i]) << shape << " child " << i;
        }
    }
}

namespace {
using Comparisons = std::vector<std::pair<Node*, Node*>>;
}  // namespace

static long Compare_IDs(Node* a, Node* b)
{
    return static_cast<long>(a->id) - static_cast<long>(b->id);
}

static long Compare_Logged(Node* a, Node* b, void* log)
{
    static_cast<Comparisons*>(log)->push_back({a, b});
    return Compare_IDs(a, b);
}

/// The promised sort, by positions of a vector.
static bool Sort_Vector(std::vector<Node*>& nodes, long first, long last, Comparisons& log)
{
    if (last <= first) return false;
    auto const at = [&nodes](long position) -> Node*& { return nodes[static_cast<std::size_t>(position)]; };
    Node* const pivot = at((first + last) / 2);
    long i = first, j = last;
    bool exchanged = false;
    do {
        while (Compare_Logged(at(i), pivot, &log) < 0 && i < last)
            ++i;
        while (Compare_Logged(at(j), pivot, &log) > 0 && j > first)
            --j;
        if (i <= j) {
            std::swap(at(i), at(j));
            exchanged = true;
            ++i;
            --j;
        }
    } while (i <= j);
    if (j > first) exchanged |= Sort_Vector(nodes, first, j, log);
    if (i < last) exchanged |= Sort_Vector(nodes, i, last, log);
    return exchanged;
}

TEST(ListSort, TheOrderOfComparisonsIsThePromisedOne)
{
    std::mt19937 random(5);
    for (int round = 0; round < 400; ++round) {
        std::vector<Node> pool(random() % 40);
        List list;
        NewList(&list);
        std::vector<Node*> expected;
        unsigned const range = 1 + static_cast<unsigned>(random() % 30);
        for (Node& node : pool) {
            node.id = static_cast<uint32_t>(random() % range);
            AddTail(&list, &node);
            expected.push_back(&node);
        }
        long const count = static_cast<long>(pool.size());
        long const first = round % 2 || count == 0 ? 0 : static_cast<long>(random() % pool.size());
        long const last = round % 2 || count == 0 ? count - 1 : first + static_cast<long>(random() % 10);
        Comparisons expectedLog, log;
        bool const inside = last < count;
        bool const exchanged = inside && Sort_Vector(expected, first, last, expectedLog);
        long const result = round % 2 ? SortListZV_Params(&list, Compare_Logged, &log)
                                      : Sort_By_Func_Params(&list, first, last, Compare_Logged, &log);
        EXPECT_EQ(Nodes(list), expected) << "round " << round;
        EXPECT_EQ(log, expectedLog) << "round " << round;
        EXPECT_EQ(result != 0, exchanged) << "round " << round;
    }
}

TEST(ListSort, NamesSortWithoutCase)
{
    OwnList list({"pear", "Apple", "fig", "APPLE", "Pear"});
    EXPECT_NE(Sort_List(&list), 0);
    std::string names = Names(list);
    std::ranges::transform(names, names.begin(), [](unsigned char c) { return std::tolower(c); });
    EXPECT_EQ(names, "apple apple fig pear pear");
}

TEST(ListSort, NothingMovesWithoutAFunctionOrOutsideTheList)
{
    OwnList list({"b", "a"});
    EXPECT_EQ(SortListZV(&list, nullptr), 0);
    EXPECT_EQ(SortListZV_Params(&list, nullptr, nullptr), 0);
    EXPECT_EQ(Sort_By_Func(&list, 0, 1, nullptr), 0);
    for (auto const& [first, last] : {std::pair{0L, 2L}, {-1L, 1L}, {1L, 0L}})
        EXPECT_EQ(Sort_By_Func(&list, first, last, CompareNameFunc), 0) << first;
    EXPECT_EQ(Names(list), "b a");
    List unmade;
    EXPECT_EQ(Sort_List(&unmade), 0);
}

TEST(ListSort, AFunctionThatContradictsItselfStillEndsWithAllNodes)
{
    static std::mt19937 random(3);
    std::vector<Node> pool(300);
    List list;
    NewList(&list);
    for (Node& node : pool)
        AddTail(&list, &node);
    SortListZV(&list, [](Node*, Node*) { return static_cast<long>(random() % 3) - 1; });
    EXPECT_EQ(Nodes(list).size(), pool.size());
}

TEST(ListSort, LongListsOfAnyOrderSortQuickly)
{
    std::vector<Node> pool(200000);
    for (int order = 0; order < 3; ++order) {
        List list;
        NewList(&list);
        for (std::size_t i = 0; i < pool.size(); ++i) {
            std::size_t const ids[] = {i, pool.size() - i, i * 7919 % 1000};
            pool[i].id = static_cast<uint32_t>(ids[order]);
            AddTail(&list, &pool[i]);
        }
        SortListZV(&list, Compare_IDs);
        EXPECT_TRUE(std::ranges::is_sorted(Nodes(list), {}, [](Node const* node) { return node->id; }))
            << order;
    }
}
