#pragma once

#include "harmonet/files/mpeg/SideInfo.h"
#include "harmonet/files/mpeg/StandardTables.h"

#include <array>
#include <vector>

/// MPEG Layer III decoding as its formulas stand, slowly and in double precision: the judge of the fast
/// decoder. It shares with the library nothing but plain records and the standard's numbers.

namespace PlainMpeg
{

/// Interleaved 16-bit values of all frames of a bare stream, each in its own number of channels. The stream
/// has to be without junk, and its reservoirs there. By the rules of the library, or by those of the
/// standards.
std::vector<int> Decode(const std::vector<unsigned char>& stream, bool byStandard = false);

// The stages that this takes, in their order.

using Line = std::array<double, Quon::linesPerGranule>;
using Values = std::array<int, Quon::linesPerGranule>;

/// Reads bit by bit; beyond the end it reads 0.
struct Bits
{
    int Take(int count);

    const std::vector<unsigned char>& bytes;
    int position = 0;
};

/// The Huffman data of a granule and channel that may take `budget` bits, from the reader's position on; the
/// reader ends beyond the budget. Returns the line count.
int DecodeValues(Bits& bits, const Quon::GranuleInfo& info, int budget, Values& values);

struct Limits
{
    std::array<int, 4> band = {-1, -1, -1, -1};
    int subband = -1;
};

Line Requantise(const Quon::GranuleInfo& info, const Quon::ScaleFactors& scaleFactors,
    const Quon::BandTable& bands, const Values& values, int lineCount, Limits& limits,
    bool byStandard = false);

struct StereoMode
{
    bool isMpeg1;
    bool msStereo;
    bool intensityStereo;
    bool byStandard;
};

/// What the right channel says of intensity stereo: positions, and by the standard their marks.
struct RightChannel
{
    const Quon::GranuleInfo& info;
    const Quon::ScaleFactors& positions;
    const Quon::ScaleFactors& marks; ///< Values of positions that mean "not intensity coded".
    const Limits& limits;
};

void Stereo(const StereoMode& mode, const Quon::GranuleInfo& first, const RightChannel& rightChannel,
    const Quon::BandTable& bands, Line& left, Line& right);

void AliasReduction(const Quon::GranuleInfo& info, Line& xr);

/// By subband and time slot.
using Subbands = std::array<std::array<double, 18>, 32>;

/// The transform with windows and overlap, without the frequency inversion.
Subbands Hybrid(const Quon::GranuleInfo& info, int subbandLimit, const Line& xr, Subbands& overlap);

/// The standard's vector of 1024 values.
using PolyphaseState = std::array<double, 1024>;

/// The frequency inversion and the polyphase filter: 576 samples with full scale at 1.0.
std::vector<double> Polyphase(const Subbands& subbands, PolyphaseState& v);

} // namespace PlainMpeg
