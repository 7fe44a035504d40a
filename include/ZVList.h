// Intrusive doubly linked lists. A node is the first member of the record that it links, and can unlink
// itself without knowing its list. Positions count from zero unless a comment says otherwise. Lists, nodes
// and texts are not null where a comment does not allow it. No call takes a lock.
#pragma once

#include "ZVBase.h"

/// The header's words are read as links of its two sentinels, and a node's as those of its base, so the three
/// records may alias one another.
#define ZV_LINK __attribute__((may_alias))

/// The bare link.
struct ZV_LINK MinNode {
    MinNode* next =
        nullptr;  ///< following node; for the last one the list's tail sentinel; null in that sentinel
    MinNode* prev =
        nullptr;  ///< preceding node; for the first one the list's head sentinel; null in that sentinel
};

/// A link with an identifier and a name.
struct ZV_LINK Node {
    Node* next = nullptr;
    Node* prev = nullptr;
    uint32_t id = 0;       ///< meaning given by the user of the list
    char* name = nullptr;  ///< block from AllocMemZV owned by the node, or null
};

/// The header: two sentinels in three words. As a node, `head` and `tail` are the links of the head sentinel,
/// `tail` and `tailPred` those of the tail sentinel. So a node is real exactly when its `next` is not null,
/// and is the header exactly when its `prev` is null. Use NewList before any other call.
struct ZV_LINK List {
    Node* head = nullptr;      ///< first node; on an empty list the tail sentinel
    Node* tail = nullptr;      ///< always null
    Node* tailPred = nullptr;  ///< last node; on an empty list the header itself
};

/// The header read as a node whose `next` is the first real node.
inline Node* List_Head(List const* list)
{
    return reinterpret_cast<Node*>(const_cast<List*>(list));
}

/// The tail sentinel read as a node whose `prev` is the last real node.
inline Node* List_Tail(List const* list)
{
    return reinterpret_cast<Node*>(&const_cast<List*>(list)->tail);
}

/// First real node, or null on an empty list.
inline Node* List_First(List const* list)
{
    return list->head->next ? list->head : nullptr;
}

/// The node behind this one, or null behind the last.
inline Node* List_Next(Node const* node)
{
    return node->next->next ? node->next : nullptr;
}

ZV_API void NewList(List* list);              ///< Makes the list empty without freeing anything.
ZV_API long List_Empty(List const* list);     ///< Non-zero for a list without nodes.
ZV_API void AddHead(List* list, Node* node);  ///< Links the node first.
ZV_API void AddHead(List* list, MinNode* node);
ZV_API void AddTail(List* list, Node* node);  ///< Links the node last.
ZV_API void AddTail(List* list, MinNode* node);

/// Links the node behind `predecessor`, or first when that is null.
ZV_API void Insert(List* list, Node* node, Node* predecessor);
ZV_API void Insert(List* list, MinNode* node, MinNode* predecessor);

/// Links the node in front of `successor`, or last when that is null.
ZV_API void InsertBefore(List* list, Node* node, Node* successor);
ZV_API void InsertBefore(List* list, MinNode* node, MinNode* successor);

/// Unlinks a linked node and clears its links.
ZV_API void Remove(Node* node);
ZV_API void Remove(MinNode* node);

/// Unlinks the first (last) node and returns it, or null on an empty list. Its links keep their old values.
ZV_API Node* RemHead(List* list);
ZV_API Node* RemTail(List* list);

/// The header of the list that holds the node, or null for a node that is not linked.
ZV_API List* GetList(Node* node);

/// Replaces the node's name by a copy of `text`; a null text leaves it without a name.
/// @return  the new name, or null
ZV_API char* AddName(Node* node, char const* text);

/// Allocates a node with a copy of `name` (null for none) and links it last.
/// @return  the node, owned by the list; null when memory runs out, nothing then stays allocated
ZV_API Node* Add_Node(List* list, char const* name);

/// The same for a name that is not null, placed at `min(position, count)`; a position below 1 is the head.
ZV_API Node* Insert_Node(List* list, char const* name, long position);

/// Unlinks a node made by Add_Node or Insert_Node and frees it with its name.
ZV_API void FreeNode(Node* node);
ZV_API void FreeNode(MinNode* node);

/// Frees every node with its name and leaves the list empty. Null is accepted.
ZV_API void Free_List(List* list);

ZV_API long List_Entries(List const* list);  ///< Number of nodes.
ZV_API Node* List_Entry(List const* list,
                        long position);  ///< Node at the position, or null outside the list.

/// Position of a node counted from ONE; for a node of another list the number of nodes plus one.
ZV_API long Entry_Pos(List const* list, Node const* node);

/// First node with that name, compared without case, or null (-1). Every node of the list must have a name.
ZV_API Node* Find_Name(List const* list, char const* name);
ZV_API long Find_Index(List const* list, char const* name);

/// First node with that id, or null (-1).
ZV_API Node* FindNodeID(List const* list, unsigned long id);
ZV_API long Find_IndexID(List const* list, unsigned long id);

ZV_API Node* NextNodeWrap(Node* node);  ///< The next node; behind the last, the first.
ZV_API Node* PrevNodeWrap(Node* node);  ///< The previous node; before the first, the last.

/// Next (previous) child in a list of parents that each embed a child List at byte `offset`. Goes round the
/// parents in a ring and steps over empty children; at least one child must exist.
ZV_API Node* NextNodeListWrap(Node* child, long offset);
ZV_API Node* PrevNodeListWrap(Node* child, long offset);

using ZVCompareFunc = long (*)(Node*, Node*);  ///< below, at or above 0 as in strcmp
using ZVCompareParamsFunc = long (*)(Node*, Node*, void*);

ZV_API long CompareNameFunc(Node* a, Node* b);  ///< Compares two names without case.

/// Quicksorts by moving nodes; not stable. Sort_List sorts by CompareNameFunc.
/// @return  non-zero when an exchange step ran, a node exchanged with itself included; 0 for a null function
ZV_API long Sort_List(List* list);
ZV_API long SortListZV(List* list, ZVCompareFunc compare);
ZV_API long SortListZV_Params(List* list, ZVCompareParamsFunc compare, void* params);

/// Sorts the stretch of positions `first` to `last`, both included; one that reaches outside the list stays
/// as it is.
ZV_API long Sort_By_Func(List* list, long first, long last, ZVCompareFunc compare);
ZV_API long Sort_By_Func_Params(List* list, long first, long last, ZVCompareParamsFunc compare, void* params);
