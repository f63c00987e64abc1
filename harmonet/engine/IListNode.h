#pragma once

namespace Quon
{

/// The node of an intrusive double list. A class becomes an element by deriving from it; the list's head is a
/// plain IListNode. Nobody owns anybody: a node that dies must have been unlinked. One thread at a time.
class IListNode
{
public:
    /// A fresh node links to itself; so does the head of an empty list.
    IListNode()
        : next(this)
        , previous(this)
    {
    }

    /// The place in a list belongs to the node and not to its value: a copy stands on no list, and assigning
    /// leaves both nodes where they are.
    IListNode(const IListNode&)
        : IListNode()
    {
    }
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): nothing is assigned.
    IListNode& operator=(const IListNode&) { return *this; }

    /// Whether it is on a list; for a head, whether the list has elements.
    bool IsLinked() const { return next != this; }

    /// Enters this node in front of \p place. The node must not be on a list.
    void LinkBefore(IListNode& place)
    {
        next = &place;
        previous = place.previous;
        previous->next = this;
        place.previous = this;
    }

    /// Takes this node off its list; does nothing if it is on none.
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
