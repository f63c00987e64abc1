#pragma once

#include "harmonet/kernel/SoundTrace.h"
#include "tools/trace/Wording.h"

#include <iosfwd>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace Trace
{

/// Records the sounds and writes a self-contained page: a row for each sound, coloured by its state, the
/// channels in use, and a map of the listener and the sounds. Memory use grows with time, so it is meant for
/// minutes rather than hours.
class Timeline final : public Quon::SoundTrace
{
public:
    void OnStart(const Quon::SoundState& state) override;
    void OnChange(const Quon::SoundState& state) override;
    void OnEnd(const Quon::SoundState& state) override;
    void OnNotice(Quon::SoundNotice notice, int soundID, const Quon::PString& fileName) override;
    void OnUpdate(const Quon::UpdateRecord& record) override;

    /// Writes the page of everything recorded so far. The caller checks the stream for errors.
    void WritePage(std::ostream& out);

private:
    struct Row
    {
        int id;
        std::string name;
        const char* kind;
        int priority;
        std::int64_t startMs;
        std::int64_t endMs; ///< Negative while the sound exists.
        std::string outcome;
        std::vector<std::int64_t> states; ///< Pairs of a time and an index into `looks`.
        std::vector<double> places; ///< Triples of a time, x and z.
    };
    struct Look
    {
        std::string name;
        std::string words;
    };

    void AddState(Row& row, const Quon::SoundState& state);
    static void AddPlace(std::vector<double>& places, std::int64_t atMs, const Quon::Vector3& place);

    Clock clock;
    std::vector<Row> rows; ///< In the order in which the sounds started.
    std::unordered_map<int, std::size_t> rowOf; ///< By the id of the existing sounds.
    std::vector<Look> looks;
    std::map<std::string, std::int64_t> lookOf; ///< By words.
    std::vector<double> updates; ///< Time, heard, virtual, waiting, microseconds.
    std::vector<double> listener; ///< Like Row::places.
    int maxAudible = 0;
    std::vector<Quon::SoundState> snapshot;
};

} // namespace Trace
