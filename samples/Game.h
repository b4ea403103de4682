// What all games do; a game's file adds its own habits.
#pragma once

#include "Options.h"
#include "Overlay.h"
#include "SceneRenderer.h"
#include "TextureUnits.h"
#include "Ui.h"

#include <initializer_list>
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
    /** From this frame on something else is going on: what the game loads for it. */
    virtual void beginEvent(const std::string& /*event*/) {}
    /** Everything up to the copy in the window, or what the game shows instead. */
    virtual void drawScene(int frame);
    /** The game's own part of the scene, behind what is opaque: the scene's framebuffer is bound, depth is tested. */
    virtual void drawOwnScenery(int /*frame*/) {}
    virtual void drawInterface(int frame) { mUi.draw(frame); }
    /** Over the finished window. @return false when the game knows no such event */
    virtual bool drawEvent(const std::string& /*event*/) { return false; }

    const std::string& event() const { return mEvent; }

    /** One draw over the finished window for each number of indices. */
    void drawOverlays(std::initializer_list<int> indices) const;

    std::unique_ptr<TextureUnits> mUnits;
    SceneRenderer mScene;
    Ui mUi;

private:
    void changeEvent(int frame);
    void fillWindow() const;
    void takeScreenshot(int frame) const;

    const Options mOptions;
    const Overlay mOverlay;
    std::string mEvent;       // what is going on, empty: nothing special
    const GLuint mCameraDesc; // bound while the player takes a photograph, which wants full resolution
};

bool isGame(const std::string& name);

/** Needs a current context. @param options whose game is one that isGame() knows */
std::unique_ptr<Game> makeGame(const Options& options);

} // namespace sample
