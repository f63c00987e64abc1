#include "harmonet/engine/Particle.h"

#include "harmonet/engine/Matrix.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace Quon
{

namespace
{

/// Bit by bit, since a negative zero has to be stored.
bool IsDefault(const Quaternion& orientation)
{
    using Bits = std::array<std::uint32_t, 4>;
    return std::bit_cast<Bits>(orientation) == std::bit_cast<Bits>(Quaternion());
}

} // namespace

const Quaternion Particle::identity;

Particle::Particle() = default;

Particle::Particle(const Particle& other)
    : Element(other)
    , ITree<Particle>(other)
    , position(other.position)
    , boundingSphereStale(other.boundingSphereStale)
    , boundingCenter(other.boundingCenter)
    , boundingRadius(other.boundingRadius)
{
    CopyDetails(other);
}

Particle& Particle::operator=(const Particle& other)
{
    CopyDetails(other);
    position = other.position;
    boundingCenter = other.boundingCenter;
    boundingRadius = other.boundingRadius;
    boundingSphereStale = other.boundingSphereStale;
    MarkMoved();
    return *this;
}

Particle::~Particle()
{
    for (Particle* child = GetFirstChild(); child != nullptr; child = child->GetNextSibling()) {
        child->OnParentDestroyed();
    }
    Particle::RemoveAllChildren();
    if (parent != nullptr) {
        Particle::ResetParentSpheres();
        parent->UnlinkChild(this);
    }
}

int Particle::GetID() const
{
    return 0;
}

const Particle::Details& Particle::GetDetails() const
{
    static constinit const Details defaults;
    return details ? *details : defaults;
}

Particle::Details& Particle::UseDetails() const
{
    if (!details) {
        details = std::make_unique<Details>();
    }
    return *details;
}

void Particle::CopyDetails(const Particle& other)
{
    if (details || other.details) {
        Details& copy = UseDetails();
        copy.name = other.GetName();
        copy.orientation = other.GetOrientation();
    }
}

void Particle::SetName(const PString& newName)
{
    if (details || !newName.IsEmpty()) {
        UseDetails().name = newName;
    }
}

void Particle::SetPosition(const Vector3& newPosition)
{
    // A sphere with an invalid number is repaired by the first valid one.
    const Vector3 offset = boundingCenter - position;
    boundingCenter = newPosition + (std::isfinite(LengthSquared(offset)) ? offset : Vector3());
    position = newPosition;
    MarkMoved();
}

void Particle::SetPositionXY(const Vector2& newPosition)
{
    SetPosition({newPosition.x, newPosition.y, position.z});
}

void Particle::SetOrientation(const Quaternion& newOrientation)
{
    const Quaternion before = GetOrientation();
    if (details || !IsDefault(newOrientation)) {
        UseDetails().orientation = newOrientation;
    }
    if (!boundingSphereStale) {
        const Vector3 offset = Rotate(Inverse(before), boundingCenter - position);
        boundingCenter = Rotate(newOrientation, offset) + position;
    }
    MarkMoved();
}

void Particle::SetReferenceFrame(const Matrix4& frame)
{
    Matrix3 rotation;
    for (int row = 0; row < 3; ++row) {
        rotation.rows[row] = {frame.m[row][0], frame.m[row][1], frame.m[row][2]};
    }
    Quaternion turned;
    turned.Set(rotation);
    SetOrientation(turned);
    SetPosition({frame.m[3][0], frame.m[3][1], frame.m[3][2]});
}

void Particle::ResetGlobalBoundingCenter() const
{
    globalPositionStale = true;
}

void Particle::ResetParentSpheres() const
{
    for (const Particle* node = parent; node != nullptr; node = node->parent) {
        node->boundingSphereStale = true;
    }
}

void Particle::ResetChildGlobalBoundingCenters() const
{
    for (const Particle* node = GetNextBelow(this); node != nullptr; node = node->GetNextBelow(this)) {
        node->ResetGlobalBoundingCenter();
    }
}

void Particle::RecalculateGlobalBoundingCenter() const
{
    // Usually only this node is stale, and its parent is not rotated.
    const bool isPlain = parent != nullptr && !parent->globalPositionStale &&
        !parent->globalOrientationStale && !parent->globallyTurned;
    if (isPlain && std::isfinite(LengthSquared(position))) {
        globalPosition = parent->globalPosition + position;
        globalPositionStale = false;
        globalOrientationStale = true;
        return;
    }
    UpdateGlobal();
}

bool Particle::Add(Particle* child)
{
    if (child == nullptr || IsBelow(child)) {
        return false;
    }
    if (child->parent != nullptr) {
        child->ResetParentSpheres();
        child->parent->UnlinkChild(child);
    }
    LinkChild(child);
    child->MarkMoved();
    return true;
}

bool Particle::Add(const PString& nodeName, Particle* child)
{
    Particle* node = this;
    while (node != nullptr && !nodeName.IsEmpty() && !(node->GetName() == nodeName)) {
        node = node->GetNextBelow(this);
    }
    return node != nullptr && node->Add(child);
}

void Particle::Remove()
{
    if (parent != nullptr) {
        parent->Remove(this);
    }
}

bool Particle::Remove(Particle* child)
{
    if (child == nullptr || child->parent != this) {
        return false;
    }
    child->ResetParentSpheres();
    UnlinkChild(child);
    child->MarkMoved();
    return true;
}

void Particle::RemoveAllChildren()
{
    while (Particle* const child = GetFirstChild()) {
        Particle::Remove(child);
    }
}

void Particle::LocalToGlobal(Quaternion& localOrientation) const
{
    UpdateGlobal();
    UpdateGlobalOrientation();
    // The product of two identities is one, with positive zeros.
    if (!globallyTurned && localOrientation == Quaternion()) {
        localOrientation = Quaternion();
        return;
    }
    localOrientation = Normalized(GetDetails().globalOrientation * localOrientation);
}

void Particle::OnParentDestroyed() {}

void Particle::MarkMoved() const
{
    ResetGlobalBoundingCenter();
    ResetParentSpheres();
    ResetChildGlobalBoundingCenters();
}

void Particle::UpdateGlobal() const
{
    // From the highest stale node downwards, because each depends on its parent. A tree deeper than the table
    // is processed in several rounds, which needs neither recursion nor allocation.
    constexpr std::size_t tableLength = 64;
    std::array<const Particle*, tableLength> chain;
    while (globalPositionStale) {
        std::size_t count = 0;
        for (const Particle* node = this; node != nullptr && node->globalPositionStale; node = node->parent) {
            chain[count++ % tableLength] = node;
        }
        for (std::size_t left = std::min(count, tableLength); left > 0; --left) {
            chain[--count % tableLength]->UpdateGlobalPosition();
        }
    }
}

// The parent's global position must be valid.
void Particle::UpdateGlobalPosition() const
{
    if (parent != nullptr) {
        parent->UpdateGlobalOrientation();
        // Most parents are not rotated. A position that is not finite is rotated anyway, so that it
        // propagates.
        const bool isTurned = parent->globallyTurned || !std::isfinite(LengthSquared(position));
        globalPosition = parent->globalPosition +
            (isTurned ? Rotate(parent->GetDetails().globalOrientation, position) : position);
    }
    else {
        globalPosition = position;
    }
    globalPositionStale = false;
    globalOrientationStale = true;
}

// This node's global position must be valid.
void Particle::UpdateGlobalOrientation() const
{
    if (!globalOrientationStale) {
        return;
    }
    Quaternion turn;
    if (details || (parent != nullptr && parent->globallyTurned)) {
        turn = Normalized(GetDetails().orientation);
        if (parent != nullptr) {
            turn = Normalized(parent->GetDetails().globalOrientation * turn);
        }
        UseDetails().globalOrientation = turn;
    }
    globallyTurned = !(turn == Quaternion());
    globalOrientationStale = false;
}

} // namespace Quon
