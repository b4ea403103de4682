// A game of the framework on a driver that records, played through the entries that the library hooked.
#pragma once

#include "RecordingDriver.h"
#include "app/FrameworkProcess.h"
#include "app/OrvelProcessorBase.h"
#include "app/OrvelRenderContext.h"
#include "next/OrvelNext.h"
#include "next/effects/OrvelVisualEffectManager.h"
#include "settings/GameInfoMonitor.h"

#include <json/reader.h>

#include <cstring>
#include <sstream>
#include <string>

/** One per process. Its filters can be drawn: the driver takes every shader. */
class PlayedGame {
public:
    static constexpr GLsizei kGamesVertices = 6; // tells the game's draws from the filter's

    PlayedGame(android::OrvelApplicationType type, uint32_t modules, const char* json, const char* payload = "") {
        auto& data = beFramework(type, modules);
        Json::Value configuration;
        std::istringstream(json) >> configuration;
        data.ParsePayloadData(payload);
        for (const uint32_t id : data.GetModuleIds()) {
            data.InitProcessorModuleData(id, configuration);
        }
        takeEveryShader();
        android::orvel::next::InitNextFunctions(mDriver.connection());
        android::orvel::app::OrvelProcessorBase::RegisterGlobalHooks(mDriver.connection());
        monitor().setPackageName("game");
        mContext.InitApplicationProcessor();
        android::orvel::gContextTls = &mContext;
        mDriver.forget();
    }
    ~PlayedGame() { android::orvel::gContextTls = nullptr; }

    RecordingDriver& driver() { return mDriver; }
    const android::orvel::next::GlTable& gl() { return mDriver.gles2().gl; }
    template <typename Processor>
    Processor& processor() {
        return static_cast<Processor&>(*mContext.mProcessor);
    }

    /** Ends the frame while the tuning service reports that scene. */
    void swap(int scene) {
        monitor().parseGameSceneId("game", scene);
        mDriver.connection()->platform.eglSwapBuffers(nullptr, nullptr);
    }

    /** Ends empty frames of that scene until the green filter, which the player chose, can be drawn. */
    void loadFilter(int scene) {
        monitor().parseFilterConfig("game", 1, 100, 0);
        for (int frame = 0;
             frame < 100 && !processor<android::orvel::app::OrvelProcessorBase>().GetEffectManager()->EnableRender();
             ++frame) {
            swap(scene);
        }
        mDriver.forget();
    }

    /** Draws in the four ways in turn. */
    void draw() {
        switch (mDraws++ % 4) {
        case 0:
            return gl().glDrawElements(GL_TRIANGLES, kGamesVertices, GL_UNSIGNED_SHORT, nullptr);
        case 1:
            return gl().glDrawElementsInstanced(GL_TRIANGLES, kGamesVertices, GL_UNSIGNED_SHORT, nullptr, 1);
        case 2:
            return gl().glDrawArrays(GL_TRIANGLES, 0, kGamesVertices);
        default:
            return gl().glDrawArraysInstanced(GL_TRIANGLES, 0, kGamesVertices, 1);
        }
    }

    /** @return what was drawn since the last time: d a draw of the game, F the filter, | the swap */
    std::string drawn() {
        std::string trace;
        for (const std::string& made : mDriver.calls()) {
            if (made == call("glDrawArrays", GL_TRIANGLES, 0, 3)) {
                trace += 'F';
            } else if (made.starts_with("glDraw")) {
                trace += 'd';
            } else if (made.starts_with("platform.eglSwapBuffers")) {
                trace += '|';
            }
        }
        mDriver.forget();
        return trace;
    }

private:
    static android::GameInfoMonitor& monitor() { return android::GameInfoMonitor::getInstance(); }

    /** Every program links and has the uniform that filters look for. */
    void takeEveryShader() {
        using Table = android::orvel::next::GlTable;
        mDriver.answer<&Table::glCreateProgram>([] { return 5; });
        mDriver.answer<&Table::glCheckFramebufferStatus>([](GLenum) -> GLenum { return GL_FRAMEBUFFER_COMPLETE; });
        mDriver.answer<&Table::glGetShaderiv>([](GLuint, GLenum, GLint* value) { *value = 1; });
        mDriver.answer<&Table::glGetProgramiv>([](GLuint, GLenum, GLint* value) { *value = 1; });
        mDriver.answer<&Table::glGetProgramInterfaceiv>([](GLuint, GLenum, GLenum, GLint* count) { *count = 1; });
        mDriver.answer<&Table::glGetProgramResourceiv>(
            [](GLuint, GLenum, GLuint, GLsizei, const GLenum*, GLsizei, GLsizei*, GLint* values) { values[0] = 6; });
        mDriver.answer<&Table::glGetProgramResourceName>(
            [](GLuint, GLenum, GLuint, GLsizei, GLsizei*, GLchar* name) { std::memcpy(name, "param", 6); });
    }

    RecordingDriver mDriver;
    android::orvel::OrvelRenderContext mContext{this}; // goes before its driver
    int mDraws = 0;
};

/** A filter module's configuration. */
constexpr char kFilter[] = R"({"effect_Binary":"0;0;0;1;skip.*|s;result.*|result_.*","effect_Types":"1;1;1;1;1"})";
