#include "app/OrvelModuleBase.h"

#include "app/OrvelApplicationUtils.h"
#include "app/OrvelProcessorDataBase.h"
#include "settings/OrvelSettings.h"

namespace android::orvel::app::module {

void OrvelModuleBase::RegisterModuleGlobalGLHooks(egl_connection_t* cnx) {
    for (const uint32_t id : OrvelSettings::getInstance().getProcessorData().GetModuleIds()) {
        RegisterProcessorModuleGlobalGLHooks(id, cnx);
    }
}

} // namespace android::orvel::app::module
