#include "app/OrvelProcessorDataBase.h"

#include "app/OrvelApplicationUtils.h"
#include "app/OrvelProcessorModuleDataBase.h"
#include "settings/OrvelSettings.h"

#include <gmock/gmock.h>
#include <json/value.h>

using namespace android;
using namespace android::orvel::app;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/** Two modules that need the same function, one that needs none. */
class Data : public OrvelProcessorDataBase {
public:
    Data() {
        moduleIds = {1, 2, 4};
        moduleData[1] = new module::OrvelProcessorModuleDataBase(Json::Value());
        ColloctExtensionFunctions({{1, {"glA"}}, {2, {"glA", "glB"}}, {8, {"glC"}}});
    }
    const std::vector<std::string>& GetModuleExtensionFunctions(uint32_t moduleId) override {
        static const std::vector<std::string> names[] = {{}, {"glA"}, {"glA", "glB"}};
        return names[moduleId <= 2 ? moduleId : 0];
    }
};

// Catches a module that stays although its function is missing, a claim or parameters that outlive their module.
TEST(ProcessorData, ModulesGoWithTheirFunctions) {
    Data data;
    EXPECT_EQ(data.extensionFunctions.size(), 2u);
    data.CheckExtensionFunctions([](const std::string& name) { return name == "glB"; });
    EXPECT_THAT(data.moduleIds, ElementsAre(1, 4));
    EXPECT_THAT(data.extensionFunctions, ElementsAre(testing::Pair("glA", ElementsAre(1))));
    data.RemoveExtensionFunction("glUnknown");
    EXPECT_NE(data.GetProcessorModuleData(1), nullptr);
    data.RemoveExtensionFunction("glA");
    EXPECT_THAT(data.moduleIds, ElementsAre(4));
    EXPECT_EQ(data.GetProcessorModuleData(1), nullptr);
    EXPECT_THAT(data.extensionFunctions, IsEmpty());
    data.EraseModuleId(4);
    data.EraseModuleId(4);
    EXPECT_FALSE(data.HasAnyModuleId());

    Data shared;
    shared.RemoveExtensionFunction("glA");
    EXPECT_THAT(shared.moduleIds, ElementsAre(4)); // both that needed it are gone
    EXPECT_THROW(Data().CheckExtensionFunctions({}), std::bad_function_call);
}

// Catches a type in the wrong set: it would get the other hook layer.
TEST(Factory, SortsApplicationTypes) {
    auto& own = orvel::OrvelSettings::getInstance().mApplicationType;
    EXPECT_EQ(CreateProcessorData(), nullptr);
    for (uint32_t type = APP_TYPE_NONE; type <= APP_TYPE_BILI + 1; ++type) {
        const bool framework = type == 1 || type == 2 || (type >= 6 && type <= 9);
        own = APP_TYPE_YUANSHEN;
        EXPECT_EQ(UsingRenderController(type), framework) << type;
        own = static_cast<OrvelApplicationType>(type);
        EXPECT_EQ(UsingRenderController(0), framework) << type;
        EXPECT_EQ(IsSharedProcessor(), type >= 6 && type <= 9) << type;
    }
    own = APP_TYPE_YUANSHEN;
    OrvelProcessorDataBase* data = CreateProcessorData();
    ASSERT_NE(data, nullptr);
    EXPECT_FALSE(data->HasAnyModuleId());
    ReleaseProcessorData(data);
    ReleaseProcessorData(nullptr);
    ReleaseProcessorModuleData(nullptr);
}

} // namespace
