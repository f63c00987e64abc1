#include "harmonet/kernel/SndKernel.h"

#include "harmonet/engine/DynamicLibrary.h"
#include "harmonet/engine/Messages.h"
#include "harmonet/engine/OS.h"
#include "harmonet/engine/Options.h"
#include "harmonet/engine/String.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/files/SndFileCache.h"
#include "harmonet/files/SndNodeCache.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/kernel/HarmonetStrings.h"
#include "harmonet/output/SndDriver.h"

#include <algorithm>
#include <limits>

namespace Quon
{

namespace
{

constexpr const char* driverOption = "Sound";
constexpr const char* driverSymbol = "CreateSoundDriver";

constexpr int defaultBytesPerSample = 2;
constexpr int defaultSampleFrequency = 22050;
constexpr int defaultChannels = 2;

// Music and sounds that fade out may exceed the limit of audible sounds.
constexpr int spareChannels = 4;

enum StartCode
{
    StartRunning = 0,
    StartNoDriver = 1,
    StartNotLoaded = 2,
    StartNotOpened = 3
};

// Returns the option, or the default if it is not set, not a number or below the minimum.
int ReadOption(const Options& hostOptions, const PString& key, int minimum, int defaultValue)
{
    int value = defaultValue;
    hostOptions.Get(key.GetText(), value, defaultValue);
    if (value >= minimum) {
        return value;
    }
    Report(MessageLevel::Warning, "option ", key, "=", value, ": the minimum is ", minimum,
        "; using the default ", defaultValue);
    return defaultValue;
}

void ReportDriver(const char* name, const char* reason)
{
    Report(MessageLevel::Warning, "sound driver '", name, "' ", reason);
}

int HandleDriverEvent(int event, void* data, void* user)
{
    return static_cast<SndKernel*>(user)->OnDriverEvent(event, data);
}

} // namespace

SndKernel* theKernel = nullptr;

SndKernel* GetRunningKernel()
{
    return theKernel;
}

SoundOptions::SoundOptions()
{
    format.SetFormat(defaultBytesPerSample, defaultSampleFrequency, 0, defaultChannels);
}

SndKernel::SndKernel() = default;

SndKernel::~SndKernel()
{
    Done();
    for (SndList& list : lists) {
        while (!list.IsEmpty()) {
            const SoundRow row = list.Compact().front().GetRow();
            list.Remove(row);
            delete row.GetSound();
        }
    }
    SoundRows::Trim();
}

int SndKernel::Init(OS* os, bool driverFlag)
{
    Done();
    refusesSounds = false;
    elapsed = 0;
    ReadOptions(*os->GetOptions());
    const int code = OpenDriver(os, driverFlag);
    if (code != StartRunning) {
        return code;
    }
    maxAudible = options.maxSounds;
    driver->SetCallback(HandleDriverEvent, this);
    constexpr int audibleLimit = std::numeric_limits<int>::max() - spareChannels;
    driver->SetMaxChannels(std::min(maxAudible, audibleLimit) + spareChannels);
    theKernel = this;
    dataCache = std::make_unique<SndNodeCache>();
    dataCache->SetLimit(static_cast<unsigned long>(options.cacheSize));
    fileCache = std::make_unique<SndFileCache>();
    fileCache->ReadOptions(*os->GetOptions());
    SndFile::SetSndFileCache(fileCache.get());
    driver->GetCaps(caps);
    if (Messages::AreWanted()) {
        os->GetOptions()->ReportUnread();
    }
    return StartRunning;
}

void SndKernel::ReadOptions(const Options& hostOptions)
{
    options.cacheSize = ReadOption(hostOptions, HarmonetStrings::cacheSize, 0, options.cacheSize);
    const int sampleFrequency =
        ReadOption(hostOptions, HarmonetStrings::primaryFrequency, 1, defaultSampleFrequency);
    options.maxSounds = ReadOption(hostOptions, HarmonetStrings::maxSounds, 0, options.maxSounds);
    options.streamLength = ReadOption(hostOptions, HarmonetStrings::streamLength, 0, options.streamLength);
    options.format.SetFormat(defaultBytesPerSample, sampleFrequency, 0, defaultChannels);
    hostOptions.Get(HarmonetStrings::seed.GetText(), options.seed, 0);
    definitions.SetSeed(static_cast<std::uint32_t>(options.seed));
    constexpr float percent = 0.01F;
    doppler.SetFactor(percent * static_cast<float>(ReadOption(hostOptions, PString("SoundDoppler"), 0, 0)));
    doppler.SetSpeedOfSound(static_cast<float>(
        ReadOption(hostOptions, PString("SpeedOfSound"), 1, static_cast<int>(Doppler::defaultSpeed))));
}

int SndKernel::OpenDriver(OS* os, bool driverFlag)
{
    Options* hostOptions = os->GetOptions();
    hostOptions->SetSeperators(driverOption, ",");
    String name;
    if (!hostOptions->GetNext(driverOption, name)) {
        Report(MessageLevel::Error, "the sound system does not start: the option Sound names no driver");
        return StartNoDriver;
    }
    soundLibrary.reset(os->CreateDynamicLibrary());
    int code;
    do {
        name.Ins(dynamicLibrarySuffix, name.GetLength());
        code = TryDriver(os, name.GetText(), driverFlag);
    } while (code != StartRunning && hostOptions->GetNext(driverOption, name));
    if (code != StartRunning) {
        Report(MessageLevel::Error,
            "the sound system does not start: none of the drivers that the option Sound names can be used");
        CloseDriver();
    }
    return code;
}

int SndKernel::TryDriver(OS* os, const char* name, bool driverFlag)
{
    if (!soundLibrary->Open(name)) {
        ReportDriver(name, "cannot be loaded");
        return StartNotLoaded;
    }
    void* symbol = nullptr;
    if (!soundLibrary->GetSymbol(&symbol, driverSymbol)) {
        ReportDriver(name, "is not a driver: it does not export CreateSoundDriver");
        return StartNoDriver;
    }
    driver.reset(reinterpret_cast<CreateSoundDriverFunction>(symbol)());
    if (!driver) {
        ReportDriver(name, "cannot be created: its CreateSoundDriver returns null");
        return StartNotOpened;
    }
    if (driver->Open(os, &options.format, options.streamLength, driverFlag)) {
        Report(MessageLevel::Note, "sound driver '", name, "' is open");
        return StartRunning;
    }
    ReportDriver(name, "does not open its output");
    driver.reset();
    return StartNotOpened;
}

// The library is closed after the driver is deleted, since it holds the driver's code.
void SndKernel::CloseDriver()
{
    driver.reset();
    if (soundLibrary) {
        soundLibrary->Close();
    }
    soundLibrary.reset();
}

void SndKernel::Done()
{
    refusesSounds = true;
    StopAll();
    if (theKernel == this) {
        theKernel = nullptr;
    }
    if (fileCache) {
        SndFile::SetSndFileCache(nullptr);
    }
    fileCache.reset();
    dataCache.reset();
    CloseDriver();
    // A microphone can outlive the system and must not be taken for the listener of the next one.
    if (activeMicrophone) {
        ClearMicrophone(activeMicrophone);
    }
}

bool SndKernel::GetCaps(SoundCaps& driverCaps)
{
    return driver && driver->GetCaps(driverCaps);
}

void SndKernel::SetMicrophone(Microphone* microphone)
{
    if (activeMicrophone != microphone) {
        doppler.ForgetListener();
        if (activeMicrophone) {
            activeMicrophone->SetActive(false);
        }
    }
    activeMicrophone = microphone;
    microphone->SetActive(true);
    listenerChanged = true;
}

std::optional<Vector3> SndKernel::GetListenerPlace() const
{
    return activeMicrophone ? std::optional(activeMicrophone->GetGlobalPosition()) : std::nullopt;
}

void SndKernel::ClearMicrophone(Microphone* microphone)
{
    if (activeMicrophone != microphone) {
        return;
    }
    microphone->SetActive(false);
    activeMicrophone = nullptr;
}

void SndKernel::Set2DMainGain(float gain)
{
    mainGain2D = gain;
    RefreshGains(0);
}

void SndKernel::Set3DMainGain(float gain)
{
    mainGain3D = gain;
    RefreshGains(Flag3D);
}

void SndKernel::SetMusicMainGain(float gain)
{
    mainGainMusic = gain;
    RefreshGains(FlagMusic);
}

void SndKernel::SetDopplerFactor(float factor)
{
    doppler.SetFactor(factor);
    if (!doppler.IsOn()) {
        UpdatePitches();
    }
}

void SndKernel::SetLowPass(float gainHF)
{
    lowPass = gainHF;
    RefreshLowPass(nullptr);
}

void SndKernel::ForgetOrder()
{
    for (SndList& list : lists) {
        list.ForgetOrder();
    }
}

bool SndKernel::IsConsistent()
{
    for (const ListID id : regularLists) {
        int count = 0;
        bool isGood = true;
        GetList(id).ForEach([&](const SndBase& sound) {
            isGood = isGood && sound.Row().List() == id && soundTable.Find(sound.GetSoundID()) == &sound;
            ++count;
        });
        if (!isGood || count != GetList(id).GetCount()) {
            return false;
        }
    }
    return GetList(ListID::Chosen).IsEmpty();
}

} // namespace Quon
