#pragma once

#include "harmonet/definitions/SndFXList.h"

namespace Quon::Testing
{

/// A list that its owner frees, as a sound does.
class OwnedList
{
public:
    OwnedList() = default;
    OwnedList(const OwnedList&) = delete;
    OwnedList& operator=(const OwnedList&) = delete;
    ~OwnedList() { list.Clear(); }

    template<class Record>
    OwnedList& Add(SndFX effect, const Record& record)
    {
        const bool hasQuality = effect == SndFXEnvReverb;
        list.AddFX(effect, &record, sizeof record + (hasQuality ? sizeof(std::int32_t) : 0), 2);
        return *this;
    }

    const SndFXList& Get() const { return list; }

private:
    SndFXList list;
};

} // namespace Quon::Testing
