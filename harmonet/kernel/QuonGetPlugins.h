#pragma once

#include "harmonet/Export.h"

/// The door by which the library enters an engine. The host loads the library, looks this function up by its
/// plain name and calls it once, before any resource is looked up; it needs no running sound system.
///
/// It enters four kinds of resources in the plug-in registry: "sound" and "sound.txt", which are sound
/// definitions, and "wav" and "mp3", which are plain sound files. The registry owns them, and their code goes
/// with the library: PluginRegistry::ReleaseAll() comes before the library is unloaded. A second call enters
/// them a second time, to no effect but the memory. Task thread.
extern "C" HARMONET_API void QuonGetPlugins();

namespace Quon
{

/// For a host that looks the function up.
using QuonGetPluginsFunction = void (*)();
constexpr const char* quonGetPluginsSymbol = "QuonGetPlugins";

} // namespace Quon
