#pragma once

#include "harmonet/definitions/FXRecords.h"

#include <string>
#include <vector>

namespace Tool
{

/// The names of the ready-made rooms, in lower case.
std::vector<std::string> RoomNames();

/// The room of one of these names.
const Quon::FXEnvReverb& GetRoom(const std::string& name);

} // namespace Tool
