#include "Meshes.h"

#include "Matrix.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>
#include <vector>

namespace sample {

namespace {

constexpr float kPi = std::numbers::pi_v<float>;

struct Vertex {
    Vec3 position;
    Vec3 normal;
};

/**
 * A grid of columns x rows cells, each two triangles, the last row on top; `point` gives the vertex at u, v of 0 to 1.
 */
template <typename Point>
Mesh makeGrid(int columns, int rows, Point point) {
    std::vector<Vertex> vertices;
    std::vector<GLushort> indices;
    for (int row = 0; row <= rows; ++row) {
        for (int column = 0; column <= columns; ++column) {
            vertices.push_back(point(static_cast<float>(column) / static_cast<float>(columns),
                                     static_cast<float>(row) / static_cast<float>(rows)));
            if (row == rows || column == columns) {
                continue;
            }
            const int corner = row * (columns + 1) + column;
            for (const int index : {0, columns + 1, 1, 1, columns + 1, columns + 2}) {
                indices.push_back(static_cast<GLushort>(corner + index));
            }
        }
    }
    Mesh mesh;
    mesh.indexCount = static_cast<GLsizei>(indices.size());
    GLuint buffers[2];
    glGenVertexArrays(1, &mesh.vertexArray);
    glGenBuffers(2, buffers);
    glBindVertexArray(mesh.vertexArray);
    glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * sizeof(Vertex)), vertices.data(),
                 GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size() * sizeof(GLushort)), indices.data(),
                 GL_STATIC_DRAW);
    for (GLuint attribute = 0; attribute < 2; ++attribute) {
        glEnableVertexAttribArray(attribute);
        glVertexAttribPointer(attribute, 3, GL_FLOAT, GL_FALSE, sizeof(Vertex),
                              reinterpret_cast<const void*>(attribute * sizeof(Vec3))); // NOLINT: an offset
    }
    glBindVertexArray(0);
    return mesh;
}

float smoothstep(float low, float high, float x) {
    const float t = std::clamp((x - low) / (high - low), 0.0F, 1.0F);
    return t * t * (3 - 2 * t);
}

float terrainHeight(float x, float z) {
    float hills = 0;
    float size = 1;
    for (int octave = 0; octave < 5; ++octave) {
        const float scale = 0.07F / size;
        const float turn = 1.9F * static_cast<float>(octave);
        const float u = std::cos(turn) * x - std::sin(turn) * z;
        const float v = std::sin(turn) * x + std::cos(turn) * z;
        hills += size * (1 - std::abs(std::sin(u * scale + turn) * std::cos(v * scale * 1.3F)));
        size *= 0.5F;
    }
    const float distance = std::hypot(x, z);
    const float lake = -2.5F * smoothstep(10, 15, distance) * (1 - smoothstep(19, 30, distance));
    const float rise = smoothstep(17, 50, distance);
    return lake + rise * (hills - 0.7F) * 11 + 0.25F * smoothstep(15, 30, distance) * std::sin(x * 0.9F + z);
}

} // namespace

Mesh makeTerrain() {
    return makeGrid(56, 56, [](float u, float v) {
        // Cells grow with the distance from the middle.
        const auto spread = [](float t) { return (t - 0.5F) * (40 + 240 * (t - 0.5F) * (t - 0.5F)); };
        const float x = 2 * spread(u);
        const float z = 2 * spread(v);
        constexpr float kStep = 0.3F;
        const float slopeX = (terrainHeight(x + kStep, z) - terrainHeight(x - kStep, z)) / (2 * kStep);
        const float slopeZ = (terrainHeight(x, z + kStep) - terrainHeight(x, z - kStep)) / (2 * kStep);
        return Vertex{{x, terrainHeight(x, z), z}, normalize({-slopeX, 1, -slopeZ})};
    });
}

Mesh makeSphere() {
    return makeGrid(28, 14, [](float u, float v) {
        const float around = -2 * kPi * u;
        const float down = kPi * v;
        const Vec3 p = {std::sin(down) * std::cos(around), std::cos(down), std::sin(down) * std::sin(around)};
        return Vertex{p, p};
    });
}

Mesh makePillar() {
    struct Ring {
        float height, radius;
    };
    // foot, shaft that swells a little, head; the last ring closes the top
    static constexpr Ring kRings[] = {{0, 1},        {0.05F, 1}, {0.1F, 0.68F}, {0.5F, 0.76F},
                                      {0.9F, 0.68F}, {0.95F, 1}, {1, 1},        {1, 0}};
    constexpr int kRows = std::size(kRings) - 1;
    return makeGrid(12, kRows, [](float u, float v) {
        const Ring& ring = kRings[std::lround(v * kRows)];
        const float around = 2 * kPi * u;
        const Vec3 out = {std::cos(around), 0, std::sin(around)};
        return Vertex{{out.x * ring.radius, ring.height, out.z * ring.radius}, ring.radius == 0 ? Vec3{0, 1, 0} : out};
    });
}

} // namespace sample
