// A game that calls whatever it likes, through the tables that the library has hooked. Every call must reach the
// driver, and only once, unless the library's features say otherwise.
#include "CountingDriver.h"
#include "Fuzz.h"

#include "DesktopBinder.h"
#include "EveryGame.h"
#include "loader/OrvelLoader.h"
#include "settings/FakeRavelo.h"
#include "settings/GameInfoMonitor.h"

#include <climits>
#include <cstring>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

using namespace android;
using fuzz::GlTable;

namespace {

constexpr EveryGame kGame = kEveryGame[ORVEL_FUZZ_GAME];
const std::string kPackage = kGame.package;

egl_connection_t sConnection{};
gl_hooks_t sGles2{};
gl_hooks_t sDriver{}; // as it was before the library came
OrvelStub* sLibrary = nullptr;

// What the features look for, beside small numbers.
constexpr uint32_t kNumbers[] = {0,
                                 1,
                                 4,
                                 6,
                                 30,
                                 54,
                                 60,
                                 108,
                                 162,
                                 420,
                                 136,
                                 180,
                                 240,
                                 320,
                                 270,
                                 480,
                                 0xffffffff,
                                 0x7fffffff,
                                 GL_TEXTURE_2D,
                                 GL_FRAMEBUFFER,
                                 GL_DRAW_FRAMEBUFFER,
                                 GL_READ_FRAMEBUFFER,
                                 GL_COLOR_ATTACHMENT0,
                                 GL_DEPTH_ATTACHMENT,
                                 GL_STENCIL_ATTACHMENT,
                                 GL_DEPTH_STENCIL_ATTACHMENT,
                                 GL_TEXTURE,
                                 GL_PROGRAM_OBJECT_EXT,
                                 GL_BLEND,
                                 GL_DEPTH_TEST,
                                 GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT,
                                 GL_SRC_ALPHA,
                                 GL_ONE_MINUS_SRC_ALPHA,
                                 GL_TEXTURE0,
                                 GL_TEXTURE0 + 3,
                                 GL_TRIANGLES,
                                 GL_UNSIGNED_SHORT,
                                 GL_RGBA8,
                                 GL_DEPTH24_STENCIL8,
                                 GL_TEXTURE_MAX_ANISOTROPY_EXT,
                                 GL_COLOR_BUFFER_BIT};
constexpr const char* kTexts[] = {"",
                                  "lobby_banner",
                                  "hero_stage",
                                  "hero_list_ui",
                                  "battle_hud",
                                  "pvp_5_small",
                                  "SGame_Main_color_0",
                                  "scene_ground_d",
                                  "result_title",
                                  "hero_skin_preview",
                                  "Hidden/Internal-Clear",
                                  "SceneColorMobile",
                                  "T_CrossHairNormal",
                                  "LoadingUI_Atlas",
                                  "Dynamic Sky/Cube Ground Cloud",
                                  "CameraDesc",
                                  "Hidden/PostProcessing/Copy",
                                  "precision mediump float; void main() {}",
                                  "Minimap_Chap02_ADV_City_BackGround"};
constexpr int kMostElements = 16; // in an array that a call points to

uint32_t sElements[kMostElements * 16]; // what pointers point to
char sText[256];
const char* sTexts[kMostElements];

/** Fills one argument. */
template <typename T>
T argument(FuzzedDataProvider& input, bool hasArray) {
    if constexpr (std::is_same_v<T, const GLchar*>) {
        std::snprintf(sText, sizeof sText, "%s", input.PickValueInArray(kTexts));
        return input.ConsumeIntegralInRange(0, 15) == 0 ? nullptr : sText;
    } else if constexpr (std::is_same_v<T, const GLchar* const*>) {
        std::snprintf(sText, sizeof sText, "%s", input.PickValueInArray(kTexts));
        std::fill(std::begin(sTexts), std::end(sTexts), sText);
        return sTexts;
    } else if constexpr (std::is_pointer_v<T>) {
        if constexpr (!std::is_function_v<std::remove_pointer_t<T>>) {
            for (int i = 0; i < 4; ++i) {
                sElements[i] = input.ConsumeIntegralInRange<uint32_t>(0, 9);
            }
            return input.ConsumeIntegralInRange(0, 15) == 0 ? nullptr : reinterpret_cast<T>(sElements);
        }
        return nullptr;
    } else if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(input.ConsumeIntegral<int8_t>());
    } else if constexpr (sizeof(T) == 1) {
        return input.PickValueInArray<T>({T(0), T(1), T(255)});
    } else {
        if (std::is_signed_v<T> && hasArray) {
            return static_cast<T>(input.ConsumeIntegralInRange(-1, kMostElements));
        }
        const auto choice = input.ConsumeIntegral<uint8_t>();
        return static_cast<T>(choice < std::size(kNumbers) ? kNumbers[choice] : choice % 10);
    }
}

template <typename R, typename... Args>
void callOne(size_t entry, R (*GlTable::*slot)(Args...), const char* name, FuzzedDataProvider& input) {
    const bool hasArray = (std::is_pointer_v<Args> || ...) && !std::string_view(name).starts_with("glDraw");
    const std::tuple<Args...> arguments{argument<Args>(input, hasArray)...};
    fuzz::arrivals().clear();
    std::apply(sGles2.gl.*slot, arguments);
    const uint64_t expected = std::apply([](auto... args) { return fuzz::digest(args...); }, arguments);
    size_t same = 0;
    size_t entries = 0;
    for (const fuzz::Arrival& arrival : fuzz::arrivals()) {
        entries += arrival.entry == entry;
        same += arrival.entry == entry && arrival.arguments == expected;
    }
    fuzz::demand(entries >= 1, name);
    if (kGame.isExact) {
        fuzz::demand(same >= 1, name);
        fuzz::demand(same == 1 || fuzz::arrivals().size() > 2, name); // twice, and nothing of the library's around it
    }
}

struct GlEntry {
    void (*call)(FuzzedDataProvider&);
    size_t offset;
};

/** The entries that the library has replaced. */
const std::vector<GlEntry>& hookedEntries() {
    static const auto& hooked = *[] {
        auto* found = new std::vector<GlEntry>;
#define GL_ENTRY(Result, name, params, args, providers)                                                                \
    if (sGles2.gl.name != sDriver.gl.name) {                                                                           \
        found->push_back(                                                                                              \
            {[](FuzzedDataProvider& input) { callOne(offsetof(GlTable, name), &GlTable::name, #name, input); },        \
             offsetof(GlTable, name)});                                                                                \
    }
#include <entries/gl_entries.in>
#undef GL_ENTRY
        return found;
    }();
    return hooked;
}

EGLContext contextOf(FuzzedDataProvider& input) {
    return reinterpret_cast<EGLContext>(input.ConsumeIntegralInRange<uintptr_t>(0, 5));
}

/** What happens outside GL. */
void changeSomething(FuzzedDataProvider& input) {
    auto& monitor = GameInfoMonitor::getInstance();
    platform_impl_t& platform = sConnection.platform;
    static constexpr int kScenes[] = {4, 5, 6, 7, 8, 101, 102, 111, 1000, 1001, -1};
    switch (input.ConsumeIntegralInRange(0, 12)) {
    case 0:
        monitor.parseGameSceneId(kPackage, input.PickValueInArray(kScenes));
        break;
    case 1:
        monitor.parseGamePictureInfo(8, input.ConsumeIntegralInRange(0, 4));
        break;
    case 2:
        monitor.parseGamePictureInfo(10, input.ConsumeIntegralInRange(0, 3));
        break;
    case 3:
        monitor.parseGameVrsLevel(input.ConsumeIntegralInRange(-1, 4));
        break;
    case 4:
        monitor.parseCommonVrs(kPackage, input.ConsumeIntegralInRange(0, 2));
        break;
    case 5:
        monitor.parseFilterConfig(kPackage, input.ConsumeIntegralInRange(-1, 9), input.ConsumeIntegralInRange(-1, 101),
                                  input.ConsumeIntegralInRange(0, 2));
        break;
    case 6:
        platform.eglMakeCurrent(nullptr, nullptr, nullptr, contextOf(input));
        break;
    case 7:
        platform.eglCreateContext(nullptr, nullptr, contextOf(input), nullptr);
        break;
    case 8:
        platform.eglDestroyContext(nullptr, contextOf(input));
        break;
    case 9:
        sConnection.egl.eglGetProcAddress(input.PickValueInArray<const char*>(
            {"glShadingRateEXT", "glShadingRateCombinerOpsEXT", "glDrawArrays", "glNothing", ""}));
        break;
    case 10:
        fuzz::root().write("/data/system/mcd/dr",
                           input.PickValueInArray<std::string>(
                               {kPackage + " 240 136", kPackage + " 320 180", kPackage, "", "nobody 1 1"}));
        break;
    case 11: {
        GLint value[1] = {input.ConsumeBool() ? 0 : INT_MAX}; // the driver refuses, and leaves it
        platform.glGetString(input.ConsumeBool() ? GL_EXTENSIONS : GL_VERSION);
        platform.glGetStringi(GL_EXTENSIONS, input.ConsumeIntegralInRange(0u, 3u));
        platform.glGetIntegerv(GL_NUM_EXTENSIONS, value);
        break;
    }
    default:
        platform.eglSwapBuffersWithDamageKHR(nullptr, nullptr, nullptr, 0);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::logNothing();
    fuzz::root().write("/proc/" + std::to_string(getpid()) + "/cmdline", kPackage);
    fuzz::root().write("/data/system/mcd/gameInfo", "");
    fuzz::root().write("/data/system/mcd/dr", kPackage + " 320 180");
    fuzz::root().write("/data/system/mcd/sr", kPackage + " 1");
    fuzz::root().write("/data/system/mcd/dfi", kPackage + " 16");
    FakeRavelo::offer(kGame.configuration);
    fuzz::connect(sConnection, sGles2);
    sDriver = sGles2;
    sLibrary = static_cast<OrvelStub*>(createInstance());
    sLibrary->earlyInitOrvel(&sConnection);
    fuzz::demand(sLibrary->isEnabled(), "the library is at work");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider input(data, size);
    // What a game left behind goes on in the next, the first context, too, if it still lives.
    sConnection.platform.eglCreateContext(nullptr, nullptr, nullptr, nullptr);
    sConnection.platform.eglMakeCurrent(nullptr, nullptr, nullptr, reinterpret_cast<EGLContext>(1));
    for (int calls = 0; calls < 400 && input.remaining_bytes() > 0; ++calls) {
        const auto choice = input.ConsumeIntegral<uint8_t>();
        if (choice < 16) {
            sConnection.platform.eglSwapBuffers(nullptr, nullptr);
            sLibrary->eglSwapBuffersEnd();
        } else if (choice < 48) {
            changeSomething(input);
        } else if (!hookedEntries().empty()) { // a shared processor has none of its own
            hookedEntries()[choice % hookedEntries().size()].call(input);
        }
    }
    return 0;
}
