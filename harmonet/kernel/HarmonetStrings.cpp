#include "harmonet/kernel/HarmonetStrings.h"

namespace Quon
{

// Unloading the library destroys the strings in reverse order; a string destroyed after the engine's string
// cache does not touch its text.
#define HARMONET_STRING(name, text) PString HarmonetStrings::name;
#include "harmonet/kernel/HarmonetStringList.inl"

void HarmonetStrings::Init()
{
#define HARMONET_STRING(name, text) name = PString(text);
#include "harmonet/kernel/HarmonetStringList.inl"
}

} // namespace Quon
