#include "next/OrvelStateTracker.h"

#include "RecordingDriver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace android::orvel;
using next::GlTable;
using testing::ElementsAre;

namespace {

/** Every number that is asked for is the name of the question. */
class StateTracker : public testing::Test {
protected:
    void SetUp() override {
        mDriver->answer<&GlTable::glGetIntegerv>([](GLenum name, GLint* value) { *value = GLint(name); });
        mDriver->answer<&GlTable::glGetBooleanv>([](GLenum, GLboolean* value) { *value = GL_FALSE; });
        mDriver->answer<&GlTable::glIsEnabled>([this](GLenum) { return GLboolean(mEnabled); });
    }

    /** What Restore() makes the driver do. */
    Calls restore() {
        mDriver->forget();
        mTracker.Restore();
        return mDriver->calls();
    }

    std::unique_ptr<RecordingDriver> mDriver = RecordingDriver::installed();
    bool mEnabled = false;
    next::OrvelStateTracker mTracker{/*autoRestore=*/false};
};

} // namespace

// Catches a binding that is saved from, or goes back to, another target, and a restore in reverse order.
TEST_F(StateTracker, PutsBindingsBackInStoringOrder) {
    mTracker.StoreActiveTexture();
    mTracker.StoreTextureBinding2D();
    mTracker.StoreFramebuffer();
    mTracker.StoreFramebufferDraw();
    mTracker.StoreFramebufferRead();
    mTracker.StoreProgram();
    mTracker.StoreArraybufferBinding();
    mTracker.StoreElementArrayBufferBinding();
    mTracker.StoreVertexArrayBinding();
    EXPECT_THAT(restore(), ElementsAre(call("glActiveTexture", GL_ACTIVE_TEXTURE),
                                       call("glBindTexture", GL_TEXTURE_2D, GL_TEXTURE_BINDING_2D),
                                       call("glBindFramebuffer", GL_FRAMEBUFFER, GL_DRAW_FRAMEBUFFER_BINDING),
                                       call("glBindFramebuffer", GL_DRAW_FRAMEBUFFER, GL_DRAW_FRAMEBUFFER_BINDING),
                                       call("glBindFramebuffer", GL_READ_FRAMEBUFFER, GL_READ_FRAMEBUFFER_BINDING),
                                       call("glUseProgram", GL_CURRENT_PROGRAM),
                                       call("glBindBuffer", GL_ARRAY_BUFFER, GL_ARRAY_BUFFER_BINDING),
                                       call("glBindBuffer", GL_ELEMENT_ARRAY_BUFFER, GL_ELEMENT_ARRAY_BUFFER_BINDING),
                                       call("glBindVertexArray", GL_VERTEX_ARRAY_BINDING)));
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
    mEnabled = true;
    mTracker.StoreBlendState();
    mTracker.StoreDepthState();
    EXPECT_THAT(restore(), ElementsAre(call("glEnable", GL_BLEND),
                                       call("glBlendFuncSeparate", GL_BLEND_SRC_RGB, GL_BLEND_DST_RGB,
                                            GL_BLEND_SRC_ALPHA, GL_BLEND_DST_ALPHA),
                                       call("glBlendEquationSeparate", GL_BLEND_EQUATION_RGB, GL_BLEND_EQUATION_ALPHA),
                                       call("glDepthMask", 0), call("glEnable", GL_DEPTH_TEST),
                                       call("glDepthFunc", GL_DEPTH_FUNC)));

    mTracker.StoreStencilState();
    EXPECT_THAT(
        restore(),
        ElementsAre(call("glEnable", GL_STENCIL_TEST), call("glStencilMaskSeparate", GL_FRONT, GL_STENCIL_WRITEMASK),
                    call("glStencilMaskSeparate", GL_BACK, GL_STENCIL_BACK_WRITEMASK),
                    call("glStencilOpSeparate", GL_FRONT, GL_STENCIL_FAIL, GL_STENCIL_PASS_DEPTH_FAIL,
                         GL_STENCIL_PASS_DEPTH_PASS),
                    call("glStencilOpSeparate", GL_BACK, GL_STENCIL_BACK_FAIL, GL_STENCIL_BACK_PASS_DEPTH_FAIL,
                         GL_STENCIL_BACK_PASS_DEPTH_PASS),
                    call("glStencilFuncSeparate", GL_FRONT, GL_STENCIL_FUNC, GL_STENCIL_REF, GL_STENCIL_VALUE_MASK),
                    call("glStencilFuncSeparate", GL_BACK, GL_STENCIL_BACK_FUNC, GL_STENCIL_BACK_REF,
                         GL_STENCIL_BACK_VALUE_MASK)));
}

// Catches a scope that ends without putting the game's state back, or that puts it back uninvited.
TEST_F(StateTracker, DestructorRestoresOnlyWhenAsked) {
    for (const bool autoRestore : {true, false}) {
        {
            next::OrvelStateTracker tracker(autoRestore);
            tracker.StoreProgram();
            mDriver->forget();
        }
        EXPECT_EQ(mDriver->calls(), autoRestore ? Calls{call("glUseProgram", GL_CURRENT_PROGRAM)} : Calls{});
    }
}
