#pragma once

namespace Quon
{

class SndBase;

/// Applies the limits of the sound's definition, which it must have: returns whether it may start, and counts
/// it from then on; DefinitionState::CancelStart() undoes that after a failed start. Instances that it
/// replaces end here, with their notifications. Also returns false if an observer has ended the sound
/// meanwhile. Requires a kernel; task thread only.
bool AdmitStart(SndBase& sound);

} // namespace Quon
