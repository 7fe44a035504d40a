// Sorting of lists: a quicksort that moves nodes and leaves their contents alone. The middle node is the
// pivot, and the order of comparisons is part of the promise, as compare functions may look at more than the
// two nodes.
#include "ZVList.h"

#include <strings.h>
#include <vector>

namespace {
/// A run of nodes; `last` stands `span` nodes behind `first`.
struct Stretch {
    Node* first;
    Node* last;
    long span;
};
}  // namespace

static void Move_Behind(Node* node, Node* predecessor)
{
    node->prev->next = node->next;
    node->next->prev = node->prev;
    node->prev = predecessor;
    node->next = predecessor->next;
    predecessor->next->prev = node;
    predecessor->next = node;
}

/// Exchanges the places of two nodes; `front` stands ahead of `back`, or is the same.
static void Exchange(Node* front, Node* back)
{
    if (front == back) return;
    Node* beforeBack = back->prev;
    Move_Behind(back, front->prev);
    if (beforeBack != front) Move_Behind(front, beforeBack);
}

static Node* Step(Node* node, long count)
{
    for (; count > 0; --count)
        node = node->next;
    return node;
}

/// Splits a stretch around its middle node and pushes the parts that are left to sort, the front one on top.
/// Positions count from the start of the stretch.
/// @return  whether an exchange step ran
template <typename Compare>
static bool Partition(Stretch const& stretch, Compare compare, std::vector<Stretch>& pending)
{
    // The neighbours stay where they are, and give the ends of the stretch back after the nodes have moved.
    Node* before = stretch.first->prev;
    Node* behind = stretch.last->next;
    Node* pivot = Step(stretch.first, stretch.span / 2);
    Node* front = stretch.first;
    Node* back = stretch.last;
    long i = 0, j = stretch.span;
    bool exchanged = false;
    do {
        for (; compare(front, pivot) < 0 && i < stretch.span; ++i)
            front = front->next;
        for (; compare(back, pivot) > 0 && j > 0; --j)
            back = back->prev;
        if (i > j) break;
        Exchange(front, back);
        exchanged = true;
        Node* nextFront = back->next;
        back = front->prev;
        front = nextFront;
        ++i;
        --j;
    } while (i <= j);

    if (i < stretch.span) pending.push_back({front, behind->prev, stretch.span - i});
    if (j > 0) pending.push_back({before->next, back, j});
    return exchanged;
}

/// The stretches that wait lie in a vector, so that an order that always splits badly cannot exhaust the
/// stack.
template <typename Compare> static long Sort(List* list, long first, long last, Compare compare)
{
    if (last <= first) return 0;
    Node* firstNode = List_Entry(list, first);
    Node* lastNode = List_Entry(list, last);
    if (!firstNode || !lastNode) return 0;

    std::vector<Stretch> pending{{firstNode, lastNode, last - first}};
    bool exchanged = false;
    while (!pending.empty()) {
        Stretch const stretch = pending.back();
        pending.pop_back();
        if (Partition(stretch, compare, pending)) exchanged = true;
    }
    return exchanged;
}

long CompareNameFunc(Node* a, Node* b)
{
    return strcasecmp(a->name, b->name);
}

long Sort_List(List* list)
{
    return SortListZV(list, CompareNameFunc);
}

long SortListZV(List* list, ZVCompareFunc compare)
{
    if (!list->head) return 0;
    return Sort_By_Func(list, 0, List_Entries(list) - 1, compare);
}

long SortListZV_Params(List* list, ZVCompareParamsFunc compare, void* params)
{
    if (!list->head) return 0;
    return Sort_By_Func_Params(list, 0, List_Entries(list) - 1, compare, params);
}

long Sort_By_Func(List* list, long first, long last, ZVCompareFunc compare)
{
    if (!compare) return 0;
    return Sort(list, first, last, compare);
}

long Sort_By_Func_Params(List* list, long first, long last, ZVCompareParamsFunc compare, void* params)
{
    if (!compare) return 0;
    return Sort(list, first, last, [compare, params](Node* a, Node* b) { return compare(a, b, params); });
}
