// The recogniser's place in the system: created, fed and asked by others already, it recognises nothing yet.
#include "legacy/SceneRecognizer.h"

namespace android {

void SceneRecognizer::updateTexSizeArr(int32_t, int32_t) {}
void SceneRecognizer::updateEleCountArr(const int&) {}
void SceneRecognizer::checkBossPattern() {}
void SceneRecognizer::checkTransferPattern(const int&) {}
void SceneRecognizer::checkLaunchPattern(const int&) {}
void SceneRecognizer::recognizeHkrpgScene(int32_t) {}
void SceneRecognizer::checkTransferPatternHP(const int&) {}
void SceneRecognizer::startThread() {}
void SceneRecognizer::stopThread() {}
int32_t SceneRecognizer::sendSceneIdToRavelo(int32_t) { return 0; }
bool SceneRecognizer::threadLoop() { return false; }

void queryTexSizeArr() {}
void markLabelledHkrpgTexture(unsigned&, const char*) {}
void recognizeBoundHkrpgTexture(unsigned&) {}
void recognizeHkrpgFrame() {}

} // namespace android
