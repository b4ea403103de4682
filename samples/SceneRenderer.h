// The passes of a frame, from the empty render targets to the copy in the window.
#pragma once

#include "Gl.h"
#include "Meshes.h"
#include "RenderTargets.h"
#include "TextureUnits.h"

namespace sample {

class SceneRenderer {
public:
    /** @param base size of all render targets @param work rounds of extra work per pixel of the post pass, which meets each pixel once @param units outlives this */
    SceneRenderer(Size base, int work, TextureUnits& units);

    void beginFrame(int frame);
    void drawOpaque();  // land, pillars, hero, sky: into colour, normal and depth
    void grabColour();  // colour so far, copied by a blit
    void drawWater();   // looks through the copy
    void drawOutline(); // the hero's outline, by stencil
    void drawPost();    // light and air, from colour, normal, depth and outline
    void copyToWindow(Size window);
    void bindPicture() const; // the finished picture without the interface, for reading

    /** Fills what is still at the far plane of the scene with a full-screen program of the scene. */
    void drawBackdrop(const Program& program);

private:
    void bindTarget(GLuint framebuffer);
    void useSceneProgram(const Program& program);
    void drawFullScreen();

    const Size mBase;
    const int mWork;
    TextureUnits& mUnits;
    const RenderTargets mTargets;
    const GLuint mNoise;
    const Program mLandProgram;
    const Program mObjectProgram;
    const Program mSkyProgram;
    const Program mWaterProgram;
    const Program mOutlineProgram;
    const Program mPostProgram;
    const Program mCopyProgram;
    const Mesh mTerrain;
    const Mesh mSphere;
    const Mesh mPillar;
    GLuint mNoVertices = 0; // full-screen passes make theirs from the vertex's number
    Camera mCamera;
    float mTime = 0; // seconds, at 60 frames a second
};

} // namespace sample
