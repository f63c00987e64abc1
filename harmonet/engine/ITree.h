#pragma once

namespace Quon
{

/// The links of a node in a tree of T, where T derives from ITree<T>. The links do not own nodes: unlink a
/// node and its children before it is destroyed. No operation is recursive, so the depth is unlimited. One
/// thread at a time.
template<class T>
class ITree
{
public:
    /// Null at the root.
    T* GetParent() const { return parent; }
    /// The children in the order in which they were added; null after the last.
    T* GetFirstChild() const { return firstChild; }
    T* GetNextSibling() const { return nextSibling; }

    /// The position in the tree is not part of the node's value: a copy has no parent or children, and
    /// assignment does not move either node.
    ITree() = default;
    ITree(const ITree&) {}
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): nothing is assigned.
    ITree& operator=(const ITree&) { return *this; }

    /// The node after this one in a pre-order traversal of the tree below \p top; null after the last.
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

    /// Whether this node is \p other or one of its descendants.
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

    /// Appends \p child, which must not have a parent, after the other children.
    void LinkChild(T* child)
    {
        ITree* links = child;
        links->parent = static_cast<T*>(this);
        if (firstChild == nullptr) {
            firstChild = child;
        }
        else {
            links->previousSibling = Links(firstChild).previousSibling;
            Links(links->previousSibling).nextSibling = child;
        }
        Links(firstChild).previousSibling = child;
    }

    /// Removes \p child, which must be a child of this node.
    void UnlinkChild(T* child)
    {
        ITree* links = child;
        T* const previous = links->previousSibling;
        T* const next = links->nextSibling;
        (child != firstChild ? Links(previous).nextSibling : firstChild) = next;
        if (firstChild != nullptr) {
            Links(next != nullptr ? next : firstChild).previousSibling = previous;
        }
        links->parent = nullptr;
        links->previousSibling = nullptr;
        links->nextSibling = nullptr;
    }

private:
    static ITree& Links(T* node) { return *node; }

    T* firstChild = nullptr;
    T* previousSibling = nullptr; ///< Of the first child: the last one.
    T* nextSibling = nullptr;

protected:
    /// Null at the root.
    T* parent = nullptr;
};

} // namespace Quon
