// PUBG draws its scene into a texture whose label is always the same, copies it to the window and draws the interface
// over it, with blending of its own. How a frame goes over to the interface depends on the device and on what is aimed
// at: some discard depth and stencil of the window, some draw the scene with several samples, some show a cross-hair.
#include "Games.h"

#include <EGL/egl.h>
#include <GLES2/gl2ext.h>

#include <iterator>

namespace sample {

namespace {

constexpr char kSceneColour[] = "SceneColorMobile";

class Pubg : public Game {
public:
    explicit Pubg(const Options& options)
        : Game(options, std::make_unique<TextureUnits>()),
          mCrossHair(makeTexture("T_CrossHairNormal", GL_RGBA8, {64, 64}, 1, GL_LINEAR)),
          mLoadingAtlas(makeTexture("LoadingUI_Atlas", GL_RGBA8, {64, 64}, 1, GL_LINEAR)) {
        mScene.renewColour(kSceneColour, /*multisampled=*/false);
        if (hasExtension("GL_EXT_discard_framebuffer")) {
            mDiscard = reinterpret_cast<PFNGLDISCARDFRAMEBUFFEREXTPROC>(eglGetProcAddress("glDiscardFramebufferEXT"));
        }
    }

protected:
    void beginEvent(const std::string& event) override {
        if (event == "resolve") {
            mScene.renewColour(kSceneColour, /*multisampled=*/true);
        }
    }

    void drawInterface(int frame) override {
        if (event() == "loading") {
            mUnits->bind(UNIT_NOISE, mLoadingAtlas);
        }
        glDisable(GL_DEPTH_TEST);
        glEnable(GL_BLEND);
        glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
        if (event() == "discard" && mDiscard) {
            constexpr GLenum kAttachments[] = {GL_DEPTH_EXT, GL_STENCIL_EXT};
            mDiscard(GL_FRAMEBUFFER, static_cast<GLsizei>(std::size(kAttachments)), kAttachments);
        } else if (event() == "crosshair") {
            mUnits->bind(UNIT_NOISE, mCrossHair);
            drawOverlays({24});
        }
        Game::drawInterface(frame);
    }

    bool drawEvent(const std::string& event) override {
        return event == "discard" || event == "resolve" || event == "crosshair" || event == "loading";
    }

private:
    const GLuint mCrossHair;
    const GLuint mLoadingAtlas;
    PFNGLDISCARDFRAMEBUFFEREXTPROC mDiscard = nullptr;
};

} // namespace

std::unique_ptr<Game> makePubg(const Options& options) { return std::make_unique<Pubg>(options); }

} // namespace sample
