#pragma once

#include <memory>

namespace Bench
{

/// As many three-dimensional sounds in SoLoud with 64 audible voices, if the build has been given its folder
/// (HARMONET_PEERS): what it does about them in place of a full update. It has no priorities, no duplicates
/// and no scene nodes, and its sounds without a voice stand still.
class PeerCrowd
{
public:
    /// The most sounds that it takes.
    static constexpr int maxCount = 4095;

    explicit PeerCrowd(int count);
    ~PeerCrowd();

    static bool IsThere();
    /// Moves half of the sounds to anywhere, and the listener.
    void Move();
    void Update();

private:
    struct Voices;
    std::unique_ptr<Voices> voices;
};

} // namespace Bench
