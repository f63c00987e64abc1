#pragma once

#include "harmonet/Export.h"

/// The entry point of the library as a plug-in. The host loads the library, looks this function up by its
/// undecorated name and calls it once, before any resource is looked up. No running sound system is needed.
///
/// It adds four resource types to the plug-in registry: "sound" and "sound.txt" for sound definitions, and
/// "wav" and "mp3" for plain sound files. The registry owns them, but their code is part of the library: call
/// PluginRegistry::ReleaseAll() before the library is unloaded. A second call adds them a second time, which
/// only costs memory. Task thread only.
extern "C" HARMONET_API void QuonGetPlugins();

namespace Quon
{

/// The function's type, for a host that looks it up.
using QuonGetPluginsFunction = void (*)();
constexpr const char* quonGetPluginsSymbol = "QuonGetPlugins";

} // namespace Quon
