#include "SGameBench.h"

#include "Measure.h"
#include "SGameFloors.h"
#include "app/OrvelApplicationUtils.h"
#include "app/OrvelProcessorBase.h"
#include "app/OrvelProcessorDataBase.h"
#include "app/OrvelRenderContext.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"

#include <json/value.h>

#include <regex>
#include <string>
#include <utility>
#include <vector>

using namespace android;
using namespace android::orvel;
using next::GlTable;

namespace {

constexpr uint32_t kFilterModule = 2;
constexpr GLuint kTextures = 64; // of the lobby, and as many of result screens
constexpr size_t kLabels = 10'000;

gl_hooks_t sDirect;
gl_hooks_t sFloor;
gl_hooks_t sHooked;

/** Forty patterns as configurations have them: whole labels, beginnings, a digit somewhere, a word inside. */
std::vector<std::string> patterns() {
    std::vector<std::string> all;
    for (int i = 0; i < 10; ++i) {
        const std::string number = std::to_string(i);
        all.push_back("UI_Atlas_Page_" + number);
        all.push_back("Scene_" + number + "_.*");
        all.push_back("pvp_\\d_map_" + number);
        all.push_back(".*_Main" + number + "_color.*");
    }
    return all;
}

std::string payload() {
    std::string list;
    for (const std::string& pattern : patterns()) {
        list += (list.empty() ? "" : "|") + pattern;
    }
    return "lobby:lobby;pick_hero-UI:" + list + "#clear";
}

/** Labels as a game gives them: one in twenty is in a list. No two are alike. */
std::vector<std::string> labels() {
    std::vector<std::string> all;
    for (size_t i = 0; i < kLabels; ++i) {
        const std::string number = std::to_string(i);
        switch (i % 80) {
        case 0:
            all.push_back("Scene_5_" + number);
            break;
        case 20:
            all.push_back("Hero_Main7_color_" + number);
            break;
        case 40:
            all.push_back("pvp_" + number + "_map_3"); // matches while the number is one digit
            break;
        case 60:
            all.push_back("UI_Atlas_Page_" + std::to_string(i % 10));
            break;
        default:
            all.push_back("T_Character_" + number + "_Diffuse_LOD" + std::to_string(i % 3));
            break;
        }
    }
    return all;
}

/** Around one measurement: a processor with a filter on this thread, in the lobby. */
class SGame {
public:
    SGame() {
        auto& settings = OrvelSettings::getInstance();
        settings.mApplicationType = APP_TYPE_SGAME;
        settings.mPrefs = new com::velmor::ravelo::OrvelPrefs;
        app::InitProcessorCreateInfo();
        auto& data = settings.getProcessorData();
        data.InitModuleIdArray(kFilterModule);
        data.ParsePayloadData(payload());
        Json::Value parameters;
        parameters["effect_Binary"] = "0;0;0;10;skip;result";
        data.InitProcessorModuleData(kFilterModule, parameters);
        mContext.InitApplicationProcessor();
        gContextTls = &mContext;
        app::RegisterProcessorGlobalGLHooks(&mConnection);
        for (GLuint texture = 1; texture <= kTextures; ++texture) {
            for (const char* label : {"lobby", "result"}) {
                sHooked.gl.glLabelObjectEXT(GL_TEXTURE, texture, 0, label);
            }
        }
    }
    ~SGame() {
        gContextTls = nullptr;
        mContext.mProcessor->OnEnd();
        delete std::exchange(mContext.mProcessor, nullptr);
        auto& settings = OrvelSettings::getInstance();
        delete std::exchange(settings.mPrefs, nullptr);
        settings.mApplicationType = APP_TYPE_NONE;
    }

private:
    egl_connection_t mConnection{{nullptr, &sHooked}, 1, 5, {}, {}};
    OrvelRenderContext mContext{this};
};

const Call kCalls[] = {
    {"SGame draw", [](const GlTable& t) { t.glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, nullptr); }},
    {"SGame bind", [](const GlTable& t) { t.glBindTexture(GL_TEXTURE_2D, 500); }}, // of any texture
};
const Way kWays[] = {{"direct", &sDirect}, {"floor", &sFloor}, {"hook", &sHooked}};

void labelAll(const std::vector<std::string>& all) {
    GLuint texture = 1000;
    for (const std::string& label : all) {
        sHooked.gl.glLabelObjectEXT(GL_TEXTURE, texture++, static_cast<GLsizei>(label.size()), label.c_str());
    }
}

void registerLabels() {
    benchmark::RegisterBenchmark("10000 labels 40 patterns/new", [](benchmark::State& state) {
        const std::vector<std::string> all = labels();
        for (auto _ : state) {
            state.PauseTiming();
            {
                const SGame game;
                state.ResumeTiming();
                labelAll(all);
                state.PauseTiming();
            }
            state.ResumeTiming();
        }
    });
    benchmark::RegisterBenchmark("10000 labels 40 patterns/again", [](benchmark::State& state) {
        const SGame game;
        const std::vector<std::string> all = labels();
        labelAll(all);
        for (auto _ : state) {
            labelAll(all);
        }
    });
    benchmark::RegisterBenchmark("10000 labels 40 patterns/regex", [](benchmark::State& state) {
        std::vector<std::regex> plain;
        for (const std::string& pattern : patterns()) {
            plain.emplace_back(pattern);
        }
        const std::vector<std::string> all = labels();
        for (auto _ : state) {
            for (const std::string& label : all) {
                for (const std::regex& regex : plain) {
                    if (std::regex_match(label, regex)) {
                        break;
                    }
                }
            }
        }
    });
}

} // namespace

void connectSGame(const egl_connection_t& driver) {
    sDirect = sFloor = sHooked = *driver.hooks[egl_connection_t::GLESv2_INDEX];
    installSGameFloors(sFloor.gl);
    setSGameFloorTextures(kTextures);
}

void registerSGameTimes() {
    registerCalls<SGame>(kCalls, kWays);
    registerLabels();
}

void countSGameInstructions() { countCalls<SGame>(kCalls, kWays); }
