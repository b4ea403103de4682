#include "next/OrvelProgramReflector.h"

#include "next/OrvelNext.h"

#include <iterator>

namespace android::orvel::next {

OrvelProgramReflector::OrvelProgramReflector(GLuint program) {
    if (program != 0) {
        ReflectUniforms(program);
    }
}

void OrvelProgramReflector::ReflectUniforms(GLuint program) {
    constexpr GLenum kProperties[] = {GL_NAME_LENGTH, GL_TYPE, GL_LOCATION, GL_ARRAY_SIZE, GL_BLOCK_INDEX};
    constexpr GLsizei kCount = std::size(kProperties);
    GLint count = 0;
    gl.glGetProgramInterfaceiv(program, GL_UNIFORM, GL_ACTIVE_RESOURCES, &count);
    for (GLint index = 0; index < count; ++index) {
        const auto uniform = static_cast<GLuint>(index);
        GLint values[kCount] = {0, 0, -1, 0, -1};
        gl.glGetProgramResourceiv(program, GL_UNIFORM, uniform, kCount, kProperties, kCount, nullptr, values);
        const auto [nameLength, type, location, arraySize, blockIndex] = values;
        std::string name(static_cast<size_t>(nameLength > 0 ? nameLength : 0) + 1, '\0');
        gl.glGetProgramResourceName(program, GL_UNIFORM, uniform, static_cast<GLsizei>(name.size()), nullptr,
                                    name.data());
        name.resize(name.find('\0')); // there is one: the buffer is longer than the name
        // A uniform of the default block is asked again; one in a block has no location.
        const GLint asked = blockIndex == -1 ? gl.glGetUniformLocation(program, name.c_str()) : location;
        mUniforms[name] = {static_cast<GLenum>(type), asked, arraySize, blockIndex};
    }
}

void OrvelProgramReflector::ResetHandle(GLuint program) {
    mUniforms.clear();
    if (program != 0) {
        ReflectUniforms(program);
    }
}

GLint OrvelProgramReflector::GetUniformLocation(const std::string& name) const {
    const auto uniform = mUniforms.find(name);
    return uniform == mUniforms.end() ? -1 : uniform->second.location;
}

} // namespace android::orvel::next
