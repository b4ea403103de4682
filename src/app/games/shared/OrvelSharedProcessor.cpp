#include "app/games/shared/OrvelSharedProcessor.h"

#include "settings/OrvelSettings.h"

namespace android::orvel::app {

uint32_t OrvelSharedProcessor::PROCESSOR_TYPE = 0;

OrvelSharedProcessor::OrvelSharedProcessor() : mData(&OrvelSettings::getInstance().getProcessorData()) {}

void OrvelSharedProcessor::RegisterGlobalGLHooks(egl_connection_t*) {}

} // namespace android::orvel::app
