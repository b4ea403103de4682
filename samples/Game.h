// What all games do; a game's file adds its own habits.
#pragma once

#include "Options.h"
#include "SceneRenderer.h"
#include "TextureUnits.h"
#include "Ui.h"

#include <memory>
#include <string>

namespace sample {

class Game {
public:
    /** @param units how this game binds textures */
    Game(const Options& options, std::unique_ptr<TextureUnits> units);
    virtual ~Game() = default;

    /** Draws everything of that frame, counted from 1, up to the swap. */
    void drawFrame(int frame);

protected:
    /** The game's own part of the scene, behind what is opaque: the scene's framebuffer is bound, depth is tested. */
    virtual void drawOwnScenery(int /*frame*/) {}

    std::unique_ptr<TextureUnits> mUnits;
    SceneRenderer mScene;
    Ui mUi;

private:
    const int mRestoreAt;
    const GLuint mCameraDesc; // bound while the player takes a photograph, which wants full resolution
};

bool isGame(const std::string& name);

/** Needs a current context. @param options whose game is one that isGame() knows */
std::unique_ptr<Game> makeGame(const Options& options);

} // namespace sample
