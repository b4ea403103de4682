// Eyes at both ends of the library: what the program asked for, what arrived at the driver.
#pragma once

#include "Entries.h"

#include <string>

namespace android::rig {

/** Puts the driver-side observers in front of the driver's entries, before the library copies the tables. */
void observe(GlTable* gl, egl_t* egl);

/** The program swaps on this thread: the next swap that arrives at the driver is its own, further ones are repeated. */
void expectSwap();

/** While it lives, the calling thread's shader texts that arrive at the driver are compared with the program's. */
class ShaderTextScope {
public:
    ShaderTextScope(GLuint shader, GLsizei count, const GLchar* const* string, const GLint* length);
    ~ShaderTextScope();
    ShaderTextScope(const ShaderTextScope&) = delete;
    ShaderTextScope& operator=(const ShaderTextScope&) = delete;

    /** The driver got the text of a shader. */
    void arrived(GLuint shader, GLsizei count, const GLchar* const* string, const GLint* length);

private:
    void compare(const std::string& text) const;

    GLuint mShader;
    std::string mText; // a copy: the program's own may be edited in place
};

} // namespace android::rig
