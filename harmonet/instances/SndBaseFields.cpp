// The fields of a sound that are stored in its row, or whose changes the kernel tracks.

#include "harmonet/definitions/DefinitionState.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/instances/SndBaseRow.h"
#include "harmonet/kernel/SndKernel.h"

namespace Quon
{

void SndBase::SetFadeIn(int ms)
{
    SetExtra(&Extras::fadeDuration, ms);
    AddFlags(FlagFadeIn);
}

void SndBase::SetFileName(const PString& name)
{
    if (theKernel) {
        theKernel->GiveUpName(*this);
    }
    fileName = name;
    if (theKernel) {
        theKernel->UseName(*this);
    }
}

void SndBase::SetSubstName(const PString& name)
{
    if (theKernel) {
        theKernel->GiveUpName(*this);
    }
    substName = name;
    if (theKernel) {
        theKernel->UseName(*this);
    }
}

SndFile* SndBase::GetSndFile() const
{
    CatchUpFile();
    return sndFile;
}

void SndBase::SetSndFile(SndFile* file)
{
    CatchUpFile();
    TakeFile(file);
}

void SndBase::TakeFile(SndFile* file)
{
    sndFile = file;
    if (const float factor = GetExtras().frequencyFactor; file && factor != 1.0F) {
        SetNewFrequency(ScaleFrequency(file->GetSampleFrequency(), factor));
    }
    Row().SetMark(RowCounted | RowRewound, false);
    if (theKernel) {
        theKernel->NoteLength(*this);
    }
}

void SndBase::SetSoundLength(unsigned long ms)
{
    soundLength = static_cast<std::uint32_t>(ms);
    if (theKernel) {
        theKernel->NoteLength(*this);
    }
}

void SndBase::SetStateTime(unsigned long ms)
{
    Row().StateTimeMs() = static_cast<std::uint32_t>(ms);
}

unsigned long SndBase::GetStateTime() const
{
    return Row().StateTimeMs();
}

void SndBase::SetPriority(int newPriority)
{
    if (theKernel) {
        theKernel->ForgetOrder(Row());
    }
    Row().Priority() = newPriority;
}

int SndBase::GetPriority() const
{
    return Row().Priority();
}

void SndBase::SetMultiplier(float factor)
{
    if (theKernel) {
        theKernel->ForgetOrder(Row());
    }
    Row().Multiplier() = factor;
}

float SndBase::GetMultiplier() const
{
    return Row().Multiplier();
}

void SndBase::CalcDistSqr(const Vector3&) {}

void SndBase::UpdatePitch(SndChannel&, bool) {}

float SndBase::GetDistSqr() const
{
    return Row().DistSqr();
}

void SndBase::SetDelay(int ms)
{
    SetExtra(&Extras::delay, ms);
    Row().SetMark(RowDelayed, ms > 0);
}

void SndBase::SetNewFrequency(unsigned long hz)
{
    SetExtra(&Extras::newFrequency, static_cast<std::uint32_t>(hz));
    SetExtra(&Extras::frequencyFactor, 1.0F);
    if (Row().HasMark(RowCounted)) {
        NoteRate();
    }
}

SoundReason SndBase::GetReason() const
{
    return Row().Reason();
}

unsigned long SndBase::GetReasonAge() const
{
    return theKernel ? theKernel->GetClockMs() - reasonSince : 0;
}

} // namespace Quon
