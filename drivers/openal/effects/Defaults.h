#pragma once

#include "harmonet/definitions/EffectKeywords.h"
#include "harmonet/definitions/SndFXList.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace Quon
{

/// The default parameters of `effect`; Record must be its record type.
template<class Record>
const Record& GetDefault(SndFX effect)
{
    return *static_cast<const Record*>(GetFXDefault(effect).record);
}

template<class Value>
Value LoadField(const void* record, std::size_t offset)
{
    Value value;
    std::memcpy(&value, static_cast<const unsigned char*>(record) + offset, sizeof value);
    return value;
}

template<class Value>
void StoreField(void* record, std::size_t offset, Value value)
{
    std::memcpy(static_cast<unsigned char*>(record) + offset, &value, sizeof value);
}

/// Clamps each field of the effect's record to the range that the library has for it; NaN becomes the field
/// of `fallback`.
template<class Record>
Record ClampToRanges(SndFX effect, Record record, const Record& fallback)
{
    for (const EffectField& field : GetEffectKeywords(effect).fields) {
        if (field.isInt) {
            StoreField(&record, field.offset,
                std::clamp(LoadField<std::int32_t>(&record, field.offset),
                    static_cast<std::int32_t>(field.minimum), static_cast<std::int32_t>(field.maximum)));
            continue;
        }
        const auto wanted = LoadField<float>(&record, field.offset);
        const float value = std::isnan(wanted) ? LoadField<float>(&fallback, field.offset) : wanted;
        StoreField(&record, field.offset,
            std::clamp(value, static_cast<float>(field.minimum), static_cast<float>(field.maximum)));
    }
    return record;
}

/// The same with the library's defaults.
template<class Record>
Record ClampToRanges(SndFX effect, const Record& record)
{
    return ClampToRanges(effect, record, GetDefault<Record>(effect));
}

} // namespace Quon
