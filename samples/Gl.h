// GL objects as the games make them: labelled, and looked after when they cannot be made.
#pragma once

#include "Matrix.h"
#include "Options.h"

#include <GLES3/gl32.h>

#include <string>

namespace sample {

/** One line on standard error, then exit status 1. */
[[noreturn]] __attribute__((format(printf, 1, 2))) void fail(const char* format, ...);

/**
 * Labels an object through GL_EXT_debug_label where the driver has it.
 * @param type GL_TEXTURE, GL_PROGRAM_OBJECT_EXT
 */
void labelObject(GLenum type, GLuint object, const char* label);

bool hasExtension(const char* name);

/** A 2D texture with storage, bound to the active unit when this returns. */
GLuint makeTexture(const char* label, GLenum format, Size size, GLint levels, GLint filter);

class Program {
public:
    /** @param vertex, fragment whole texts; they lie on the heap while GL reads them, as a game's own do */
    Program(const char* label, const std::string& vertex, const std::string& fragment);

    void use() const { glUseProgram(mName); }

    // These set a uniform of the program in use; names it does not have are ignored.
    void set(const char* uniform, GLint value) const { glUniform1i(at(uniform), value); }
    void set(const char* uniform, float value) const { glUniform1f(at(uniform), value); }
    void set(const char* uniform, const Vec3& v) const { glUniform3f(at(uniform), v.x, v.y, v.z); }
    void set(const char* uniform, const Mat4& m) const { glUniformMatrix4fv(at(uniform), 1, GL_FALSE, m.data()); }
    /** A matrix that the shader declares as an array of its columns. */
    void setColumns(const char* uniform, const Mat4& m) const { glUniform4fv(at(uniform), 4, m.data()); }
    /** [w, h, 1 + 1/w, 1 + 1/h] */
    void setScreen(const char* uniform, Size size) const;
    /** [1/w, 1/h, w, h] */
    void setTexel(const char* uniform, Size size) const;

private:
    GLint at(const char* uniform) const { return glGetUniformLocation(mName, uniform); }

    GLuint mName;
};

} // namespace sample
