// The uniforms of a linked program, asked for once.
#pragma once

#include <EGL/egldefs.h>

#include <string>
#include <unordered_map>

namespace android::orvel::next {

class OrvelProgramReflector {
public:
    struct ShaderUniformInfo {
        GLenum type;
        GLint location;
        GLint arraySize;
        GLint blockIndex; // -1 outside a uniform block
    };

    OrvelProgramReflector() = default;
    /** Reflects at once unless program is 0. */
    explicit OrvelProgramReflector(GLuint program);

    /** Adds the active uniforms of a program, or overwrites those of the same names. */
    void ReflectUniforms(GLuint program);
    /** Forgets all uniforms, then reflects another program unless that is 0. */
    void ResetHandle(GLuint program);
    /** @return -1 for a name that the program does not have; arrays go by the driver's name, "x[0]" */
    GLint GetUniformLocation(const std::string& name) const;

protected:
    std::unordered_map<std::string, ShaderUniformInfo> mUniforms;
};

} // namespace android::orvel::next
