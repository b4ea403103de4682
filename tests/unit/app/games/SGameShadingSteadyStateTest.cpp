#include "AllocationCounter.h"
#include "SGameShadingKeys.h"
#include "app/FrameworkProcess.h"
#include "app/games/sgame/OrvelSGameProcessor.h"
#include "next/OrvelNext.h"
#include "settings/GameInfoMonitor.h"

#include <gtest/gtest.h>

using namespace android;
using namespace android::orvel;

namespace {

int sRates = 0;

// Catches memory or a lock that is asked for while rates change from draw to draw.
TEST(SGameShadingSteadyState, AllocatesAndLocksNothing) {
    gl_hooks_t table{};
    egl_connection_t connection{};
    connection.hooks[egl_connection_t::GLESv2_INDEX] = &table;
    next::InitNextFunctions(&connection); // a driver that has nothing: each entry does nothing
    next::gl.glGetUniformLocation = [](GLuint, const GLchar*) { return 9; };
    next::ext.glShadingRateEXT = [](GLenum) { ++sRates; };
    beFramework(APP_TYPE_SGAME, 1).InitProcessorModuleData(1, shadingKeys({{"vrs_MotionDetection", "1"}}));
    auto& info = GameInfoMonitor::getInstance();
    info.setPackageName("game");
    info.parseGameSceneId("game", 7);
    info.parseGameVrsLevel(1);
    info.parseGamePictureInfo(8, 1);
    info.parseGamePictureInfo(10, 2);
    app::OrvelSGameProcessor game;
    game.OnBegin();
    GLfloat matrix[16] = {};
    const auto frames = [&](int count) {
        for (int frame = 0; frame < count; ++frame) {
            const char* const labels[] = {"pvp_melee", "f_hill", "floor", "another"};
            game.GlUseProgramHooked(5);
            matrix[12] += 1;
            game.GlUniform4fvHooked(9, 4, matrix);
            for (GLuint texture = 1; texture <= std::size(labels); ++texture) {
                game.GlLabelObjectEXTHooked(GL_TEXTURE, texture, 0, labels[texture - 1]);
                game.GlBindTextureHooked(GL_TEXTURE_2D, texture);
                game.GlDrawArraysHooked(GL_TRIANGLES, 0, 3);
            }
            game.FrameEnd();
            game.PostFrameEnd();
        }
    };
    frames(61); // to the second time that the settings are read
    sRates = 0;
    const size_t allocations = allocationsSoFar();
    const size_t locks = locksSoFar();
    frames(200);
    EXPECT_EQ(allocationsSoFar(), allocations);
    EXPECT_EQ(locksSoFar(), locks);
    EXPECT_EQ(sRates, 400);
    game.OnEnd();
}

} // namespace
