#pragma once

#include "harmonet/instances/SndBase.h"

namespace Quon
{

/// A sound effect that has no place in the world: a SndBase with nothing added.
class HARMONET_API Snd2D : public SndBase
{
public:
    Snd2D();
    /// A new instance of the same sound that is not yet running.
    Snd2D(const Snd2D& other);
    Snd2D& operator=(const Snd2D& other) = default;
    ~Snd2D() override;
};

} // namespace Quon
