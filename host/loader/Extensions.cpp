#include "Extensions.h"

#include "HiddenExtensions.h"
#include "MultisampledTextures.h"
#include "ShadingRate.h"

#include <map>
#include <mutex>
#include <sstream>
#include <unordered_set>
#include <vector>

namespace android::rig {

namespace {

GlTable sDriver{}; // what the edited entries call; written at the start

std::vector<std::string> words(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> result;
    for (std::string word; stream >> word;) {
        result.push_back(std::move(word));
    }
    return result;
}

std::string offeredExtensions() {
    return std::string(offeredShadingRateExtensions()) + ' ' + offeredMultisampledExtension();
}

struct Edited {
    std::string whole;
    std::vector<std::string> each;
};

/** @return the edited list of the current context; null without one */
const Edited* editedList() {
    static std::mutex mutex;
    static auto& known = *new std::map<std::string, Edited>; // by the driver's list; programs keep our pointers
    const GLubyte* list = sDriver.glGetString(GL_EXTENSIONS);
    if (!list) {
        return nullptr;
    }
    const std::lock_guard lock(mutex);
    const auto [found, isNew] = known.try_emplace(reinterpret_cast<const char*>(list));
    Edited& edited = found->second;
    if (isNew) {
        edited.whole = editExtensions(found->first);
        edited.each = words(edited.whole);
    }
    return &edited;
}

const GLubyte* asGl(const std::string& text) { return reinterpret_cast<const GLubyte*>(text.c_str()); }

const GLubyte* GL_APIENTRY getString(GLenum name) {
    const Edited* edited = name == GL_EXTENSIONS ? editedList() : nullptr;
    return edited ? asGl(edited->whole) : sDriver.glGetString(name);
}

const GLubyte* GL_APIENTRY getStringi(GLenum name, GLuint index) {
    const Edited* edited = name == GL_EXTENSIONS ? editedList() : nullptr;
    if (!edited) {
        return sDriver.glGetStringi(name, index);
    }
    // An index too large goes to the driver for its error, with one that is too large for every driver.
    return index < edited->each.size() ? asGl(edited->each[index]) : sDriver.glGetStringi(name, ~0u);
}

template <auto Slot, typename T>
void GL_APIENTRY getNumber(GLenum name, T* data) {
    const Edited* edited = name == GL_NUM_EXTENSIONS && data ? editedList() : nullptr;
    if (edited) {
        *data = static_cast<T>(edited->each.size());
    } else {
        (sDriver.*Slot)(name, data);
    }
}

} // namespace

std::string editExtensions(const std::string& list) {
    const std::vector<std::string> hidden = hiddenExtensions();
    std::unordered_set<std::string> done(hidden.begin(), hidden.end());
    std::string edited;
    for (const std::string& extension : words(list + ' ' + offeredExtensions())) {
        if (done.insert(extension).second) { // neither hidden nor listed already
            edited += (edited.empty() ? "" : " ") + extension;
        }
    }
    return edited;
}

void editExtensionStrings(GlTable* gl) {
    const bool isEdited = !hiddenExtensions().empty() || !words(offeredExtensions()).empty();
    if (!isEdited || !gl->glGetString || !gl->glGetStringi || !gl->glGetIntegerv || !gl->glGetInteger64v) {
        return;
    }
    sDriver = *gl;
    gl->glGetString = getString;
    gl->glGetStringi = getStringi;
    gl->glGetIntegerv = getNumber<&GlTable::glGetIntegerv, GLint>;
    gl->glGetInteger64v = getNumber<&GlTable::glGetInteger64v, GLint64>;
}

} // namespace android::rig
