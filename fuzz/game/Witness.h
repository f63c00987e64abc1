#pragma once

#include "fuzz/game/Game.h"
#include "harmonet/engine/Alloc.h"

namespace Quon
{

/// Reports every notification to the game, which may run operations in response and may destroy this object
/// in the call.
class Witness final : public SoundObserver, public Allocated
{
public:
    explicit Witness(Game& newGame)
        : game(newGame)
    {
    }

    void OnShutDown() override { game.Notify(Game::Note::ShutDown, 0, PString(), 0); }
    void OnSoundBegin(int soundID, const PString& fileName) override
    {
        game.Notify(Game::Note::Begin, soundID, fileName, 0);
    }
    void OnSoundAbort(int soundID, const PString& fileName, int remaining) override
    {
        game.Notify(Game::Note::Abort, soundID, fileName, remaining);
    }
    void OnSoundEnd(int soundID, const PString& fileName) override
    {
        game.Notify(Game::Note::End, soundID, fileName, 0);
    }
    void OnBufferFree(int soundID, void* buffer) override;

private:
    Game& game;
};

} // namespace Quon
