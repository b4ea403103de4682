#include "ShadingRateBench.h"

#include "Measure.h"
#include "ShadingRateFloors.h"
#include "app/OrvelApplicationUtils.h"
#include "app/OrvelProcessorBase.h"
#include "app/OrvelProcessorDataBase.h"
#include "app/OrvelRenderContext.h"
#include "app/VRSComponent.h"
#include "settings/GameInfoMonitor.h"
#include "settings/OrvelPrefs.h"
#include "settings/OrvelSettings.h"

#include <json/value.h>

#include <string>
#include <utility>
#include <vector>

using namespace android;
using namespace android::orvel;
using next::GlTable;

namespace {

constexpr uint32_t kShadingModule = 1;
constexpr GLuint kTextures = 64; // with a rate
constexpr int kFramesToSettings = 31;

gl_hooks_t sDirect;
gl_hooks_t sFloor;
gl_hooks_t sHooked;

/** Around one measurement: a processor with the shading module on this thread, and the floors in the same state. */
template <Shading State>
class ShadedGame {
public:
    ShadedGame() {
        next::ext.glShadingRateEXT = [](GLenum) {};
        app::VRSComponent::GetInstance().Init();
        configure();
        report(State == Shading::IDLE ? 4 : 7, State == Shading::ACTING ? 1 : 0);
        mContext.InitApplicationProcessor();
        gContextTls = &mContext;
        egl_connection_t connection{{nullptr, &sHooked}, 1, 5, {}, {}};
        app::RegisterProcessorModuleGlobalGLHooks(kShadingModule, &connection);
        app::RegisterProcessorGlobalGLHooks(&connection);
        label(500, "pvp_melee");
        for (GLuint texture = 1; texture <= kTextures; ++texture) {
            label(texture, texture % 2 ? "ground" : "far");
        }
        for (int frame = 0; frame < kFramesToSettings; ++frame) {
            mContext.mProcessor->FrameEnd();
            mContext.mProcessor->PostFrameEnd();
        }
        setShadingRateFloors(State, kTextures);
    }
    ~ShadedGame() {
        gContextTls = nullptr;
        mContext.mProcessor->OnEnd();
        delete std::exchange(mContext.mProcessor, nullptr);
        auto& settings = OrvelSettings::getInstance();
        delete std::exchange(settings.mPrefs, nullptr);
        settings.mApplicationType = APP_TYPE_NONE;
        report(0, 0);
    }

private:
    static void configure() {
        auto& settings = OrvelSettings::getInstance();
        settings.mApplicationType = APP_TYPE_SGAME;
        settings.mPrefs = new com::velmor::ravelo::OrvelPrefs;
        app::InitProcessorCreateInfo();
        settings.getProcessorData().InitModuleIdArray(kShadingModule);
        Json::Value parameters;
        parameters["vrs_LabelInfo"] = "far#far.*|f_\\d;ground#ground.*";
        parameters["vrs_LabelLevel"] = "1#44:far,22:ground$44,22,12,42;2#44:far,22:ground$12,22,42,44,12,22";
        settings.getProcessorData().InitProcessorModuleData(kShadingModule, parameters);
    }
    static void report(int scene, int level) {
        auto& info = GameInfoMonitor::getInstance();
        info.setPackageName("bench");
        info.parseGameSceneId("bench", scene);
        info.parseGameVrsLevel(level);
        info.parseGamePictureInfo(8, 1);
        info.parseGamePictureInfo(10, 2);
    }
    static void label(GLuint texture, const char* text) { sHooked.gl.glLabelObjectEXT(GL_TEXTURE, texture, 0, text); }

    OrvelRenderContext mContext{this};
};

void draw(const GlTable& t) { t.glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, nullptr); }
void bind(const GlTable& t) { t.glBindTexture(GL_TEXTURE_2D, 37); }
void bindAndDraw(const GlTable& t) {
    bind(t);
    draw(t);
}
/** Each draw has another rate than the one before. */
void changeRates(const GlTable& t) {
    bindAndDraw(t);
    t.glBindTexture(GL_TEXTURE_2D, 38);
    draw(t);
}

const Call kIdle[] = {{"VRS idle draw", draw}, {"VRS idle bind", bind}};
const Call kLearning[] = {{"VRS learning draw", draw}, {"VRS learning bind", bind}};
const Call kActing[] = {
    {"VRS acting draw", draw}, {"VRS acting bind and draw", bindAndDraw}, {"VRS acting 2 rate changes", changeRates}};
const Way kWays[] = {{"direct", &sDirect}, {"floor", &sFloor}, {"hook", &sHooked}};

void labelAll(const std::vector<std::string>& labels) {
    GLuint texture = 1000;
    for (const std::string& label : labels) {
        sHooked.gl.glLabelObjectEXT(GL_TEXTURE, texture++, static_cast<GLsizei>(label.size()), label.c_str());
    }
}

/** Textures of a battle: one in four has a rate. */
std::vector<std::string> textureLabels() {
    std::vector<std::string> labels;
    for (int i = 0; i < 1000; ++i) {
        labels.push_back((i % 4 ? "T_Character_" : "ground_") + std::to_string(i) + "_Diffuse");
    }
    return labels;
}

} // namespace

void connectShadingRate(const egl_connection_t& driver) {
    sDirect = sFloor = sHooked = *driver.hooks[egl_connection_t::GLESv2_INDEX];
    installShadingRateFloors(sFloor.gl);
}

void registerShadingRateTimes() {
    registerCalls<ShadedGame<Shading::IDLE>>(kIdle, kWays);
    registerCalls<ShadedGame<Shading::LEARNING>>(kLearning, kWays);
    registerCalls<ShadedGame<Shading::ACTING>>(kActing, kWays);
    benchmark::RegisterBenchmark("1000 textures learnt/again", [](benchmark::State& state) {
        const ShadedGame<Shading::LEARNING> game;
        const std::vector<std::string> labels = textureLabels();
        labelAll(labels);
        for (auto _ : state) {
            labelAll(labels);
        }
    });
    benchmark::RegisterBenchmark("1000 textures learnt/new", [](benchmark::State& state) {
        const std::vector<std::string> labels = textureLabels();
        for (auto _ : state) {
            state.PauseTiming();
            {
                const ShadedGame<Shading::LEARNING> game;
                state.ResumeTiming();
                labelAll(labels);
                state.PauseTiming();
            }
            state.ResumeTiming();
        }
    });
}

void countShadingRateInstructions() {
    countCalls<ShadedGame<Shading::IDLE>>(kIdle, kWays);
    countCalls<ShadedGame<Shading::LEARNING>>(kLearning, kWays);
    countCalls<ShadedGame<Shading::ACTING>>(kActing, kWays);
}
