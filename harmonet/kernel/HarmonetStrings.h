#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/PString.h"

namespace Quon
{

/// The key strings of the library: keywords of sound definitions, which begin with an asterisk, and the keys
/// of the options that the kernel reads. They are interned, so that readers can compare them by identity.
///
/// They are null until Init() and valid until the library is unloaded. Only Init() writes them, on the task
/// thread.
class HARMONET_API HarmonetStrings
{
public:
    /// Creates all strings; may be called again.
    static void Init();

    // Each name and its text are defined in HarmonetStringList.inl alone.
#define HARMONET_STRING(name, text) static PString name;
#include "harmonet/kernel/HarmonetStringList.inl"
};

} // namespace Quon
