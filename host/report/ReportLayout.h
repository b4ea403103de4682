// What a program under the rig leaves about itself: one of these structs in orvel/report.<pid> under the system root.
// The file is mapped while the program runs, so that it tells the truth also about a program that was killed.
#pragma once

#include <cstdint>

namespace android::rig {

/**
 * What is counted. To count one more thing add a row: name, name in the JSON. The rig's observers add to it with
 * count(NAME).
 */
#define ORVEL_COUNTERS(X)                                                                                              \
    X(PROGRAM_SWAPS, framesSwapped)                                                                                    \
    X(DRIVER_SWAPS, framesSwappedAtDriver)                                                                             \
    X(CONTEXTS, contextsCreated)                                                                                       \
    X(SHADERS, shadersSeen)                                                                                            \
    X(SHADERS_REWRITTEN, shadersRewritten)                                                                             \
    X(SHADER_BYTES_BEFORE, firstRewrittenShaderBytesBefore)                                                            \
    X(SHADER_BYTES_AFTER, firstRewrittenShaderBytesAfter)                                                              \
    X(SWITCHES, resolutionSwitches)                                                                                    \
    X(TEXTURES_REPLACED, texturesReplaced)                                                                             \
    X(FRAMES_REPEATED, framesRepeated)                                                                                 \
    X(WINDOW_CHANGES, windowBufferChanges)                                                                             \
    X(DRAWS, drawsWatched)                                                                                             \
    X(COARSE_DRAWS, drawsAtCoarseRate)

#define ORVEL_COUNTER_NAME(name, jsonName) name,
enum Counter { ORVEL_COUNTERS(ORVEL_COUNTER_NAME) COUNTER_COUNT };
#undef ORVEL_COUNTER_NAME

/** Why the library is not enabled; the text is what a reader of the report sees. */
#define ORVEL_REASONS(X)                                                                                               \
    X(NO_REASON, "")                                                                                                   \
    X(NOT_LISTED, "package %s is not listed")                                                                          \
    X(SERVICE_ABSENT, "the service is absent")                                                                         \
    X(CALL_FAILED, "the call of the service failed")                                                                   \
    X(SERVICE_EXCEPTION, "the service answered an exception")                                                          \
    X(EMPTY_ANSWER, "the service has no configuration for %s")                                                         \
    X(NO_GLES_TABLE, "there is no GLES table")

#define ORVEL_REASON_NAME(name, text) name,
enum Reason : uint32_t { ORVEL_REASONS(ORVEL_REASON_NAME) REASON_COUNT };
#undef ORVEL_REASON_NAME

enum Layer : uint32_t { LAYER_NONE, LAYER_LEGACY, LAYER_FRAMEWORK, LAYER_COUNT };

/** Texts end with a NUL; one that is too long is cut. */
struct ReportLayout {
    static constexpr char kMagic[8] = {'o', 'r', 'v', 'e', 'l', 'r', 'p', '1'};
    static constexpr uint32_t kMaxHooks = 160; // names; the number of hooks itself has no limit

    char magic[8]; // written last, when the rest makes sense
    uint32_t size; // of this struct: a reader of another build keeps away
    int32_t pid;
    char program[256];
    char package[256];

    uint32_t libraryLoaded;
    uint32_t enabled;
    Reason reason;
    Layer layer;
    char framework[256];      // processor and modules, as the library logged them
    char libraryProblem[256]; // why it was not loaded

    int32_t binderLookups;
    int32_t binderFound;
    int32_t binderTransactions;
    int32_t binderStatus;     // of the last call
    int32_t binderException;  // of the last answer
    int32_t binderReplyBytes; // of the last answer

    uint32_t hookCount;
    char hooks[kMaxHooks][48]; // "glViewport", "platform.eglSwapBuffers", "egl.eglGetProcAddress"

    char renderer[128];
    char version[128];
    uint32_t windowWidth; // of the buffers after the last change; 0 when there was none
    uint32_t windowHeight;
    uint64_t counters[COUNTER_COUNT];
};

} // namespace android::rig
