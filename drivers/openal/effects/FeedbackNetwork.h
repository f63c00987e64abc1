#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/Lanes.h"

#include <array>
#include <cstddef>
#include <span>

namespace Quon
{

/// The echoes of a room: eight delay lines of unlike lengths, each of which feeds all of them (a feedback
/// delay network). Owned by a reverb.
///
/// What leaves a line is weakened by as much as a sound of the room's decay time loses on the way through it,
/// and its high frequencies by as much as theirs. The mixing of the lines keeps the power, so that the decay
/// is that of the lines and cannot grow.
class FeedbackNetwork
{
public:
    static constexpr std::size_t lineCount = 8;
    using Four = FourFloats;

    struct Room
    {
        double decayMs; ///< The time in which the room falls by 60 dB.
        double highRatio; ///< The part of it that high frequencies take, above 0 and up to 1.
        double size; ///< The lengths of the lines; 1 is a hall, of 26 to 48 ms.
    };

    FeedbackNetwork(const Room& room, int rateHz);

    /// Puts the sound of the room in the place of what goes in, of one channel or of two, interleaved. The
    /// even lines take in the left side and the odd ones the right; the sides of the room are made of all
    /// lines with unlike signs. The same on both sides in, each of them gives as much power as one side takes
    /// in, but for the frequencies that fade sooner; one channel gives what the left side would then.
    void ProcessMono(std::span<float> pcm);
    void ProcessStereo(std::span<float> pcm);

    void Clear();

    /// The longest line in sample frames.
    int GetLongest() const;

private:
    using Lanes = std::array<Four, 2>;

    Lanes Step(float left, float right);
    Four ReadHalf(std::size_t half) const;

    // The lines lie side by side: a row for each sample frame, a lane in it for each line.
    EngineVector<Lanes> rows;
    std::size_t mask; ///< Of the rows, which are a ring.
    std::size_t row = 0; ///< The next to write.
    std::array<std::size_t, lineCount> delays;
    float level; ///< Of what goes in, so that the room is as loud as what comes in.
    Lanes decay; ///< What a line leaves of its sound.

    // The shelf at the end of each line, as a second-order filter.
    Lanes b0, b1, b2, a1, a2;
    Lanes near{}, far{};
};

} // namespace Quon
