#include "next/OrvelStateTracker.h"

namespace android::orvel::next {

namespace {

constexpr size_t kUsualRecords = 32; // a step stores fewer kinds than this, so storing does not allocate

} // namespace

constinit const std::array<OrvelStateTracker::RestoreOperation, OrvelStateTracker::STATE_KIND_COUNT>
    OrvelStateTracker::kRestoreOperations = {
        &OrvelStateTracker::RestoreActiveTexture,      &OrvelStateTracker::RestoreTextureBinding2D,
        &OrvelStateTracker::RestoreBlendState,         &OrvelStateTracker::RestoreDepthState,
        &OrvelStateTracker::RestoreStencilState,       &OrvelStateTracker::RestoreEnabled,
        &OrvelStateTracker::RestoreFramebufferDraw,    &OrvelStateTracker::RestoreFramebufferRead,
        &OrvelStateTracker::RestoreFramebuffer,        &OrvelStateTracker::RestoreProgram,
        &OrvelStateTracker::RestoreArraybufferBinding, &OrvelStateTracker::RestoreElementArrayBufferBinding,
        &OrvelStateTracker::RestoreVertexArrayBinding,
};

OrvelStateTracker::OrvelStateTracker(bool autoRestoreAtEnd) : autoRestore(autoRestoreAtEnd) {
    records.reserve(kUsualRecords);
}

OrvelStateTracker::~OrvelStateTracker() {
    if (autoRestore) {
        Restore();
    }
}

void OrvelStateTracker::StoreActiveTexture() {
    gl.glGetIntegerv(GL_ACTIVE_TEXTURE, &activeTexture);
    records.push_back(ACTIVE_TEXTURE);
}

void OrvelStateTracker::RestoreActiveTexture(uint32_t) { gl.glActiveTexture(static_cast<GLenum>(activeTexture)); }

void OrvelStateTracker::StoreTextureBinding2D() {
    gl.glGetIntegerv(GL_TEXTURE_BINDING_2D, &textureBinding2D);
    records.push_back(TEXTURE_BINDING_2D);
}

void OrvelStateTracker::RestoreTextureBinding2D(uint32_t) {
    gl.glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(textureBinding2D));
}

void OrvelStateTracker::StoreBlendState() {
    blend.enabled = gl.glIsEnabled(GL_BLEND);
    if (blend.enabled) {
        gl.glGetIntegerv(GL_BLEND_EQUATION_RGB, &blend.equationRgb);
        gl.glGetIntegerv(GL_BLEND_EQUATION_ALPHA, &blend.equationAlpha);
        gl.glGetIntegerv(GL_BLEND_SRC_RGB, &blend.srcRgb);
        gl.glGetIntegerv(GL_BLEND_SRC_ALPHA, &blend.srcAlpha);
        gl.glGetIntegerv(GL_BLEND_DST_RGB, &blend.dstRgb);
        gl.glGetIntegerv(GL_BLEND_DST_ALPHA, &blend.dstAlpha);
    }
    records.push_back(BLEND_STATE);
}

void OrvelStateTracker::RestoreBlendState(uint32_t) {
    if (!blend.enabled) {
        gl.glDisable(GL_BLEND);
        return;
    }
    gl.glEnable(GL_BLEND);
    gl.glBlendFuncSeparate(static_cast<GLenum>(blend.srcRgb), static_cast<GLenum>(blend.dstRgb),
                           static_cast<GLenum>(blend.srcAlpha), static_cast<GLenum>(blend.dstAlpha));
    gl.glBlendEquationSeparate(static_cast<GLenum>(blend.equationRgb), static_cast<GLenum>(blend.equationAlpha));
}

void OrvelStateTracker::StoreDepthState() {
    depth.enabled = gl.glIsEnabled(GL_DEPTH_TEST);
    gl.glGetBooleanv(GL_DEPTH_WRITEMASK, &depth.writeMask);
    if (depth.enabled) {
        gl.glGetIntegerv(GL_DEPTH_FUNC, &depth.func);
    }
    records.push_back(DEPTH_STATE);
}

void OrvelStateTracker::RestoreDepthState(uint32_t) {
    gl.glDepthMask(depth.writeMask);
    if (depth.enabled) {
        gl.glEnable(GL_DEPTH_TEST);
        gl.glDepthFunc(static_cast<GLenum>(depth.func));
    } else {
        gl.glDisable(GL_DEPTH_TEST);
    }
}

void OrvelStateTracker::StoreStencilState() {
    stencilEnabled = gl.glIsEnabled(GL_STENCIL_TEST);
    if (stencilEnabled) {
        gl.glGetIntegerv(GL_STENCIL_FUNC, &stencilFront.func);
        gl.glGetIntegerv(GL_STENCIL_REF, &stencilFront.ref);
        gl.glGetIntegerv(GL_STENCIL_VALUE_MASK, &stencilFront.valueMask);
        gl.glGetIntegerv(GL_STENCIL_FAIL, &stencilFront.fail);
        gl.glGetIntegerv(GL_STENCIL_PASS_DEPTH_FAIL, &stencilFront.depthFail);
        gl.glGetIntegerv(GL_STENCIL_PASS_DEPTH_PASS, &stencilFront.depthPass);
        gl.glGetIntegerv(GL_STENCIL_WRITEMASK, &stencilFront.writeMask);
        gl.glGetIntegerv(GL_STENCIL_BACK_FUNC, &stencilBack.func);
        gl.glGetIntegerv(GL_STENCIL_BACK_REF, &stencilBack.ref);
        gl.glGetIntegerv(GL_STENCIL_BACK_VALUE_MASK, &stencilBack.valueMask);
        gl.glGetIntegerv(GL_STENCIL_BACK_FAIL, &stencilBack.fail);
        gl.glGetIntegerv(GL_STENCIL_BACK_PASS_DEPTH_FAIL, &stencilBack.depthFail);
        gl.glGetIntegerv(GL_STENCIL_BACK_PASS_DEPTH_PASS, &stencilBack.depthPass);
        gl.glGetIntegerv(GL_STENCIL_BACK_WRITEMASK, &stencilBack.writeMask);
    }
    records.push_back(STENCIL_STATE);
}

void OrvelStateTracker::RestoreStencilState(uint32_t) {
    if (!stencilEnabled) {
        gl.glDisable(GL_STENCIL_TEST);
        return;
    }
    const auto mask = [](GLenum face, const StencilFace& saved) {
        gl.glStencilMaskSeparate(face, static_cast<GLuint>(saved.writeMask));
    };
    const auto op = [](GLenum face, const StencilFace& saved) {
        gl.glStencilOpSeparate(face, static_cast<GLenum>(saved.fail), static_cast<GLenum>(saved.depthFail),
                               static_cast<GLenum>(saved.depthPass));
    };
    const auto func = [](GLenum face, const StencilFace& saved) {
        gl.glStencilFuncSeparate(face, static_cast<GLenum>(saved.func), saved.ref,
                                 static_cast<GLuint>(saved.valueMask));
    };
    gl.glEnable(GL_STENCIL_TEST);
    mask(GL_FRONT, stencilFront);
    mask(GL_BACK, stencilBack);
    op(GL_FRONT, stencilFront);
    op(GL_BACK, stencilBack);
    func(GL_FRONT, stencilFront);
    func(GL_BACK, stencilBack);
}

void OrvelStateTracker::StoreEnabled(GLenum cap) { StoreEnabled(cap, gl.glIsEnabled(cap) != GL_FALSE); }

void OrvelStateTracker::StoreEnabled(GLenum cap, bool value) {
    capEnabled[cap] = value;
    listIndexToCap[static_cast<uint32_t>(records.size())] = cap;
    records.push_back(ENABLED);
}

void OrvelStateTracker::RestoreEnabled(uint32_t position) {
    const uint32_t cap = listIndexToCap[position];
    if (capEnabled[cap]) {
        gl.glEnable(cap);
    } else {
        gl.glDisable(cap);
    }
}

void OrvelStateTracker::StoreFramebufferDraw() {
    gl.glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &framebufferDraw);
    records.push_back(FRAMEBUFFER_DRAW);
}

void OrvelStateTracker::RestoreFramebufferDraw(uint32_t) {
    gl.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(framebufferDraw));
}

void OrvelStateTracker::StoreFramebufferRead() {
    gl.glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &framebufferRead);
    records.push_back(FRAMEBUFFER_READ);
}

void OrvelStateTracker::RestoreFramebufferRead(uint32_t) {
    gl.glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(framebufferRead));
}

void OrvelStateTracker::StoreFramebuffer() {
    gl.glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &framebuffer);
    records.push_back(FRAMEBUFFER);
}

void OrvelStateTracker::RestoreFramebuffer(uint32_t) {
    gl.glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(framebuffer));
}

void OrvelStateTracker::StoreProgram() {
    gl.glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    records.push_back(PROGRAM);
}

void OrvelStateTracker::RestoreProgram(uint32_t) { gl.glUseProgram(static_cast<GLuint>(program)); }

void OrvelStateTracker::StoreArraybufferBinding() {
    gl.glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &arrayBufferBinding);
    records.push_back(ARRAY_BUFFER_BINDING);
}

void OrvelStateTracker::RestoreArraybufferBinding(uint32_t) {
    gl.glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(arrayBufferBinding));
}

void OrvelStateTracker::StoreElementArrayBufferBinding() {
    gl.glGetIntegerv(GL_ELEMENT_ARRAY_BUFFER_BINDING, &elementArrayBufferBinding);
    records.push_back(ELEMENT_ARRAY_BUFFER_BINDING);
}

void OrvelStateTracker::RestoreElementArrayBufferBinding(uint32_t) {
    gl.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLuint>(elementArrayBufferBinding));
}

void OrvelStateTracker::StoreVertexArrayBinding() {
    gl.glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &vertexArrayBinding);
    records.push_back(VERTEX_ARRAY_BINDING);
}

void OrvelStateTracker::RestoreVertexArrayBinding(uint32_t) {
    gl.glBindVertexArray(static_cast<GLuint>(vertexArrayBinding));
}

void OrvelStateTracker::Restore() {
    for (uint32_t position = 0; position < records.size(); ++position) {
        (this->*kRestoreOperations[records[position]])(position);
    }
    records.clear();
    if (!capEnabled.empty()) {
        capEnabled.clear();
    }
    // listIndexToCap stays: its positions are overwritten by later stores.
}

} // namespace android::orvel::next
