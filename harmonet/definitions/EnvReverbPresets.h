#pragma once

#include "harmonet/Export.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// Ready-made acoustics of 27 places, for Microphone::SetFXEnvReverb() and
/// Sound::SetFXEnvReverbListenerProperties(). They are plain data that the game may change, and a change is
/// seen by whoever uses them afterwards. fxEnvReverbDefault is also what an environmental reverb of a sound
/// definition starts with; it has the values of fxEnvReverbGeneric and is an object of its own.
HARMONET_API extern FXEnvReverb fxEnvReverbDefault;
HARMONET_API extern FXEnvReverb fxEnvReverbGeneric;
HARMONET_API extern FXEnvReverb fxEnvReverbPaddedCell;
HARMONET_API extern FXEnvReverb fxEnvReverbRoom;
HARMONET_API extern FXEnvReverb fxEnvReverbBathRoom;
HARMONET_API extern FXEnvReverb fxEnvReverbLivingRoom;
HARMONET_API extern FXEnvReverb fxEnvReverbStoneRoom;
HARMONET_API extern FXEnvReverb fxEnvReverbAuditorium;
HARMONET_API extern FXEnvReverb fxEnvReverbConcertHall;
HARMONET_API extern FXEnvReverb fxEnvReverbCave;
HARMONET_API extern FXEnvReverb fxEnvReverbArena;
HARMONET_API extern FXEnvReverb fxEnvReverbHangar;
HARMONET_API extern FXEnvReverb fxEnvReverbCarpetedHallway;
HARMONET_API extern FXEnvReverb fxEnvReverbHallway;
HARMONET_API extern FXEnvReverb fxEnvReverbStoneCorridor;
HARMONET_API extern FXEnvReverb fxEnvReverbAlley;
HARMONET_API extern FXEnvReverb fxEnvReverbForest;
HARMONET_API extern FXEnvReverb fxEnvReverbCity;
HARMONET_API extern FXEnvReverb fxEnvReverbMountains;
HARMONET_API extern FXEnvReverb fxEnvReverbQuarry;
HARMONET_API extern FXEnvReverb fxEnvReverbPlain;
HARMONET_API extern FXEnvReverb fxEnvReverbParkingLot;
HARMONET_API extern FXEnvReverb fxEnvReverbSewerPipe;
HARMONET_API extern FXEnvReverb fxEnvReverbUnderwater;
HARMONET_API extern FXEnvReverb fxEnvReverbDrugged;
HARMONET_API extern FXEnvReverb fxEnvReverbDizzy;
HARMONET_API extern FXEnvReverb fxEnvReverbPsychotic;

} // namespace Quon
