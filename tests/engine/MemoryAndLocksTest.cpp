#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/Exception.h"
#include "harmonet/engine/SyncObject.h"
#include "harmonet/engine/UId.h"
#include "tests/support/OtherThread.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>

namespace Quon
{
namespace
{

struct Counted : Allocated
{
    virtual ~Counted() = default;
};

struct Derived : Counted
{
    char more[1000] = {};
};

TEST(Alloc, CountsLiveBlocksAndRefusesFourGibibytes)
{
    const std::size_t before = Alloc::LiveBlocks();
    {
        const std::unique_ptr<Counted> object = std::make_unique<Derived>();
        const std::unique_ptr<Counted[]> array(new Counted[3]);
        EngineVector<std::uint32_t> vector(10);
        EXPECT_EQ(Alloc::LiveBlocks(), before + 3);
        EXPECT_THROW(vector.reserve(std::size_t{1} << 30), std::bad_alloc);
        EXPECT_THROW(Counted::operator new (std::size_t{1} << 32), std::bad_alloc);
    }
    EXPECT_EQ(Alloc::LiveBlocks(), before);
}

/// One of each kind.
class Locks : public testing::Test
{
protected:
    CriticalSection section{nullptr};
    Mutex mutex{false, nullptr};
    SyncObject* const all[2] = {&section, &mutex};
};

TEST_F(Locks, AreRecursive)
{
    for (SyncObject* const lock : all) {
        ASSERT_TRUE(lock->Lock(-1));
        {
            const SyncLock nested(*lock);
            ASSERT_TRUE(lock->Lock(0));
            lock->Unlock();
            EXPECT_FALSE(IsFreeForAnotherThread(*lock));
        }
        EXPECT_FALSE(IsFreeForAnotherThread(*lock));
        lock->Unlock();
        EXPECT_TRUE(IsFreeForAnotherThread(*lock));
    }
    Mutex held(true, "a mutex can begin in the hands of its maker");
    EXPECT_FALSE(IsFreeForAnotherThread(held));
    held.Unlock();
    EXPECT_TRUE(IsFreeForAnotherThread(held));
}

TEST(ExceptionHandler, ReturnsTheResultAndCatchesEveryException)
{
    const auto twice = [](void* argument) { return 2 * *static_cast<int*>(argument); };
    int number = 21;
    EXPECT_EQ(ExceptionHandler::Main(twice, &number), 42);

    testing::internal::CaptureStderr();
    const auto failing = [](void*) -> int { throw FileEx("place.cpp", 12, "it broke"); };
    EXPECT_EQ(ExceptionHandler::Main(failing, nullptr), +ExceptionHandler::failed);
    EXPECT_EQ(ExceptionHandler::Main([](void*) -> int { throw 5; }, nullptr), +ExceptionHandler::failed);
    const std::string message = testing::internal::GetCapturedStderr();
    EXPECT_NE(message.find("it broke (place.cpp:12)"), std::string::npos) << message;
}

TEST(UId, ReadsItsTextFormAndNothingElse)
{
    const UId id("6B7E2191-3F4C-41A7-8C2D-5E19A07C33D1");
    const std::array<std::uint8_t, 16> bytes = {
        0x6B, 0x7E, 0x21, 0x91, 0x3F, 0x4C, 0x41, 0xA7, 0x8C, 0x2D, 0x5E, 0x19, 0xA0, 0x7C, 0x33, 0xD1};
    EXPECT_EQ(id.GetBytes(), bytes);
    EXPECT_EQ(id, UId("6b7e2191-3f4c-41a7-8c2d-5e19a07c33d1"));
    for (const char* text : {"", "6B7E2191-3F4C-41A7-8C2D-5E19A07C33D",
             "6B7E2191-3F4C-41A7-8C2D-5E19A07C33D1 ", "6B7E2191-3F4C-41A7-8C2D-5E19A07C33G1",
             "6B7E219103F4C-41A7-8C2D-5E19A07C33D1", "-B7E2191-3F4C-41A7-8C2D-5E19A07C33D1"}) {
        EXPECT_TRUE(UId(text).IsZero()) << text;
    }
    EXPECT_TRUE(UId(nullptr).IsZero());
}

} // namespace
} // namespace Quon
