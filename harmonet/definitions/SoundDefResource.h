#pragma once

#include "harmonet/definitions/DefinitionListener.h"
#include "harmonet/definitions/SoundResource.h"

namespace Quon
{

class BlockReader;

/// A sound as a designer defines it: the settings of a `SoundResource`, read from a text.
///
///     *SOUND_DEFINITION
///     {
///         *FILE engine_loop.wav
///         *GAIN 0.8
///         *FX_ECHO { *FEEDBACK 30 }
///     }
///
/// The text form is that of `BlockReader`. A keyword that is not known where it stands is passed over, one
/// that is missing leaves its default, and the order matters in one point: a value that cannot be read ends
/// the reading, what was read so far stays, and a definition that has not named its "*FILE" by then does not
/// load. Nothing is clamped or scaled, but for variation and limits, where a number out of range counts as
/// the default.
///
/// The database owns it and loads it. The keywords exist once `SoundSystem::Init` or `HarmonetStrings::Init`
/// has run; before that every definition fails to load.
class HARMONET_API SoundDefResource : public SoundResource
{
public:
    /// With the defaults of all settings, not loaded. A ResourceDatabase makes these objects.
    SoundDefResource(const PString& newName, const ResourceDatabase* database);
    ~SoundDefResource() override;

    using SoundResource::Load;
    /// Answers 6 and does nothing: a definition is a text.
    Result Load(const ResourceDatabase* database, char* path) const override;
    /// Reads the definition of that name below the folder of GetOwnerName(). 0, or 1 if the file cannot be
    /// opened, and then the settings but effects and line stay as they were; or 1 if it holds no definition
    /// or the definition's file name is not among what could be read.
    Result LoadTxt(const ResourceDatabase* database, char* path) const override;

    /// Reads the first definition of a text into the settings. True if the last "*FILE" that was met had a
    /// value.
    virtual bool ReadDataTxt(BlockReader* reader) const;

    /// Sets who hears of what is wrong with the definitions that are loaded from now on, null for nobody, and
    /// returns the one before. Not owned. For the thread that loads resources.
    static DefinitionListener* SetListener(DefinitionListener* newListener);

protected:
    /// These read the block behind the last keyword of `reader`. False, with no points or without adding the
    /// effect, if a value in it could not be read; a line also needs two points.
    bool ReadPolyline(BlockReader* reader) const;
    bool ReadFXParam(BlockReader* reader, SndFX effect) const;

private:
    struct Reading;
    struct Setting;

    static const Setting* FindSetting(const PString& keyword);
    bool ReadKeyword(Reading& reading) const;
    bool ReadFrequency(BlockReader& reader) const;
    bool ReadDelay(BlockReader& reader) const;
    bool ReadPosition(BlockReader& reader) const;
    bool ReadLine(BlockReader& block, EngineVector<float>& coordinates) const;
    bool ReadNumAddSounds(BlockReader& reader) const;
    void StorePoints(const EngineVector<float>& coordinates) const;
    void PreferEffects(const Reading& reading) const;

    static DefinitionListener* listener;
};

} // namespace Quon
