// Dynamic resolution's place in the system: created and called by others already, it changes nothing yet.
#include "legacy/OrvelDRR.h"

namespace android::orvel {

OrvelDRR::OrvelDRR(bool enable, bool, std::string, int, std::vector<TEX_SIZE>, std::vector<TEX_SIZE>,
                   std::vector<TEX_SIZE>)
    : mEnable(enable) {}

void OrvelDRR::modifySizeParams(int&, int&) {}
bool OrvelDRR::checkIllegalSize(int, int) const { return false; }
void OrvelDRR::updateTexDetailMap(unsigned, int, int) {}
void OrvelDRR::markCurrentFramebuffer(unsigned, unsigned) {}
void OrvelDRR::updateFramebufferDetailMap(unsigned, unsigned&) {}
void OrvelDRR::modifyBindedTexture(unsigned&) {}
void OrvelDRR::markCurrentTexture(unsigned, unsigned) {}
void OrvelDRR::deleteTextures(int, const unsigned*) {}
void OrvelDRR::deleteFramebuffers(int, const unsigned*) {}
void OrvelDRR::onEglSwapBuffersEnd() {}
void OrvelDRR::modifyShaderUniform4fv_1(int, float*) {}
void OrvelDRR::markCurrentProgram(unsigned) {}
void OrvelDRR::activeTexture(unsigned) {}
void OrvelDRR::markLabelObject(unsigned, const char*) {}

} // namespace android::orvel
