#include "fuzz/game/GameFolder.h"

#include "harmonet/engine/File.h"
#include "harmonet/engine/PluginRegistry.h"
#include "harmonet/kernel/QuonGetPlugins.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace Quon
{

namespace
{

std::vector<unsigned char> ReadSource(const std::string& name)
{
    std::ifstream file(std::string(HARMONET_SOURCE_FOLDER "/tests/files/") + name, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + name);
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

struct Definition
{
    const char* name;
    const char* text;
};

constexpr Definition definitions[] = {
    {"plain.sound.txt", "*SOUND_DEFINITION { *FILE a.wav\n *GAIN 0.5\n *MAX_DISTANCE 20 }"},
    {"loop.sound.txt", "*SOUND_DEFINITION { *FILE stereo.wav\n *LOOPING true\n *DELAY 50 }"},
    {"far.sound.txt",
        "*SOUND_DEFINITION { *FILE long.wav\n *MIN_DISTANCE 1\n *MAX_DISTANCE 5\n"
        "*CUTOUT true\n *INNER_CONE_ANGLE 60\n *OUTER_CONE_ANGLE 90\n *CONE_GAIN 0.2 }"},
    {"river.sound.txt",
        "*SOUND_DEFINITION { *FILE b.wav\n *MAX_DISTANCE 30\n *POLYLINE {\n"
        "*NUM_ADD_SOUNDS 3\n *ANGLE 40\n *POINT 0 0 0\n *POINT 4 0 8\n *POINT 16 0 4\n"
        "*POINT 0 8 4 } }"},
    {"hall.sound.txt",
        "*SOUND_DEFINITION { *FILE adpcm.wav\n *FX_ECHO { *FEEDBACK 30 }\n"
        "*FX_ENVREVERB { *ROOM -100 } }"},
    {"rate.sound.txt", "*SOUND_DEFINITION { *FILE bytes.wav\n *SET_FRQUENCY true\n *FREQUENCY 2000 }"},
    {"steps.sound.txt",
        "*SOUND_DEFINITION { *FILE a.wav\n *VARIANT b.wav\n *VARIANT tune.mp3\n *GAIN_RANGE -6 0\n"
        "*FREQUENCY_RANGE 0.5 2\n *MAX_INSTANCES 2\n *STEALING quietest }"},
    {"alarm.sound.txt",
        "*SOUND_DEFINITION { *FILE b.wav\n *VARIANT nowhere.wav\n *VARIANT stereo.wav\n"
        "*VARIANT_ORDER sequence\n *MAX_INSTANCES 1\n *MIN_INTERVAL 100 }"},
    {"lost.sound.txt", "*SOUND_DEFINITION { *FILE nowhere.wav }"},
    {"bad.sound.txt", "*SOUND_DEFINITION { *GAIN loud\n *FILE a.wav }"},
};

} // namespace

GameFolder::GameFolder()
{
    os.GetOptions()->Set("Sound", "HarmonetNull");
    driver.reset(os.CreateDynamicLibrary());
    driver->Open((std::string("HarmonetNull") + dynamicLibrarySuffix).c_str());
    File::AddRoot(PString(), folder.GetPath().string().c_str());
    QuonGetPlugins();
    database = std::make_unique<ResourceDatabase>();
    database->AddFolder("sounds", folder.GetPath().string().c_str());
    WriteSounds();
    WriteDefinitions();
}

GameFolder::~GameFolder()
{
    database.reset();
    PluginRegistry::Get().ReleaseAll();
    File::RemoveRoot(PString());
}

// A resource that was unused for two passes is dropped.
void GameFolder::DropResources()
{
    database->DropUnused();
    database->DropUnused();
}

// The rates are low, because reading sample frames is slow and the rules depend only on milliseconds.
void GameFolder::WriteSounds()
{
    folder.Write("a.wav", BuildWave({600}));
    folder.Write("b.wav", BuildWave({3000}));
    folder.Write("stereo.wav", BuildWave({3000, 2000, 2}));
    folder.Write("bytes.wav", BuildWave({1200, 1000, 1, 8}));
    folder.Write("short.wav", BuildWave({450}));
    folder.Write("empty.wav", BuildWave({0}));
    folder.Write("long.wav", BuildWave({20000}));
    folder.Write("adpcm.wav", ReadSource("adpcm/sox-mono.wav"));
    folder.Write("tune.mp3", ReadSource("mpeg/streams/mono-16000.mp3"));
    std::vector<unsigned char> torn = BuildWave({2000});
    torn.resize(torn.size() / 2);
    folder.Write("torn.wav", torn);
    folder.Write("noise.wav", "RIFFnothing that could be played");
    for (const char* name : {"a.wav", "b.wav", "stereo.wav", "bytes.wav", "short.wav", "empty.wav",
             "long.wav", "adpcm.wav", "tune.mp3", "torn.wav", "noise.wav", "missing.wav", ""}) {
        files.emplace_back(name);
    }
    blocks.emplace_back(PcmForm{800});
    blocks.emplace_back(PcmForm{2500});
    blocks.emplace_back(PcmForm{700, 2000, 2});
    blocks.emplace_back(PcmForm{0});
}

void GameFolder::WriteDefinitions()
{
    for (const Definition& definition : definitions) {
        folder.Write(definition.name, definition.text);
        resources.emplace_back(definition.name);
    }
    for (const char* name : {"a.wav", "tune.mp3", "missing.sound.txt"}) {
        resources.emplace_back(name);
    }
}

} // namespace Quon
