// The shapes of the scene, made from formulas.
#pragma once

#include <GLES3/gl32.h>

namespace sample {

/** Indexed triangles: attribute 0 is the position, attribute 1 the normal, three floats each. */
struct Mesh {
    GLuint vertexArray = 0;
    GLsizei indexCount = 0;

    void draw() const {
        glBindVertexArray(vertexArray);
        glDrawElements(GL_TRIANGLES, indexCount, GL_UNSIGNED_SHORT, nullptr);
    }
};

Mesh makeTerrain(); // hills around a flat place at the origin, a valley below 0
Mesh makeSphere();  // radius 1 about the origin
Mesh makePillar();  // foot at the origin, 1 high, about 1 in radius

} // namespace sample
