// Advertises "GL_EXT_debug_label" to the application where the driver does not.
#include "hook/OrvelHook.h"

#include "hook/SavedEntries.h"

#include <string>

namespace android::orvel::hook::platformhook {

namespace {

constexpr char kDebugLabel[] = "GL_EXT_debug_label";

const GLubyte* bytes(const char* text) { return reinterpret_cast<const GLubyte*>(text); }

/** What the application is told. */
struct Extensions {
    std::string text;
    bool added; // the driver does not list it
};

const Extensions* ask() {
    const GLubyte* answer = sSaved.glGetString ? sSaved.glGetString(GL_EXTENSIONS) : nullptr;
    if (!answer) { // no context is current: what is decided now stays so all the same
        return new Extensions{kDebugLabel, true};
    }
    std::string text = reinterpret_cast<const char*>(answer);
    if (text.find(kDebugLabel) != std::string::npos) { // deliberate: a longer name counts as well
        return new Extensions{std::move(text), false};
    }
    return new Extensions{std::string(kDebugLabel) + " " + text, true};
}

/** Decided at the first query, and never freed: the application keeps the pointer that it is given. */
const Extensions& extensions() {
    static const Extensions* const decided = ask();
    return *decided;
}

} // namespace

const GLubyte* GL_APIENTRY PlatGetStringHooked(GLenum name) {
    if (name == GL_EXTENSIONS) {
        return bytes(extensions().text.c_str());
    }
    return sSaved.glGetString ? sSaved.glGetString(name) : nullptr;
}

const GLubyte* GL_APIENTRY PlatGetStringiHooked(GLenum name, GLuint index) {
    if (name == GL_EXTENSIONS && extensions().added) { // it is the first of the list
        if (index == 0) {
            return bytes(kDebugLabel);
        }
        --index;
    }
    return sSaved.glGetStringi ? sSaved.glGetStringi(name, index) : nullptr;
}

void GL_APIENTRY PlatGetIntegervHooked(GLenum pname, GLint* data) {
    if (sSaved.glGetIntegerv) {
        sSaved.glGetIntegerv(pname, data);
    }
    if (pname == GL_NUM_EXTENSIONS && extensions().added && data && sSaved.glGetIntegerv) {
        *data = static_cast<GLint>(static_cast<GLuint>(*data) + 1); // where the driver refused, it is any number
    }
}

} // namespace android::orvel::hook::platformhook
