#pragma once

#include "harmonet/Export.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// Presets of 27 rooms, for Microphone::SetFXEnvReverb() and Sound::SetFXEnvReverbListenerProperties(). They
/// are plain data that the game may change; a change affects all later uses. fxEnvReverbDefault also provides
/// the defaults of an environmental reverb in a sound definition. It is a separate object with the values of
/// fxEnvReverbGeneric.
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
