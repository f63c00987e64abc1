#include "tests/support/HostTest.h"

#include "harmonet/engine/File.h"
#include "harmonet/engine/TaskList.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace Quon
{

namespace
{

constexpr const char* driverName = "HarmonetRecording";

Recording& LoadRecording()
{
    // Never deleted: what the driver has recorded is to outlive the drivers.
    static DynamicLibrary& library = *new DynamicLibrary({EngineString(HARMONET_TEST_DRIVER_FOLDER)});
    void* symbol = nullptr;
    if (!library.Open((std::string(driverName) + dynamicLibrarySuffix).c_str()) ||
        !library.GetSymbol(&symbol, "GetRecording")) {
        throw std::runtime_error("the recording driver cannot be loaded");
    }
    return *reinterpret_cast<GetRecordingFunction>(symbol)();
}

void NameDriver(OS& os)
{
    os.AddDriverFolder(HARMONET_TEST_DRIVER_FOLDER);
    os.GetOptions()->Set("Sound", driverName);
}

// What is made once and stays, the strings of the library above all.
bool WarmUp()
{
    OS os;
    NameDriver(os);
    SoundSystem system;
    return system.Init(&os, false);
}

float ToSeconds(int ms)
{
    float seconds = static_cast<float>(ms) / 1000.0F;
    while (static_cast<double>(seconds) * 1000.0 < ms) {
        seconds = std::nextafter(seconds, std::numeric_limits<float>::infinity());
    }
    return seconds;
}

} // namespace

Recording& GetRecording()
{
    static Recording& recording = LoadRecording();
    return recording;
}

LifeGuard::LifeGuard()
{
    GetRecording();
    static const bool isWarm = WarmUp();
    EXPECT_TRUE(isWarm);
    GetRecording().Reset();
    blocksBefore = Alloc::LiveBlocks();
}

LifeGuard::~LifeGuard()
{
    EXPECT_EQ(GetRecording().violations, Lines());
    GetRecording().Reset();
    EXPECT_EQ(Alloc::LiveBlocks(), blocksBefore);
}

HostTest::HostTest()
    : recording(GetRecording())
{
    EXPECT_TRUE(File::AddRoot(PString(), folder.GetPath().string().c_str()));
    NameDriver(os);
}

HostTest::~HostTest()
{
    File::RemoveRoot(PString());
}

void HostTest::Step(int ms)
{
    TaskList::Get().Update(ToSeconds(ms));
}

void HostTest::StepTimes(int times, int ms)
{
    for (int i = 0; i < times; ++i) {
        Step(ms);
    }
}

PString HostTest::WriteWave(const std::string& name, const PcmForm& form)
{
    folder.Write(name, BuildWave(form));
    return PString(name.c_str());
}

Lines HostTest::TakeLog()
{
    return std::exchange(recording.lines, {});
}

Lines HostTest::TakeLog(std::initializer_list<const char*> beginnings)
{
    Lines lines = TakeLog();
    std::erase_if(lines, [&](const std::string& line) {
        return std::none_of(beginnings.begin(), beginnings.end(),
            [&](const char* beginning) { return line.starts_with(beginning); });
    });
    return lines;
}

} // namespace Quon
