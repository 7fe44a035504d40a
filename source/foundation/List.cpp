// Intrusive lists: linking, looking up and walking. The two sentinels of the header make every link operation
// the same for first, middle and last nodes, and for an empty list.
#include "ZVList.h"

#include "ZVMemory.h"
#include "ZVString.h"
#include "foundation/HeapBlock.h"

#include <cstddef>
#include <strings.h>

static Node* As_Node(MinNode* node)
{
    return reinterpret_cast<Node*>(node);
}

static void Link_Behind(Node* node, Node* predecessor)
{
    node->next = predecessor->next;
    node->prev = predecessor;
    predecessor->next->prev = node;
    predecessor->next = node;
}

static void Unlink(Node* node)
{
    node->prev->next = node->next;
    node->next->prev = node->prev;
}

static Node* Make_Node(char const* name)
{
    HeapBlock<char> ownName(AllocString(name));
    auto* node = static_cast<Node*>(AllocMemZV(sizeof(Node), ZV_MEM_CLEAR));
    node->name = ownName.release();
    return node;
}

void NewList(List* list)
{
    list->head = List_Tail(list);
    list->tail = nullptr;
    list->tailPred = List_Head(list);
}

long List_Empty(List const* list)
{
    return list->tailPred == List_Head(list);
}

void AddHead(List* list, Node* node)
{
    Link_Behind(node, List_Head(list));
}

void AddHead(List* list, MinNode* node)
{
    AddHead(list, As_Node(node));
}

void AddTail(List* list, Node* node)
{
    Link_Behind(node, list->tailPred);
}

void AddTail(List* list, MinNode* node)
{
    AddTail(list, As_Node(node));
}

void Insert(List* list, Node* node, Node* predecessor)
{
    Link_Behind(node, predecessor ? predecessor : List_Head(list));
}

void Insert(List* list, MinNode* node, MinNode* predecessor)
{
    Insert(list, As_Node(node), As_Node(predecessor));
}

void InsertBefore(List* list, Node* node, Node* successor)
{
    Link_Behind(node, successor ? successor->prev : list->tailPred);
}

void InsertBefore(List* list, MinNode* node, MinNode* successor)
{
    InsertBefore(list, As_Node(node), As_Node(successor));
}

void Remove(Node* node)
{
    Unlink(node);
    node->next = nullptr;
    node->prev = nullptr;
}

void Remove(MinNode* node)
{
    Remove(As_Node(node));
}

Node* RemHead(List* list)
{
    if (List_Empty(list)) return nullptr;
    Node* node = list->head;
    Unlink(node);
    return node;
}

Node* RemTail(List* list)
{
    if (List_Empty(list)) return nullptr;
    Node* node = list->tailPred;
    Unlink(node);
    return node;
}

List* GetList(Node* node)
{
    if (!node->prev) return nullptr;
    while (node->prev)
        node = node->prev;
    return reinterpret_cast<List*>(node);
}

char* AddName(Node* node, char const* text)
{
    // Copied before the old name goes, as the text may be that very name.
    char* name = AllocString(text);
    FreeMemZV(node->name);
    node->name = name;
    return name;
}

Node* Add_Node(List* list, char const* name)
{
    Node* node = Make_Node(name);
    AddTail(list, node);
    return node;
}

Node* Insert_Node(List* list, char const* name, long position)
{
    Node* node = Make_Node(name);
    Node* successor = list->head;
    for (; position > 0 && successor->next; --position)
        successor = successor->next;
    InsertBefore(list, node, successor);
    return node;
}

void FreeNode(Node* node)
{
    Unlink(node);
    FreeMemZV(node->name);
    FreeMemZV(node);
}

void FreeNode(MinNode* node)
{
    Unlink(As_Node(node));
    FreeMemZV(node);
}

void Free_List(List* list)
{
    if (!list) return;
    while (!List_Empty(list))
        FreeNode(list->head);
}

long List_Entries(List const* list)
{
    long count = 0;
    for (Node const* node = list->head; node->next; node = node->next)
        ++count;
    return count;
}

Node* List_Entry(List const* list, long position)
{
    if (position < 0) return nullptr;
    Node* node = list->head;
    for (; position > 0 && node->next; --position)
        node = node->next;
    return node->next ? node : nullptr;
}

long Entry_Pos(List const* list, Node const* node)
{
    long position = 1;
    for (Node const* other = list->head; other->next && other != node; other = other->next)
        ++position;
    return position;
}

/// The first node that `matches` and its position, or null and -1.
struct Found {
    Node* node;
    long position;
};
template <typename Matches> static Found Find(List const* list, Matches matches)
{
    long position = 0;
    for (Node* node = list->head; node->next; node = node->next, ++position)
        if (matches(node)) return {node, position};
    return {nullptr, -1};
}

static Found Find_By_Name(List const* list, char const* name)
{
    return Find(list, [name](Node const* node) { return strcasecmp(node->name, name) == 0; });
}

static Found Find_By_ID(List const* list, unsigned long id)
{
    // Ids are 32 bits; one that was extended by its sign on the way here still means the same node.
    auto const wanted = static_cast<uint32_t>(id);
    return Find(list, [wanted](Node const* node) { return node->id == wanted; });
}

Node* Find_Name(List const* list, char const* name)
{
    return Find_By_Name(list, name).node;
}

long Find_Index(List const* list, char const* name)
{
    return Find_By_Name(list, name).position;
}

Node* FindNodeID(List const* list, unsigned long id)
{
    return Find_By_ID(list, id).node;
}

long Find_IndexID(List const* list, unsigned long id)
{
    return Find_By_ID(list, id).position;
}

// A sentinel's list is found from the sentinel's own place in the header.
static List* List_Of_Tail(Node* sentinel)
{
    return reinterpret_cast<List*>(reinterpret_cast<char*>(sentinel) - offsetof(List, tail));
}

static List* Child_List(Node* parent, long offset)
{
    return reinterpret_cast<List*>(reinterpret_cast<char*>(parent) + offset);
}

static Node* Parent_Of(List* children, long offset)
{
    return reinterpret_cast<Node*>(reinterpret_cast<char*>(children) - offset);
}

Node* NextNodeWrap(Node* node)
{
    Node* next = node->next;
    return next->next ? next : List_Of_Tail(next)->head;
}

Node* PrevNodeWrap(Node* node)
{
    Node* prev = node->prev;
    return prev->prev ? prev : reinterpret_cast<List*>(prev)->tailPred;
}

Node* NextNodeListWrap(Node* child, long offset)
{
    Node* next = child->next;
    while (!next->next) {
        Node* parent = NextNodeWrap(Parent_Of(List_Of_Tail(next), offset));
        next = Child_List(parent, offset)->head;
    }
    return next;
}

Node* PrevNodeListWrap(Node* child, long offset)
{
    Node* prev = child->prev;
    while (!prev->prev) {
        Node* parent = PrevNodeWrap(Parent_Of(reinterpret_cast<List*>(prev), offset));
        prev = Child_List(parent, offset)->tailPred;
    }
    return prev;
}
