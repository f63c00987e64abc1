#include "harmonet/instances/Snd2D.h"

namespace Quon
{

Snd2D::Snd2D()
    : SndBase(false)
{
}

Snd2D::Snd2D(const Snd2D& other)
    : SndBase(other)
{
}

Snd2D::~Snd2D() = default;

} // namespace Quon
