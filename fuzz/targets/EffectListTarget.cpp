#include "fuzz/FuzzTarget.h"
#include "fuzz/game/Dice.h"
#include "harmonet/definitions/SndFXList.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace Quon
{

namespace
{

constexpr unsigned int numEffects = SndFXEnvReverbSource + 1;
constexpr std::size_t qualityBytes = sizeof(std::int32_t);

struct ModelEntry
{
    SndFX effect;
    std::vector<unsigned char> body; ///< The data after the header.
};

/// The real list and a model that follows its documentation.
class TwinList
{
public:
    TwinList() = default;
    TwinList(const TwinList&) = delete;
    TwinList& operator=(const TwinList&) = delete;
    ~TwinList() { list.Clear(); }

    void Add(Dice& dice)
    {
        const auto effect = static_cast<SndFX>(dice.Draw(numEffects));
        std::array<unsigned char, 256> record;
        record.fill(static_cast<unsigned char>(dice.Draw(256)));
        const long quality = dice.Draw(4);
        const std::size_t front = effect == SndFXEnvReverb ? qualityBytes : 0;
        const std::size_t size = front + static_cast<std::size_t>(dice.Draw(48)) * 4;
        list.AddFX(effect, record.data(), size, quality);

        std::vector<unsigned char> body(size);
        for (std::size_t i = 0; i < std::min(front, size); ++i) {
            body[i] = static_cast<unsigned char>(quality >> (8 * i));
        }
        std::copy_n(record.begin(), size - front, body.begin() + static_cast<std::ptrdiff_t>(front));
        Put(effect, body);
    }

    // An entry may be copied over another one of the same list.
    void AddOwnEntry(Dice& dice)
    {
        if (model.empty()) {
            return;
        }
        const ModelEntry from = model[static_cast<std::size_t>(dice.Draw(static_cast<int>(model.size())))];
        const auto effect = static_cast<SndFX>(1 + dice.Draw(numEffects - 1));
        if (from.effect == SndFXEnvReverb) {
            return;
        }
        const SndFXDesc* const entry = list.GetFXDesc(from.effect);
        list.AddFX(effect, entry->GetRecord(), entry->size, 0);
        Put(effect, from.body);
    }

    void Clear()
    {
        list.Clear();
        model.clear();
    }

    void CheckCopies(Dice& dice) const
    {
        SndFXList copy = list.Duplicate();
        CheckAgainst(copy, model);
        copy.Clear();
        const auto mask = static_cast<unsigned long>(dice.Draw(1 << numResourceFX));
        SndFXList some = list.DuplicateFiltered(mask);
        std::vector<ModelEntry> kept = model;
        std::erase_if(kept, [mask](const ModelEntry& entry) {
            return mask != (1 << numResourceFX) - 1 && !(mask >> entry.effect & 1);
        });
        CheckAgainst(some, kept);
        some.Clear();
    }

    void Check() const { CheckAgainst(list, model); }

private:
    void Put(SndFX effect, const std::vector<unsigned char>& body)
    {
        for (ModelEntry& entry : model) {
            if (entry.effect == effect) {
                std::copy_n(body.begin(), std::min(body.size(), entry.body.size()), entry.body.begin());
                return;
            }
        }
        model.push_back({effect, body});
    }

    static void CheckAgainst(const SndFXList& list, const std::vector<ModelEntry>& model)
    {
        Require(list.GetNumEffects() == model.size(), "the number of entries");
        Require((list.GetBlock() == nullptr) == model.empty(), "an empty list has no block");
        const unsigned char* place = list.GetEffectsArr();
        for (const ModelEntry& entry : model) {
            const auto* head = reinterpret_cast<const SndFXDesc*>(place);
            Require(head == list.GetFXDesc(entry.effect), "the search finds the entry at its place");
            Require(head->effect == entry.effect && head->size == entry.body.size(), "the head");
            Require(std::equal(entry.body.begin(), entry.body.end(), place + sizeof *head), "the record");
            place += sizeof(SndFXDesc) + head->size;
        }
    }

    SndFXList list;
    std::vector<ModelEntry> model;
};

} // namespace

void FuzzEffectList(FuzzBytes bytes)
{
    ByteDice dice(bytes);
    TwinList list;
    for (int steps = 0; steps < 200 && !dice.IsAtEnd(); ++steps) {
        switch (dice.Draw(8)) {
        case 0:
            list.Clear();
            break;
        case 1:
            list.CheckCopies(dice);
            break;
        case 2:
            list.AddOwnEntry(dice);
            break;
        default:
            list.Add(dice);
        }
        list.Check();
    }
}

} // namespace Quon
