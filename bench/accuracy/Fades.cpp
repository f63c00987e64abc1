#include "bench/accuracy/Rows.h"

#include <algorithm>

namespace Accuracy
{

namespace
{

// Of two equal sounds, one fades out while the other fades in, as pieces of music do.
void PrintCrossFade()
{
    Stage stage(44100);
    const auto make = [&]() -> Quon::SndChannel& {
        return stage.Create(stage.Make(44100, 44100 * 2, [](int) { return 0.4; }));
    };
    Quon::SndChannel& before = make();
    before.Play();
    stage.Run(0.5);
    before.FadeOut(400);
    Quon::SndChannel& after = make();
    after.FadeIn(400);
    after.Play();
    stage.Run(0.5);
    const Heard heard = stage.Read();
    const auto [least, most] = std::minmax_element(heard.left.begin() + 22050, heard.left.begin() + 39690);
    PrintRow("cross-fade of 400 ms between equal sounds of 0.4, minimum", 0.4, *least, "", 4);
    PrintRow("cross-fade of 400 ms between equal sounds of 0.4, maximum", 0.4, *most, "", 4);
}

} // namespace

void PrintFades()
{
    Stage stage(44100);
    Quon::SndChannel& channel = stage.Create(stage.Make(44100, 44100 * 2, [](int) { return 0.8; }));
    channel.FadeIn(200);
    channel.Play();
    stage.Run(0.5);
    channel.FadeOut(400);
    stage.Run(0.5);
    const Heard heard = stage.Read();
    const auto at = [&](int ms) { return heard.left[static_cast<std::size_t>(ms * 441 / 10)]; };
    PrintRow("fade-in of 200 ms of 0.8, after 50 ms", 0.2, at(50), "", 4);
    PrintRow("fade-out of 400 ms of 0.8, after 300 ms", 0.2, at(800), "", 4);
    PrintCrossFade();
}

} // namespace Accuracy
