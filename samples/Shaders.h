// The texts of all shaders. Each is a fresh string on the heap.
#pragma once

#include <string>

namespace sample::shaders {

/** @return the body under the head that most shaders share: version and precision */
std::string whole(const char* body);

// vertex shaders
std::string placed();          // a mesh, scaled and moved
std::string placedByColumns(); // the same, the camera's matrix being the array hlslcc_mtx4x4unity_MatrixVP
std::string fullScreen();      // one triangle over everything, at the far plane, from no vertices
std::string waterSurface();    // a strip of four vertices at one height, from no vertices

// fragment shaders of the scene: colour and normal (SceneShaders.cpp)
std::string land();
std::string object();
std::string sky();
std::string clouds();
std::string water();

// the others (PassShaders.cpp)
std::string outline();
std::string post();
std::string copy();
std::string uiVertex();
std::string uiFragment();

} // namespace sample::shaders
