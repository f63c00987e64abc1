// The plug-in entry point: the library is loaded at run time, as by an engine, and registers its types.

#include "harmonet/engine/DynamicLibrary.h"
#include "harmonet/engine/PluginRegistry.h"
#include "harmonet/engine/ResourceTypeBase.h"
#include "harmonet/kernel/QuonGetPlugins.h"
#include "tests/definitions/DefinitionTest.h"

#include <tuple>

namespace Quon
{

namespace
{

using TextPlugins = DefinitionTest;

TEST_F(TextPlugins, FourTypesLeadFromTheNamesInAFolderToSettings)
{
    constexpr const char* definitionId = "6B7E2191-3F4C-41A7-8C2D-5E19A07C33D1";
    const std::tuple<const char*, const char*, std::size_t> expected[] = {
        {"sound", definitionId, sizeof(SoundDefResource)},
        {"sound.txt", definitionId, sizeof(SoundDefResource)},
        {"wav", "6B7E2192-3F4C-41A7-8C2D-5E19A07C33D1", sizeof(SoundResource)},
        {"mp3", "6B7E2194-3F4C-41A7-8C2D-5E19A07C33D1", sizeof(SoundResource)}};
    PluginRegistry::Get().ReleaseAll();
    const std::unique_ptr<DynamicLibrary> library(os.CreateDynamicLibrary());
    ASSERT_TRUE(library->Open(HARMONET_LIBRARY));
    void* getPlugins = nullptr;
    ASSERT_TRUE(library->GetSymbol(&getPlugins, "QuonGetPlugins"));
    reinterpret_cast<QuonGetPluginsFunction>(getPlugins)();
    const auto& registered = PluginRegistry::Get().GetTypes();
    const std::vector<const PluginType*> types(registered.begin(), registered.end());
    ASSERT_EQ(types.size(), std::size(expected));
    for (std::size_t i = 0; i < types.size(); ++i) {
        const auto& [name, id, size] = expected[i];
        SCOPED_TRACE(name);
        const auto* type = dynamic_cast<const ResourceTypeBase*>(types[i]);
        ASSERT_NE(type, nullptr);
        EXPECT_EQ(type->GetName().GetView(), name);
        EXPECT_EQ(type->GetTypeID(), UId(id));
        EXPECT_EQ(type->GetCommonID(), UId("6B7E2180-3F4C-41A7-8C2D-5E19A07C33D1"));
        EXPECT_EQ(type->GetSize(), static_cast<int>(size));
    }

    folder.Write("river.sound", "*SOUND_DEFINITION { *FILE w.wav\n*GAIN 0.5 }");
    folder.Write("engine.sound.txt", "*SOUND_DEFINITION { *FILE w.wav\n*DELAY 5 }");
    folder.Write("broken.sound", "*SOUND_DEFINITION { *GAIN 0.5 }");
    folder.Write("w.wav", std::string("no wave"));
    folder.Write("m.mp3", std::string("no stream"));
    const std::pair<const char*, const char*> rows[] = {{"river.sound", "0: w.wav, gain 0.5"},
        {"engine.sound.txt", "0: w.wav, delay 5"}, {"w.wav", "0: w.wav"}, {"m.mp3", "0: m.mp3"},
        {"broken.sound", "1"}};
    for (const auto& [name, expectedLoad] : rows) {
        SCOPED_TRACE(name);
        const auto* resource = dynamic_cast<const SoundResource*>(database.Lookup(name, 2));
        ASSERT_NE(resource, nullptr);
        EXPECT_EQ(resource->GetOwnerName().GetView(), "sounds");
        const int code = resource->Lock(&database).GetCode();
        EXPECT_EQ(std::to_string(code) + (code == 0 ? ": " + Describe(*resource) : ""), expectedLoad);
        resource->Unlock();
        resource->ReleaseReference();
    }
    // Resources that were in use are dropped in the second pass.
    database.DropUnused();
    database.DropUnused();
    PluginRegistry::Get().ReleaseAll();
}

} // namespace

} // namespace Quon
