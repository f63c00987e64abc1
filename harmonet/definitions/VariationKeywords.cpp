#include "harmonet/definitions/VariationKeywords.h"

#include "harmonet/definitions/DefinitionReport.h"
#include "harmonet/engine/BlockReader.h"
#include "harmonet/kernel/HarmonetStrings.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace Quon
{

namespace
{

using Keys = HarmonetStrings;

constexpr double maxDecibels = 60.0;
constexpr double lowestFrequencyFactor = 0.1;
constexpr double highestFrequencyFactor = 10.0;

// In the order of the enumerations.
constexpr const char* orderWords[] = {"random", "sequence"};
constexpr const char* stealingWords[] = {"oldest", "quietest", "none"};

} // namespace

bool VariationReader::Read(const PString& keyword, BlockReader& reader, bool& isRead)
{
    if (keyword == Keys::variant) {
        isRead = ReadVariant(reader);
    }
    else if (keyword == Keys::variantOrder) {
        isRead = ReadWord(keyword, reader, "random or sequence", orderWords, variation.order);
    }
    else if (keyword == Keys::gainRange) {
        isRead = ReadRange(
            keyword, reader, -maxDecibels, maxDecibels, 0.0F, variation.minGainDb, variation.maxGainDb);
    }
    else if (keyword == Keys::frequencyRange) {
        isRead = ReadRange(keyword, reader, lowestFrequencyFactor, highestFrequencyFactor, 1.0F,
            variation.minFrequencyFactor, variation.maxFrequencyFactor);
    }
    else if (keyword == Keys::maxInstances) {
        isRead = ReadCount(keyword, reader, limits.maxInstances);
    }
    else if (keyword == Keys::stealing) {
        isRead = ReadWord(keyword, reader, "oldest, quietest or none", stealingWords, limits.stealing);
    }
    else if (keyword == Keys::minInterval) {
        isRead = ReadCount(keyword, reader, limits.minIntervalMs);
    }
    else {
        return false;
    }
    return true;
}

bool VariationReader::ReadVariant(BlockReader& reader)
{
    PString name;
    if (!reader.ReadString(name)) {
        return false;
    }
    variation.variants.push_back(name);
    return true;
}

// A range with a number out of bounds is ignored.
bool VariationReader::ReadRange(const PString& keyword, BlockReader& reader, double least, double most,
    float normal, float& minimum, float& maximum) const
{
    float first = normal;
    float second = normal;
    if (!reader.ReadFloat(first) || !reader.ReadFloat(second)) {
        return false;
    }
    minimum = std::min(first, second);
    maximum = std::max(first, second);
    if (minimum < static_cast<float>(least) || maximum > static_cast<float>(most)) {
        const double wrong = minimum < static_cast<float>(least) ? minimum : maximum;
        report.CheckRange(keyword, reader, wrong, least, most);
        minimum = normal;
        maximum = normal;
    }
    return true;
}

bool VariationReader::ReadCount(const PString& keyword, BlockReader& reader, int& count) const
{
    int value = 0;
    if (!reader.ReadInt(value)) {
        return false;
    }
    report.CheckRange(keyword, reader, value, 0, std::numeric_limits<int>::max());
    count = std::max(value, 0);
    return true;
}

template<class Value, std::size_t count>
bool VariationReader::ReadWord(const PString& keyword, BlockReader& reader, const char* wanted,
    const char* const (&words)[count], Value& value) const
{
    PString text;
    const bool isThere = reader.ReadString(text);
    const auto found = std::find(std::begin(words), std::end(words), text.GetView());
    if (found != std::end(words)) {
        value = static_cast<Value>(found - std::begin(words));
        return true;
    }
    // The reader has already reported a missing value.
    if (isThere) {
        const char* shown = text.GetText();
        report.OnUnreadableWord(keyword, reader.GetLine(), wanted, shown ? shown : "");
    }
    return false;
}

} // namespace Quon
