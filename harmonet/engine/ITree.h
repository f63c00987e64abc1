#pragma once

namespace Quon
{

/// The links of a node in a tree of T, where T derives from ITree<T>. The links own nothing: a node that dies
/// must have been taken out, and its children too. None of the operations recurses, so that no depth is too
/// deep. One thread at a time.
template<class T>
class ITree
{
public:
    /// Null at the root.
    T* GetParent() const { return parent; }
    /// The children in the order in which they were added; null behind the last.
    T* GetFirstChild() const { return firstChild; }
    T* GetNextSibling() const { return nextSibling; }

    /// The place in the tree belongs to the node and not to its value: a copy stands alone, and assigning
    /// leaves both nodes where they are.
    ITree() = default;
    ITree(const ITree&) {}
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): nothing is assigned.
    ITree& operator=(const ITree&) { return *this; }

    /// The node that comes after this one when the tree below \p top is walked with parents before their
    /// children and children in their order; null behind the last.
    T* GetNextBelow(const T* top) const
    {
        if (firstChild != nullptr) {
            return firstChild;
        }
        const ITree* node = this;
        while (node != static_cast<const ITree*>(top)) {
            if (node->nextSibling != nullptr) {
                return node->nextSibling;
            }
            node = node->parent;
        }
        return nullptr;
    }

    /// This node stands somewhere below \p other, or is it.
    bool IsBelow(const T* other) const
    {
        const ITree* node = this;
        while (node != nullptr && node != static_cast<const ITree*>(other)) {
            node = node->parent;
        }
        return node != nullptr;
    }

protected:
    ~ITree() = default;

    /// Appends \p child, which has no parent, behind the other children.
    void LinkChild(T* child)
    {
        ITree* links = child;
        links->parent = static_cast<T*>(this);
        links->previousSibling = lastChild;
        (lastChild != nullptr ? Links(lastChild).nextSibling : firstChild) = child;
        lastChild = child;
    }

    /// Takes \p child, which is one of this node's, out.
    void UnlinkChild(T* child)
    {
        ITree* links = child;
        T* const previous = links->previousSibling;
        T* const next = links->nextSibling;
        (previous != nullptr ? Links(previous).nextSibling : firstChild) = next;
        (next != nullptr ? Links(next).previousSibling : lastChild) = previous;
        links->parent = nullptr;
        links->previousSibling = nullptr;
        links->nextSibling = nullptr;
    }

private:
    static ITree& Links(T* node) { return *node; }

    T* firstChild = nullptr;
    T* lastChild = nullptr;
    T* previousSibling = nullptr;
    T* nextSibling = nullptr;

protected:
    /// Null at the root.
    T* parent = nullptr;
};

} // namespace Quon
