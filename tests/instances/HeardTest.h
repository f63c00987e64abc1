#pragma once

#include "harmonet/instances/Microphone.h"
#include "harmonet/instances/Music.h"
#include "harmonet/instances/Sound.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/support/HostTest.h"

namespace Quon
{

/// A host whose sounds are rendered into a file, to be measured there.
class HeardTest : public HostTest
{
protected:
    /// What a game has of the system. The microphone is active.
    struct Scene
    {
        Scene() { microphone.Activate(); }

        Microphone microphone;
        Sound group;
        Music music;
    };

    /// What is heard while `play` takes a new scene through its steps.
    template<class Play>
    Rendering Render(Play play)
    {
        const std::string path = (GetTestFolder() / "heard.wav").string();
        SetOption("Sound", "HarmonetOpenAL");
        SetOption("OpenALRender", path.c_str());
        EXPECT_TRUE(Start());
        {
            Scene scene;
            play(scene);
        }
        system.Done();
        return ReadRendering(path);
    }
};

} // namespace Quon
