#include "harmonet/instances/Snd2D.h"
#include "harmonet/instances/SndBaseRow.h"
#include "harmonet/kernel/SndList.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <list>
#include <memory>
#include <random>
#include <vector>

namespace Quon
{

namespace
{

/// A sound that gives access to its row.
class ListedSound : public Snd2D
{
public:
    std::uint32_t GetRowNumber()
    {
        std::uint32_t number = 0;
        while (SoundRows::At(number) != Row()) {
            ++number;
        }
        return number;
    }
    SoundRow GetRow() { return Row(); }
};

} // namespace

// After any insertions, removals and changes of importance, the list equals one made by sorted insertion.
TEST(SndList, MatchesSortedInsertion)
{
    std::mt19937 random(1);
    std::vector<std::unique_ptr<ListedSound>> sounds(100);
    std::ranges::generate(sounds, [] { return std::make_unique<ListedSound>(); });
    SndList list;
    std::list<const SndBase*> plain;
    for (int step = 0; step < 20000; ++step) {
        ListedSound& sound = *sounds[random() % sounds.size()];
        const bool isListed = sound.GetRow().List() != ListID::None;
        if (isListed && random() % 4 == 0) {
            // Some change their importance, after which the list is only as good as the last comparison.
            list.ForgetOrder();
            sound.SetPriority(static_cast<int>(random() % 8));
        }
        else if (isListed) {
            list.Remove(sound.GetRow());
            plain.remove(&sound);
        }
        else {
            sound.SetPriority(static_cast<int>(random() % 8));
            list.InsertSorted(sound.GetRowNumber(), ListID::Waiting);
            plain.insert(
                std::ranges::find_if(plain, [&](const SndBase* other) { return !(*other < sound); }), &sound);
        }
        if (step % 500 == 0) {
            while (!list.IsEmpty()) {
                list.Remove(list.Compact().front().GetRow());
            }
            plain.clear();
        }
        if (random() % 8 != 0) {
            continue;
        }
        std::vector<const SndBase*> listed;
        list.ForEach([&](const SndBase& entry) { listed.push_back(&entry); });
        ASSERT_EQ(listed, std::vector<const SndBase*>(plain.begin(), plain.end())) << "step " << step;
        ASSERT_EQ(static_cast<std::size_t>(list.GetCount()), plain.size());
    }
}

} // namespace Quon
