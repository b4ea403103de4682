#include "next/OrvelNext.h"

#include <mutex>
#include <type_traits>
#include <unordered_map>

namespace android::orvel::next {

GlTable gl{};
egl_t egl{};
platform_impl_t platform{};
ExtTable ext{};

namespace {

using ProcAddress = __eglMustCastToProperFunctionPointerType;

template <auto Slot>
void store(ProcAddress address) {
    ext.*Slot = reinterpret_cast<std::remove_reference_t<decltype(ext.*Slot)>>(address);
}

// Name of an extension function to what puts its address, null included, into its slot.
const auto& kExtSlots = *new std::unordered_map<std::string, void (*)(ProcAddress)>{
    {"glShadingRateQCOM", store<&ExtTable::glShadingRateQCOM>},
    {"glShadingRateEXT", store<&ExtTable::glShadingRateEXT>},
    {"glShadingRateCombinerOpsEXT", store<&ExtTable::glShadingRateCombinerOpsEXT>},
    {"glFramebufferShadingRateEXT", store<&ExtTable::glFramebufferShadingRateEXT>},
    {"glGetFragmentShadingRatesEXT", store<&ExtTable::glGetFragmentShadingRatesEXT>},
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
    std::unique_lock lock(mutex);
    if (extensions.empty()) {
        lock.unlock(); // a driver may call the game from within our question
        const GLubyte* answer = platform.glGetString ? platform.glGetString(GL_EXTENSIONS) : nullptr;
        lock.lock();
        if (extensions.empty()) { // else another thread was first
            extensions = answer ? reinterpret_cast<const char*>(answer) : " ";
        }
    }
    return extensions.find(name) != std::string::npos;
}

void GL_APIENTRY DummyLabelObjectEXT(GLenum, GLuint, GLsizei, const GLchar*) {}

} // namespace android::orvel::next
