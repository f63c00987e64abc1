#pragma once

#include "harmonet/engine/Element.h"
#include "harmonet/engine/ITree.h"
#include "harmonet/engine/PString.h"
#include "harmonet/engine/Quaternion.h"
#include "harmonet/engine/Vector.h"

#include <memory>

namespace Quon
{

struct Matrix4;

/// A node of the scene graph. It has a position and an orientation in its parent's space, and computes its
/// world position on demand. A node is owned by its creator, not by the tree, and nodes may be destroyed in
/// any order. Task thread only.
///
/// A node is stale if it, or one of its ancestors, has been moved, rotated or reparented since its global
/// position was last computed. Numbers are not checked: NaN and infinity are propagated.
class HARMONET_ENGINE_API Particle : public Element, public ITree<Particle>
{
public:
    /// Constructs a root without a name, at the origin, with identity orientation and a bounding sphere of
    /// radius 0.
    Particle();

    /// Copies name, position, orientation and bounding sphere, but not the position in the tree: the new node
    /// is a root without children. A node that is assigned to keeps its parent and children and becomes
    /// stale.
    Particle(const Particle& other);
    Particle& operator=(const Particle& other);

    /// Removes the node from its parent. The children become stale roots; they keep their local position
    /// unless OnParentDestroyed() changes it.
    ~Particle() override;

    /// Returns the node type; 0 for a plain node.
    virtual int GetID() const;

    /// The name by which Add() and a sound find the node. It need not be unique. The first name or rotation
    /// of a node allocates.
    virtual void SetName(const PString& newName);

    /// Each marks the node and its descendants as stale, even if the value is unchanged, and the spheres
    /// above it.
    virtual void SetPosition(const Vector3& newPosition);
    /// Keeps z.
    virtual void SetPositionXY(const Vector2& newPosition);
    virtual void SetOrientation(const Quaternion& newOrientation);
    /// Sets orientation and position from the rows of \p frame.
    virtual void SetReferenceFrame(const Matrix4& frame);

    /// Called on every node whose global position has become stale. Only sets the stale flag; an override
    /// must set it too, and must not change the tree.
    virtual void ResetGlobalBoundingCenter() const;
    /// Marks the bounding spheres of all nodes above as stale.
    virtual void ResetParentSpheres() const;
    /// Calls ResetGlobalBoundingCenter() on all nodes below.
    virtual void ResetChildGlobalBoundingCenters() const;

    /// Computes the global position, also of stale ancestors, and clears the stale flags.
    virtual void RecalculateGlobalBoundingCenter() const;

    /// Adds \p child, with all its descendants, as the last child of this node, and removes it from its old
    /// parent. Returns false and changes nothing if \p child is null or an ancestor of this node.
    virtual bool Add(Particle* child);
    /// The same for the first node of that name in a pre-order traversal that begins with this node; the
    /// empty name is this node. Also returns false if there is no such node.
    virtual bool Add(const PString& nodeName, Particle* child);

    /// Removes this node, with its descendants, from its parent; does nothing for a root.
    virtual void Remove();
    /// Removes a child from this node. Returns false and changes nothing if it is not a child of this node.
    virtual bool Remove(Particle* child);
    /// Makes all children roots.
    virtual void RemoveAllChildren();

    /// As set by SetName(); empty at first.
    const PString& GetName() const { return GetDetails().name; }
    /// In the parent's space.
    const Vector3& GetPosition() const { return position; }
    const Quaternion& GetOrientation() const { return details ? details->orientation : identity; }
    /// In world units; recomputed first if stale.
    const Vector3& GetGlobalPosition() const
    {
        if (globalPositionStale) {
            RecalculateGlobalBoundingCenter();
        }
        return globalPosition;
    }

    /// Transforms an orientation from this node's space to world space; the result has length 1. May allocate
    /// for a node below a rotated one.
    void LocalToGlobal(Quaternion& localOrientation) const;

    /// The parent is about to be destroyed, and this node becomes a root. An override must not change the
    /// tree. The default does nothing.
    virtual void OnParentDestroyed();

protected:
    // The fields that are needed to move a node and to query its position come first, next to the link to the
    // parent.
    /// In the parent's space.
    Vector3 position;
    /// The position in the world, valid while `globalPositionStale` is not set.
    mutable Vector3 globalPosition;
    /// Set when the position, or the sphere, has to be computed again.
    mutable bool globalPositionStale = true;
    mutable bool boundingSphereStale = false;

private:
    /// Computed on demand: a node without children is moved far more often than it is queried. While a node's
    /// global position is valid, so is the global orientation of its parent.
    mutable bool globalOrientationStale = true;
    mutable bool globallyTurned = false; ///< The global orientation is a rotation.

protected:
    /// The sphere around the node and all below it, its centre in the parent's space. Nodes are not drawn or
    /// culled here: code that needs the sphere computes it when the flag is set, and clears the flag.
    mutable Vector3 boundingCenter;
    /// Of the sphere, in world units.
    mutable float boundingRadius = 0.0F;

private:
    /// What most nodes do not need, allocated when it is first set.
    struct Details : Allocated
    {
        PString name;
        Quaternion orientation; ///< In the parent's space.
        Quaternion globalOrientation; ///< The identity while the node is not `globallyTurned`.
    };

    static const Quaternion identity;

    const Details& GetDetails() const;
    Details& UseDetails() const;
    void CopyDetails(const Particle& other);
    /// Marks the node as moved within the tree.
    void MarkMoved() const;
    void UpdateGlobal() const;
    void UpdateGlobalPosition() const;
    void UpdateGlobalOrientation() const;

    mutable std::unique_ptr<Details> details;
};

} // namespace Quon
