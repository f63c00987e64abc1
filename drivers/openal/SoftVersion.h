#pragma once

namespace Quon
{

/// The generations of OpenAL Soft that differ in what this driver has to know. Measured with 1.19.1 and
/// 1.24.3; a version between these is taken for a new one. With a new one
/// - a change of gain takes 64 sample frames and not the block that is mixed;
/// - a source that stops or runs out holds its last sample and fades out, instead of falling silent at once;
/// - late reverb in steady sound is as loud at any decay time, and not weaker the shorter it decays;
/// - a send to a slot without AL_EFFECTSLOT_AUXILIARY_SEND_AUTO falls off with distance by the rolloff factor
///   of the slot's room, and not like the direct sound;
/// - HRTF works at any rate, and not only at those of its data.
enum class SoftVersion
{
    Old,
    New
};

/// The sample frames in which a new OpenAL Soft changes a gain, at any rate.
inline constexpr int gainRampFrames = 64;

/// That of the context that is current in this thread. A text that names no version is that of a new one.
SoftVersion GetSoftVersion();

} // namespace Quon
