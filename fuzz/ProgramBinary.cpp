// The file of a program binary, as an effect loads it.
#include "Fuzz.h"
#include "NullDriver.h"

#include "base/OrvelPaths.h"
#include "next/OrvelNext.h"
#include "next/effects/OrvelLutEffect.h"

#include <algorithm>
#include <cstring>

namespace {

const uint8_t* sFile;
size_t sSize;

/** Knows the format that the file names. */
void GL_APIENTRY answerFormat(GLenum name, GLint* value) {
    if (name == GL_NUM_PROGRAM_BINARY_FORMATS) {
        *value = 1;
    } else if (name == GL_PROGRAM_BINARY_FORMATS) {
        std::memcpy(value, sFile + 4, sizeof *value);
    }
}

/** What the driver is given must lie in the file. */
void GL_APIENTRY takeBinary(GLuint, GLenum, const void* binary, GLsizei length) {
    fuzz::demand(length > 0 && static_cast<size_t>(length) + 8 <= sSize, "no more than the file holds");
    fuzz::demand(std::equal(sFile + 8, sFile + 8 + length, static_cast<const uint8_t*>(binary)), "the file's bytes");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::root();
    fuzz::logNothing();
    static android::egl_connection_t connection{};
    static android::gl_hooks_t gles2{};
    connectNullDriver(connection, gles2);
    gles2.gl.glGetIntegerv = answerFormat;
    gles2.gl.glProgramBinary = takeBinary;
    gles2.gl.glCreateProgram = [] { return 1u; };
    android::orvel::next::InitNextFunctions(&connection);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    sFile = data;
    sSize = size;
    fuzz::root().write("/lut.bin", {reinterpret_cast<const char*>(data), size});
    android::orvel::next::OrvelLutEffect effect(/*binary=*/true);
    effect.Init(android::orvel::systemPath("/lut.bin"));
    return 0;
}
