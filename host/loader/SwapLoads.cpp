#include "SwapLoads.h"

#include "Report.h"

#include <exception>
#include <string>

namespace android::rig {

namespace {

#define ORVEL_LOADS(X)                                                                                                 \
    X(glCompileShader)                                                                                                 \
    X(glCreateProgram)                                                                                                 \
    X(glGenBuffers)                                                                                                    \
    X(glGenTextures)                                                                                                   \
    X(glGenVertexArrays)                                                                                               \
    X(glLinkProgram)                                                                                                   \
    X(glMapBufferRange)                                                                                                \
    X(glProgramBinary)                                                                                                 \
    X(glTexImage2D)                                                                                                    \
    X(glTexStorage2D)                                                                                                  \
    X(glTexSubImage2D)

#define ORVEL_LOAD_NAME(name) LOAD_##name,
enum LoadEntry { ORVEL_LOADS(ORVEL_LOAD_NAME) };
#undef ORVEL_LOAD_NAME
#define ORVEL_LOAD_TEXT(name) #name,
constexpr const char* kLoadNames[] = {ORVEL_LOADS(ORVEL_LOAD_TEXT)};
#undef ORVEL_LOAD_TEXT

GlTable sDriver{}; // what the observers call; written at the start

struct Loads {
    bool isSwapping = false;
    std::string calls; // names in quotes, separated by commas
};

Loads& current() {
    static thread_local auto& loads = *new Loads; // threads draw until the end
    return loads;
}

void note(LoadEntry entry) {
    Loads& loads = current();
    if (!loads.isSwapping) {
        return;
    }
    try {
        loads.calls += std::string(loads.calls.empty() ? "\"" : ", \"") + kLoadNames[entry] + '"';
    } catch (const std::exception&) {
        // out of memory: the program needs it more
    }
}

template <auto Slot, LoadEntry Name>
struct Load;
template <typename R, typename... Params, R (*GlTable::*Slot)(Params...), LoadEntry Name>
struct Load<Slot, Name> {
    static R GL_APIENTRY call(Params... params) {
        note(Name);
        return (sDriver.*Slot)(params...);
    }
};

} // namespace

void observeLoads(GlTable* gl) {
    if (!isReporting()) {
        return;
    }
    sDriver = *gl;
#define ORVEL_OBSERVE(name)                                                                                            \
    if (gl->name) {                                                                                                    \
        gl->name = Load<&GlTable::name, LOAD_##name>::call;                                                            \
    }
    ORVEL_LOADS(ORVEL_OBSERVE)
#undef ORVEL_OBSERVE
}

void beginLoads() {
    if (isReporting()) {
        current().isSwapping = true;
    }
}

void endLoads() {
    if (!isReporting()) {
        return;
    }
    Loads& loads = current();
    loads.isSwapping = false;
    if (loads.calls.empty()) {
        return;
    }
    try {
        appendBesideReport("loads", ".jsonl",
                           "{\"frame\": " + std::to_string(countOf(PROGRAM_SWAPS) + 1) + ", \"calls\": [" +
                               loads.calls + "]}\n");
    } catch (const std::exception&) {
        // as above
    }
    loads.calls.clear();
}

} // namespace android::rig
