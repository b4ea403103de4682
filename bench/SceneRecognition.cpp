#include "SceneRecognition.h"

#include "legacy/SceneRecognizer.h"
#include "settings/orvel_modify_params.h"

#include <cstdlib>
#include <cstring>

using namespace android;
namespace next = android::orvel::next;

namespace {

constexpr int32_t kTransfer[] = {6, 108, -1, 6, 6, 6, 420};
constexpr int32_t kLaunch[] = {6, 60, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 6, 420};

// What the floors keep: the state that the recogniser must keep to find the same.
struct State {
    int32_t sizes[4] = {1024, 1024, 4, 4};
    int32_t counts[4] = {};
    int32_t hpCounts[5] = {};
    int32_t bosses = 0;
    int32_t transfers = 0;
    int32_t launches = 0;
    int32_t transferIndex = -1;
    int32_t launchIndex = -1;
};
State* sState = nullptr;

template <size_t N>
void append(int32_t (&history)[N], int32_t value) {
    int32_t kept[N - 1];
    std::memcpy(kept, history + 1, sizeof kept);
    std::memcpy(history, kept, sizeof kept);
    history[N - 1] = value;
}

template <size_t N>
void match(const int32_t (&pattern)[N], int32_t wildcard, int32_t& index, int32_t& found, int32_t count) {
    if (count <= 0 || index < 0) {
        if (count == 0 && index < 1) {
            index = 0;
        }
    } else if (index != wildcard && count != pattern[index]) {
        index = -1;
    } else if (++index == static_cast<int32_t>(N)) {
        index = -1;
        ++found;
    }
}

void GL_APIENTRY floorDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices) {
    if (mEnableShadingRate) {
        std::abort();
    }
    if (State* state = sState) {
        if (mEnableYSSceneRecognize) {
            const int32_t* sizes = state->sizes;
            const int32_t* e = state->counts;
            if (sizes[0] == 1024 && sizes[1] == 1024 && sizes[2] == 4 && sizes[3] == 4 &&
                ((e[1] == 162 && e[2] == 54 && e[3] == 54) ||
                 (e[0] == 162 && e[1] == 54 && e[2] % 6 == 0 && e[3] == 54))) {
                ++state->bosses;
            }
            append(state->counts, count);
        }
        if (mEnableYSTransferRecognize) {
            match(kTransfer, 2, state->transferIndex, state->transfers, count);
        }
        if (mEnableYSLaunchRecognize) {
            match(kLaunch, -1, state->launchIndex, state->launches, count);
        }
        if (mEnableHPTransferRecognize) {
            if (count > 0) {
                append(state->hpCounts, count);
            } else if (count == 0 && state->hpCounts[0] == 6 && state->hpCounts[1] == 6 && state->hpCounts[2] == 6 &&
                       state->hpCounts[3] == 12) {
                ++state->transfers;
            }
        }
    }
    next::gl.glDrawElements(mode, count, type, indices);
}

void GL_APIENTRY floorClear(GLbitfield mask) {
    if (State* state = sState) {
        if (mEnableYSTransferRecognize) {
            match(kTransfer, 2, state->transferIndex, state->transfers, 0);
        }
        if (mEnableYSLaunchRecognize) {
            match(kLaunch, -1, state->launchIndex, state->launches, 0);
        }
    }
    next::gl.glClear(mask);
}

void GL_APIENTRY answerSize(GLenum, GLint, GLenum, GLint* value) {
    static int turn = 0; // width and height of a large texture, then of a small one
    *value = turn++ % 4 < 2 ? 1024 : 4;
}

void switchRecognisers(bool on) {
    for (bool* recogniser : {&mEnableYSSceneRecognize, &mEnableYSTransferRecognize, &mEnableYSLaunchRecognize,
                             &mEnableHkrpgSceneRecognize, &mEnableHPTransferRecognize}) {
        *recogniser = on;
    }
}

} // namespace

void recogniseScenes(const next::GlTable& hooked) {
    switchRecognisers(true);
    mSceneRecognizer = new SceneRecognizer;
    hooked.glBindTexture(GL_TEXTURE_2D, 1);
    hooked.glBindTexture(GL_TEXTURE_2D, 2);
}

void endRecognition() {
    switchRecognisers(false);
    mSceneRecognizer = nullptr;
}

void installRecognitionFloors(next::GlTable& table) {
    sState = new State;
    table.glDrawElements = floorDrawElements;
    table.glClear = floorClear;
}

void sizeTextures(next::GlTable& driver) { driver.glGetTexLevelParameteriv = answerSize; }
