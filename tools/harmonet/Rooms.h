#pragma once

#include "harmonet/definitions/FXRecords.h"

#include <string>
#include <vector>

namespace Tool
{

/// Returns the names of the preset rooms, in lower case.
std::vector<std::string> RoomNames();

/// Returns the preset room with one of these names. Throws a ToolError for any other name.
const Quon::FXEnvReverb& GetRoom(const std::string& name);

} // namespace Tool
