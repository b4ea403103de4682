#include "next/effects/OrvelVisualEffectInstance.h"

#include "next/OrvelNext.h"
#include "next/effects/OrvelVisualEffect.h"

namespace android::orvel::next {

OrvelVisualEffectInstance::OrvelVisualEffectInstance(const OrvelVisualEffect* effect)
    : mEnabled(effect && effect->IsValid()) {}

void OrvelVisualEffectInstance::EnableDarkEdge(bool enable) {
    mDarkEdge = enable;
    mDirty |= DIRTY_UNIFORMS;
}

GLint OrvelVisualEffectInstance::FindUniform(const std::string& name) {
    OrvelVisualEffect* const effect = mEnabled ? GetEffect() : nullptr;
    return effect && effect->IsValid() ? effect->GetProgram().GetUniformLocation(name) : -1;
}

void OrvelVisualEffectInstance::SetUniform1i(const std::string& name, int value) {
    if (const GLint location = FindUniform(name); location != -1) {
        gl.glUniform1i(location, value);
    }
}

void OrvelVisualEffectInstance::SetUniform4fv(const std::string& name, int count, const float* values) {
    if (const GLint location = FindUniform(name); location != -1) {
        gl.glUniform4fv(location, count, values);
    }
}

} // namespace android::orvel::next
