#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/PString.h"

namespace Quon
{

/// The key strings of the library: keywords of sound definitions, which begin with an asterisk, and the keys
/// of the options that the kernel reads. Interned, so that a reader compares them by identity.
///
/// They are null until Init() and stay until the library is unloaded. The strings are written by Init()
/// alone, on the task thread.
class HARMONET_API HarmonetStrings
{
public:
    /// Makes all strings; may be called again.
    static void Init();

    // Each name and its text stand in HarmonetStringList.inl alone.
#define HARMONET_STRING(name, text) static PString name;
#include "harmonet/kernel/HarmonetStringList.inl"
};

} // namespace Quon
