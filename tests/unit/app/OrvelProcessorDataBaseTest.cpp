#include "app/OrvelProcessorDataBase.h"

#include "LogCapture.h"
#include "TestRoot.h"
#include "app/FrameworkProcess.h"
#include "app/OrvelProcessorBase.h"
#include "app/OrvelProcessorModuleDataBase.h"

#include <gmock/gmock.h>
#include <json/reader.h>

using namespace android;
using namespace android::orvel::app;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Json::Value parse(const std::string& text) {
    Json::Value json;
    std::istringstream(text) >> json;
    return json;
}

/** Modules 1 and 2 need the same function, 4 needs none. */
class Data : public OrvelProcessorDataBase {
public:
    Data() {
        InitModuleIdArray(1 | 2 | 4);
        moduleData[1] = new module::OrvelProcessorModuleDataBase(Json::Value());
        ColloctExtensionFunctions({{1, {"glA"}}, {2, {"glA", "glB"}}, {8, {"glC"}}});
    }
    const std::vector<std::string>& GetModuleExtensionFunctions(uint32_t moduleId) override {
        static const std::vector<std::string> names[] = {{}, {"glA"}, {"glA", "glB"}};
        return names[moduleId <= 2 ? moduleId : 0];
    }
    using OrvelProcessorDataBase::extensionFunctions;
};

// Catches a module that stays although its function is missing, a claim or parameters that outlive their module, a
// function that is asked for twice, in another order, or not at all: asking resolves it.
TEST(ProcessorData, ModulesGoWithTheirFunctions) {
    Data data;
    EXPECT_EQ(data.extensionFunctions.size(), 2u);
    std::vector<std::string> asked;
    data.CheckExtensionFunctions([&](const std::string& name) {
        asked.push_back(name);
        return name == "glB";
    });
    EXPECT_THAT(asked, ElementsAre("glA", "glB"));
    EXPECT_THAT(data.GetModuleIds(), ElementsAre(1, 4));
    EXPECT_THAT(data.extensionFunctions, ElementsAre(testing::Pair("glA", ElementsAre(1))));
    data.RemoveExtensionFunction("glUnknown");
    EXPECT_NE(data.GetProcessorModuleData(1), nullptr);
    data.RemoveExtensionFunction("glA");
    EXPECT_THAT(data.GetModuleIds(), ElementsAre(4));
    EXPECT_EQ(data.GetProcessorModuleData(1), nullptr);
    EXPECT_THAT(data.extensionFunctions, IsEmpty());
    data.EraseModuleId(4);
    data.EraseModuleId(4);
    EXPECT_FALSE(data.HasAnyModuleId());

    Data shared;
    shared.RemoveExtensionFunction("glA");
    EXPECT_THAT(shared.GetModuleIds(), ElementsAre(4)); // both that needed it are gone
    EXPECT_THROW(Data().CheckExtensionFunctions({}), std::bad_function_call);
}

// ---- from the service's keys ---------------------------------------------------------------------------------------

struct Keys {
    const char* json;
    std::vector<uint32_t> ids;
    int32_t mode = 0;
    const char* name = "";
    uint64_t baseInfo = 0;
};

const Keys kKeys[] = {
    {R"({"xrender_BaseInfo":"262147"})", {1, 2, 262144}, 0, "", 262147},
    {R"({"xrender_BaseInfo":262146,"xrender_CheckMainInfo":2})", {2, 262144}, 2, "", 262146},
    {R"({"xrender_BaseInfo":"3221225478"})", {2}, 0, "", 3221225478}, // 4 is no module, 30 and 31 no bits
    {R"({"xrender_BaseInfo":"0","xrender_CheckMainInfo":"2"})", {}},
    {R"({"xrender_BaseInfo":["2"]})", {}},
    {R"({"xrender_CheckMainInfo":"2"})", {}},
    {"null", {}},
    {R"({"xrender_BaseInfo":"4"})", {}, 0, "", 4},
    {R"({"xrender_BaseInfo":"3","effect_Binary":"x"})", {1}, 0, "", 3}, // unusable parameters
    {R"({"xrender_BaseInfo":"2","xrender_CheckMainInfo":";"})", {2}, 0, "", 2},
    {R"({"xrender_BaseInfo":"2","xrender_CheckMainInfo":"1"})", {2}, 0, "", 2},
    {R"({"xrender_BaseInfo":"2","xrender_CheckMainInfo":"1;"})", {2}, 0, "", 2},
    {R"({"xrender_BaseInfo":"2","xrender_CheckMainInfo":"1;Unity.*;x"})", {2}, 1, "Unity.*", 2},
    {R"({"xrender_BaseInfo":"2","xrender_CheckMainInfo":"0;Unity"})", {2}, 0, "Unity", 2},
};

// Catches a mask bit read as a module number, a mode without the pattern it needs, an id that stays without parameters
// or with unusable ones, and a monitor that is started for nothing.
TEST(ProcessorConfiguration, FillsIdsAndMainContext) {
    const TestRoot root; // without a file to watch: the monitor says so when it is started
    orvel::OrvelSettings::getInstance().mApplicationType = APP_TYPE_PUBG;
    for (const Keys& keys : kKeys) {
        SCOPED_TRACE(keys.json);
        OrvelProcessorDataBase* data = CreateProcessorData();
        LogCapture log;
        Json::Value json = parse(keys.json);
        if (json.isObject() && !json.isMember("effect_Binary")) {
            json["effect_Binary"] = "0;0;0"; // what module 2 needs
        }
        data->InitProcessorConfigData(json);
        EXPECT_EQ(data->GetModuleIds(), keys.ids);
        EXPECT_EQ(data->HasAnyModuleId(), !keys.ids.empty());
        EXPECT_EQ(data->mainContextMode, keys.mode);
        EXPECT_EQ(data->mainThreadName, keys.name);
        EXPECT_EQ(data->baseInfo, keys.baseInfo);
        EXPECT_EQ(log.has(ANDROID_LOG_ERROR, "Orvel fail to use INO for game info: No such file or directory"),
                  !keys.ids.empty());
        for (const uint32_t id : keys.ids) {
            EXPECT_NE(data->GetProcessorModuleData(id), nullptr) << id;
        }
        ReleaseProcessorData(data);
    }
}

// Catches a malformed number that is taken for none, or that leaves half a configuration behind.
TEST(ProcessorConfiguration, IsEmptyAfterAMalformedNumber) {
    const TestRoot root;
    struct Malformed {
        OrvelApplicationType type;
        const char* keys;
        const char* problem;
    };
    const Malformed rows[] = {
        {APP_TYPE_BILI, R"({"xrender_BaseInfo":"x"})", R"("xrender_BaseInfo" is no number: "x")"},
        {APP_TYPE_BILI, R"({"xrender_BaseInfo":"99999999999999999999"})",
         R"("xrender_BaseInfo" is out of range: "99999999999999999999")"},
        {APP_TYPE_BILI, R"({"xrender_BaseInfo":"262144","xrender_CheckMainInfo":"main;x"})",
         R"("xrender_CheckMainInfo" is no number: "main")"},
        {APP_TYPE_SGAME, R"({"xrender_BaseInfo":"1","xrender_PayloadData":"a#b#many"})",
         R"("xrender_PayloadData" is no number: "many")"},
        {APP_TYPE_SGAME, R"({"xrender_BaseInfo":"1","xrender_PayloadData":"a#b#99999999999"})",
         R"("xrender_PayloadData" is out of range: "99999999999")"},
    };
    for (const auto& [type, keys, problem] : rows) {
        orvel::OrvelSettings::getInstance().mApplicationType = type;
        LogCapture log;
        com::velmor::ravelo::OrvelPrefs prefs;
        prefs.readFromRavelo(std::string(R"({"configs":)") + keys + "}");
        EXPECT_FALSE(prefs.mProcessorData->HasAnyModuleId()) << keys;
        EXPECT_EQ(prefs.mProcessorData->baseInfo, 0u) << keys;
        EXPECT_THAT(log.texts(ANDROID_LOG_ERROR),
                    ElementsAre("configuration of the processor is malformed: " + std::string(problem)));
    }
}

// Catches a payload that comes after the parameters, or comes though nobody sent one, and parameters that are made
// twice.
TEST(ProcessorConfiguration, ParsesThePayloadFirst) {
    class Payload : public OrvelProcessorDataBase {
    public:
        void ParsePayloadData(const std::string& payload) override {
            payloads.push_back(payload + (moduleData.empty() ? "" : " late"));
        }
        std::vector<std::string> payloads;
    };
    const TestRoot root;
    orvel::OrvelSettings::getInstance().mApplicationType = APP_TYPE_PUBG;
    Payload data;
    data.InitProcessorConfigData(parse(R"({"xrender_BaseInfo":"1"})"));
    EXPECT_THAT(data.payloads, IsEmpty());
    auto* const parameters = data.GetProcessorModuleData(1);
    EXPECT_TRUE(data.InitProcessorModuleData(1, Json::Value()));
    EXPECT_EQ(data.GetProcessorModuleData(1), parameters);
    EXPECT_FALSE(data.InitProcessorModuleData(8, Json::Value()));

    Payload second;
    second.InitProcessorConfigData(parse(R"({"xrender_BaseInfo":"1","xrender_PayloadData":""})"));
    second.InitProcessorConfigData(parse(R"({"xrender_PayloadData":"a#b"})"));
    EXPECT_THAT(second.payloads, ElementsAre("", "a#b late"));
    second.InitModuleIdArray(1 | 1u << 30 | 1u << 31); // one that is there, and two bits that are no modules
    EXPECT_THAT(second.GetModuleIds(), ElementsAre(1));
}

// ---- the factory ---------------------------------------------------------------------------------------------------

// Catches a type in the wrong set: it would get the other hook layer.
TEST(Factory, SortsApplicationTypes) {
    auto& own = orvel::OrvelSettings::getInstance().mApplicationType;
    EXPECT_EQ(CreateProcessorData(), nullptr);
    EXPECT_THROW(CreateGLProcessor(), std::bad_function_call); // nothing is registered
    InitModuleCreateInfo(1);
    RegisterProcessorGlobalGLHooks(nullptr);
    for (uint32_t type = APP_TYPE_NONE; type <= APP_TYPE_BILI + 1; ++type) {
        const bool framework = type == 1 || type == 2 || (type >= 6 && type <= 9);
        own = APP_TYPE_YUANSHEN;
        EXPECT_EQ(UsingRenderController(type), framework) << type;
        own = static_cast<OrvelApplicationType>(type);
        EXPECT_EQ(UsingRenderController(0), framework) << type;
        EXPECT_EQ(IsSharedProcessor(), type >= 6 && type <= 9) << type;
    }
    own = APP_TYPE_YUANSHEN;
    InitProcessorCreateInfo(); // a processor of none, so that whoever asks gets an answer
    EXPECT_EQ(CreateGLProcessor(), nullptr);
    OrvelProcessorDataBase* data = CreateProcessorData();
    ASSERT_NE(data, nullptr);
    EXPECT_FALSE(data->HasAnyModuleId());
    ReleaseProcessorData(data);
    ReleaseProcessorData(nullptr);
    ReleaseProcessorModuleData(nullptr);
    ReleaseGLProcessor(nullptr);
    ReleaseProcessorGLModule(nullptr);
}

} // namespace
