#pragma once

#include "bench/accuracy/Measures.h"
#include "bench/accuracy/Stage.h"

namespace Accuracy
{

/// A row of a table: what was expected, what was rendered, and the error.
void PrintRow(
    const std::string& what, double expected, double rendered, const std::string& unit, int digits = 2);
/// The same for a figure that has only a limit.
void PrintLimit(const std::string& what, double limit, double rendered, const std::string& unit);

Formula Tone(double hz, int rateHz, double amplitude = 0.5);
/// A bump whose middle lies at a sample frame, without high frequencies.
Formula Bump(int place, double width);

// The rows of the table of what is rendered, by subject.

void PrintTimes();
void PrintRates();
void PrintPlaces();
void PrintFades();
void PrintEffects();
void PrintCodings();

/// The table of what is heard from a device. Takes half a minute. Before anything else uses OpenAL.
void PrintLive();

/// The table of the levels of the rooms.
void PrintLevels();

} // namespace Accuracy
