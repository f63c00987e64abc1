#include "harmonet/engine/Resource.h"
#include "harmonet/engine/OS.h"
#include "harmonet/engine/PluginRegistry.h"
#include "harmonet/engine/ResourceDatabase.h"
#include "harmonet/engine/ResourceObserver.h"
#include "harmonet/engine/ResourceTypeBase.h"

#include "tests/support/TempFolder.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace Quon
{
namespace
{

using Log = std::vector<std::string>;

/// What all resources and types of a test write down.
Log* theLog = nullptr;

/// Loads data by Load() and definitions by LoadTxt(), as the sound resources do.
class LoggingResource : public Resource
{
public:
    using Resource::Load;
    using Resource::Resource;
    ~LoggingResource() override { theLog->push_back("delete " + std::string(GetName().GetView())); }

    Result Load(const ResourceDatabase*, char* path) const override
    {
        theLog->push_back(std::string("load ") + path);
        return IsDefinition() ? OtherEntry : nextResult;
    }
    Result LoadTxt(const ResourceDatabase*, char* path) const override
    {
        theLog->push_back(std::string("text ") + path);
        return nextResult;
    }
    void Unload() const override { theLog->push_back("unload " + std::string(GetName().GetView())); }

    static int nextResult;

private:
    bool IsDefinition() const { return GetName().GetView().find(".sound") != std::string_view::npos; }
};

int LoggingResource::nextResult = 0;

class LoggingType : public ResourceTypeBase
{
public:
    explicit LoggingType(const char* name)
        : ResourceTypeBase(name, UId(), UId())
    {
    }
    ~LoggingType() override { theLog->push_back("delete type " + std::string(GetName().GetView())); }

    Resource* Create(const PString& name, const ResourceDatabase* database) const override
    {
        theLog->push_back(std::string(GetName().GetView()) + " makes " + name.GetText());
        return new LoggingResource(name, database);
    }
    int GetSize() const override { return sizeof(LoggingResource); }
};

class Resources : public testing::Test
{
protected:
    Resources()
    {
        theLog = &log;
        LoggingResource::nextResult = 0;
        for (const char* name : {"txt", "sound", "sound.txt", "wav"}) {
            new LoggingType(name);
        }
        for (const char* name :
            {"first/shot.wav", "first/both.wav", "first/horn.sound", "first/bell.sound.txt",
                "first/readme.txt", "first/strange.ogg", "second/both.wav", "second/sub/Deep.WAV"}) {
            folder.Write(name, "data");
        }
        database = std::make_unique<ResourceDatabase>();
        EXPECT_TRUE(database->AddFolder("first", folder.Path("first").c_str()));
        EXPECT_TRUE(database->AddFolder("second", folder.Path("second").c_str()));
    }

    ~Resources() override
    {
        database.reset();
        PluginRegistry::Get().ReleaseAll();
        EXPECT_EQ(Alloc::LiveBlocks(), blocksBefore);
    }

    /// What the action makes the resources write down.
    template<class Action>
    Log LogOf(Action action)
    {
        log.clear();
        action();
        return log;
    }

    const Resource* Find(const char* name) { return database->Lookup(name, 2); }

    // Makes the store of strings, which lives as long as the process.
    const OS os;
    const std::size_t blocksBefore = Alloc::LiveBlocks();
    Log log;
    TempFolder folder;
    std::unique_ptr<ResourceDatabase> database;
};

TEST_F(Resources, AreCreatedByTheTypeWithTheLongestMatchingExtension)
{
    const struct
    {
        const char* name;
        const char* owner;
        Log made;
        Log loaded;
    } rows[] = {
        {"both.wav", "first", {"wav makes both.wav"}, {"load both.wav"}},
        {"sub/Deep.WAV", "second", {"wav makes sub/Deep.WAV"}, {"load sub/Deep.WAV"}},
        {"horn.sound", "first", {"sound makes horn.sound"}, {"load horn.sound", "text horn.sound"}},
        {"bell.sound.txt", "first", {"sound.txt makes bell.sound.txt"}, {"text bell.sound.txt"}},
        {"readme.txt", "first", {"txt makes readme.txt"}, {"text readme.txt"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Resource* resource = nullptr;
        EXPECT_EQ(LogOf([&] { resource = Find(row.name); }), row.made);
        ASSERT_NE(resource, nullptr);
        EXPECT_TRUE(resource->GetOwnerName() == PString(row.owner));
        EXPECT_EQ(LogOf([&] { EXPECT_TRUE(resource->Lock(database.get()).IsOk()); }), row.loaded);
        resource->Unlock();
        EXPECT_TRUE(resource->ReleaseReference());
    }
    for (const char* name :
        {"strange.ogg", "missing.wav", "sub", "../first/shot.wav", "wav", "shotwav", ""}) {
        EXPECT_EQ(Find(name), nullptr) << name;
    }
}

TEST_F(Resources, AreSharedByNameAndRetriedAfterAFailedLoad)
{
    const Resource* const resource = Find("shot.wav");
    EXPECT_EQ(Find("shot.wav"), resource);
    LoggingResource::nextResult = 17;
    EXPECT_EQ(resource->Lock(database.get()).GetCode(), 17);
    EXPECT_FALSE(resource->IsLoaded());
    LoggingResource::nextResult = 0;
    EXPECT_EQ(LogOf([&] {
        EXPECT_TRUE(resource->Lock(database.get()).IsOk());
        EXPECT_TRUE(resource->Lock(database.get()).IsOk());
    }),
        Log{"load shot.wav"});
    EXPECT_EQ(resource->GetLockCount(), 2);
    for (int unlock = 0; unlock < 3; ++unlock) {
        resource->Unlock();
    }
    EXPECT_EQ(resource->GetLockCount(), 0);
    EXPECT_FALSE(resource->ReleaseReference());
    EXPECT_TRUE(resource->ReleaseReference());
}

TEST_F(Resources, AreReloadedWhenTheirFileChangesAndKeptWhileItIsMissing)
{
    const Resource* const idle = Find("shot.wav");
    const Resource* const locked = Find("horn.sound");
    const Resource* const orphan = Find("both.wav");
    for (const Resource* resource : {idle, locked, orphan}) {
        ASSERT_TRUE(resource->Lock(database.get()).IsOk());
    }
    idle->Unlock();
    orphan->Unlock();
    folder.Write("first/shot.wav", "a longer wave");
    folder.Write("first/horn.sound", "*A *B *C");
    std::filesystem::remove(folder.Path("first/both.wav"));
    EXPECT_EQ(LogOf([&] { database->ReloadChanged(); }), Log{"unload shot.wav"});
    EXPECT_EQ(idle->GetReferenceCount(), 1);
    EXPECT_EQ(LogOf([&] {
        idle->Lock(database.get());
        orphan->Lock(database.get());
        // Others who lock the old content meanwhile share it.
        locked->Lock(database.get());
        locked->Unlock();
    }),
        Log{"load shot.wav"});
    EXPECT_EQ(LogOf([&] { locked->Unlock(); }), Log{"unload horn.sound"});
    EXPECT_EQ(LogOf([&] { locked->Lock(database.get()); }), (Log{"load horn.sound", "text horn.sound"}));
    EXPECT_EQ(LogOf([&] { database->ReloadChanged(); }), Log());
    for (const Resource* resource : {idle, locked, orphan}) {
        resource->Unlock();
        resource->ReleaseReference();
    }
}

// A type is deleted with the last of its resources.
TEST_F(Resources, AreDroppedWhenUnusedAndOutliveTheirDatabaseWhileReferenced)
{
    const Resource* const held = Find("shot.wav");
    Find("both.wav")->ReleaseReference();
    database->DropUnused();
    EXPECT_EQ(database->GetCount(), 2U);
    Find("both.wav")->ReleaseReference();
    EXPECT_EQ(LogOf([&] { database->DropUnused(); }), Log());
    EXPECT_EQ(LogOf([&] { database->DropUnused(); }), Log{"delete both.wav"});
    EXPECT_EQ(database->GetCount(), 1U);
    held->Lock(database.get());
    EXPECT_EQ(LogOf([&] { PluginRegistry::Get().ReleaseAll(); }),
        (Log{"delete type txt", "delete type sound", "delete type sound.txt"}));
    EXPECT_EQ(Find("both.wav"), nullptr);
    EXPECT_EQ(LogOf([&] { database.reset(); }), Log());
    held->Unlock();
    EXPECT_EQ(LogOf([&] { held->ReleaseReference(); }),
        (Log{"unload shot.wav", "delete shot.wav", "delete type wav"}));
}

/// Records its notifications, and responds to a load if requested.
class LoggingObserver : public ResourceObserver
{
public:
    explicit LoggingObserver(const char* newName)
        : name(newName)
    {
    }

    void OnResourceLoaded(const Resource&) const override
    {
        theLog->push_back(name + " loaded");
        if (answer) {
            answer();
        }
    }
    void OnResourceUnloaded(const Resource&) const override { theLog->push_back(name + " unloaded"); }

    std::function<void()> answer;

private:
    std::string name;
};

TEST_F(Resources, NotifyObserversThatMayComeAndGo)
{
    LoggingObserver first("first");
    LoggingObserver second("second");
    LoggingObserver third("third");
    const Resource* const resource = Find("shot.wav");
    for (const LoggingObserver* observer : {&first, &second, &third}) {
        resource->AddObserver(observer);
    }
    first.answer = [&] {
        resource->RemoveObserver(&first);
        resource->RemoveObserver(&second);
        resource->AddObserver(&second);
    };
    EXPECT_EQ(LogOf([&] { resource->Lock(database.get()); }),
        (Log{"load shot.wav", "first loaded", "third loaded"}));
    resource->Unlock();
    folder.Write("first/shot.wav", "a longer wave");
    EXPECT_EQ(LogOf([&] { database->ReloadChanged(); }),
        (Log{"third unloaded", "second unloaded", "unload shot.wav"}));
    resource->RemoveObserver(&second);
    resource->RemoveObserver(&third);
    resource->ReleaseReference();
}

TEST_F(Resources, WithoutADatabaseTryBothEntryPoints)
{
    const LoggingResource sound("horn.sound", nullptr);
    EXPECT_EQ(
        LogOf([&] { EXPECT_TRUE(sound.Lock(nullptr).IsOk()); }), (Log{"load horn.sound", "text horn.sound"}));
    EXPECT_TRUE(sound.GetOwnerName().IsEmpty());
    const LoggingResource placed("horn.sound", database.get());
    EXPECT_TRUE(placed.GetOwnerName() == PString("first"));
}

} // namespace
} // namespace Quon
