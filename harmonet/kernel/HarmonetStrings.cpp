#include "harmonet/kernel/HarmonetStrings.h"

namespace Quon
{

PString HarmonetStrings::soundDefinition;
PString HarmonetStrings::file;
PString HarmonetStrings::looping;
PString HarmonetStrings::gain;
PString HarmonetStrings::minDistance;
PString HarmonetStrings::maxDistance;
PString HarmonetStrings::cutout;
PString HarmonetStrings::innerConeAngle;
PString HarmonetStrings::outerConeAngle;
PString HarmonetStrings::coneGain;
PString HarmonetStrings::position;
PString HarmonetStrings::polyline;
PString HarmonetStrings::num_add_sounds;
PString HarmonetStrings::angle;
PString HarmonetStrings::point;
PString HarmonetStrings::set_frquency;
PString HarmonetStrings::frequency;
PString HarmonetStrings::disable_mic_fx;
PString HarmonetStrings::fx_chorus;
PString HarmonetStrings::fx_flanger;
PString HarmonetStrings::fx_echo;
PString HarmonetStrings::fx_distortion;
PString HarmonetStrings::fx_compressor;
PString HarmonetStrings::fx_parameq;
PString HarmonetStrings::fx_gargle;
PString HarmonetStrings::fx_wavesreverb;
PString HarmonetStrings::fx_envreverb;
PString HarmonetStrings::wetdrymix;
PString HarmonetStrings::depth;
PString HarmonetStrings::feedback;
PString HarmonetStrings::waveform;
PString HarmonetStrings::delay;
PString HarmonetStrings::phase;
PString HarmonetStrings::leftdelay;
PString HarmonetStrings::rightdelay;
PString HarmonetStrings::pandelay;
PString HarmonetStrings::edge;
PString HarmonetStrings::posteqcenterfreq;
PString HarmonetStrings::posteqbandwidth;
PString HarmonetStrings::prelowpasscutoff;
PString HarmonetStrings::attack;
PString HarmonetStrings::release;
PString HarmonetStrings::threshold;
PString HarmonetStrings::ratio;
PString HarmonetStrings::center;
PString HarmonetStrings::bandwidth;
PString HarmonetStrings::ratehz;
PString HarmonetStrings::reverbmix;
PString HarmonetStrings::reverbtime;
PString HarmonetStrings::highfreqrtratio;
PString HarmonetStrings::room;
PString HarmonetStrings::roomhf;
PString HarmonetStrings::roomrolloff;
PString HarmonetStrings::decaytime;
PString HarmonetStrings::decayhfratio;
PString HarmonetStrings::reflections;
PString HarmonetStrings::reflectionsdelay;
PString HarmonetStrings::reverb;
PString HarmonetStrings::reverbdelay;
PString HarmonetStrings::diffusion;
PString HarmonetStrings::density;
PString HarmonetStrings::hfreference;
PString HarmonetStrings::primaryFrequency;
PString HarmonetStrings::maxSounds;
PString HarmonetStrings::streamLength;
PString HarmonetStrings::cacheSize;

namespace
{

struct KeyString
{
    PString& string;
    const char* text;
};

// Unloading the library destroys the strings from the last to the first; one that is destroyed after the
// engine's string cache is gone leaves its text alone.
const KeyString keyStrings[] = {
    {HarmonetStrings::soundDefinition, "*SOUND_DEFINITION"},
    {HarmonetStrings::file, "*FILE"},
    {HarmonetStrings::looping, "*LOOPING"},
    {HarmonetStrings::gain, "*GAIN"},
    {HarmonetStrings::minDistance, "*MIN_DISTANCE"},
    {HarmonetStrings::maxDistance, "*MAX_DISTANCE"},
    {HarmonetStrings::cutout, "*CUTOUT"},
    {HarmonetStrings::innerConeAngle, "*INNER_CONE_ANGLE"},
    {HarmonetStrings::outerConeAngle, "*OUTER_CONE_ANGLE"},
    {HarmonetStrings::coneGain, "*CONE_GAIN"},
    {HarmonetStrings::position, "*POSITION"},
    {HarmonetStrings::polyline, "*POLYLINE"},
    {HarmonetStrings::num_add_sounds, "*NUM_ADD_SOUNDS"},
    {HarmonetStrings::angle, "*ANGLE"},
    {HarmonetStrings::point, "*POINT"},
    {HarmonetStrings::set_frquency, "*SET_FRQUENCY"},
    {HarmonetStrings::frequency, "*FREQUENCY"},
    {HarmonetStrings::disable_mic_fx, "*DISABLE_ENV_FX"},
    {HarmonetStrings::fx_chorus, "*FX_CHORUS"},
    {HarmonetStrings::fx_flanger, "*FX_FLANGER"},
    {HarmonetStrings::fx_echo, "*FX_ECHO"},
    {HarmonetStrings::fx_distortion, "*FX_DISTORTION"},
    {HarmonetStrings::fx_compressor, "*FX_COMPRESSOR"},
    {HarmonetStrings::fx_parameq, "*FX_PARAMEQ"},
    {HarmonetStrings::fx_gargle, "*FX_GARGLE"},
    {HarmonetStrings::fx_wavesreverb, "*FX_WAVESREVERB"},
    {HarmonetStrings::fx_envreverb, "*FX_ENVREVERB"},
    {HarmonetStrings::wetdrymix, "*WETDRYMIX"},
    {HarmonetStrings::depth, "*DEPTH"},
    {HarmonetStrings::feedback, "*FEEDBACK"},
    {HarmonetStrings::waveform, "*WAVEFORM"},
    {HarmonetStrings::delay, "*DELAY"},
    {HarmonetStrings::phase, "*PHASE"},
    {HarmonetStrings::leftdelay, "*LEFTDELAY"},
    {HarmonetStrings::rightdelay, "*RIGHTDELAY"},
    {HarmonetStrings::pandelay, "*PANDELAY"},
    {HarmonetStrings::edge, "*EDGE"},
    {HarmonetStrings::posteqcenterfreq, "*POSTEQCENTERFREQ"},
    {HarmonetStrings::posteqbandwidth, "*POSTEQBANDWIDTH"},
    {HarmonetStrings::prelowpasscutoff, "*PRELOWPASSCUTOFF"},
    {HarmonetStrings::attack, "*ATTACK"},
    {HarmonetStrings::release, "*RELEASE"},
    {HarmonetStrings::threshold, "*THRESHOLD"},
    {HarmonetStrings::ratio, "*RATIO"},
    {HarmonetStrings::center, "*CENTER"},
    {HarmonetStrings::bandwidth, "*BANDWIDTH"},
    {HarmonetStrings::ratehz, "*RATEHZ"},
    {HarmonetStrings::reverbmix, "*REVERBMIX"},
    {HarmonetStrings::reverbtime, "*REVERBTIME"},
    {HarmonetStrings::highfreqrtratio, "*HIGHFREQRTRATIO"},
    {HarmonetStrings::room, "*ROOM"},
    {HarmonetStrings::roomhf, "*ROOMHF"},
    {HarmonetStrings::roomrolloff, "*ROOMROLLOFF"},
    {HarmonetStrings::decaytime, "*DECAYTIME"},
    {HarmonetStrings::decayhfratio, "*DECAYHFRATIO"},
    {HarmonetStrings::reflections, "*REFLECTIONS"},
    {HarmonetStrings::reflectionsdelay, "*REFLECTIONSDELAY"},
    {HarmonetStrings::reverb, "*REVERB"},
    {HarmonetStrings::reverbdelay, "*REVERBDELAY"},
    {HarmonetStrings::diffusion, "*DIFFUSION"},
    {HarmonetStrings::density, "*DENSITY"},
    {HarmonetStrings::hfreference, "*HFREFERENCE"},
    {HarmonetStrings::primaryFrequency, "SoundFrequency"},
    {HarmonetStrings::maxSounds, "MaxSounds"},
    {HarmonetStrings::streamLength, "StreamLength"},
    {HarmonetStrings::cacheSize, "SoundCacheSize"},
};

} // namespace

void HarmonetStrings::Init()
{
    for (const KeyString& key : keyStrings)
        key.string = PString(key.text);
}

} // namespace Quon
