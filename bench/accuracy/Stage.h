#pragma once

#include "harmonet/definitions/SndFXList.h"
#include "harmonet/engine/OS.h"
#include "harmonet/files/SndFileWav.h"
#include "harmonet/output/SndChannel.h"
#include "harmonet/output/SndDriver.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Accuracy
{

/// What was rendered, from -1 to 1.
struct Heard
{
    int rateHz = 0;
    std::vector<double> left;
    std::vector<double> right;
};

/// Mono sound from -1 to 1, by sample frame.
using Formula = std::function<double(int)>;

/// The OpenAL driver rendering into a file, without the rest of the library, so that every figure is the
/// driver's. Throws std::runtime_error when it does not open.
class Stage
{
public:
    using Options = std::vector<std::pair<const char*, const char*>>;

    explicit Stage(int outputHz, const Options& options = {});
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;
    ~Stage();

    /// A sound that lives as long as the stage, stored with 16 bits.
    Quon::SndFile& Make(int rateHz, int sampleFrames, const Formula& formula);
    /// A channel that is ready to play.
    Quon::SndChannel& Create(Quon::SndFile& file, unsigned int flags = 0, const Quon::SndFXList& fx = {});
    Quon::SndDriver& GetDriver() { return *driver; }

    /// One full update, and what is done in it.
    void Step(unsigned long ms, const std::function<void()>& inside = nullptr);
    /// Steps of 50 ms.
    void Run(double seconds);

    Heard Read() const;

private:
    const int rate;
    std::filesystem::path path;
    Quon::OS os;
    std::vector<std::vector<std::int16_t>> pcm;
    std::vector<std::unique_ptr<Quon::SndFileWav>> files;
    std::unique_ptr<Quon::SndDriver> driver;
};

} // namespace Accuracy
