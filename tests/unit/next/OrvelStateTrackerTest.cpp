#include "next/OrvelStateTracker.h"

#include "RecordingDriver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

using namespace android::orvel;
using next::GlTable;
using testing::ElementsAre;

namespace {

class StateTracker : public testing::Test {
protected:
    void SetUp() override {
        mDriver->answer<&GlTable::glGetIntegerv>([this](GLenum name, GLint* value) { *value = mIntegers[name]; });
        mDriver->answer<&GlTable::glGetBooleanv>([](GLenum, GLboolean* value) { *value = GL_FALSE; });
        mDriver->answer<&GlTable::glIsEnabled>([this](GLenum cap) { return GLboolean(mEnabled[cap]); });
    }

    /** What Restore() makes the driver do. */
    Calls restore() {
        mDriver->forget();
        mTracker.Restore();
        return mDriver->calls();
    }

    std::unique_ptr<RecordingDriver> mDriver = RecordingDriver::installed();
    std::map<GLenum, GLint> mIntegers;
    std::map<GLenum, bool> mEnabled;
    next::OrvelStateTracker mTracker{/*autoRestore=*/false};
};

} // namespace

// Catches a binding that is saved from, or goes back to, another target, and a restore in reverse order.
TEST_F(StateTracker, PutsBindingsBackInStoringOrder) {
    mIntegers = {{GL_ACTIVE_TEXTURE, GL_TEXTURE3},      {GL_TEXTURE_BINDING_2D, 11},  {GL_DRAW_FRAMEBUFFER_BINDING, 12},
                 {GL_READ_FRAMEBUFFER_BINDING, 13},     {GL_CURRENT_PROGRAM, 14},     {GL_ARRAY_BUFFER_BINDING, 15},
                 {GL_ELEMENT_ARRAY_BUFFER_BINDING, 16}, {GL_VERTEX_ARRAY_BINDING, 17}};
    mTracker.StoreActiveTexture();
    mTracker.StoreTextureBinding2D();
    mTracker.StoreFramebuffer();
    mTracker.StoreFramebufferDraw();
    mTracker.StoreFramebufferRead();
    mTracker.StoreProgram();
    mTracker.StoreArraybufferBinding();
    mTracker.StoreElementArrayBufferBinding();
    mTracker.StoreVertexArrayBinding();
    EXPECT_THAT(restore(),
                ElementsAre(call("glActiveTexture", GL_TEXTURE3), call("glBindTexture", GL_TEXTURE_2D, 11),
                            call("glBindFramebuffer", GL_FRAMEBUFFER, 12),
                            call("glBindFramebuffer", GL_DRAW_FRAMEBUFFER, 12),
                            call("glBindFramebuffer", GL_READ_FRAMEBUFFER, 13), call("glUseProgram", 14),
                            call("glBindBuffer", GL_ARRAY_BUFFER, 15),
                            call("glBindBuffer", GL_ELEMENT_ARRAY_BUFFER, 16), call("glBindVertexArray", 17)));
    EXPECT_TRUE(restore().empty()) << "restoring forgets";
}

// Catches details of a disabled state being queried or restored, which would change what the game set meanwhile.
TEST_F(StateTracker, RestoresDisabledTestsByDisablingThem) {
    mTracker.StoreBlendState();
    mTracker.StoreStencilState();
    EXPECT_THAT(mDriver->calls(), ElementsAre(call("glIsEnabled", GL_BLEND), call("glIsEnabled", GL_STENCIL_TEST)));
    mTracker.StoreDepthState();
    EXPECT_THAT(restore(), ElementsAre(call("glDisable", GL_BLEND), call("glDisable", GL_STENCIL_TEST),
                                       call("glDepthMask", 0), call("glDisable", GL_DEPTH_TEST)));
}

// Catches swapped colour and alpha factors or faces, whose argument orders differ between query and call.
TEST_F(StateTracker, RestoresEnabledTestsWhole) {
    mEnabled = {{GL_BLEND, true}, {GL_DEPTH_TEST, true}, {GL_STENCIL_TEST, true}};
    mIntegers = {{GL_BLEND_EQUATION_RGB, 1}, {GL_BLEND_EQUATION_ALPHA, 2}, {GL_BLEND_SRC_RGB, 3},
                 {GL_BLEND_SRC_ALPHA, 4},    {GL_BLEND_DST_RGB, 5},        {GL_BLEND_DST_ALPHA, 6},
                 {GL_DEPTH_FUNC, 7}};
    mTracker.StoreBlendState();
    mTracker.StoreDepthState();
    EXPECT_THAT(restore(), ElementsAre(call("glEnable", GL_BLEND), call("glBlendFuncSeparate", 3, 5, 4, 6),
                                       call("glBlendEquationSeparate", 1, 2), call("glDepthMask", 0),
                                       call("glEnable", GL_DEPTH_TEST), call("glDepthFunc", 7)));

    mIntegers = {{GL_STENCIL_FUNC, 11},
                 {GL_STENCIL_REF, 12},
                 {GL_STENCIL_VALUE_MASK, 13},
                 {GL_STENCIL_FAIL, 14},
                 {GL_STENCIL_PASS_DEPTH_FAIL, 15},
                 {GL_STENCIL_PASS_DEPTH_PASS, 16},
                 {GL_STENCIL_WRITEMASK, 17},
                 {GL_STENCIL_BACK_FUNC, 21},
                 {GL_STENCIL_BACK_REF, 22},
                 {GL_STENCIL_BACK_VALUE_MASK, 23},
                 {GL_STENCIL_BACK_FAIL, 24},
                 {GL_STENCIL_BACK_PASS_DEPTH_FAIL, 25},
                 {GL_STENCIL_BACK_PASS_DEPTH_PASS, 26},
                 {GL_STENCIL_BACK_WRITEMASK, 27}};
    mTracker.StoreStencilState();
    EXPECT_THAT(restore(), ElementsAre(call("glEnable", GL_STENCIL_TEST), call("glStencilMaskSeparate", GL_FRONT, 17),
                                       call("glStencilMaskSeparate", GL_BACK, 27),
                                       call("glStencilOpSeparate", GL_FRONT, 14, 15, 16),
                                       call("glStencilOpSeparate", GL_BACK, 24, 25, 26),
                                       call("glStencilFuncSeparate", GL_FRONT, 11, 12, 13),
                                       call("glStencilFuncSeparate", GL_BACK, 21, 22, 23)));
}

// Catches capabilities mixed up by position, and a given value that is checked against the driver.
TEST_F(StateTracker, RestoresCapabilitiesByPosition) {
    mEnabled = {{GL_CULL_FACE, true}};
    mTracker.StoreEnabled(GL_CULL_FACE);
    mTracker.StoreProgram();
    mTracker.StoreEnabled(GL_SCISSOR_TEST, true);
    mTracker.StoreEnabled(GL_DITHER);
    EXPECT_THAT(restore(), ElementsAre(call("glEnable", GL_CULL_FACE), call("glUseProgram", 0),
                                       call("glEnable", GL_SCISSOR_TEST), call("glDisable", GL_DITHER)));
    mTracker.StoreEnabled(GL_DITHER, true); // positions are used again
    EXPECT_THAT(restore(), ElementsAre(call("glEnable", GL_DITHER)));
}

// Catches a scope that ends without putting the game's state back, or that puts it back uninvited.
TEST_F(StateTracker, DestructorRestoresOnlyWhenAsked) {
    for (const bool autoRestore : {true, false}) {
        {
            next::OrvelStateTracker tracker(autoRestore);
            tracker.StoreProgram();
            mDriver->forget();
        }
        EXPECT_EQ(mDriver->calls(), autoRestore ? Calls{call("glUseProgram", 0)} : Calls{});
    }
}
