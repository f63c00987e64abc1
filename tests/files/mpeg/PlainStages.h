#pragma once

#include "harmonet/files/mpeg/SideInfo.h"
#include "harmonet/files/mpeg/StandardTables.h"

#include <array>
#include <vector>

/// The stages of MPEG Layer III decoding as their formulas stand, slowly and in double precision: what the
/// plain decoder is made of. They share with the library nothing but plain records and the standard's
/// numbers.

namespace PlainMpeg
{

using Line = std::array<double, Quon::linesPerGranule>;
using Values = std::array<int, Quon::linesPerGranule>;

/// Reads bit by bit; what lies behind the end reads as 0.
class Bits
{
public:
    explicit Bits(const std::vector<unsigned char>& newBytes)
        : bytes(newBytes)
    {
    }

    int Take(int count);
    int GetPosition() const { return position; }
    void SetPosition(int newPosition) { position = newPosition; }

private:
    const std::vector<unsigned char>& bytes;
    int position = 0;
};

/// Takes one code of a table, found by comparing with each code of the list; returns its two values.
std::array<int, 2> TakeCode(Bits& bits, int table);

/// The Huffman data of a granule and channel that may take `budget` bits, from the reader's position on; the
/// reader ends behind the budget. Returns the line count.
int DecodeValues(Bits& bits, const Quon::GranuleInfo& info, int budget, Values& values);

struct Limits
{
    std::array<int, 4> band = {-1, -1, -1, -1};
    int subband = -1;
};

Line Requantise(const Quon::GranuleInfo& info, const Quon::ScaleFactors& scaleFactors,
    const Quon::BandTable& bands, const Values& values, int lineCount, Limits& limits);

struct StereoMode
{
    bool isMpeg1;
    bool msStereo;
    bool intensityStereo;
};

void Stereo(const StereoMode& mode, const Quon::GranuleInfo& first, const Quon::ScaleFactors& positions,
    const Limits& rightLimits, const Quon::BandTable& bands, Line& left, Line& right);

void AliasReduction(const Quon::GranuleInfo& info, Line& xr);

/// By subband and time slot.
using Subbands = std::array<std::array<double, 18>, 32>;

/// The transform with windows and overlap, without the frequency inversion.
Subbands Hybrid(const Quon::GranuleInfo& info, int subbandLimit, const Line& xr, Subbands& overlap);

/// The standard's polyphase filter with its vector of 1024 values, the frequency inversion ahead of it.
class Polyphase
{
public:
    /// 576 samples with full scale at 1.0.
    std::vector<double> Run(const Subbands& subbands);

private:
    std::array<double, 1024> v = {};
};

} // namespace PlainMpeg
