// Draws of a given length over the finished window: what the engines' own effects look like to whoever counts indices.
#pragma once

#include "Gl.h"

namespace sample {

class Overlay {
public:
    static constexpr int kMostIndices = 420;

    explicit Overlay(Size window);

    /**
     * One indexed draw: a dot for every six indices, in a ring.
     * @param indices a multiple of 6, at most kMostIndices
     */
    void draw(int indices) const;

private:
    const Size mWindow;
    const Program mProgram;
    GLuint mVertexArray = 0;
};

} // namespace sample
