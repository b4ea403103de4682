#include "SceneRenderer.h"

#include "Shaders.h"

#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

namespace sample {

namespace {

constexpr int kPillars = 8; // the land's shader knows it, and where they stand, for their shadows
constexpr float kPillarRing = 8;
constexpr Vec3 kPillarSize = {0.55F, 4.6F, 0.55F};
constexpr Vec3 kHeroPosition = {0, 2.3F, 0};
constexpr float kHeroSize = 1.6F;
constexpr float kOutlineWidth = 0.06F;
constexpr float kWaterLevel = -0.55F;

} // namespace

GLuint makeMaterial(const char* label) {
    constexpr int kSide = 256;
    constexpr int kLevels = 9;
    const GLuint texture = makeTexture(label, GL_RGBA8, {kSide, kSide}, kLevels, GL_LINEAR_MIPMAP_LINEAR);
    std::vector<uint32_t> texels(size_t{kSide} * kSide);
    uint32_t state = 2463534242U;
    for (uint32_t& texel : texels) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        texel = state;
    }
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, kSide, kSide, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    glGenerateMipmap(GL_TEXTURE_2D);
    return texture;
}

SceneRenderer::SceneRenderer(Size base, int work, TextureUnits& units)
    : mBase(base),
      mWork(work),
      mUnits(units),
      mTargets(base),
      mLandProgram("Land", shaders::placed(), shaders::land()),
      mObjectProgram("Object", shaders::placed(), shaders::object()),
      mSkyProgram("Sky", shaders::fullScreen(), shaders::sky()),
      mWaterProgram("Water", shaders::waterSurface(), shaders::water()),
      mOutlineProgram("Outline", shaders::placed(), shaders::outline()),
      mPostProgram("Post Process", shaders::fullScreen(), shaders::post()),
      mCopyProgram("Hidden/PostProcessing/Copy", shaders::fullScreen(), shaders::copy()),
      mTerrain(makeTerrain()),
      mSphere(makeSphere()),
      mPillar(makePillar()) {
    glGenVertexArrays(1, &mNoVertices);
    glActiveTexture(GL_TEXTURE0);
    const GLuint noise = makeMaterial("Noise");
    mMaterials = {noise, noise, noise, noise, noise};
}

void SceneRenderer::beginFrame(int frame) {
    mTime = static_cast<float>(frame) / 60;
    const float angle = 0.6F + 0.25F * mTime;
    const Vec3 eye = {17 * std::sin(angle), 4.8F + 0.4F * std::sin(mTime), 17 * std::cos(angle)};
    mCamera = lookAt(eye, {0, 2.6F, 0}, 0.5F, static_cast<float>(mBase.width) / static_cast<float>(mBase.height));
}

void SceneRenderer::bindTarget(GLuint framebuffer) {
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glViewport(0, 0, mBase.width, mBase.height);
    glScissor(0, 0, mBase.width, mBase.height);
    glEnable(GL_SCISSOR_TEST);
}

void SceneRenderer::useSceneProgram(const Program& program, GLuint material) {
    program.use();
    program.set("uViewProjection", mCamera.viewProjection);
    program.setScreen("uScreen", mBase);
    program.set("uEye", mCamera.eye);
    program.set("uForward", mCamera.forward);
    program.set("uRight", mCamera.right);
    program.set("uUp", mCamera.up);
    program.set("uTime", mTime);
    program.set("uNoise", UNIT_NOISE);
    mUnits.bind(UNIT_NOISE, material);
}

void SceneRenderer::drawFullScreen() {
    glBindVertexArray(mNoVertices);
    glDrawArrays(GL_TRIANGLES, 0, 3);
}

void SceneRenderer::drawOpaque() {
    bindTarget(mTargets.sceneFramebuffer);
    glClearColor(0, 0, 0, 1);
    glClearDepthf(1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_CULL_FACE);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);

    useSceneProgram(mObjectProgram, mMaterials.hero);
    mObjectProgram.set("uPlace", kHeroPosition);
    mObjectProgram.set("uSize", Vec3{kHeroSize, kHeroSize, kHeroSize});
    mObjectProgram.set("uHero", 1);
    mSphere.draw();
    mObjectProgram.set("uSize", kPillarSize);
    mObjectProgram.set("uHero", 0);
    mUnits.bind(UNIT_NOISE, mMaterials.pillar);
    for (int i = 0; i < kPillars; ++i) {
        const float around = 2 * std::numbers::pi_v<float> * static_cast<float>(i) / kPillars;
        mObjectProgram.set("uPlace", Vec3{kPillarRing * std::cos(around), 0, kPillarRing * std::sin(around)});
        mPillar.draw();
    }

    useSceneProgram(mLandProgram, mMaterials.land);
    mLandProgram.set("uPlace", Vec3{});
    mLandProgram.set("uSize", Vec3{1, 1, 1});
    mTerrain.draw();
    drawBackdrop(mSkyProgram);
}

void SceneRenderer::drawBackdrop(const Program& program) {
    useSceneProgram(program, mMaterials.sky);
    glDepthMask(GL_FALSE);
    drawFullScreen();
    glDepthMask(GL_TRUE);
}

void SceneRenderer::drawPillar(const Program& program, const Vec3& place) {
    useSceneProgram(program, mMaterials.pillar);
    program.set("uPlace", place);
    program.set("uSize", kPillarSize);
    program.set("uHero", 0);
    mPillar.draw();
}

void SceneRenderer::grabColour() {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, mTargets.sceneFramebuffer);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, mTargets.grabFramebuffer);
    glBlitFramebuffer(0, 0, mBase.width, mBase.height, 0, 0, mBase.width, mBase.height, GL_COLOR_BUFFER_BIT,
                      GL_NEAREST);
}

void SceneRenderer::drawWater() {
    bindTarget(mTargets.sceneFramebuffer);
    useSceneProgram(mWaterProgram, mMaterials.water);
    mWaterProgram.set("uLevel", kWaterLevel);
    mWaterProgram.set("uGrab", UNIT_GRAB);
    mUnits.bind(UNIT_GRAB, mTargets.grab);
    glBindVertexArray(mNoVertices);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

void SceneRenderer::drawOutline() {
    bindTarget(mTargets.outlineFramebuffer);
    glClearColor(0, 0, 0, 0);
    glClearStencil(0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    if (mTargets.outlineStencil != 0) {
        useSceneProgram(mOutlineProgram, mMaterials.hero);
        mOutlineProgram.set("uPlace", kHeroPosition);
        glEnable(GL_STENCIL_TEST);
        // The hero marks its pixels; a slightly larger one then shows only beside them.
        glStencilFunc(GL_ALWAYS, 1, 0xff);
        glStencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
        glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
        mOutlineProgram.set("uSize", Vec3{kHeroSize, kHeroSize, kHeroSize});
        mSphere.draw();
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        glStencilFunc(GL_NOTEQUAL, 1, 0xff);
        glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
        constexpr float kLarger = kHeroSize + kOutlineWidth;
        mOutlineProgram.set("uSize", Vec3{kLarger, kLarger, kLarger});
        mSphere.draw();
        glDisable(GL_STENCIL_TEST);
    }
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
}

void SceneRenderer::drawPost() {
    bindTarget(mTargets.postFramebuffer);
    mPostProgram.use();
    mPostProgram.setTexel("uTexel", mBase);
    mPostProgram.set("uWork", mWork);
    mPostProgram.set("uColour", UNIT_SCENE_COLOUR);
    mPostProgram.set("uNormal", UNIT_SCENE_NORMAL);
    mPostProgram.set("uDepth", UNIT_SCENE_DEPTH);
    mPostProgram.set("uOutline", UNIT_OUTLINE);
    mUnits.bind(UNIT_SCENE_COLOUR, mTargets.sceneColour);
    mUnits.bind(UNIT_SCENE_NORMAL, mTargets.sceneNormal);
    mUnits.bind(UNIT_SCENE_DEPTH, mTargets.sceneDepth);
    mUnits.bind(UNIT_OUTLINE, mTargets.outline);
    drawFullScreen();
}

void SceneRenderer::bindWindow(Size window) {
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glViewport(0, 0, window.width, window.height);
    glScissor(0, 0, window.width, window.height);
}

void SceneRenderer::copyToWindow(Size window) {
    bindWindow(window);
    mCopyProgram.use();
    // As the engine's own copy: from unit 0, without a vertex array or any buffer, the indices in the program's memory.
    mCopyProgram.set("uColour", 0);
    mUnits.bind(UNIT_NOISE, mTargets.post);
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    constexpr GLushort kIndices[] = {0, 1, 2};
    glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_SHORT, kIndices);
}

void SceneRenderer::bindPicture() const { glBindFramebuffer(GL_READ_FRAMEBUFFER, mTargets.postFramebuffer); }

} // namespace sample
