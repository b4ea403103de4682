// The passes of a frame, from the empty render targets to the copy in the window.
#pragma once

#include "Gl.h"
#include "Meshes.h"
#include "RenderTargets.h"
#include "TextureUnits.h"

namespace sample {

/** What the objects of the scene are covered with, each of them random bytes. */
struct Materials {
    GLuint hero = 0;
    GLuint pillar = 0;
    GLuint land = 0;
    GLuint sky = 0;
    GLuint water = 0;
};

/** A texture fit for Materials: four channels of random bytes, the same in every run. */
GLuint makeMaterial(const char* label);

class SceneRenderer {
public:
    /**
     * @param base  size of all render targets
     * @param work  rounds of extra work per pixel of the post pass, which meets each pixel once
     * @param units outlives this
     */
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
    /** One more pillar, in a program of the scene. */
    void drawPillar(const Program& program, const Vec3& place);
    void drawFullScreen();
    void bindWindow(Size window);

    const Camera& camera() const { return mCamera; }
    /** @param label, multisampled as RenderTargets::renewColour() takes them */
    void renewColour(const char* label, bool multisampled) { mTargets.renewColour(label, multisampled); }
    void setMaterials(const Materials& materials) { mMaterials = materials; }

private:
    void bindTarget(GLuint framebuffer);
    void useSceneProgram(const Program& program, GLuint material);

    const Size mBase;
    const int mWork;
    TextureUnits& mUnits;
    RenderTargets mTargets;
    Materials mMaterials;
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
