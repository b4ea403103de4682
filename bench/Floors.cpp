#include "Floors.h"

#include "legacy/OrvelSRControl.h"
#include "settings/orvel_modify_params.h"

#include <cstdlib>

using namespace android;
namespace next = android::orvel::next;

namespace {

// What an enabled feature would do is not measured here.
[[gnu::cold, gnu::noinline]] void feature() { std::abort(); }

void GL_APIENTRY floorDrawArrays(GLenum mode, GLint first, GLsizei count) {
    if (mEnableShadingRate) {
        feature();
    }
    next::gl.glDrawArrays(mode, first, count);
}

void GL_APIENTRY floorBindFramebuffer(GLenum target, GLuint framebuffer) {
    if (mEnableDynamicResolution) {
        feature();
    }
    next::gl.glBindFramebuffer(target, framebuffer);
}

void GL_APIENTRY floorBindTexture(GLenum target, GLuint texture) {
    if (mEnableDynamicResolution) {
        feature();
    }
    if (mEnableHkrpgSceneRecognize) {
        feature();
    }
    if (mEnableYSSceneRecognize) {
        feature();
    }
    next::gl.glBindTexture(target, texture);
}

void GL_APIENTRY floorViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
    if (mEnableDynamicResolution) {
        feature();
    }
    if (mEnableScaleResolutionSize) {
        feature();
    }
    if (orvel::OrvelSRControl::isBackbufferSizeAsked()) {
        feature();
    }
    next::gl.glViewport(x, y, width, height);
}

void GL_APIENTRY floorDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices) {
    if (mEnableShadingRate) {
        feature();
    }
    if (mEnableYSSceneRecognize) {
        feature();
    }
    if (mEnableYSTransferRecognize) {
        feature();
    }
    if (mEnableYSLaunchRecognize) {
        feature();
    }
    if (mEnableHPTransferRecognize) {
        feature();
    }
    if (orvel::OrvelSRControl::isConfigured()) {
        feature();
    }
    next::gl.glDrawElements(mode, count, type, indices);
}

void GL_APIENTRY floorUniform4fv(GLint location, GLsizei count, const GLfloat* value) {
    if (mEnableDynamicResolution) {
        feature();
    }
    if (mEnableScaleResolutionSize) {
        feature();
    }
    if (orvel::OrvelSRControl::isBackbufferSizeAsked()) {
        feature();
    }
    next::gl.glUniform4fv(location, count, value);
}

} // namespace

void installFloors(next::GlTable& table) {
    table.glDrawArrays = floorDrawArrays;
    table.glBindFramebuffer = floorBindFramebuffer;
    table.glBindTexture = floorBindTexture;
    table.glViewport = floorViewport;
    table.glDrawElements = floorDrawElements;
    table.glUniform4fv = floorUniform4fv;
}
