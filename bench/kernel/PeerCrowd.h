#pragma once

#include <memory>

namespace Bench
{

/// The same number of 3D sounds in SoLoud with 64 audible voices, if the build knows its folder
/// (HARMONET_PEERS). Update() does what corresponds to a full update. SoLoud has no priorities, duplicates or
/// scene nodes, and its sounds without a voice do not advance.
class PeerCrowd
{
public:
    /// The maximum number of sounds in SoLoud.
    static constexpr int maxCount = 4095;

    explicit PeerCrowd(int count);
    ~PeerCrowd();

    static bool IsAvailable();
    /// Moves half of the sounds to random positions, and the listener.
    void Move();
    void Update();

private:
    struct Voices;
    std::unique_ptr<Voices> voices;
};

} // namespace Bench
