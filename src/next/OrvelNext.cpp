#include "next/OrvelNext.h"

#include <mutex>
#include <unordered_map>

namespace android::orvel::next {

GlTable gl{};
egl_t egl{};
platform_impl_t platform{};
ExtTable ext{};

namespace {

using ProcAddress = __eglMustCastToProperFunctionPointerType;

// Name of an extension function to what puts its address, null included, into its slot.
const auto& kExtSlots = *new std::unordered_map<std::string, void (*)(ProcAddress)>{
#define ORVEL_EXT_SLOT(name)                                                                                           \
    {                                                                                                                  \
#name, [](ProcAddress address) { ext.name = reinterpret_cast<decltype(ext.name)>(address); }                   \
    }
    ORVEL_EXT_SLOT(glShadingRateQCOM),
    ORVEL_EXT_SLOT(glShadingRateEXT),
    ORVEL_EXT_SLOT(glShadingRateCombinerOpsEXT),
    ORVEL_EXT_SLOT(glFramebufferShadingRateEXT),
    ORVEL_EXT_SLOT(glGetFragmentShadingRatesEXT),
#undef ORVEL_EXT_SLOT
};

template <typename R, typename... Args>
R GL_APIENTRY doNothing(Args...) {
    return R();
}

// A loader fills every entry, some drivers' tables have holes. Filling our copy here saves each hook a test per call.
void fillNullEntries(GlTable& table) {
    if (!table.glLabelObjectEXT) {
        table.glLabelObjectEXT = DummyLabelObjectEXT;
    }
#define GL_ENTRY(Result, name, params, args, providers)                                                                \
    if (!table.name) {                                                                                                 \
        table.name = doNothing;                                                                                        \
    }
#include <entries/gl_entries.in>
#undef GL_ENTRY
}

bool isMissing(const std::string& name) {
    const auto slot = kExtSlots.find(name);
    if (slot == kExtSlots.end()) {
        return true;
    }
    const ProcAddress address = egl.eglGetProcAddress ? egl.eglGetProcAddress(name.c_str()) : nullptr;
    slot->second(address);
    return address == nullptr;
}

} // namespace

void InitNextFunctions(egl_connection_t* cnx,
                       const std::function<void(const MissingTest& isMissing)>& checkExtensionFunctions) {
    gl = cnx->hooks[egl_connection_t::GLESv2_INDEX]->gl;
    platform = cnx->platform;
    egl = cnx->egl;
    fillNullEntries(gl);
    ext = {};
    if (checkExtensionFunctions) {
        checkExtensionFunctions(isMissing);
    }
}

bool HasExtensions(const char* name) {
    static std::mutex mutex;
    static auto& extensions = *new std::string; // never destroyed: a frame may end while the process ends
    const std::lock_guard lock(mutex);
    if (extensions.empty()) {
        const GLubyte* answer = platform.glGetString ? platform.glGetString(GL_EXTENSIONS) : nullptr;
        extensions = answer ? reinterpret_cast<const char*>(answer) : " ";
    }
    return extensions.find(name) != std::string::npos;
}

void GL_APIENTRY DummyLabelObjectEXT(GLenum, GLuint, GLsizei, const GLchar*) {}

} // namespace android::orvel::next
