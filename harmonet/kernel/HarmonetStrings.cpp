#include "harmonet/kernel/HarmonetStrings.h"

namespace Quon
{

// Unloading the library destroys the strings from the last to the first; one that is destroyed after the
// engine's string cache is gone leaves its text alone.
#define HARMONET_STRING(name, text) PString HarmonetStrings::name;
#include "harmonet/kernel/HarmonetStringList.inl"

void HarmonetStrings::Init()
{
#define HARMONET_STRING(name, text) name = PString(text);
#include "harmonet/kernel/HarmonetStringList.inl"
}

} // namespace Quon
