#pragma once

#include "harmonet/instances/SndBase.h"

namespace Quon
{

/// A non-positional sound effect: a SndBase without additions.
class HARMONET_API Snd2D : public SndBase
{
public:
    Snd2D();
    /// Constructs a new instance of the same sound that has not started.
    Snd2D(const Snd2D& other);
    Snd2D& operator=(const Snd2D& other) = default;
    ~Snd2D() override;
};

} // namespace Quon
