// The render targets of the base size and the framebuffers made of them.
#pragma once

#include "Options.h"

#include <GLES3/gl32.h>

namespace sample {

struct RenderTargets {
    explicit RenderTargets(Size base);

    /**
     * Replaces the texture that the scene is drawn into, as an engine does when it loads a level.
     * @param multisampled attach it so that it is drawn with several samples, where the driver can do that
     */
    void renewColour(const char* label, bool multisampled);

    Size size;
    GLuint sceneColour = 0;
    GLuint sceneNormal = 0;
    GLuint sceneDepth = 0;
    GLuint grab = 0;           // the scene before the water, for the water to look through
    GLuint outline = 0;        // how strongly the line around the hero shows
    GLuint outlineStencil = 0; // depth and stencil; 0 where the driver wants no such framebuffer
    GLuint post = 0;

    GLuint sceneFramebuffer = 0;
    GLuint grabFramebuffer = 0;
    GLuint outlineFramebuffer = 0;
    GLuint postFramebuffer = 0;
};

} // namespace sample
