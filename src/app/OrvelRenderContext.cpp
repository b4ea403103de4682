#include "app/OrvelRenderContext.h"

#include "app/OrvelApplicationUtils.h"
#include "app/OrvelProcessorBase.h"
#include "base/OrvelLog.h"

#include <utility>

namespace android::orvel {

constinit thread_local OrvelRenderContext* gContextTls = nullptr;

std::unique_ptr<OrvelRenderContext> OrvelRenderContext::Create(void* eglContext) {
    auto made = std::make_unique<OrvelRenderContext>(eglContext);
    return made->Init() ? std::move(made) : nullptr;
}

OrvelRenderContext::~OrvelRenderContext() {
    if (mProcessor) {
        mProcessor->OnEnd();
        app::ReleaseGLProcessor(mProcessor);
        mProcessor = nullptr;
    }
}

bool OrvelRenderContext::Init() {
    if (!mContext) {
        ORVEL_LOGW("ignore null/invalid context");
        return false;
    }
    InitApplicationProcessor();
    return true;
}

void OrvelRenderContext::InitApplicationProcessor() {
    mProcessor = app::CreateGLProcessor();
    if (mProcessor) {
        mProcessor->OnBegin();
    }
}

} // namespace android::orvel
