// The user interface: sharp to the pixel, drawn straight into the window.
#pragma once

#include "Gl.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sample {

class Ui {
public:
    Ui(Size window, std::string title);

    Size window() const { return mWindow; }
    void draw(int frame);

private:
    struct Corner {
        float x, y; // pixels from the upper left of the window
        uint32_t colour;
    };

    void addBox(int x, int y, int width, int height, uint32_t colour);
    void addText(int x, int y, int scale, std::string_view text, uint32_t colour);
    void addFrame(int x, int y, int width, int height, uint32_t colour);
    void addMap(int frame);

    const Size mWindow;
    const std::string mTitle;
    const Program mProgram;
    GLuint mVertexArray = 0;
    GLuint mVertices = 0;
    std::vector<Corner> mCorners; // four a box
};

} // namespace sample
