#include "DynamicResolution.h"

#include "base/OrvelClock.h"
#include "legacy/OrvelDRR.h"
#include "settings/orvel_modify_params.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <unistd.h>
#include <vector>

using namespace android;
using com::velmor::ravelo::TEX_SIZE;
namespace next = android::orvel::next;

// Time as the switches need it: every look at the clock finds a second gone, so none waits for the next.
int64_t orvel::monotonicNanos() {
    static int64_t now = 0;
    return now += 1'000'000'000;
}
void orvel::sleepMicros(int64_t) {}

namespace {

constexpr GLuint kNone = ~0u;
constexpr TEX_SIZE kBase{1920, 1080};
constexpr TEX_SIZE kSizes[] = {{960, 540}, {1280, 720}};
constexpr GLenum kPlaces[] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1, GL_COLOR_ATTACHMENT2, GL_DEPTH_ATTACHMENT,
                              GL_STENCIL_ATTACHMENT};

void GL_APIENTRY genTextures(GLsizei n, GLuint* names) {
    static GLuint next = 1000;
    for (GLsizei i = 0; i < n; ++i) {
        names[i] = next++;
    }
}

std::string watchedFile() {
    static const std::string root = [] {
        const std::string path = std::filesystem::temp_directory_path() / ("orvel-bench-" + std::to_string(getpid()));
        std::filesystem::create_directories(path + "/data/system/mcd");
        setenv("ORVEL_ROOT", path.c_str(), 1);
        std::atexit([] { std::filesystem::remove_all(std::getenv("ORVEL_ROOT")); });
        return path;
    }();
    return root + "/data/system/mcd/dr";
}

// What the floors keep: the state that the feature must keep to do the same.
struct Detail {
    GLuint format;
    GLuint newTex;
};
struct Floor {
    bool enable = true;
    std::map<GLuint, Detail> details;
    std::vector<TEX_SIZE> bases{kBase};
    GLuint current = 0;
    GLuint restore = kNone;
    bool restoreBound = false;
    TEX_SIZE origin{-1, -1};
    TEX_SIZE applied = kSizes[0];
};
Floor* sFloor = nullptr;

Floor* floorOn() {
    Floor* const floor = sFloor;
    return mEnableDynamicResolution && floor && floor->enable ? floor : nullptr;
}

void rewrite(Floor& floor, GLint& width, GLint& height) {
    for (const TEX_SIZE& base : floor.bases) {
        if (base.width == width && base.height == height) {
            floor.origin = base;
            if (floor.applied.width != -1 && floor.applied.height != -1) {
                width = floor.applied.width;
                height = floor.applied.height;
            }
            return;
        }
    }
}

void GL_APIENTRY floorBindTexture(GLenum target, GLuint texture) {
    if (Floor* floor = floorOn()) {
        floor->current = texture;
        if (texture == floor->restore) {
            floor->restoreBound = true;
        }
        const auto detail = floor->details.find(texture);
        if (detail != floor->details.end() && detail->second.newTex != kNone) {
            texture = detail->second.newTex;
        }
    }
    if (mEnableHkrpgSceneRecognize || mEnableYSSceneRecognize) {
        std::abort();
    }
    next::gl.glBindTexture(target, texture);
}

void GL_APIENTRY floorViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
    if (Floor* floor = floorOn()) {
        rewrite(*floor, width, height);
    }
    next::gl.glViewport(x, y, width, height);
}

bool isInverse(float a, double b) { return std::abs(a - b) < 0.0001; }

void GL_APIENTRY floorUniform4fv(GLint location, GLsizei count, const GLfloat* value) {
    Floor* floor = floorOn();
    if (!floor || count != 1) {
        next::gl.glUniform4fv(location, count, value);
        return;
    }
    GLfloat copy[4] = {value[0], value[1], value[2], value[3]};
    if (copy[0] > 2 && copy[1] > 2 && copy[2] > 1 && copy[2] < 2 && copy[3] > 1 && copy[3] < 2 &&
        isInverse(copy[2], 1.0 / copy[0] + 1.0) && isInverse(copy[3], 1.0 / copy[1] + 1.0)) {
        GLint width = static_cast<GLint>(copy[0]);
        GLint height = static_cast<GLint>(copy[1]);
        rewrite(*floor, width, height);
        if (static_cast<GLfloat>(width) != copy[0] && static_cast<GLfloat>(height) != copy[1]) {
            copy[0] = static_cast<GLfloat>(width);
            copy[1] = static_cast<GLfloat>(height);
            copy[2] = 1 + 1 / copy[0];
            copy[3] = 1 + 1 / copy[1];
        }
    }
    next::gl.glUniform4fv(location, count, copy);
}

} // namespace

void nameTextures(next::GlTable& driver) { driver.glGenTextures = genTextures; }

void playGame(const next::GlTable& hooked, int textures) {
    watchedFile(); // the feature reads where the root is
    mEnableDynamicResolution = true;
    mOrvelDRR = new orvel::OrvelDRR(true, false, "com.miHoYo.Yuanshen", 10, {kBase}, {kSizes[0], kSizes[1]}, {});
    for (int i = 0; i < textures; ++i) {
        const GLuint texture = static_cast<GLuint>(i) + 1;
        hooked.glBindTexture(GL_TEXTURE_2D, texture);
        hooked.glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, kBase.width, kBase.height);
        hooked.glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(i / 5) + 1);
        hooked.glFramebufferTexture2D(GL_FRAMEBUFFER, kPlaces[i % 5], GL_TEXTURE_2D, texture, 0);
    }
    switchResolution();
}

void switchResolution() {
    static int turn = 0;
    const TEX_SIZE size = kSizes[turn++ % 2];
    std::ofstream(watchedFile()) << "com.miHoYo.Yuanshen " << size.width << ' ' << size.height << '\n';
    drrOnEglSwapBuffersEnd();
}

void installDynamicResolutionFloors(next::GlTable& table, int textures) {
    sFloor = new Floor;
    for (GLuint texture = 1; texture <= static_cast<GLuint>(textures); ++texture) {
        sFloor->details[texture] = {GL_RGBA8, texture + 1000};
    }
    table.glBindTexture = floorBindTexture;
    table.glViewport = floorViewport;
    table.glUniform4fv = floorUniform4fv;
}

void endGame() {
    mEnableDynamicResolution = false;
    delete mOrvelDRR;
    mOrvelDRR = nullptr;
}
