#include "CountingDriver.h"

#include <bitset>
#include <cstring>

namespace fuzz {

namespace {

uint32_t sNames = 0;
constexpr uintptr_t kMostContexts = 5;
std::bitset<kMostContexts + 1> sContexts; // those that live
thread_local EGLContext tCurrent = EGL_NO_CONTEXT;

template <size_t Offset, typename R, typename... Args>
auto receiver(R (*GlTable::*)(Args...)) -> R (*)(Args...) {
    return [](Args... args) -> R {
        arrivals().push_back({Offset, digest(args...)});
        return R();
    };
}

template <typename R, typename... Args>
auto nothing(R (*)(Args...)) -> R (*)(Args...) {
    return [](Args...) -> R { return R(); };
}

/** Drivers use names again. */
GLuint GL_APIENTRY makeName() { return 1 + sNames++ % 1000; }
/** Names without a word: the library makes objects of its own. */
void GL_APIENTRY makeNames(GLsizei count, GLuint* names) {
    for (GLsizei i = 0; names && i < count; ++i) {
        names[i] = makeName();
    }
}
GLuint GL_APIENTRY makeShader(GLenum) { return makeName(); }
void GL_APIENTRY answerYes(GLuint, GLenum, GLint* value) {
    if (value) {
        *value = 1;
    }
}
void* GL_APIENTRY map(GLenum, GLintptr, GLsizeiptr length, GLbitfield) {
    static auto& memory = *new std::vector<uint8_t>(size_t{4} << 20);
    return length >= 0 && static_cast<size_t>(length) <= memory.size() ? memory.data() : nullptr;
}

} // namespace

void connect(android::egl_connection_t& connection, android::gl_hooks_t& gles2) {
    GlTable& gl = gles2.gl;
#define GL_ENTRY(Result, name, params, args, providers) gl.name = receiver<offsetof(GlTable, name)>(&GlTable::name);
#include <entries/gl_entries.in>
#undef GL_ENTRY
    gl.glGenTextures = gl.glGenBuffers = gl.glGenFramebuffers = gl.glGenVertexArrays = makeNames;
    gl.glCreateProgram = makeName;
    gl.glCreateShader = makeShader;
    gl.glGetShaderiv = gl.glGetProgramiv = answerYes;
    gl.glMapBufferRange = map;
    gl.glCheckFramebufferStatus = [](GLenum) -> GLenum { return GL_FRAMEBUFFER_COMPLETE; };
    gl.glGetString = [](GLenum) { return reinterpret_cast<const GLubyte*>("GL_EXT_shader_framebuffer_fetch"); };
    gl.glGetProgramInterfaceiv = [](GLuint, GLenum, GLenum, GLint* count) { *count = 1; };
    gl.glGetProgramResourceiv = [](GLuint, GLenum, GLuint, GLsizei, const GLenum*, GLsizei, GLsizei*, GLint* values) {
        values[0] = 6; // the length of the name
    };
    gl.glGetProgramResourceName = [](GLuint, GLenum, GLuint, GLsizei size, GLsizei*, GLchar* name) {
        if (size >= 6) {
            std::memcpy(name, "param", 6);
        }
    };
#define EGL_ENTRY(Result, name, params, args, providers)                                                               \
    connection.egl.name = nothing(connection.egl.name);                                                                \
    connection.platform.name = nothing(connection.platform.name);
#include <entries/egl_entries.in>
#undef EGL_ENTRY
    connection.platform.glGetString = gl.glGetString;
    connection.platform.glGetStringi = [](GLenum, GLuint) { return static_cast<const GLubyte*>(nullptr); };
    connection.platform.glGetIntegerv = [](GLenum, GLint*) {};
    connection.platform.eglCreateContext = [](EGLDisplay, EGLConfig, EGLContext, const EGLint*) {
        uintptr_t context = 1;
        while (context <= kMostContexts && sContexts[context]) {
            ++context;
        }
        if (context > kMostContexts) {
            return EGL_NO_CONTEXT;
        }
        sContexts.set(context);
        return reinterpret_cast<EGLContext>(context);
    };
    connection.platform.eglDestroyContext = [](EGLDisplay, EGLContext context) -> EGLBoolean {
        const auto number = reinterpret_cast<uintptr_t>(context);
        const bool lives = number <= kMostContexts && sContexts[number];
        if (lives) {
            sContexts.reset(number);
        }
        return lives;
    };
    connection.platform.eglMakeCurrent = [](EGLDisplay, EGLSurface, EGLSurface, EGLContext context) -> EGLBoolean {
        tCurrent = context;
        return EGL_TRUE;
    };
    connection.platform.eglGetCurrentContext = [] { return tCurrent; };
    connection.platform.eglSwapBuffers = [](EGLDisplay, EGLSurface) -> EGLBoolean { return EGL_TRUE; };
    connection.egl.eglGetProcAddress = [](const char* name) {
#define GL_ENTRY(Result, entry, params, args, providers)                                                               \
    if (name && std::strcmp(name, #entry) == 0) {                                                                      \
        return reinterpret_cast<__eglMustCastToProperFunctionPointerType>(                                             \
            receiver<offsetof(GlTable, entry)>(&GlTable::entry));                                                      \
    }
        GL_ENTRY(void, glShadingRateEXT, , , )
        GL_ENTRY(void, glShadingRateQCOM, , , )
        GL_ENTRY(void, glShadingRateCombinerOpsEXT, , , )
        GL_ENTRY(void, glFramebufferShadingRateEXT, , , )
        GL_ENTRY(void, glGetFragmentShadingRatesEXT, , , )
#undef GL_ENTRY
        return static_cast<__eglMustCastToProperFunctionPointerType>(nullptr);
    };
    connection.hooks[android::egl_connection_t::GLESv2_INDEX] = &gles2;
}

} // namespace fuzz
