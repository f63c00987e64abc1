#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/PString.h"

namespace Quon
{

/// The key strings of the library: keywords of sound definitions, which begin with an asterisk, and the keys
/// of the options that the kernel reads. Interned, so that a reader compares them by identity.
///
/// They are null until Init() and stay until the library is unloaded. The strings are written by Init()
/// alone, on the task thread.
class HARMONET_API HarmonetStrings
{
public:
    /// Makes all strings; may be called again.
    static void Init();

    static PString soundDefinition;
    static PString file;
    static PString looping;
    static PString gain;
    static PString minDistance;
    static PString maxDistance;
    static PString cutout;
    static PString innerConeAngle;
    static PString outerConeAngle;
    static PString coneGain;
    static PString position;
    static PString polyline;
    static PString num_add_sounds;
    static PString angle;
    static PString point;
    static PString set_frquency;
    static PString frequency;
    static PString disable_mic_fx;
    static PString fx_chorus;
    static PString fx_flanger;
    static PString fx_echo;
    static PString fx_distortion;
    static PString fx_compressor;
    static PString fx_parameq;
    static PString fx_gargle;
    static PString fx_wavesreverb;
    static PString fx_envreverb;
    static PString wetdrymix;
    static PString depth;
    static PString feedback;
    static PString waveform;
    static PString delay;
    static PString phase;
    static PString leftdelay;
    static PString rightdelay;
    static PString pandelay;
    static PString edge;
    static PString posteqcenterfreq;
    static PString posteqbandwidth;
    static PString prelowpasscutoff;
    static PString attack;
    static PString release;
    static PString threshold;
    static PString ratio;
    static PString center;
    static PString bandwidth;
    static PString ratehz;
    static PString reverbmix;
    static PString reverbtime;
    static PString highfreqrtratio;
    static PString room;
    static PString roomhf;
    static PString roomrolloff;
    static PString decaytime;
    static PString decayhfratio;
    static PString reflections;
    static PString reflectionsdelay;
    static PString reverb;
    static PString reverbdelay;
    static PString diffusion;
    static PString density;
    static PString hfreference;
    static PString primaryFrequency;
    static PString maxSounds;
    static PString streamLength;
    static PString cacheSize;
};

} // namespace Quon
