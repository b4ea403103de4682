#include "Overlay.h"

#include "Shaders.h"

#include <cstddef>
#include <cstdint>
#include <numbers>
#include <vector>

namespace sample {

namespace {

constexpr int kDots = Overlay::kMostIndices / 6;

struct Corner {
    float x, y; // pixels from the upper left of the window
    uint32_t colour;
};

} // namespace

Overlay::Overlay(Size window) : mWindow(window), mProgram("Overlay", shaders::uiVertex(), shaders::uiFragment()) {
    std::vector<Corner> corners;
    std::vector<GLushort> indices;
    const float radius = 0.3F * static_cast<float>(window.height);
    for (int dot = 0; dot < kDots; ++dot) {
        const float around = 2 * std::numbers::pi_v<float> * static_cast<float>(dot) / kDots;
        const float x = static_cast<float>(window.width) / 2 + radius * std::sin(around);
        const float y = static_cast<float>(window.height) / 2 - radius * std::cos(around);
        for (const int corner : {0, 1, 2, 3}) {
            constexpr float kSide = 6;
            corners.push_back({corner % 2 ? x + kSide : x, corner < 2 ? y : y + kSide, 0xff40c0ff});
        }
        for (const int corner : {0, 1, 2, 2, 1, 3}) {
            indices.push_back(static_cast<GLushort>(dot * 4 + corner));
        }
    }
    GLuint buffers[2];
    glGenVertexArrays(1, &mVertexArray);
    glGenBuffers(2, buffers);
    glBindVertexArray(mVertexArray);
    glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(corners.size() * sizeof(Corner)), corners.data(),
                 GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size() * sizeof(GLushort)), indices.data(),
                 GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, sizeof(Corner), nullptr);
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(1, 4, GL_UNSIGNED_BYTE, GL_TRUE, sizeof(Corner),
                          reinterpret_cast<const void*>(offsetof(Corner, colour))); // NOLINT: an offset
    glBindVertexArray(0);
}

void Overlay::draw(int indices) const {
    mProgram.use();
    mProgram.set("uWindow", Vec3{static_cast<float>(mWindow.width), static_cast<float>(mWindow.height), 0});
    glBindVertexArray(mVertexArray);
    glDrawElements(GL_TRIANGLES, indices, GL_UNSIGNED_SHORT, nullptr);
}

} // namespace sample
