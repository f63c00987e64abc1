#pragma once

namespace Quon
{

/// The node of an intrusive doubly linked list. A class becomes an element by deriving from it; the list's
/// head is a plain IListNode. Nodes do not own each other: unlink a node before it is destroyed. One thread
/// at a time.
class IListNode
{
public:
    /// A new node links to itself, as does the head of an empty list.
    IListNode()
        : next(this)
        , previous(this)
    {
    }

    /// The position in a list is not part of the node's value: a copy is in no list, and assignment does not
    /// move either node.
    IListNode(const IListNode&)
        : IListNode()
    {
    }
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): nothing is assigned.
    IListNode& operator=(const IListNode&) { return *this; }

    /// Whether it is on a list; for a head, whether the list has elements.
    bool IsLinked() const { return next != this; }

    /// Inserts this node before \p place. The node must not be in a list.
    void LinkBefore(IListNode& place)
    {
        next = &place;
        previous = place.previous;
        previous->next = this;
        place.previous = this;
    }

    /// Removes this node from its list; does nothing if it is in none.
    void Unlink()
    {
        next->previous = previous;
        previous->next = next;
        next = this;
        previous = this;
    }

    /// The neighbours in the ring; the node itself if it is not linked.
    IListNode* next;
    IListNode* previous;
};

} // namespace Quon
