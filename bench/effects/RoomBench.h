#pragma once

/// Registers the benchmarks of rooms.
void RegisterRooms();
