#include "RecordingDriver.h"

#include "next/OrvelNext.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <mutex>

using android::egl_t;
using android::platform_impl_t;
using GlTable = android::orvel::next::GlTable;

namespace recording {

namespace {

std::mutex sMutex;
Calls sCalls;
std::array<std::unique_ptr<AnswerBase>, sizeof(GlTable) / sizeof(void*)> sGlAnswers;
std::array<std::unique_ptr<AnswerBase>, sizeof(egl_t) / sizeof(void*)> sEglAnswers;
std::array<std::unique_ptr<AnswerBase>, sizeof(platform_impl_t) / sizeof(void*)> sPlatformAnswers;

/** One call of one entry: notes it, then gives the scripted answer, else zero. */
template <typename R>
struct Recorder {
    TableKind table;
    const char* name;
    size_t offset;

    template <typename... Args>
    R operator()(Args... args) const {
        note(table, name, {format(args)...});
        if (auto* scripted = static_cast<Answer<R, Args...>*>(answerAt(table, offset).get())) {
            return scripted->function(args...);
        }
        return R();
    }
};

#define GL_ENTRY(Result, name, params, args, providers)                                                                \
    Result GL_APIENTRY gl_##name params { return Recorder<Result>{TableKind::GL, #name, offsetof(GlTable, name)} args; }
#include <entries/gl_entries.in>
#undef GL_ENTRY

#define EGL_ENTRY(Result, name, params, args, providers)                                                               \
    Result EGLAPIENTRY egl_##name params {                                                                             \
        return Recorder<Result>{TableKind::EGL, #name, offsetof(egl_t, name)} args;                                    \
    }                                                                                                                  \
    Result EGLAPIENTRY platform_##name params {                                                                        \
        return Recorder<Result>{TableKind::PLATFORM, #name, offsetof(platform_impl_t, name)} args;                     \
    }
#include <entries/egl_entries.in>
#undef EGL_ENTRY

#define PLATFORM_QUERY(Result, name, params, args)                                                                     \
    Result GL_APIENTRY platform_##name params {                                                                        \
        return Recorder<Result>{TableKind::PLATFORM, #name, offsetof(platform_impl_t, name)} args;                     \
    }
PLATFORM_QUERY(void, glGetBooleanv, (GLenum pname, GLboolean* data), (pname, data))
PLATFORM_QUERY(void, glGetFloatv, (GLenum pname, GLfloat* data), (pname, data))
PLATFORM_QUERY(void, glGetIntegerv, (GLenum pname, GLint* data), (pname, data))
PLATFORM_QUERY(void, glGetInteger64v, (GLenum pname, GLint64* data), (pname, data))
PLATFORM_QUERY(const GLubyte*, glGetString, (GLenum name), (name))
PLATFORM_QUERY(const GLubyte*, glGetStringi, (GLenum name, GLuint index), (name, index))
#undef PLATFORM_QUERY

bool beginsLike(const std::string& made, std::initializer_list<const char*> beginnings) {
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [&](const char* beginning) { return made.starts_with(beginning); });
}

constinit const GlTable kGlTable = {
#define GL_ENTRY(Result, name, params, args, providers) gl_##name,
#include <entries/gl_entries.in>
#undef GL_ENTRY
};

constinit const egl_t kEglTable = {
#define EGL_ENTRY(Result, name, params, args, providers) egl_##name,
#include <entries/egl_entries.in>
#undef EGL_ENTRY
};

constinit const platform_impl_t kPlatformTable = {
#define EGL_ENTRY(Result, name, params, args, providers) platform_##name,
#include <entries/egl_entries.in>
#undef EGL_ENTRY
    platform_glGetBooleanv,   platform_glGetFloatv, platform_glGetIntegerv,
    platform_glGetInteger64v, platform_glGetString, platform_glGetStringi,
};

} // namespace

std::string formatPointer(const void* pointer) {
    char text[32];
    std::snprintf(text, sizeof text, "%p", pointer);
    return text;
}

std::string text(const std::string& name, std::initializer_list<std::string> args) {
    std::string line = name + "(";
    const char* separator = "";
    for (const std::string& arg : args) {
        line += separator + arg;
        separator = ", ";
    }
    return line + ")";
}

void note(TableKind table, const char* name, std::initializer_list<std::string> args) {
    const char* prefix = table == TableKind::EGL ? "egl." : table == TableKind::PLATFORM ? "platform." : "";
    const std::lock_guard lock(sMutex);
    sCalls.push_back(text(std::string(prefix) + name, args));
}

std::unique_ptr<AnswerBase>& answerAt(TableKind table, size_t offset) {
    const size_t index = offset / sizeof(void*);
    switch (table) {
    case TableKind::EGL:
        return sEglAnswers[index];
    case TableKind::PLATFORM:
        return sPlatformAnswers[index];
    default:
        return sGlAnswers[index];
    }
}

} // namespace recording

RecordingDriver::RecordingDriver()
    : mGles2{recording::kGlTable},
      mConnection{{nullptr, &mGles2}, 1, 5, recording::kEglTable, recording::kPlatformTable} {
    forget();
}

RecordingDriver::~RecordingDriver() {
    android::orvel::next::gl = {};
    android::orvel::next::egl = {};
    android::orvel::next::platform = {};
    android::orvel::next::ext = {};
}

std::unique_ptr<RecordingDriver> RecordingDriver::installed() {
    auto driver = std::make_unique<RecordingDriver>();
    android::orvel::next::InitNextFunctions(driver->connection());
    return driver;
}

Calls RecordingDriver::calls() const {
    const std::lock_guard lock(recording::sMutex);
    return recording::sCalls;
}

Calls RecordingDriver::callsWithout(std::initializer_list<const char*> beginnings) const {
    Calls all = calls();
    std::erase_if(all, [&](const std::string& made) { return recording::beginsLike(made, beginnings); });
    return all;
}

Calls RecordingDriver::callsOf(std::initializer_list<const char*> beginnings) const {
    Calls all = calls();
    std::erase_if(all, [&](const std::string& made) { return !recording::beginsLike(made, beginnings); });
    return all;
}

void RecordingDriver::forget() {
    const std::lock_guard lock(recording::sMutex);
    recording::sCalls.clear();
}
