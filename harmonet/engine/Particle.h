#pragma once

#include "harmonet/engine/Element.h"
#include "harmonet/engine/ITree.h"
#include "harmonet/engine/PString.h"
#include "harmonet/engine/Quaternion.h"
#include "harmonet/engine/Vector.h"

namespace Quon
{

struct Matrix4;

/// A node of the scene graph. It has a place and an orientation in its parent's space, and works out where
/// that is in the world when somebody asks. Whoever makes a node owns it; the tree owns none, and nodes may
/// die in any order. Task thread only.
///
/// A node is stale when it, or a node above it, has been moved, turned or put elsewhere in the tree since its
/// global position was last worked out. Numbers are not checked: NaN and infinity go where they are sent.
class HARMONET_ENGINE_API Particle : public Element, public ITree<Particle>
{
public:
    /// A root without a name, at the origin, not turned, with a bounding sphere that is a point.
    Particle();

    /// Copies name, place, orientation and bounding sphere. The place in the tree is not copied: the new node
    /// is a root without children, and a node that is assigned to keeps its parent and children and becomes
    /// stale.
    Particle(const Particle& other);
    Particle& operator=(const Particle& other);

    /// Leaves the parent. The children become roots and stale; they stay where they are in their own space,
    /// unless OnParentDestroyed() does something about it.
    ~Particle() override;

    /// What kind of node this is; 0 for a plain one.
    virtual int GetID() const;

    /// The name by which Add() and a sound find the node. It need not be unique.
    virtual void SetName(const PString& newName);

    /// Each marks the node and all below it as stale, also if the value is the old one, and the spheres above
    /// it.
    virtual void SetPosition(const Vector3& newPosition);
    /// Leaves z as it is.
    virtual void SetPositionXY(const Vector2& newPosition);
    virtual void SetOrientation(const Quaternion& newOrientation);
    /// Sets orientation and position from the rows of \p frame.
    virtual void SetReferenceFrame(const Matrix4& frame);

    /// Called on every node whose global position has become stale. Sets the stale flag and nothing else; an
    /// override sets it too, and must not change the tree.
    virtual void ResetGlobalBoundingCenter() const;
    /// Marks the bounding spheres of all nodes above as stale.
    virtual void ResetParentSpheres() const;
    /// Calls ResetGlobalBoundingCenter() on all nodes below.
    virtual void ResetChildGlobalBoundingCenters() const;

    /// Works out the global position, of the stale nodes above too, and clears the stale flags.
    virtual void RecalculateGlobalBoundingCenter() const;

    /// Adds \p child as the last child of this node. It leaves its old parent, and all that hangs below it
    /// comes along. False, and no change, if \p child is null or this node stands below it.
    virtual bool Add(Particle* child);
    /// The same for the first node of that name, this one included, in a walk with parents before children;
    /// the empty name is this node. False also if there is no such node.
    virtual bool Add(const PString& nodeName, Particle* child);

    /// Takes this node, with all below it, off its parent; a root stays as it is.
    virtual void Remove();
    /// Takes a child off this node. False, and no change, if it is not a child of this node.
    virtual bool Remove(Particle* child);
    /// Makes all children roots.
    virtual void RemoveAllChildren();

    /// As set by SetName(); empty at first.
    const PString& GetName() const { return particleName; }
    /// In the parent's space.
    const Vector3& GetPosition() const { return position; }
    const Quaternion& GetOrientation() const { return orientation; }
    /// In world units, brought up to date first.
    const Vector3& GetGlobalPosition() const
    {
        if (globalPositionStale) {
            RecalculateGlobalBoundingCenter();
        }
        return globalPosition;
    }

    /// Turns an orientation in this node's space into one in the world; the result has length 1.
    void LocalToGlobal(Quaternion& localOrientation) const;

    /// The parent is about to go, and this node to become a root. An override must not change the tree. The
    /// default does nothing.
    virtual void OnParentDestroyed();

protected:
    // What moving a node and asking where it is needs comes first, beside the link to the parent.
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
    /// culled here: whoever needs the sphere computes it when the flag is set, and clears the flag.
    mutable Vector3 boundingCenter;
    /// Of the sphere, in world units.
    mutable float boundingRadius = 0.0F;
    /// As set by SetName().
    PString particleName;
    /// In the parent's space.
    Quaternion orientation;

private:
    /// The node has come to stand elsewhere in the tree.
    void MarkMoved() const;
    void UpdateGlobal() const;
    void UpdateGlobalPosition() const;
    void UpdateGlobalOrientation() const;

    mutable Quaternion globalOrientation;
};

} // namespace Quon
