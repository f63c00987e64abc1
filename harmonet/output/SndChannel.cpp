#include "harmonet/output/SndChannel.h"

namespace Quon
{

namespace
{
constexpr int noTimeout = -1;
}

SndChannel::SndChannel()
    : chanLock(nullptr)
{
}

SndChannel::~SndChannel() = default;

void SndChannel::SetSndFile(SndFile* file)
{
    Lock();
    sndFile = file;
    Unlock();
}

void SndChannel::Lock()
{
    chanLock.Lock(noTimeout);
}

void SndChannel::Unlock()
{
    chanLock.Unlock();
}

void SndChannel::SetStartTime(std::int64_t, std::int64_t) {}

void SndChannel::SkipFade(int) {}

void SndChannel::SetLowPass(float) {}

void SndChannel::SetPitch(float) {}

} // namespace Quon
