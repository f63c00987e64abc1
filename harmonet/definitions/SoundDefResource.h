#pragma once

#include "harmonet/definitions/DefinitionListener.h"
#include "harmonet/definitions/SoundResource.h"

namespace Quon
{

class BlockReader;

/// A sound definition: the settings of a `SoundResource`, read from a text file.
///
///     *SOUND_DEFINITION
///     {
///         *FILE engine_loop.wav
///         *GAIN 0.8
///         *FX_ECHO { *FEEDBACK 30 }
///     }
///
/// `BlockReader` describes the syntax. A keyword that is unknown in its block is ignored, and a missing one
/// keeps its default. A value that cannot be read ends reading: the settings read so far are kept, and a
/// definition without a "*FILE" before that point does not load. docs/definitions.md lists the other cases in
/// which the order matters. No value is clamped or scaled, except that for variation and limits a number out
/// of range is replaced by the default.
///
/// The database owns it and loads it. The keywords exist after `SoundSystem::Init` or
/// `HarmonetStrings::Init`; before that every definition fails to load.
class HARMONET_API SoundDefResource : public SoundResource
{
public:
    /// With the defaults of all settings, not loaded. A ResourceDatabase creates these objects.
    SoundDefResource(const PString& newName, const ResourceDatabase* database);
    ~SoundDefResource() override;

    using SoundResource::Load;
    /// Does nothing and returns 6, because a definition is text.
    Result Load(const ResourceDatabase* database, char* path) const override;
    /// Reads the definition of that name below the folder of GetOwnerName(). Returns 0 on success. Returns 1
    /// if the file cannot be opened; the settings other than effects and line are then unchanged. Also
    /// returns 1 if the file contains no definition, or if no "*FILE" was read.
    Result LoadTxt(const ResourceDatabase* database, char* path) const override;

    /// Reads the first definition of a text into the settings. Returns true if the last "*FILE" had a value.
    virtual bool ReadDataTxt(BlockReader* reader) const;

    /// Sets the listener that receives remarks on definitions loaded from now on, null for none, and returns
    /// the previous one. The listener is not owned. Call it on the thread that loads resources.
    static DefinitionListener* SetListener(DefinitionListener* newListener);

protected:
    /// These read the block of the last keyword of `reader`. They return false, and set no points or add no
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
