#include "RenderTargets.h"

#include "Gl.h"

#include <EGL/egl.h>
#include <GLES2/gl2ext.h>

#include <cstdio>
#include <initializer_list>

namespace sample {

namespace {

struct Attachment {
    GLenum point;
    GLuint texture;
};

/** @return bound to GL_FRAMEBUFFER, complete or not */
GLuint makeFramebuffer(std::initializer_list<Attachment> attachments) {
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    GLenum drawBuffers[2];
    GLsizei count = 0;
    for (const Attachment& attachment : attachments) {
        glFramebufferTexture2D(GL_FRAMEBUFFER, attachment.point, GL_TEXTURE_2D, attachment.texture, 0);
        if (attachment.point != GL_DEPTH_ATTACHMENT && attachment.point != GL_STENCIL_ATTACHMENT) {
            drawBuffers[count++] = attachment.point;
        }
    }
    glDrawBuffers(count, drawBuffers);
    return framebuffer;
}

void check(const char* name) {
    const GLenum status = glCheckFramebufferStatus(GL_FRAMEBUFFER);
    if (status != GL_FRAMEBUFFER_COMPLETE) {
        fail("framebuffer \"%s\" is incomplete: 0x%04x", name, status);
    }
}

} // namespace

RenderTargets::RenderTargets(Size base)
    : size(base),
      sceneColour(makeTexture("Scene Colour", GL_RGBA8, base, 1, GL_LINEAR)),
      sceneNormal(makeTexture("Scene Normal", GL_RGBA8, base, 1, GL_LINEAR)),
      sceneDepth(makeTexture("Scene Depth", GL_DEPTH_COMPONENT24, base, 1, GL_NEAREST)),
      grab(makeTexture("Scene Grab", GL_RGBA8, base, 1, GL_LINEAR)),
      outline(makeTexture("Hero Outline", GL_R8, base, 1, GL_LINEAR)),
      outlineStencil(makeTexture("Hero Stencil", GL_DEPTH24_STENCIL8, base, 1, GL_NEAREST)),
      post(makeTexture("Post Colour", GL_RGBA8, base, 1, GL_LINEAR)) {
    sceneFramebuffer = makeFramebuffer(
        {{GL_COLOR_ATTACHMENT0, sceneColour}, {GL_COLOR_ATTACHMENT1, sceneNormal}, {GL_DEPTH_ATTACHMENT, sceneDepth}});
    check("Scene");
    grabFramebuffer = makeFramebuffer({{GL_COLOR_ATTACHMENT0, grab}});
    check("Grab");
    postFramebuffer = makeFramebuffer({{GL_COLOR_ATTACHMENT0, post}});
    check("Post");
    // Depth and stencil at one point each, not together: an engine that knows no combined point does that.
    outlineFramebuffer = makeFramebuffer({{GL_COLOR_ATTACHMENT0, outline},
                                          {GL_DEPTH_ATTACHMENT, outlineStencil},
                                          {GL_STENCIL_ATTACHMENT, outlineStencil}});
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
        std::fputs("orvel-sample: no stencil for the outline, it is left out\n", stderr);
        glDeleteFramebuffers(1, &outlineFramebuffer);
        glDeleteTextures(1, &outlineStencil);
        outlineStencil = 0;
        outlineFramebuffer = makeFramebuffer({{GL_COLOR_ATTACHMENT0, outline}});
        check("Outline");
    }
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

void RenderTargets::renewColour(const char* label, bool multisampled) {
    constexpr GLsizei kSamples = 4;
    static const auto attachMultisampled = hasExtension("GL_EXT_multisampled_render_to_texture")
                                               ? reinterpret_cast<PFNGLFRAMEBUFFERTEXTURE2DMULTISAMPLEEXTPROC>(
                                                     eglGetProcAddress("glFramebufferTexture2DMultisampleEXT"))
                                               : nullptr;
    glDeleteTextures(1, &sceneColour);
    glActiveTexture(GL_TEXTURE0);
    sceneColour = makeTexture(label, GL_RGBA8, size, 1, GL_LINEAR);
    glBindFramebuffer(GL_FRAMEBUFFER, sceneFramebuffer);
    const Attachment attachments[] = {
        {GL_COLOR_ATTACHMENT0, sceneColour}, {GL_COLOR_ATTACHMENT1, sceneNormal}, {GL_DEPTH_ATTACHMENT, sceneDepth}};
    for (const Attachment& attachment : attachments) {
        if (multisampled && attachMultisampled) {
            attachMultisampled(GL_FRAMEBUFFER, attachment.point, GL_TEXTURE_2D, attachment.texture, 0, kSamples);
        } else {
            glFramebufferTexture2D(GL_FRAMEBUFFER, attachment.point, GL_TEXTURE_2D, attachment.texture, 0);
        }
    }
    check(label);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

} // namespace sample
