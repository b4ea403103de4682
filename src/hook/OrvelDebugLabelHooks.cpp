// Advertises "GL_EXT_debug_label" to the application where the driver does not.
#include "hook/OrvelHook.h"

#include "base/OrvelGuard.h"
#include "hook/SavedEntries.h"

#include <atomic>
#include <memory>
#include <string>
#include <utility>

namespace android::orvel::hook::platformhook {

namespace {

constexpr char kDebugLabel[] = "GL_EXT_debug_label";

const GLubyte* bytes(const char* text) { return reinterpret_cast<const GLubyte*>(text); }

/** What the application is told. */
struct Extensions {
    std::string text;
    bool added; // the driver does not list it
};

Extensions ask() {
    const GLubyte* answer = sSaved.glGetString ? sSaved.glGetString(GL_EXTENSIONS) : nullptr;
    if (!answer) { // no context is current: what is decided now stays so all the same
        return {kDebugLabel, true};
    }
    std::string text = reinterpret_cast<const char*>(answer);
    if (text.find(kDebugLabel) != std::string::npos) { // deliberate: a longer name counts as well
        return {std::move(text), false};
    }
    return {std::string(kDebugLabel) + " " + text, true};
}

/**
 * Decided at the first query, and never freed: the application keeps the pointer that it is given. Decided without a
 * lock: the driver may call the application from within our question, and that may ask for extensions, too.
 * @return null when there is no memory to decide
 */
const Extensions* extensions() {
    static constinit std::atomic<const Extensions*> sDecided{nullptr};
    const Extensions* decided = sDecided.load(std::memory_order_acquire);
    if (!decided) {
        guarded("list of extensions", [&decided] {
            auto made = std::make_unique<const Extensions>(ask());
            if (sDecided.compare_exchange_strong(decided, made.get(), std::memory_order_acq_rel)) {
                decided = made.release();
            }
        });
    }
    return decided;
}

bool isAdded() {
    const Extensions* const known = extensions();
    return known && known->added;
}

} // namespace

const GLubyte* GL_APIENTRY PlatGetStringHooked(GLenum name) {
    if (name == GL_EXTENSIONS) {
        if (const Extensions* const known = extensions()) {
            return bytes(known->text.c_str());
        }
    }
    return sSaved.glGetString ? sSaved.glGetString(name) : nullptr;
}

const GLubyte* GL_APIENTRY PlatGetStringiHooked(GLenum name, GLuint index) {
    if (name == GL_EXTENSIONS && isAdded()) { // it is the first of the list
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
    if (pname == GL_NUM_EXTENSIONS && isAdded() && data && sSaved.glGetIntegerv) {
        *data = static_cast<GLint>(static_cast<GLuint>(*data) + 1); // where the driver refused, it is any number
    }
}

} // namespace android::orvel::hook::platformhook
